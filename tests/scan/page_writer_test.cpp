#include "scan/page_writer.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "acquire/http_request.h"
#include "base/user_message.h"
#include "scan/post_request.h"
#include "tests/keys/key_test_util.h"
#include "tests/support/temp_dir.h"

namespace qb {
namespace {

using test::KeyTexts;
using test::OwnedTable;

// Answers prompts from a list (then Cancel), learning the field's name into key 1
// when asked to, and remembers what it was asked.
class ScriptedPrompt : public NoMatchPrompt {
 public:
  ScriptedPrompt(std::vector<PromptAnswer> answers, KeyTable* learnInto = nullptr)
      : answers_(std::move(answers)), learnInto_(learnInto) {}
  PromptAnswer Ask(const FormScan& scan, const PromptRequest& request) override {
    requests.push_back(request);
    const std::string name = TextOf(scan.forms.at(request.form).fields.at(request.slot).name);
    if (learnInto_) LearnSearchName(*learnInto_, name, 1, "", false);
    return requests.size() <= answers_.size() ? answers_[requests.size() - 1] : PromptAnswer{};
  }
  std::vector<PromptRequest> requests;

 private:
  std::vector<PromptAnswer> answers_;
  KeyTable* learnInto_;
};

PromptAnswer Ok(std::uint32_t key, int valueIndex = -1) { return {1, key, valueIndex, false}; }

const std::vector<KeyTexts> kKeys = {
    {"Me", "me", "", "Current"},
    {"Name", "name", "", "Jane"},
    {"Address", "address", "", "12 Market St\r\nSpringfield"},
    {"Colour", "colour", "Blue", ""},
    {"Agree", "agree", "", "yes"},
    {"Country", "country", "United States", ""},
    {"Tint", "tint", "Blue", ""},
};

class PageWriter : public ::testing::Test {
 protected:
  PageWriter() : keys_(kKeys) { TakeUserMessages(); }

  // Every page gets a scan of its own, as in the program: while a scan runs its
  // keys change only through its prompt.
  void Parse(const std::string& html) {
    session_ = std::make_unique<ScanSession>(*keys_, options_, promptAll_, directPost_);
    session_->host = "www.example.com";
    session_->currentKey = currentKey_;
    session_->prompt = prompt_.get();
    ASSERT_TRUE(scan_.document.Assign(html));
    ParseFormPage(scan_, session_->host);
  }
  std::string Fill(const std::string& html) {
    Parse(html);
    CheckRadioGroups(scan_, *session_);
    return FilledPage(scan_, *session_);
  }
  // What lies between the notes and the closing banner: the scripts and forms.
  std::string Forms(const std::string& html) {
    const std::string page = Fill(html);
    const std::size_t start = page.find("<hr></font>") + 11;
    return page.substr(start, page.find("</font><hr><center>") - start);
  }
  std::string OneFieldForm(const std::string& field) {
    return Forms("<form action=/a method=post>" + field + "</form>");
  }
  void Prompt(std::vector<PromptAnswer> answers, std::array<std::uint32_t, kScanKindCount> ask,
              KeyTable* learnInto = nullptr) {
    prompt_ = std::make_unique<ScriptedPrompt>(std::move(answers), learnInto);
    options_.askForSelect = ask;
  }

