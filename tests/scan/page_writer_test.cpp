#include "scan/page_writer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "acquire/http_request.h"
#include "app/user_message.h"
#include "scan/post_request.h"
#include "tests/keys/key_test_util.h"
#include "tests/support/temp_dir.h"

namespace qb {
namespace {

using test::KeyTexts;
using test::OwnedTable;

// Answers prompts from a list (then Cancel) and remembers what it was asked.
class ScriptedPrompt : public NoMatchPrompt {
 public:
  explicit ScriptedPrompt(std::vector<PromptAnswer> answers = {}) : answers_(std::move(answers)) {}
  PromptAnswer Ask(const FormScan& scan, const PromptRequest& request) override {
    requests.push_back(request);
    names.push_back(TextOf(scan.forms.at(request.form).fields.at(request.slot).name));
    return asked_ < answers_.size() ? answers_[asked_++] : PromptAnswer{};
  }
  std::vector<PromptRequest> requests;
  std::vector<std::string> names;  // the field's name as the prompt saw it

 private:
  std::vector<PromptAnswer> answers_;
  std::size_t asked_ = 0;
};

PromptAnswer Ok(std::uint32_t key, int valueIndex = -1) { return {1, key, valueIndex, false}; }

const std::vector<KeyTexts> kKeys = {
    {"Me", "me", "", "Current"},
    {"Name", "name", "", "Jane"},
    {"Address", "address", "", "12 Market St\r\nSpringfield"},
    {"Colour", "colour", "Blue", ""},
    {"Agree", "agree", "", "yes"},
    {"Country", "country", "United States", ""},
};

const char kAllKinds[] =
    "<html><body><form action=\"/post.cgi\" method=\"post\"><table>\n"
    "<tr><td>Name:</td><td><input type=\"text\" name=\"Name\" value=\"old\" size=\"30\" maxlength=\"20\" "
    "class=\"box\"></td></tr>\n"
    "<tr><td><textarea name=\"Address\" rows=3 cols=40>old text</textarea></td></tr>\n"
    "<tr><td><input type=radio name=colour value=red checked><input type=radio name=colour value=blue></td></tr>\n"
    "<tr><td><input type=checkbox name=agree value=yes checked></td></tr>\n"
    "<tr><td><select name=country size=1><option value=\"de\" selected>Germany<option value=\"us\">United "
    "States</select></td></tr>\n"
    "</table><input type=submit name=go value=\"Send\"></form></body></html>";

class PageWriter : public ::testing::Test {
 protected:
  PageWriter() : keys_(kKeys), session_(*keys_, ScanOptions{}, false, false) {
    session_.host = "www.example.com";
    session_.currentKey = 0;
    TakeUserMessages();
  }

  std::string Fill(const std::string& html) {
    EXPECT_TRUE(scan_.document.Assign(html));
    ParseFormPage(scan_, session_.host);
    CheckRadioGroups(scan_, session_);
    return FilledPage(scan_, session_);
  }
  // What lies between the notes and the closing banner: the scripts and forms.
  std::string Forms(const std::string& html) {
    const std::string page = Fill(html);
    const std::size_t start = page.find("<hr></font>") + 11;
    return page.substr(start, page.find("</font><hr><center>") - start);
  }
  void Ask(std::uint32_t radio, std::uint32_t checkbox, std::uint32_t select, std::uint32_t text) {
    session_.options.askForSelect = {radio, checkbox, select, text, text};
    session_.prompt = &prompt_;
  }

