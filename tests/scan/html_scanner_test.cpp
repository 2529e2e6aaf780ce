#include "scan/html_scanner.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "tests/support/temp_dir.h"

namespace qb {
namespace {

// Each reader call starts on a fresh document at its first byte.
class Reader : public ::testing::Test {
 protected:
  void Load(std::string_view bytes) {
    ASSERT_TRUE(document_.Assign(bytes));
    pos_ = 0;
  }

  ScanDocument document_;
  ScanPosition pos_ = 0;
  WordBuffer word_;
  ScanPosition tagStart_ = 0;
};

TEST_F(Reader, ReadWordReadsTheNextWordAsTheTagWouldHaveIt) {
  enum Mode { kWord, kFormAttribute, kAction };
  const std::string exact(kMaxWordBytes, 'a');
  const struct {
    std::string input;
    Mode mode;
    std::string word;
    int result;
    ScanPosition end;
  } cases[] = {
      {"=\"\" name=x>", kWord, "", kWordRead, 4},                // value=""
      {"='' name=x>", kWord, "", kWordRead, 4},                  // value=''
      {"='first name'>", kWord, "first", kWordRead, 7},          // single quotes: space ends
      {"=\"first name\">", kWord, "first name", kWordRead, 12},
      {"=\"a>b\" x", kWord, "a>b", kWordRead, 5},                // quoted '>' is text
      {"=abc>", kWord, "abc", kWordTagEnds, 4},
      {"='abc'>", kWord, "abc", kWordTagEnds, 6},                // trailing quote trimmed
      {"=\"abc \">", kWord, "abc", kWordRead, 6},              // and a quoted trailing blank
      {"\t x\r\ny", kWord, "x", kWordRead, 3},
      {"x<b>", kWord, "x<b", kWordTagEnds, 3},                   // '<' inside a word is kept
      {"  <input", kWord, "", kWordNone, 2},
      {"  >", kWord, "", kWordNone, 2},
      {"   ", kWord, "", kWordRead, 3},                          // end: callers check it
      {exact + ">", kWord, exact, kWordTagEnds, kMaxWordBytes},  // exactly 4096 bytes
      {exact + "bc>", kWord, exact, kWordRead, kMaxWordBytes},   // the rest is the next word
      {"=\"/cgi/x?a=b\" method", kWord, "/cgi/x?a", kWordRead, 10},
      {"=\"/cgi/x?a=b\" method", kFormAttribute, "/cgi/x?a", kWordRead, 10},
      {"=\"/cgi/x?a=b\" method", kAction, "/cgi/x?a=b", kWordRead, 12},
      {"=/post.cgi?a=b&c=d>", kAction, "/post.cgi?a=b&c=d", kWordTagEnds, 18},
      {"=\"a>b\" x", kFormAttribute, "a", kWordTagEnds, 3},      // '>' always ends here
  };
  for (const auto& c : cases) {
    const std::string shown = c.input.substr(0, 30);
    Load(c.input);
    const int result = c.mode == kWord
                           ? ReadWord(document_, word_, pos_)
                           : ReadFormAttribute(document_, word_, pos_, c.mode == kAction);
    EXPECT_EQ(word_, c.word) << shown;
    EXPECT_EQ(result, c.result) << shown;
    EXPECT_EQ(pos_, c.end) << shown;
  }
}

TEST_F(Reader, ReadTagTextReadsTagsAndTextsInTurnInWordsOf4096Bytes) {
  const std::string longText(kMaxWordBytes, 'z');
  Load("<option value=\"x\"\r\n\tselected >Red  </option>\n" + longText + "zz");
  std::vector<std::string> texts;
  while (ReadTagText(document_, word_, pos_)) texts.push_back(word_);
  EXPECT_EQ(texts, (std::vector<std::string>{"option value=\"x\"   selected", "Red", "/option",
                                             longText, "zz"}));
  EXPECT_EQ(pos_, document_.length());
}

TEST_F(Reader, CollectFieldLabelGathersTheVisibleTextBeforeTheNextFormTag) {
  // The bytes, the result, the label and the tag word it ends on.
  const std::tuple<std::string, int, const char*, const char*> cases[] = {
      {"<td>Your</td>\n\n\n<td>&nbsp;&NBSP;\n Name:</td><td><input name=x>", 1, "Your Name: ",
       "input"},
      {"Your&nbsp;&nbsp;Name:<input>", 1, "Your&nbsp;&nbsp;Name: ", "input"},  // only leading ones
      {"First  line\n\n  second<SELECT name=a>", 1, "First line second ", "SELECT"},
      {"A\r\nB<textarea>", 1, "A\r B ", "textarea"},  // CR is not a blank inside a run
      {"/textarea>\n Label <b>bold</b><input>", 1, "Label  bold ", "input"},
      {"x< =\"&nbsp; script>", 1, "x ", "script"},
      {"<p>Thanks</p></form>", 1, "Thanks ", "/form"},
      // A run's own closing blank stays; the separator comes after it.
      {"<td>Name </td><td><input>", 1, "Name  ", "input"},
      {"First\n<br>\n  second<input>", 1, "First  second ", "input"},
      {"text only", 0, "text only ", " "},
      {"a <b", 0, "a  ", " "},
  };
  for (const auto& [input, result, label, tag] : cases) {
    SCOPED_TRACE(input);
    Load(input);
    LabelBuffer collected;
    EXPECT_EQ(CollectFieldLabel(document_, collected, word_, pos_, tagStart_), result);
    EXPECT_EQ(collected, label);
    EXPECT_EQ(word_, tag);
    if (result == 1) {
      EXPECT_EQ(tagStart_, input.rfind('<', input.find(tag)));
      EXPECT_EQ(pos_, input.find(tag) + word_.size());
    } else {
      EXPECT_EQ(pos_, input.size());
    }
  }
}

TEST_F(Reader, ALabelIsCutAt1023BytesAndTheRestStartsAnew) {
  Load(std::string(2000, 'x') + "<input>");
  LabelBuffer label;
  EXPECT_EQ(CollectFieldLabel(document_, label, word_, pos_, tagStart_), 0);
  EXPECT_EQ(label, std::string(kMaxLabelBytes, 'x'));
  EXPECT_EQ(CollectFieldLabel(document_, label, word_, pos_, tagStart_), 1);
  EXPECT_EQ(label, std::string(2000 - kMaxLabelBytes, 'x') + " ");
  EXPECT_EQ(tagStart_, 2000u);

  // Four bytes a run ("ab", its blank, the separator): the 256th run is cut.
  std::string runs;
  for (int i = 0; i < 400; ++i) runs += "ab <i>";
  Load(runs + "<input>");
  std::string expected;
  for (int i = 0; i < 255; ++i) expected += "ab  ";
  EXPECT_EQ(CollectFieldLabel(document_, label, word_, pos_, tagStart_), 0);
  EXPECT_EQ(label, expected + "ab ");
  EXPECT_EQ(CollectFieldLabel(document_, label, word_, pos_, tagStart_), 1);
  EXPECT_EQ(label, expected.substr(0, 144 * 4));
  EXPECT_EQ(tagStart_, runs.size());
}

TEST(StoreText, ReplacesTheOldBlock) {
  const TextBlock kept = StoreText("new text", MakeTextBlock("old"));
  EXPECT_EQ(TextOf(kept), "new text");
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
  EXPECT_EQ(std::string(document.data() + document.length(), kDocumentSpareBytes),
            std::string(kDocumentSpareBytes, '\0'));

  EXPECT_EQ(LoadScanDocument(dir.File("missing.htm"), document), DocumentLoadStatus::kCannotOpen);
  EXPECT_EQ(document.length(), 0u);
  FailNextTextBlockAllocations(1);
  EXPECT_EQ(LoadScanDocument(page, document), DocumentLoadStatus::kOutOfMemory);
}

}  // namespace
}  // namespace qb
