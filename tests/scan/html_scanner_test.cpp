#include "scan/html_scanner.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/temp_dir.h"

namespace qb {
namespace {

enum class Reader { kWord, kFormAttribute, kAction };

struct WordCase {
  const char* input;
  Reader reader;
  const char* word;
  int result;
  ScanPosition end;
};

TEST(ReadWord, ReadsTheNextWordAsTheTagWouldHaveIt) {
  const WordCase cases[] = {
      {"=\"\" name=x>", Reader::kWord, "", kWordRead, 4},         // value=""
      {"='' name=x>", Reader::kWord, "", kWordRead, 4},           // value=''
      {"='first name'>", Reader::kWord, "first", kWordRead, 7},   // single quotes: space ends
      {"=\"first name\">", Reader::kWord, "first name", kWordRead, 12},
      {"=\"a>b\" x", Reader::kWord, "a>b", kWordRead, 5},          // quoted '>' is text
      {"=abc>", Reader::kWord, "abc", kWordTagEnds, 4},
      {"='abc'>", Reader::kWord, "abc", kWordTagEnds, 6},         // trailing quote trimmed
      {"\t x\r\ny", Reader::kWord, "x", kWordRead, 3},
      {"x<b>", Reader::kWord, "x<b", kWordTagEnds, 3},            // '<' inside a word is kept
      {"  <input", Reader::kWord, "", kWordNone, 2},
      {"  >", Reader::kWord, "", kWordNone, 2},
      {"   ", Reader::kWord, "", kWordRead, 3},                   // end: callers check it
      {"=\"/cgi/x?a=b\" method", Reader::kWord, "/cgi/x?a", kWordRead, 10},
      {"=\"/cgi/x?a=b\" method", Reader::kFormAttribute, "/cgi/x?a", kWordRead, 10},
      {"=\"/cgi/x?a=b\" method", Reader::kAction, "/cgi/x?a=b", kWordRead, 12},
      {"=/post.cgi?a=b&c=d>", Reader::kAction, "/post.cgi?a=b&c=d", kWordTagEnds, 18},
      {"=\"a>b\" x", Reader::kFormAttribute, "a", kWordTagEnds, 3},  // '>' always ends here
  };
  for (const WordCase& c : cases) {
    ScanDocument document;
    ASSERT_TRUE(document.Assign(c.input));
    WordBuffer word;
    ScanPosition pos = 0;
    const int result = c.reader == Reader::kWord
                           ? ReadWord(document, word, pos)
                           : ReadFormAttribute(document, word, pos, c.reader == Reader::kAction);
    EXPECT_EQ(word, c.word) << c.input;
    EXPECT_EQ(result, c.result) << c.input;
    EXPECT_EQ(pos, c.end) << c.input;
  }
}

TEST(ReadWord, WordsStopAtExactly4096Bytes) {
  const std::string exact(kMaxWordBytes, 'a');
  ScanDocument document;
  ASSERT_TRUE(document.Assign(exact + ">"));
  WordBuffer word;
  ScanPosition pos = 0;
  EXPECT_EQ(ReadWord(document, word, pos), kWordTagEnds);
  EXPECT_EQ(word, exact);

  ASSERT_TRUE(document.Assign(exact + "bc>"));
  pos = 0;
  EXPECT_EQ(ReadWord(document, word, pos), kWordRead);
  EXPECT_EQ(word, exact);
  EXPECT_EQ(ReadWord(document, word, pos), kWordTagEnds);  // the rest is the next word
  EXPECT_EQ(word, "bc");
}

TEST(ReadTagText, ReadsTagsAndTextsInTurn) {
  ScanDocument document;
  ASSERT_TRUE(document.Assign("<option value=\"x\"\r\n\tselected >Red  </option>\n"));
  WordBuffer text;
  ScanPosition pos = 0;
  std::vector<std::string> texts;
  while (ReadTagText(document, text, pos)) texts.push_back(text);
  EXPECT_EQ(texts, (std::vector<std::string>{"option value=\"x\"   selected", "Red", "/option"}));
  EXPECT_EQ(pos, document.length());

  ASSERT_TRUE(document.Assign(std::string(kMaxWordBytes + 2, 'z')));
  pos = 0;
  ASSERT_EQ(ReadTagText(document, text, pos), 1);
  EXPECT_EQ(text.size(), kMaxWordBytes);
  ASSERT_EQ(ReadTagText(document, text, pos), 1);
  EXPECT_EQ(text, "zz");
}

struct LabelCase {
  const char* input;
  int result;
  const char* label;
  const char* tag;
};

TEST(CollectFieldLabel, GathersTheVisibleTextBeforeTheNextFormTag) {
  const LabelCase cases[] = {
      {"<td>Your</td>\n\n\n<td>&nbsp;&NBSP;\n Name:</td><td><input name=x>", 1, "Your Name: ",
       "input"},
      {"Your&nbsp;&nbsp;Name:<input>", 1, "Your&nbsp;&nbsp;Name: ", "input"},  // only leading ones
      {"First  line\n\n  second<SELECT name=a>", 1, "First line second ", "SELECT"},
      {"A\r\nB<textarea>", 1, "A\r B ", "textarea"},  // CR is not a blank inside a run
      {"/textarea>\n Label <b>bold</b><input>", 1, "Label bold ", "input"},
      {"x< =\"&nbsp; script>", 1, "x ", "script"},
      {"<p>Thanks</p></form>", 1, "Thanks ", "/form"},
      {"text only", 0, "text only ", " "},
      {"a <b", 0, "a ", " "},
  };
  for (const LabelCase& c : cases) {
    ScanDocument document;
    ASSERT_TRUE(document.Assign(c.input));
    LabelBuffer label;
    WordBuffer tag;
    ScanPosition pos = 0;
    ScanPosition tagStart = 0;
    EXPECT_EQ(CollectFieldLabel(document, label, tag, pos, tagStart), c.result) << c.input;
    EXPECT_EQ(label, c.label) << c.input;
    EXPECT_EQ(tag, c.tag) << c.input;
    if (c.result == 1) {
      const std::string input = c.input;
      EXPECT_EQ(tagStart, input.rfind('<', input.find(c.tag))) << c.input;
      EXPECT_EQ(pos, input.find(c.tag) + tag.size()) << c.input;
    } else {
      EXPECT_EQ(pos, document.length()) << c.input;
    }
  }
}

TEST(CollectFieldLabel, ALongTextIsCutAt1023BytesAndTheRestStartsAnew) {
  ScanDocument document;
  ASSERT_TRUE(document.Assign(std::string(2000, 'x') + "<input>"));
  LabelBuffer label;
  WordBuffer tag;
  ScanPosition pos = 0;
  ScanPosition tagStart = 0;
  EXPECT_EQ(CollectFieldLabel(document, label, tag, pos, tagStart), 0);
  EXPECT_EQ(label, std::string(kMaxLabelBytes, 'x'));
  EXPECT_EQ(CollectFieldLabel(document, label, tag, pos, tagStart), 1);
  EXPECT_EQ(label, std::string(2000 - kMaxLabelBytes, 'x') + " ");
  EXPECT_EQ(tagStart, 2000u);
}

TEST(StoreText, ReplacesTheOldBlock) {
  const TextBlock kept = StoreText("new text", MakeTextBlock("old"));
  EXPECT_EQ(TextOf(kept), "new text");
  EXPECT_EQ(TextBlockSize(kept), 10u);

  EXPECT_EQ(StoreText("", kept), kNoBlock);
  EXPECT_FALSE(IsTextBlock(kept));

  FailNextTextBlockAllocations(1);
  EXPECT_EQ(StoreText("lost", kNoBlock), kNoBlock);
}

TEST(LoadScanDocument, ReadsTheWholeFileWithSpareZeroBytes) {
  test::TempDir dir;
  const std::string page = dir.File("page.htm");
  test::WriteText(page, "<form>\r\n\x01\xff");
  ScanDocument document;
  ASSERT_EQ(LoadScanDocument(page, document), DocumentLoadStatus::kLoaded);
  EXPECT_EQ(document.bytes(), "<form>\r\n\x01\xff");
  for (std::size_t i = 0; i < kDocumentSpareBytes; ++i) {
    ASSERT_EQ(document.data()[document.length() + i], '\0');
  }

  EXPECT_EQ(LoadScanDocument(dir.File("missing.htm"), document), DocumentLoadStatus::kCannotOpen);
  EXPECT_EQ(document.length(), 0u);
  FailNextTextBlockAllocations(1);
  EXPECT_EQ(LoadScanDocument(page, document), DocumentLoadStatus::kOutOfMemory);
}

}  // namespace
}  // namespace qb