  OwnedTable keys_;
  ScanSession session_;
  ScriptedPrompt prompt_;
  FormScan scan_;
};

TEST_F(PageWriter, WritesEveryFieldKindFromItsMatchedKey) {
  EXPECT_EQ(Forms(kAllKinds),
            "<form action=\"http://www.example.com/post.cgi\" method=post >\n"
            "<table>\n<tr><td>Name:</td><td>"
            "<input type=\"text\" size=\"30\" maxlenght=\"20\" class=\"box\" name=\"Name\" value=\"Jane\" >\n"
            "</td></tr>\n<tr><td>"
            "<textarea rows=\"3\" cols=\"40\" name=\"Address\" >12 Market St\nSpringfield</textarea>\n"
            "</td></tr>\n<tr><td>"
            "<input type=\"radio\" name=\"COLOUR\" value=\"RED\" >\n"
            "<input type=\"radio\" checked name=\"COLOUR\" value=\"BLUE\" >\n"
            "</td></tr>\n<tr><td>"
            "<input type=\"checkbox\" name=\"AGREE\" value=\"YES\" >\n"  // Never: unchecked
            "</td></tr>\n<tr><td>"
            "<select name=\"COUNTRY\" size=\"1\" >\n"
            "<option value=\"de\" >GERMANY</option>\n"
            "<option value=\"us\" selected>UNITED STATES</option>\n"
            "</select>\n"
            "</td></tr>\n</table>"
            "<input type=\"submit\" name=\"go\" value=\"Send\" >\n"
            "</form>");
  EXPECT_TRUE(TakeUserMessages().empty());
}

TEST_F(PageWriter, WithoutAKeyFieldsKeepOnlyTheTextValues) {
  keys_.Fill({{"Me", "me", "", "Current"}});
  EXPECT_EQ(Forms(kAllKinds),
            "<form action=\"http://www.example.com/post.cgi\" method=post >\n"
            "<table>\n<tr><td>Name:</td><td>"
            "<input type=\"text\" size=\"30\" maxlenght=\"20\" class=\"box\" name=\"Name\" value=\"old\" >\n"
            "</td></tr>\n<tr><td>"
            "<textarea rows=\"3\" cols=\"40\" name=\"Address\" ></textarea>\n"
            "</td></tr>\n<tr><td>"
            "<input type=\"radio\" name=\"COLOUR\" value=\"red\" >\n"
            "<input type=\"radio\" name=\"COLOUR\" value=\"blue\" >\n"
            "</td></tr>\n<tr><td>"
            "<input type=\"checkbox\" name=\"AGREE\" value=\"yes\" >\n"
            "</td></tr>\n<tr><td>"
            "<select name=\"COUNTRY\" size=\"1\" >\n"
            "<option value=\"de\" >Germany</option>\n"
            "<option value=\"us\" >United States</option>\n"
            "</select>\n"
            "</td></tr>\n</table>"
            "<input type=\"submit\" name=\"go\" value=\"Send\" >\n"
            "</form>");
}

TEST_F(PageWriter, TextFieldsNeedACurrentKeyWithADescription) {
  const std::string page = "<form action=/a method=post><input name=name value=mine></form>";
  struct Case {
    int currentKey;
    const char* value;
  } const cases[] = {{kNoKey, "mine"}, {3, "mine"}, {1, "Jane"}, {0, "Jane"}};
  for (const Case& c : cases) {
    session_.currentKey = c.currentKey;
    EXPECT_NE(Forms(page).find(std::string("value=\"") + c.value + "\""), std::string::npos) << c.currentKey;
  }
  EXPECT_NE(Forms("<form action=/a method=post><input value=mine></form>").find("<input type=\"text\" >"),
            std::string::npos);  // no name, no value
}

TEST_F(PageWriter, NotesScriptsAndTheTableAroundTheForms) {
  const std::string page = Fill(
      "<script>var a;</script><table width=100% align=center border=0><form action=\"httpdocs/a\" "
      "method=post enctype=\"multipart/form-data\" name=f><input name=x></form></table>"
      "<form action=\"HTTPS://b.example/b\" method=POST><input type=submit></form>");
  const std::size_t script = page.find("has a Java or VB scripts");
  const std::size_t submit = page.find("does not have a <b>\"Submit\"</b> button");
  ASSERT_NE(script, std::string::npos);
  ASSERT_NE(submit, std::string::npos);
  EXPECT_LT(script, submit);
  EXPECT_NE(page.find("</center><hr></font><script>var a;</script>\n<table width=\"100%\" border=\"0\" >\n"
                      "<form name=\"f\" action=\"http://www.example.com/httpdocs/a\" method=post "
                      "enctype=\"multipart/form-data\" >\n"),
            std::string::npos)
      << page;
  EXPECT_NE(page.find("</form><form action=\"HTTPS://b.example/b\" method=POST >\n<input type=\"submit\" >\n"
                      "</form></table></font><hr><center>"),
            std::string::npos)
      << page;

  const std::string plain = Fill("<form action=/a method=post><input type=submit></form>");
  EXPECT_EQ(plain.find("Notes:"), std::string::npos);
}

TEST(RebuildOptionTag, DropsSelectedWords) {
  const std::string longWord(kMaxOptionWordBytes + 5, 'v');
  struct Case {
    std::string tag;
    std::string rebuilt;
  } const cases[] = {
      {"option value=\"x\" selected", "option value=\"x\" "},
      {"  option  SELECTED   value=1", "option value=1 "},
      {"option selected=\"selected\"", "option selected=\"selected\" "},
      {"option value=\"a b\"", "option value=\"a b\" "},
      {"option " + longWord, "option " + longWord.substr(0, kMaxOptionWordBytes) + " vvvvv "},
  };
  for (const Case& c : cases) EXPECT_EQ(RebuildOptionTag(c.tag), c.rebuilt) << c.tag;
}

TEST_F(PageWriter, AMultipleListGetsOneSelectedOptionAtMost) {
  keys_.Fill({{"Me", "me", "Red\r\nBlue", "x"}});
  EXPECT_NE(Forms("<form action=/a method=post><select name=me multiple><option selected>Green"
                  "<option selected value=b>Blue<option>Red</select></form>")
                .find("<select multiple name=\"ME\" >\n<option >GREEN</option>\n<option value=b selected>BLUE"
                      "</option>\n<option >Red</option>\n</select>\n"),
            std::string::npos);
}

TEST_F(PageWriter, AnUnknownSlotKindIsReportedAndLeftOut) {
  ASSERT_TRUE(scan_.document.Assign("<form action=/a method=post>A<input name=b>C</form>"));
  ParseFormPage(scan_, "h");
  scan_.forms[0].fields[1].kind = 7;
  const std::string page = FilledPage(scan_, session_);
  EXPECT_NE(page.find("method=post >\nAC</form>"), std::string::npos);
  const std::vector<UserMessage> messages = TakeUserMessages();
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_EQ(messages[0].text.rfind("That is a mistake in program.\n", 0), 0u);
  EXPECT_NE(messages[0].text.find("CODE-0"), std::string::npos);
}

TEST_F(PageWriter, AFileThatCannotBeCreatedIsReportedAndNothingIsAsked) {
  test::TempDir dir;
  Ask(kAskAllways, kAskAllways, kAskAllways, kAskAllways);
  ASSERT_TRUE(scan_.document.Assign(kAllKinds));
  ParseFormPage(scan_, "h");
  EXPECT_FALSE(WriteFilledPage(dir.File("missing") + "/page.htm", scan_, session_));
  const std::vector<UserMessage> messages = TakeUserMessages();
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_EQ(messages[0].text, "Can't open file for reading");
  EXPECT_TRUE(prompt_.requests.empty());

  ASSERT_TRUE(WriteFilledPage(dir.File("page.htm"), scan_, session_));
  const std::string written = test::ReadText(dir.File("page.htm"));
  EXPECT_EQ(written.rfind("<html><head>", 0), 0u);
  EXPECT_NE(written.find("<input type=\"text\" size=\"30\" maxlenght=\"20\" class=\"box\" name=\"Name\""),
            std::string::npos);
  EXPECT_EQ(written.substr(written.size() - 14), "</body></html>");
}

TEST(PostRequest, EncodesValuesLightly) {
  struct Case {
    const char* value;
    const char* encoded;
  } const cases[] = {
      {"a b", "a+b"},
      {"line\r\nnext", "line%0D%0D%0Anext"},
      {"line\nnext", "line%0D%0Anext"},
      {"me@example.com", "me%40example.com"},
      {"a=b", "a%3Db"},
      {"say \"hi\"", "say+\\\"hi\\\""},
      {"50% & more?", "50%+&+more?"},  // everything else as it is
      {"end  \n\n", "end"},
      {"C++ ", "C"},                     // trailing plus signs go too
  };
  for (const Case& c : cases) EXPECT_EQ(EncodeRequestValue(c.value), c.encoded) << c.value;
}

TEST(PostRequest, PairsOfAnEarlierNameAreReplacedOrKept) {
  EXPECT_EQ(StartPostRequest("http://h/a.cgi"), "POST http://h/a.cgi?");
  EXPECT_EQ(StartPostRequest("http://h/a.cgi?step=1"), "POST http://h/a.cgi?step=1&");
  std::string request = StartPostRequest("http://h/a.cgi?step=1");
  EXPECT_TRUE(AddRequestPair(request, "name", "Jane", PairRule::kReplaces));
  EXPECT_TRUE(AddRequestPair(request, "city", "Rome", PairRule::kReplaces));
  EXPECT_TRUE(AddRequestPair(request, "nam", "x", PairRule::kKeepsFirst));  // only a whole name is the same
  EXPECT_FALSE(AddRequestPair(request, "CITY", "Oslo", PairRule::kKeepsFirst));
  EXPECT_EQ(request, "POST http://h/a.cgi?step=1&name=Jane&city=Rome&nam=x&");
  EXPECT_TRUE(AddRequestPair(request, "NAME", "Joe", PairRule::kReplaces));  // cut at the earlier pair
  EXPECT_EQ(request, "POST http://h/a.cgi?step=1&NAME=Joe&");

  std::string full = "POST x?";
  full += std::string(kRequestTextMax - full.size() - 5, 'a');
  EXPECT_FALSE(AddRequestPair(full, "b", "cde", PairRule::kReplaces));  // would pass the limit
  EXPECT_TRUE(AddRequestPair(full, "b", "cd", PairRule::kReplaces));
  EXPECT_EQ(full.size(), kRequestTextMax);
}

TEST_F(PageWriter, DirectPostCollectsTheFirstFormsPairs) {
  ScanSession post(*keys_, ScanOptions{}, false, true);
  post.host = "www.example.com";
  post.currentKey = 0;
  post.prompt = &prompt_;
  post.options.askForSelect.fill(kAskAllways);
  ASSERT_TRUE(scan_.document.Assign(std::string(kAllKinds) + "<form action=/b method=post><input name=z></form>"));
  ParseFormPage(scan_, post.host);
  const std::string page = FilledPage(scan_, post);
  EXPECT_TRUE(prompt_.requests.empty());
  EXPECT_EQ(post.requestText,
            "POST http://www.example.com/post.cgi?Name=Jane&Address=12+Market+St%0D%0ASpringfield&"
            "COLOUR=BLUE&AGREE=YES&COUNTRY=\\\"us\\\"&go=Send&");
  EXPECT_NE(page.find("<input type=\"checkbox\" checked name=\"AGREE\""), std::string::npos);
}

TEST_F(PageWriter, PromptsFollowTheOptionsAndCancelAllEndsThem) {
  keys_.Fill({{"Me", "me", "", "Current"}, {"Pick", "", "", "From\r\nprompt"}, {"Agree", "agree", "", "yes"}});
  Ask(kAskNever, kAskAllways, kAskNever, kAskUnMatched);
  prompt_ = ScriptedPrompt({Ok(1), Ok(kNoMatch), {0, kNoMatch, -1, true}});
  session_.promptAll = true;  // selects with Never still are not asked
  const std::string forms = Forms(
      "<form action=/a method=post><input name=unknown><input type=checkbox name=agree value=yes>"
      "<select name=s><option>x</select><input type=checkbox name=other value=v>"
      "<input type=checkbox name=agree value=yes><textarea name=t></textarea></form>");
  ASSERT_EQ(prompt_.requests.size(), 3u);
  EXPECT_EQ(prompt_.requests[0].kind, kPromptText);
  EXPECT_EQ(prompt_.requests[0].slot, 1);
  EXPECT_EQ(prompt_.requests[1].kind, kPromptCheckbox);
  EXPECT_EQ(prompt_.requests[1].matchedKey, 2u);
  EXPECT_EQ(prompt_.names[1], "AGREE");
  EXPECT_EQ(prompt_.requests[2].slot, 4);  // "Cancel All" here; nothing is asked after it
  EXPECT_EQ(session_.currentKey, 1);       // the key confirmed in a prompt
  EXPECT_EQ(forms,
            "<form action=\"http://www.example.com/a\" method=post >\n"
            "<input type=\"text\" name=\"unknown\" value=\"From\r\nprompt\" >\n"  // a picked key keeps its CRs
            "<input type=\"checkbox\" checked name=\"AGREE\" value=\"YES\" >\n"
            "<select name=\"S\" >\n<option >x</option>\n</select>\n"
            "<input type=\"checkbox\" name=\"OTHER\" value=\"v\" >\n"
            "<input type=\"checkbox\" checked name=\"AGREE\" value=\"YES\" >\n"  // the match stands again
            "<textarea name=\"t\" ></textarea>\n</form>");
}

// Teaches key 1 the field's name, as the dialog does when its box is ticked.
class LearningPrompt : public NoMatchPrompt {
 public:
  explicit LearningPrompt(KeyTable& keys) : keys_(keys) {}
  PromptAnswer Ask(const FormScan& scan, const PromptRequest& request) override {
    ++asked;
    LearnSearchName(keys_, TextOf(scan.forms[request.form].fields[request.slot].name), 1, "", false);
    return Ok(1);
  }
  int asked = 0;