  OwnedTable keys_;
  ScanOptions options_;
  bool promptAll_ = false;
  bool directPost_ = false;
  int currentKey_ = 0;
  std::unique_ptr<ScriptedPrompt> prompt_;
  std::unique_ptr<ScanSession> session_;
  FormScan scan_;
};

TEST_F(PageWriter, WritesEachFieldKindFromItsKeyAndFromNone) {
  struct Case {
    const char* field;
    const char* fromKey;
    const char* fromNone;  // only the current key is there; null: as from the key
  } const cases[] = {
      {"<input type=text name=Name value=old size=30 maxlength=20 class=box>",
       "<input type=\"text\" size=\"30\" maxlenght=\"20\" class=\"box\" name=\"Name\" value=\"Jane\" >\n",
       "<input type=\"text\" size=\"30\" maxlenght=\"20\" class=\"box\" name=\"Name\" value=\"old\" >\n"},
      {"<textarea name=Address rows=3 cols=40>old text</textarea>",
       "<textarea rows=\"3\" cols=\"40\" name=\"Address\" >12 Market St\nSpringfield</textarea>\n",
       "<textarea rows=\"3\" cols=\"40\" name=\"Address\" ></textarea>\n"},
      {"<input type=radio name=colour value=red checked><input type=radio name=colour value=blue>",
       "<input type=\"radio\" name=\"colour\" value=\"red\" >\n<input type=\"radio\" checked name=\"colour\" "
       "value=\"blue\" >\n",
       "<input type=\"radio\" checked name=\"colour\" value=\"red\" >\n<input type=\"radio\" name=\"colour\" "
       "value=\"blue\" >\n"},
      {"<input type=checkbox name=agree value=yes checked>",  // Never: the page's state, matched or not
       "<input type=\"checkbox\" checked name=\"agree\" value=\"yes\" >\n", nullptr},
      {"<select name=country size=1><option value=de selected>Germany<option value=us>United States</select>",
       "<select name=\"country\" size=\"1\" >\n<option value=de >Germany</option>\n"
       "<option value=us selected>United States</option>\n</select>\n",
       "<select name=\"country\" size=\"1\" >\n<option value=de selected>Germany</option>\n"
       "<option value=us >United States</option>\n</select>\n"},
      {"<input type=submit name=go value=Send>", "<input type=\"submit\" name=\"go\" value=\"Send\" >\n", nullptr},
      {"<input value=mine>", "<input type=\"text\" >\n", nullptr},  // no name, no value
      {"<select name=country><option>Both</td>",  // unclosed: the cell's end follows it once
       "<select name=\"country\" >\n<option >Both</option>\n</select>\n</td>", nullptr},
  };
  const std::string formTag = "<form action=\"http://www.example.com/a\" method=post >\n";
  for (const Case& c : cases) {
    keys_.Fill(kKeys);
    EXPECT_EQ(OneFieldForm(c.field), formTag + c.fromKey + "</form>");
    keys_.Fill({kKeys[0]});
    EXPECT_EQ(OneFieldForm(c.field), formTag + (c.fromNone ? c.fromNone : c.fromKey) + "</form>");
  }
  EXPECT_TRUE(TakeUserMessages().empty());
}

TEST_F(PageWriter, NotesScriptsMarkupAndTheTableAroundTheForms) {
  const std::string page = Fill(
      "<script>var a;</script><table width=100% align=center border=0><form action=\"httpdocs/a\" "
      "method=post enctype=\"multipart/form-data\" name=f>\r\n<tr><td><b>Name:</b></td><td><input name=x>"
      "</td></tr><input type=hidden name=h value=1>\n<input name=y></form></table>"
      "<form action=\"HTTPS://b.example/b\" method=POST><input type=submit></form>");
  const std::size_t script = page.find("has a Java or VB scripts");
  const std::size_t submit = page.find("does not have a <b>\"Submit\"</b> button");
  ASSERT_NE(submit, std::string::npos);
  EXPECT_LT(script, submit);
  EXPECT_NE(page.find("</center><hr></font><script>var a;</script>\n<table width=\"100%\" border=\"0\" >\n"
                      "<form name=\"f\" action=\"http://www.example.com/httpdocs/a\" method=post "
                      "enctype=\"multipart/form-data\" >\n\r\n<tr><td><b>Name:</b></td><td>"
                      "<input type=\"text\" name=\"x\" value=\"\" >\n</td></tr><input type=hidden name=h value=1>\n"
                      "<input type=\"text\" name=\"y\" value=\"\" >\n</form>"
                      "<form action=\"HTTPS://b.example/b\" method=POST >\n<input type=\"submit\" >\n"
                      "</form></table></font><hr><center>"),
            std::string::npos)
      << page;
  EXPECT_EQ(Fill("<form action=/a method=post><input type=submit></form>").find("Notes:"), std::string::npos);
}

// Where neither a key nor the prompt decides, a choice field keeps the page's
// marks; where one decides, the page's other marks in that select or group go.
TEST_F(PageWriter, ChoiceFieldsKeepThePagesMarksUnlessAKeyDecides) {
  keys_.Fill({{"Me", "me", "Red\r\nBlue", "x"}, {"Colour", "colour", "Blue", ""}});
  const std::pair<const char*, const char*> cases[] = {
      {"<select name=colour><option selected=\"selected\">Red<option>Blue</select>",
       "<option >Red</option>\n<option selected>Blue</option>\n"},
      {"<select name=size><option selected>S<option SELECTED>M<option>L</select>",  // the one a browser shows
       "<option >S</option>\n<option selected>M</option>\n<option >L</option>\n"},
      {"<select name=size multiple><option selected>S<option selected>M</select>",
       "<option selected>S</option>\n<option selected>M</option>\n"},
      {"<input type=radio name=colour value=red checked><input type=radio name=colour value=green>",
       "<input type=\"radio\" checked name=\"colour\" value=\"red\" >\n"
       "<input type=\"radio\" name=\"colour\" value=\"green\" >\n"},  // the key lists neither
      {"<input type=radio name=Colour value=red checked><input type=radio name=colour value=blue>",
       "<input type=\"radio\" checked name=\"Colour\" value=\"red\" >\n"
       "<input type=\"radio\" checked name=\"colour\" value=\"blue\" >\n"},  // two groups to a browser
      {"<input type=checkbox name=news value=yes checked=\"checked\">",
       "<input type=\"checkbox\" checked name=\"news\" value=\"yes\" >\n"},
      {"<select name=me multiple><option selected>Green<option selected value=b>Blue<option>Red</select>",
       "<select multiple name=\"me\" >\n<option >Green</option>\n<option value=b selected>Blue</option>\n"
       "<option >Red</option>\n</select>\n"},  // the key's lines decide a multiple select
  };
  for (const auto& [field, written] : cases) {
    EXPECT_NE(OneFieldForm(field).find(written), std::string::npos) << field;
  }
  // Past the selects a page keeps, a select's options are not kept: it is written
  // empty, even where a key answers it, and nothing is read beyond the kept ones.
  std::string half;
  for (int i = 0; i < kMaxSelects / 2; ++i) half += "<select name=s><option>o</select>";
  const std::string form = "<form action=/a method=post>" + half;
  const std::string page =
      Forms(form + "</form>" + form + "<select name=colour><option>Red<option selected>Blue</select></form>");
  EXPECT_NE(page.find("<select name=\"colour\" >\n</select>\n</form>"), std::string::npos)
      << page.substr(page.size() - 200);
}

// Key texts are typed in the ANSI code page; a UTF-8 page gets them in UTF-8,
// also where they are compared with its option texts and values.
TEST_F(PageWriter, KeyTextsMeetAUtf8PageInUtf8) {
  keys_.Fill({{"Me", "name, land, news", "\xD6sterreich", "M\xFCller"}});
  directPost_ = true;
  const struct {
    const char *declaration, *o, *u, *charset;  // the page's umlauts
  } cases[] = {
      {"<meta charset=\"utf-8\">", "\xC3\x96", "\xC3\xBC", "charset=utf-8\""},
      {"", "\xD6", "\xFC", "charset=iso-8859-1\""},
  };
  for (const auto& c : cases) {
    const std::string o = c.o, u = c.u;
    const std::string page = Fill(std::string("<html><head>") + c.declaration +
                                  "</head><form action=/a method=post><input name=name><select name=land>"
                                  "<option>Deutschland<option value=" + o + "sterreich>" + o + "sterreich</select>"
                                  "<input type=checkbox name=news value=M" + u + "ller></form>");
    EXPECT_LT(page.find(c.charset), page.find("<title>")) << c.charset;
    EXPECT_EQ(session_->requestText,
              "POST http://www.example.com/a?name=M" + u + "ller&land=" + o + "sterreich&news=M" + u + "ller&")
        << c.charset;
  }
}

TEST_F(PageWriter, OptionTagsLoseTheirSelectedWordsAndOneIsAddedAtMost) {
  EXPECT_EQ(RebuildOptionTag("  option  SELECTED   value=\"a b\" selected"), "option value=\"a b\" ");
  EXPECT_EQ(RebuildOptionTag("option selected=\"selected\""), "option ");
  const std::string longWord(kMaxOptionWordBytes + 5, 'v');
  EXPECT_EQ(RebuildOptionTag("option " + longWord), "option " + longWord.substr(0, kMaxOptionWordBytes) + " vvvvv ");
}

// An unknown slot kind is reported and left out; a file that cannot be created is
// reported before anything is asked, one that can is not.
TEST_F(PageWriter, FaultsAreReported) {
  Prompt({}, {1, 1, 1, 1, 1});
  Parse("<form action=/a method=post>A<input name=b>C</form>");
  scan_.forms[0].fields[1].kind = 7;
  EXPECT_NE(FilledPage(scan_, *session_).find("method=post >\nAC</form>"), std::string::npos);
  std::vector<UserMessage> messages = TakeUserMessages();
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_EQ(messages[0].text.rfind("That is a mistake in program.\n", 0), 0u);
  EXPECT_NE(messages[0].text.find("CODE-0"), std::string::npos);

  test::TempDir dir;
  Parse("<form action=/a method=post><input name=a><input type=checkbox name=b></form>");
  EXPECT_FALSE(WriteFilledPage(dir.File("missing") + "/page.htm", scan_, *session_));
  messages = TakeUserMessages();
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_EQ(messages[0].text, "Can't open file for reading");
  EXPECT_TRUE(prompt_->requests.empty());
  // Written whole, it is reported as written, with nothing said and no pairs kept
  // for a page the browser posts.
  EXPECT_TRUE(WriteFilledPage(dir.File("page.htm"), scan_, *session_));
  EXPECT_TRUE(TakeUserMessages().empty());
  EXPECT_EQ(session_->requestText, "");
}

TEST(PostRequest, EncodesValuesLightlyAndMeetsEarlierPairsThatBeginWithTheName) {
  const std::pair<const char*, const char*> values[] = {
      {"a b", "a+b"},       {"line\r\nnext", "line%0D%0D%0Anext"}, {"me@x.com", "me%40x.com"},
      {"a=b", "a%3Db"},     {"say \"hi\"", "say+\\\"hi\\\""},     {"50% & more?", "50%+&+more?"},
      {"end  \n\n", "end"}, {"C++ ", "C"},
  };
  for (const auto& [value, encoded] : values) EXPECT_EQ(EncodeRequestValue(value), encoded) << value;

  EXPECT_EQ(StartPostRequest("http://h/a.cgi"), "POST http://h/a.cgi?");
  std::string request = StartPostRequest("http://h/a.cgi?step=1");
  for (const char* name : {"name", "NEWSLETTER", "city"}) {
    EXPECT_TRUE(AddRequestPair(request, name, "x", PairRule::kReplaces)) << name;
  }
  const std::string earlier = request;
  const std::string address = "POST http://h/a.cgi?";
  ASSERT_EQ(earlier, address + "step=1&name=x&NEWSLETTER=x&city=x&");
  // An earlier pair is one that begins with the name, over the name's length;
  // a replacing pair cuts the request there, later pairs included.
  const struct {
    const char* name;
    PairRule rule;
    bool appended;
    const char* query;  // after the pair was offered
  } cases[] = {
      {"NAME", PairRule::kReplaces, true, "step=1&NAME=v&"},
      {"CITY", PairRule::kKeepsFirst, false, "step=1&name=x&NEWSLETTER=x&city=x&"},
      {"news", PairRule::kReplaces, true, "step=1&name=x&news=v&"},
      {"nam", PairRule::kKeepsFirst, false, "step=1&name=x&NEWSLETTER=x&city=x&"},
      {"s", PairRule::kReplaces, true, "s=v&"},
      {"names", PairRule::kKeepsFirst, true, "step=1&name=x&NEWSLETTER=x&city=x&names=v&"},
      {"ity", PairRule::kKeepsFirst, true, "step=1&name=x&NEWSLETTER=x&city=x&ity=v&"},
      {"http", PairRule::kKeepsFirst, true, "step=1&name=x&NEWSLETTER=x&city=x&http=v&"},
  };
  for (const auto& c : cases) {
    request = earlier;
    EXPECT_EQ(AddRequestPair(request, c.name, "v", c.rule), c.appended) << c.name;
    EXPECT_EQ(request, address + c.query) << c.name;
  }

  std::string full = "POST x?" + std::string(kRequestTextMax - 12, 'a');
  EXPECT_FALSE(AddRequestPair(full, "b", "cde", PairRule::kReplaces));  // would pass the limit
  EXPECT_TRUE(AddRequestPair(full, "b", "cd", PairRule::kReplaces));
  EXPECT_EQ(full.size(), kRequestTextMax);
}

// Text fields are filled only while the current key has a Description (key 3 has
// none). "nick" meets the earlier pair "nickname" and replaces it. An option's value
// is what follows the first "=" of its tag: none without one, not the option's text.
TEST_F(PageWriter, DirectPostPairsTakeNamesAndValuesAsThePageHasThem) {
  directPost_ = true;
  const std::string rest = "nick=me&colour=blue&country=&tint=\\\"b%3D1\\\"&go=Send&";
  const struct {
    int currentKey;
    const char* name;
    std::string request;
  } cases[] = {
      {0, "Jane", "Name=Jane&Address=12+Market+St%0D%0ASpringfield&" + rest},
      {kNoKey, "old", "Name=old&Address=&" + rest},
      {3, "old", "Name=old&Address=&" + rest},
  };
  for (const auto& c : cases) {
    currentKey_ = c.currentKey;
    const std::string forms = OneFieldForm(
        "<input name=Name value=old><textarea name=Address></textarea>"
        "<input name=nickname value=again><input name=nick value=me><input type=radio name=colour value=blue>"
        "<select name=country><option>United States</select><select name=tint><option value=\"b=1\">Blue</select>"
        "<input type=submit name=go value=Send>");
    EXPECT_EQ(session_->requestText, "POST http://www.example.com/a?" + c.request) << c.currentKey;
    // The page itself keeps the text field's case.
    EXPECT_NE(forms.find(std::string("name=\"Name\" value=\"") + c.name + "\""), std::string::npos) << c.currentKey;
  }
}

TEST_F(PageWriter, PromptsFollowTheOptionsAndCancelAllEndsThem) {
  keys_.Fill({{"Me", "me", "", "Current"}, {"Pick", "", "", "From\r\nprompt"}, {"Agree", "agree", "", "yes"}});
  Prompt({Ok(1), Ok(kNoMatch), {0, kNoMatch, -1, true}}, {0, 1, 0, 2, 2});
  promptAll_ = true;  // selects with Never still are not asked
  const std::string forms = Forms(
      "<form action=/a method=post><input name=unknown><input type=checkbox name=agree value=yes>"
      "<select name=s><option>x</select><input type=checkbox name=other value=v>"
      "<input type=checkbox name=agree value=yes><textarea name=t></textarea></form>");
  const std::vector<PromptRequest>& asked = prompt_->requests;
  ASSERT_EQ(asked.size(), 3u);
  EXPECT_EQ(std::make_pair(asked[0].kind, asked[0].slot), std::make_pair(kPromptText, 1));
  EXPECT_EQ(std::make_pair(asked[1].kind, asked[1].matchedKey), std::make_pair(kPromptCheckbox, 2u));
  EXPECT_EQ(asked[2].slot, 4);        // "Cancel All" here; nothing is asked after it
  EXPECT_EQ(session_->currentKey, 1);  // the key confirmed in a prompt
  EXPECT_EQ(forms,
            "<form action=\"http://www.example.com/a\" method=post >\n"
            "<input type=\"text\" name=\"unknown\" value=\"From\r\nprompt\" >\n"  // a picked key keeps its CRs
            "<input type=\"checkbox\" checked name=\"agree\" value=\"yes\" >\n"
            "<select name=\"s\" >\n<option >x</option>\n</select>\n"
            "<input type=\"checkbox\" name=\"other\" value=\"v\" >\n"
            "<input type=\"checkbox\" checked name=\"agree\" value=\"yes\" >\n"  // the match stands again
            "<textarea name=\"t\" ></textarea>\n</form>");
}

// An unmatched radio group is offered from each of its buttons in turn, and so is a
// group whose key lists none of its values; selects and text areas are asked even
// without a name, unnamed text fields are not.
TEST_F(PageWriter, PromptedFieldsTakeTheChosenValueOrKey) {
  Prompt({Ok(kNoMatch, 1), {}, {}, {}, {}, Ok(5, 2), Ok(1, 1), Ok(1)},
         {kAskUnMatched, kAskNever, kAskUnMatched, kAskUnMatched, kAskUnMatched});
  const std::string forms = OneFieldForm(
      "<input type=radio name=size value=s><input type=radio name=size value=m><input type=radio name=size "
      "value=l><select name=country><option>Germany<option>France<option>Chile</select>"
      "<input value=own><select><option>a<option>b</select><textarea></textarea>"
      "<input type=radio name=colour value=red><input type=radio name=colour value=green>");
  const std::vector<PromptRequest>& asked = prompt_->requests;
  ASSERT_EQ(asked.size(), 8u);
  EXPECT_EQ(asked[0].radioValues, (std::vector<std::string>{"s", "m", "l"}));
  EXPECT_EQ(asked[2].radioValues, (std::vector<std::string>{"l"}));
  EXPECT_EQ(std::make_pair(asked[3].matchedKey, asked[3].radioValues),
            std::make_pair(3u, std::vector<std::string>{"red", "green"}));
  EXPECT_EQ(std::make_pair(asked[5].matchedKey, asked[5].selectIndex), std::make_pair(5u, 0));
  EXPECT_EQ(std::make_pair(asked[6].kind, asked[6].slot), std::make_pair(kPromptSelect, 6));
  EXPECT_EQ(std::make_pair(asked[7].kind, asked[7].slot), std::make_pair(kPromptTextarea, 7));
  EXPECT_NE(forms.find("<input type=\"radio\" checked name=\"size\" value=\"m\" >\n"), std::string::npos);
  EXPECT_NE(forms.find("<option >Germany</option>\n<option >France</option>\n<option selected>Chile</option>\n"),
            std::string::npos);
  EXPECT_NE(forms.find("<input type=\"text\" >\n<select >\n<option >a</option>\n<option selected>b</option>\n"
                       "</select>\n<textarea >Jane</textarea>\n"),
            std::string::npos)
      << forms;
}

TEST_F(PageWriter, ANameLearnedInAPromptMatchesTheNextField) {
  keys_.Fill({{"Me", "me", "", "Current"}, {"Town", "town", "", "Springfield"}});
  Prompt({Ok(1)}, {kAskNever, kAskNever, kAskNever, kAskUnMatched, kAskNever}, &*keys_);
  const std::string forms = OneFieldForm("<input name=city><input name=City>");
  EXPECT_EQ(prompt_->requests.size(), 1u);
  EXPECT_NE(forms.find("name=\"City\" value=\"Springfield\""), std::string::npos);
  EXPECT_EQ(KeyFieldText(*keys_, 1, kSearchNames), "town,city");
}

}  // namespace
}  // namespace qb
