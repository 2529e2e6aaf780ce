// The help file writer, read back through our own reader, and the help file the
// build makes from resources/help.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/temp_dir.h"
#include "tests/tools/hlp_reader.h"
#include "tools/helpfile/help_source.h"
#include "tools/helpfile/hlp_directory.h"
#include "tools/helpfile/hlp_writer.h"

namespace qb::help {
namespace {

using test::HlpFile;
using test::HlpTopic;
using test::LongKey;

Topic Parsed(const std::string& source) {
  Topic topic;
  std::string error;
  EXPECT_TRUE(ParseTopic("t.txt", source, topic, error)) << error;
  return topic;
}

// A topic from the source its author would write.
Topic Authored(const std::string& context, const std::vector<std::uint32_t>& maps = {},
               const std::string& title = "T", const std::string& body = "") {
  std::string source = "@context " + context + "\n";
  for (std::uint32_t map : maps) source += "@map " + std::to_string(map) + "\n";
  return Parsed(source + "@title " + title + "\n\n" + body);
}

TEST(ContextHash, LettersCountWithoutCaseAndTheSumWrapsAt32Bits) {
  const std::pair<const char*, std::int32_t> rows[] = {  // name, hash
      {"A", 17},           {"a", 17},        {"a1", 17 * 43 + 1}, {"0", 10},
      {"._", 12 * 43 + 13}, {"Z9", 42 * 43 + 9},
      {"zzzzzzz", 1235671458},  // 43^7 - 1, less 63 * 2^32
  };
  for (const auto& [name, hash] : rows) EXPECT_EQ(ContextHash(name), hash) << name;
}

// The second topic's paragraphs are long enough to span several topic blocks.
TEST(HelpFile, TopicsReadBackByNumberNameAndContents) {
  std::string words;
  for (int i = 0; i < 3000; ++i) words += (i ? " word" : "word") + std::to_string(i);
  const std::string unbroken(9000, 'x');  // no blank to cut after
  const Project project{"Test Help",
                        {Authored("contents", {999}, "Contents",
                                  "Intro **bold** text,\njoined.\n\n"
                                  "- item one\n- item [[second|two]]\n  goes on\n\n"
                                  "== Head\nLast [[Third|third topic]].\n"),
                         Authored("second", {1900, 1901}, "The second", words + "\n\n**" + unbroken + "**\n"),
                         Authored("third", {7}, "Third")}};  // title only
  std::vector<std::uint8_t> bytes;
  std::string error;
  ASSERT_TRUE(WriteHelpFile(project, bytes, error)) << error;
  const HlpFile file(bytes);

  EXPECT_EQ(file.fileNames, (std::vector<std::string>{"|CONTEXT", "|CTXOMAP", "|FONT", "|SYSTEM", "|TOPIC"}));
  EXPECT_EQ(file.title, "Test Help");
  EXPECT_EQ(file.windowCaption, "Test Help");
  ASSERT_EQ(file.topics.size(), 3u);
  EXPECT_EQ(file.TopicAt(file.contentsOffset), &file.topics[0]);
  EXPECT_EQ(file.topics[0].paragraphs,
            (std::vector<std::string>{"Contents", "Intro bold text, joined.", "\x95\titem one",
                                      "\x95\titem two goes on", "Head", "Last third topic."}));
  EXPECT_EQ(file.topics[0].jumps, (std::vector<std::int32_t>{ContextHash("second"), ContextHash("third")}));
  EXPECT_EQ(file.topics[1].paragraphs, (std::vector<std::string>{"The second", words, unbroken}));
  // 36 KB of text at 3.6 KB a block lie before the third topic.
  EXPECT_GE(file.topics[2].offset / 0x8000, 9u);
  EXPECT_EQ(file.topics[2].paragraphs, std::vector<std::string>{"Third"});

  const std::pair<std::uint32_t, std::size_t> numbers[] = {{999, 0}, {1900, 1}, {1901, 1}, {7, 2}};
  EXPECT_EQ(file.contextNumbers.size(), std::size(numbers));
  for (const auto& [number, topic] : numbers)
    EXPECT_EQ(file.TopicOfNumber(number), &file.topics[topic]) << number;
  for (std::size_t i = 0; i < project.topics.size(); ++i) {
    const auto offset = file.FindContext(ContextHash(project.topics[i].context));
    ASSERT_TRUE(offset) << i;
    EXPECT_EQ(file.TopicAt(*offset), &file.topics[i]);
    EXPECT_EQ(file.topics[i].title, project.topics[i].title);  // as the topic header keeps it
  }
  EXPECT_FALSE(file.FindContext(ContextHash("fourth")));
}

// A tree deep enough for index pages of index pages: the writer's trees are built
// by the same code with larger pages.
TEST(BTree, SmallPagesGiveSeveralIndexLevelsAndEveryKeyIsFound) {
  std::vector<BTreeEntry> entries;
  for (std::int32_t k = -3000; k < 3000; k += 3) entries.push_back(BTreeEntry{LongKey(k), LongKey(k * 7)});
  const std::vector<std::uint8_t> bytes = BuildBTree(entries, 64, 2, "L4");
  test::HlpBTree reader;
  reader.Read(bytes.data(), bytes.size(), test::HlpBTree::kLongKey);
  EXPECT_GE(reader.levels(), 3);
  // As many leaves in order as there are keys, and each key found: the leaves are the keys.
  EXPECT_EQ(reader.Leaves().size(), entries.size());
  for (std::int32_t k = -3000; k < 3000; k += 3) {
    EXPECT_EQ(reader.Find(LongKey(k)), static_cast<std::uint32_t>(k * 7)) << k;
    EXPECT_FALSE(reader.Find(LongKey(k + 1))) << k + 1;
  }
  EXPECT_FALSE(reader.Find(LongKey(-3001)));
  // An entry that does not fit a page is refused.
  EXPECT_TRUE(BuildBTree({BTreeEntry{std::vector<std::uint8_t>(60, 'a'), LongKey(0)}}, 64, 2, "z4").empty());
}

// A paragraph as "kind: runs", a bold run between "*", a jump as "[target|text]".
std::string Shown(const Paragraph& paragraph) {
  static const char* const kKinds[] = {"body: ", "heading: ", "bullet: "};
  std::string out = kKinds[paragraph.kind];
  for (const Run& run : paragraph.runs) {
    out += run.kind == Run::kBold   ? "*" + run.text + "*"
           : run.kind == Run::kJump ? "[" + run.target + "|" + run.text + "]"
                                    : run.text;
  }
  return out;
}

TEST(HelpSource, LinesJoinAndMarkupBecomesRuns) {
  const Topic topic = Parsed(
      "@context c.1_x\r\n@map 7\r\n@title  A  title \r\n\r\n"
      "One\ttwo\r\n  three [[d|go]] **b**\r\n- item\r\n== Head\r\nafter\r\n");
  EXPECT_EQ(topic.context, "c.1_x");
  EXPECT_EQ(topic.mapIds, std::vector<std::uint32_t>{7});
  EXPECT_EQ(topic.title, "A  title");
  std::vector<std::string> shown;
  for (const Paragraph& paragraph : topic.paragraphs) shown.push_back(Shown(paragraph));
  EXPECT_EQ(shown, (std::vector<std::string>{"body: One two three [d|go] *b*", "bullet: item", "heading: Head",
                                             "body: after"}));
}

TEST(HelpSource, MalformedSourcesAreRefusedWithTheLine) {
  const std::string head = "@context c\n@title T\n\n";
  const std::pair<std::string, const char*> rows[] = {  // source, the start of its error
      {"@title T\n\nx\n", "t.txt:2: no @context"},
      {"@context c\n\nx\n", "t.txt:2: no @title"},
      {"@context a-b\n@title T\n", "t.txt:1: context name \"a-b\" must be"},
      {"@context " + std::string(256, 'c') + "\n@title T\n", "t.txt:1: context name"},
      {"@context c\n@context d\n@title T\n", "t.txt:2: a second @context"},
      {"@context c\n@map 12x\n@title T\n", "t.txt:2: context number \"12x\" is not a decimal number"},
      {"@context c\n@map 4294967296\n@title T\n", "t.txt:2: context number 4294967296 does not fit"},
      {"@context c\n@map 5\n@map 5\n@title T\n", "t.txt:3: context number 5 given twice"},
      {"@context c\n@title \n", "t.txt:2: an empty @title"},
      {"@context c\n@title " + std::string(128, 't') + "\n", "t.txt:2: title longer than 127"},
      {"@context c\n@colour red\n@title T\n", "t.txt:2: unknown field @colour"},
      {head + "a\nsome **bold\n", "t.txt:4: \"**\" without its closing \"**\""},
      {head + "**** x\n", "t.txt:4: empty bold text"},
      {head + "see [[c|x\n", "t.txt:4: \"[[\" without its closing \"]]\""},
      {head + "see [[c]]\n", "t.txt:4: a jump is written [[context|text]]"},
      {head + "see [[a b|x]]\n", "t.txt:4: jump to an invalid context name \"a b\""},
      {head + "see [[c| ]]\n", "t.txt:4: jump to c without text"},
      {head + "see [[c|" + std::string(256, 'x') + "]]\n", "t.txt:4: jump text longer than 255"},
      {head + "x ]] y\n", "t.txt:4: \"]]\" without \"[[\""},
      {head + "\n\ncaf\xE9\n", "t.txt:6: not a printable ASCII character (0xE9)"},
      {head + "bell\a\n", "t.txt:4: not a printable ASCII character (0x07)"},
  };
  for (const auto& [source, start] : rows) {
    Topic topic;
    std::string error;
    EXPECT_FALSE(ParseTopic("t.txt", source, topic, error)) << source;
    EXPECT_EQ(error.rfind(start, 0), 0u) << "got: " << error;
  }
}

TEST(HelpFile, ProjectsThatCannotBeWrittenAreRefused) {
  const std::pair<Project, const char*> rows[] = {  // project, the start of its error
      {Project{"Help", {}}, "no topics"},
      {Project{"", {Authored("a")}}, "the help file's title must be 1 to 50"},
      {Project{std::string(51, 'h'), {Authored("a")}}, "the help file's title must be 1 to 50"},
      {Project{"Help", {Authored("Merge"), Authored("merge")}}, "context names Merge and merge have the same hash"},
      {Project{"Help", {Authored("a", {7}), Authored("b", {7})}}, "context number 7 given to a and b"},
      {Project{"Help", {Authored("a", {}, "T", "[[nowhere|x]]\n")}}, "a: jump to unknown context nowhere"},
  };
  for (const auto& [project, start] : rows) {
    std::vector<std::uint8_t> bytes{1, 2, 3};
    std::string error;
    EXPECT_FALSE(WriteHelpFile(project, bytes, error)) << start;
    EXPECT_EQ(error.rfind(start, 0), 0u) << "got: " << error;
    EXPECT_TRUE(bytes.empty());
  }
}

// Every Help button and F1 of the program opens one of these numbers.
constexpr std::uint32_t kProgramContextNumbers[] = {999, 1205, 1206, 1208, 1209, 1210, 1604, 1606, 1900};

TEST(BuiltHelpFile, HoldsEveryTopicTheProgramOpensAndEachIsReachableFromContents) {
  const HlpFile file(test::ReadBytes(QB_HELP_FILE));
  EXPECT_EQ(file.title, "Quellbarrow Help");
  const HlpTopic* contents = file.TopicAt(file.contentsOffset);
  ASSERT_NE(contents, nullptr);
  EXPECT_EQ(file.TopicOfNumber(999), contents);
  for (std::uint32_t number : kProgramContextNumbers) {
    const HlpTopic* topic = file.TopicOfNumber(number);
    ASSERT_NE(topic, nullptr) << number;
    EXPECT_EQ(topic->offset, file.contextNumbers.at(number))
        << number << " does not open at the start of a topic";
    EXPECT_GE(topic->paragraphs.size(), 2u) << topic->title << " has no text";
  }
  // Every jump lands on a topic's start, and every topic can be reached from the contents.
  std::vector<const HlpTopic*> todo{contents};
  std::set<const HlpTopic*> reached{contents};
  while (!todo.empty()) {
    const HlpTopic* topic = todo.back();
    todo.pop_back();
    for (std::int32_t hash : topic->jumps) {
      const auto offset = file.FindContext(hash);
      ASSERT_TRUE(offset) << topic->title << " jumps to a hash no topic has";
      const HlpTopic* target = file.TopicAt(*offset);
      ASSERT_EQ(target->offset, *offset);
      if (reached.insert(target).second) todo.push_back(target);
    }
  }
  for (const HlpTopic& topic : file.topics)
    EXPECT_EQ(reached.count(&topic), 1u) << topic.title << " can't be reached from the contents";
}

}  // namespace
}  // namespace qb::help