 private:
  KeyTable& keys_;
};

TEST_F(PageWriter, ANameLearnedInAPromptMatchesTheNextField) {
  keys_.Fill({{"Me", "me", "", "Current"}, {"Town", "town", "", "Springfield"}});
  session_.options.askForSelect[kPromptText] = kAskUnMatched;
  LearningPrompt learning(*keys_);
  session_.prompt = &learning;
  const std::string forms = Forms("<form action=/a method=post><input name=city><input name=City></form>");
  EXPECT_EQ(learning.asked, 1);
  EXPECT_NE(forms.find("name=\"City\" value=\"Springfield\""), std::string::npos);
  EXPECT_EQ(KeyFieldText(*keys_, 1, kSearchNames), "town,CITY");
}

TEST_F(PageWriter, PromptedSelectsAndRadioGroupsTakeTheChosenValue) {
  Ask(kAskUnMatched, kAskNever, kAskUnMatched, kAskNever);
  prompt_ = ScriptedPrompt({Ok(kNoMatch, 1), {}, {}, Ok(5, 2)});
  const std::string forms = Forms(
      "<form action=/a method=post><input type=radio name=size value=s><input type=radio name=size value=m>"
      "<input type=radio name=size value=l><select name=country><option>Germany<option>France<option>Chile"
      "</select></form>");
  ASSERT_EQ(prompt_.requests.size(), 4u);
  EXPECT_EQ(prompt_.requests[0].radioValues, (std::vector<std::string>{"s", "m", "l"}));
  EXPECT_EQ(prompt_.requests[1].radioValues, (std::vector<std::string>{"m", "l"}));
  EXPECT_EQ(prompt_.requests[2].radioValues, (std::vector<std::string>{"l"}));
  EXPECT_EQ(prompt_.requests[3].kind, kPromptSelect);
  EXPECT_EQ(prompt_.requests[3].matchedKey, 5u);  // matched, but no option listed
  EXPECT_EQ(prompt_.requests[3].selectIndex, 0);
  EXPECT_NE(forms.find("<input type=\"radio\" checked name=\"SIZE\" value=\"m\" >\n"), std::string::npos);
  EXPECT_NE(forms.find("<option >GERMANY</option>\n<option >FRANCE</option>\n<option selected>CHILE</option>\n"),
            std::string::npos);
}

}  // namespace
}  // namespace qb
