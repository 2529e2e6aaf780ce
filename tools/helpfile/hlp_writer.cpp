#include "tools/helpfile/hlp_writer.h"

#include <map>
#include <utility>

#include "tools/helpfile/hlp_blocks.h"
#include "tools/helpfile/hlp_bytes.h"
#include "tools/helpfile/hlp_directory.h"
#include "tools/helpfile/hlp_topic.h"

namespace qb::help {
namespace {

constexpr std::uint16_t kSystemMagic = 0x036C;
constexpr std::uint16_t kVersionMinor = 21;  // a Windows 3.1 help file
constexpr std::uint16_t kVersionMajor = 1;
constexpr std::uint16_t kLz77TopicBlocksOf4K = 4;
enum SystemRecord : std::uint16_t { kTitleRecord = 1, kContentsRecord = 3, kWindowRecord = 6 };
constexpr std::uint16_t kWindowNameValid = 0x0002;
constexpr std::uint16_t kWindowCaptionValid = 0x0004;
constexpr std::uint16_t kWindowPlaceValid = 0x0008 | 0x0010 | 0x0020 | 0x0040;  // x, y, width, height
// Where the main window opens: in 1/1024 of the screen for the viewers that scale
// it, in pixels for those that don't; a modest window either way.
constexpr std::uint16_t kWindowPlace[4] = {120, 80, 600, 560};
constexpr std::size_t kWindowTypeLength = 10;
constexpr std::size_t kWindowNameLength = 9;
constexpr std::size_t kWindowCaptionLength = 51;
constexpr std::size_t kWindowRecordSize = 90;

Bytes SystemFile(const std::string& title, std::uint32_t contents) {
  Bytes b;
  Put16(b, kSystemMagic);
  Put16(b, kVersionMinor);
  Put16(b, kVersionMajor);
  Put32(b, 0);  // no build date: the same sources give the same file
  Put16(b, kLz77TopicBlocksOf4K);
  Put16(b, kTitleRecord);
  Put16(b, static_cast<std::uint32_t>(title.size() + 1));
  PutText(b, title);
  Put8(b, 0);
  Put16(b, kContentsRecord);
  Put16(b, 4);
  Put32(b, contents);
  // The main window, named so that its caption is the file's title.
  Put16(b, kWindowRecord);
  Put16(b, kWindowRecordSize);
  const std::size_t start = b.size();
  Put16(b, kWindowNameValid | kWindowCaptionValid | kWindowPlaceValid);
  PutFixed(b, "", kWindowTypeLength);
  PutFixed(b, "main", kWindowNameLength);
  PutFixed(b, title, kWindowCaptionLength);
  for (std::uint16_t v : kWindowPlace) Put16(b, v);
  b.resize(start + kWindowRecordSize, 0);  // not maximized; colours: the viewer's own
  return b;
}

bool Fail(std::string& error, const std::string& what) {
  error = what;
  return false;
}

bool CheckProject(const Project& project, std::map<std::int32_t, std::string>& hashes,
                  std::string& error) {
  if (project.topics.empty()) return Fail(error, "no topics");
  if (project.title.empty() || project.title.size() > kMaxFileTitleLength)
    return Fail(error, "the help file's title must be 1 to " + std::to_string(kMaxFileTitleLength) +
                           " characters");
  if (project.topics.size() > kMaxTopics)
    return Fail(error, "more than " + std::to_string(kMaxTopics) + " topics");
  std::map<std::uint32_t, std::string> numbers;
  for (const Topic& topic : project.topics) {
    if (!IsValidContextName(topic.context))
      return Fail(error, "invalid context name \"" + topic.context + "\"");
    if (topic.title.empty() || topic.title.size() > kMaxTitleLength)
      return Fail(error, topic.context + ": the title must be 1 to " + std::to_string(kMaxTitleLength) +
                             " characters");
    const std::int32_t hash = ContextHash(topic.context);
    if (hash == 0) return Fail(error, topic.context + ": its hash is 0, which means the contents topic");
    const auto known = hashes.emplace(hash, topic.context);
    if (!known.second)
      return Fail(error, "context names " + known.first->second + " and " + topic.context +
                             " have the same hash (names are compared without case)");
    for (std::uint32_t id : topic.mapIds) {
      const auto taken = numbers.emplace(id, topic.context);
      if (!taken.second)
        return Fail(error, "context number " + std::to_string(id) + " given to " + taken.first->second +
                               " and " + topic.context);
    }
  }
  if (numbers.size() > kMaxMapIds)
    return Fail(error, "more than " + std::to_string(kMaxMapIds) + " context numbers");
  for (const Topic& topic : project.topics)
    for (const Paragraph& paragraph : topic.paragraphs)
      for (const Run& run : paragraph.runs)
        if (run.kind == Run::kJump) {
          if (run.text.empty() || run.text.size() > kMaxJumpTextLength)
            return Fail(error, topic.context + ": jump text must be 1 to " +
                                   std::to_string(kMaxJumpTextLength) + " characters");
          if (!IsValidContextName(run.target) || !hashes.count(ContextHash(run.target)))
            return Fail(error, topic.context + ": jump to unknown context " + run.target);
        }
  return true;
}

}  // namespace

std::int32_t ContextHash(const std::string& name) {
  std::uint32_t hash = 0;  // unsigned: the sum wraps as the readers' 32-bit one does
  for (char c : name) {
    std::uint32_t x = 0;
    if (c >= 'A' && c <= 'Z') x = static_cast<std::uint32_t>(c - 'A' + 17);
    if (c >= 'a' && c <= 'z') x = static_cast<std::uint32_t>(c - 'a' + 17);
    if (c >= '1' && c <= '9') x = static_cast<std::uint32_t>(c - '0');
    if (c == '0') x = 10;
    if (c == '.') x = 12;
    if (c == '_') x = 13;
    if (x) hash = hash * 43 + x;
  }
  return static_cast<std::int32_t>(hash);
}

bool WriteHelpFile(const Project& project, std::vector<std::uint8_t>& out, std::string& error) {
  out.clear();
  std::map<std::int32_t, std::string> hashes;
  if (!CheckProject(project, hashes, error)) return false;

  std::vector<Link> links = TopicRecords(project);
  Place(links);
  FillTopicHeaders(links);

  std::vector<std::uint32_t> topicOffsets;
  for (const Link& link : links)
    if (link.type == kTopicHeaderRecord) topicOffsets.push_back(link.offset);

  std::vector<BTreeEntry> contexts;
  for (const auto& [hash, context] : hashes) {  // in signed hash order, as readers compare
    std::size_t t = 0;
    while (project.topics[t].context != context) ++t;
    BTreeEntry e;
    Put32(e.key, static_cast<std::uint32_t>(hash));
    Put32(e.value, topicOffsets[t]);
    contexts.push_back(std::move(e));
  }
  std::map<std::uint32_t, std::uint32_t> numbers;
  for (std::size_t t = 0; t < project.topics.size(); ++t)
    for (std::uint32_t id : project.topics[t].mapIds) numbers[id] = topicOffsets[t];
  Bytes map;
  Put16(map, static_cast<std::uint32_t>(numbers.size()));
  for (const auto& [id, offset] : numbers) {
    Put32(map, id);
    Put32(map, offset);
  }

  const Bytes contextTree = BuildBTree(contexts, kIndexPageSize, kBTreeFlags, "L4");
  if (contextTree.empty()) return Fail(error, "too many context names for one index");
  // Internal files by name, in the byte order the directory keeps.
  const std::map<std::string, Bytes> files = {
      {"|CONTEXT", contextTree},
      {"|CTXOMAP", map},
      {"|FONT", FontFile()},
      {"|SYSTEM", SystemFile(project.title, topicOffsets.front())},
      {"|TOPIC", TopicFile(links)},
  };
  out = HelpFileOf(files);
  return true;
}

}  // namespace qb::help
