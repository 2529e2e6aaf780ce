#include "scan/form_parser.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "scan/form_json.h"

namespace qb {
namespace {

std::string PostForm(const std::string& body) {
  return "<form action=\"/post.cgi\" method=\"post\">" + body + "</form>";
}

std::string Inputs(int count) {
  std::string body;
  for (int i = 0; i < count; ++i) body += "<input name=f" + std::to_string(i) + ">";
  return body;
}

class FormParser : public ::testing::Test {
 protected:
  void Parse(const std::string& html) {
    page_ = html;
    ASSERT_TRUE(scan_.document.Assign(html));
    ParseFormPage(scan_, "www.example.com");
  }
  const FormField& Field(std::size_t form, std::size_t slot) const {
    return scan_.forms.at(form).fields.at(slot);
  }
  // The page's bytes that the writer replaces for this slot.
  std::string Tag(std::size_t form, std::size_t slot) const {
    const FormField& field = Field(form, slot);
    return page_.substr(field.tagStart, field.tagEnd - field.tagStart);
  }

  std::string page_;
  FormScan scan_;
};

TEST_F(FormParser, KeepsOnlyFormsThatPostToAnAction) {
  const std::pair<const char*, bool> cases[] = {
      {"<form action=\"/a\" method=\"post\">", true},
      {"<FORM METHOD=Post ACTION=/a>", true},
      {"<form action=/a method=xPOST>", true},  // only the last four bytes count
      {"<form action=\"/a\" method=\"get\">", false},
      {"<form action=\"/a\">", false},
      {"<form method=post>", false},
      {"<form action=/a method=pos>", false},
      {"<form action=/a method=get method=post>", false},  // reading stops at "get"
  };
  for (const auto& [formTag, kept] : cases) {
    Parse(formTag + std::string("<select name=q><option>a</select></form>") +
          PostForm("<select name=c><option>b</select>"));
    // A dropped form gives its select rows back to the next form.
    const std::size_t forms = kept ? 2 : 1;
    ASSERT_EQ(scan_.forms.size(), forms) << formTag;
    ASSERT_EQ(scan_.selects.size(), forms) << formTag;
    EXPECT_EQ(Field(forms - 1, 1).selectIndex, static_cast<int>(forms) - 1) << formTag;
    EXPECT_EQ(TextOf(scan_.selects.back().at(0).text), "b") << formTag;
  }
}

TEST(AbsoluteAction, ResolvesFromTheSiteRoot) {
  const struct {
    const char *action, *host, *absolute;
  } cases[] = {
      {"post.cgi", "host.example", "http://host.example/post.cgi"},
      {"../cgi/x.pl?a=b", "host.example", "http://host.example/cgi/x.pl?a=b"},
      {" \"./\\\n/p", "h", "http://h/p"},
      {"HTTPS://other/x", "h", "HTTPS://other/x"},
      {"httpfoo", "h", "httpfoo"},
      {"", "h", "http://h/"},
      {"p", "", "http:///p"},
  };
  for (const auto& c : cases) EXPECT_EQ(AbsoluteAction(c.action, c.host), c.absolute) << c.action;
  // A page that came over HTTPS posts there, to the port it came from.
  EXPECT_EQ(AbsoluteAction("./pay", "localhost:8443", "https://"), "https://localhost:8443/pay");
}

TEST_F(FormParser, FieldKindsByTagAndType) {
  constexpr int kNotKept = -1;
  const std::pair<const char*, int> cases[] = {
      {"<input type=radio name=a>", kFieldRadio},
      {"<input type=\"TEXT\" name=a>", kFieldText},
      {"<input type=textbox name=a>", kFieldText},
      {"<input name=a>", kFieldText},
      {"<input type=\"\" name=a>", kFieldText},
      {"<input type=checkbox name=a>", kFieldCheckbox},
      {"<input type=submit value=Go>", kFieldSubmit},
      {"<input type=textarea name=a>", kFieldTextarea},
      {"<textarea type=hidden name=a></textarea>", kFieldTextarea},
      {"<select name=a></select>", kFieldSelect},
      {"<input type=hidden name=a value=1>", kNotKept},
      {"<input name=p type=password>", kNotKept},
      {"<input type=image src=go.gif>", kNotKept},
  };
  for (const auto& [tag, kind] : cases) {
    Parse(PostForm(tag));
    const HtmlForm& form = scan_.forms.at(0);
    ASSERT_EQ(form.fieldCount(), kind == kNotKept ? 1 : 2) << tag;
    if (kind != kNotKept) {
      EXPECT_EQ(Field(0, 1).kind, kind) << tag;
    }
    EXPECT_EQ(form.hasSubmit, kind == kFieldSubmit) << tag;
  }
}

TEST_F(FormParser, SlotsLabelsAndTheirBytes) {
  Parse("<html><form action=\"/p\" method=\"post\"><input type=\"hidden\" name=\"h\" value=\"1\">\n"
        "<b>Name:</b> <input name=\"n\" size=20>\n"
        "Comments&nbsp;<textarea name=\"c\" rows=3 cols=40>old text</textarea>\n"
        "<br><input type=submit value=\"Send\">\n"
        "</form></html>");
  const HtmlForm& form = scan_.forms.at(0);
  ASSERT_EQ(form.fieldCount(), 4);  // the hidden input's slot went to the next field
  EXPECT_EQ(Tag(0, 0), "<form action=\"/p\" method=\"post\">");
  EXPECT_EQ(Tag(0, 1), "<input name=\"n\" size=20>");
  EXPECT_EQ(Tag(0, 2), "<textarea name=\"c\" rows=3 cols=40>old text</textarea>\n");
  EXPECT_EQ(Tag(0, 3), "<input type=submit value=\"Send\">");
  EXPECT_EQ(form.end, page_.find("</form>"));

  EXPECT_EQ(TextOf(Field(0, 1).label), "Name: ");
  EXPECT_EQ(TextOf(Field(0, 2).label), "Comments&nbsp; ");
  EXPECT_EQ(Field(0, 3).label, kNoBlock);  // nothing visible since the textarea
}

TEST_F(FormParser, ATextareaRunsOnOverItsClosingTag) {
  // The page, the bytes the writer replaces for the textarea, the next field's label.
  const struct {
    const char *body, *textarea, *nextLabel;
  } cases[] = {
      {"<textarea name=a>old</TEXTAREA >\n<input name=b>", "<textarea name=a>old</TEXTAREA >\n",
       ""},
      {"<textarea name=a>old</textarea6<input name=b>", "<textarea name=a>old</textarea", "6 "},
      {"<textarea name=a>a<b>c</textarea><input name=b>", "<textarea name=a>a", "c "},
  };
  for (const auto& c : cases) {
    Parse(PostForm(c.body));
    ASSERT_EQ(scan_.forms.at(0).fieldCount(), 3) << c.body;
    EXPECT_EQ(Tag(0, 1), c.textarea) << c.body;
    EXPECT_EQ(TextOf(Field(0, 2).label), c.nextLabel) << c.body;
    EXPECT_EQ(Tag(0, 2), "<input name=b>") << c.body;
  }
}

TEST_F(FormParser, SelectOptionsKeepTagAndText) {
  std::string many = "<select name=m>";
  for (int i = 0; i < kMaxOptions + 1; ++i) many += "<option>" + std::to_string(i);
  Parse(PostForm("<select name=\"color\">\n"
                 "<option value=\"r\" selected>Red\n"
                 "<option value=\"g\"><font color=green>Green</font>\n"
                 "<option value=\"b\">Blue</option> after close\n"
                 "</select>" +
                 many + "</select>"));
  ASSERT_EQ(scan_.selects.size(), 2u);
  std::vector<std::pair<std::string, std::string>> options;
  for (const SelectOption& o : scan_.selects[0]) options.emplace_back(TextOf(o.tag), TextOf(o.text));
  EXPECT_EQ(options, (std::vector<std::pair<std::string, std::string>>{
                         {"option value=\"r\" selected", "Red"},
                         {"option value=\"g\"", "Green"},
                         {"option value=\"b\"", "Blue"}}));
  EXPECT_EQ(Tag(0, 1).substr(Tag(0, 1).size() - 9), "</select>");
  ASSERT_EQ(scan_.selects[1].size(), static_cast<std::size_t>(kMaxOptions));
  EXPECT_EQ(TextOf(scan_.selects[1].back().text), std::to_string(kMaxOptions - 1));
}

TEST_F(FormParser, AnUnclosedSelectEndsAtItsTableCell) {
  const struct {
    const char *option, *closing, *text;
  } cases[] = {
      {"One\n", "</td>", "One"},
      {"Both", "</td>", "Both"},  // no byte of the option's text is left over
      {"Both", "</TR>", "Both"},
      {"Both", "</table>", "Both"},
  };
  for (const auto& c : cases) {
    const std::string closing = c.closing;
    const std::string shown = c.option + closing;
    Parse(PostForm("<table><tr><td><select name=s><option>" + std::string(c.option) + closing +
                   "<td>Next<input name=n></td></tr></table>"));
    ASSERT_EQ(scan_.forms.size(), 1u) << shown;
    ASSERT_EQ(scan_.forms[0].fieldCount(), 3) << shown;
    EXPECT_EQ(TextOf(scan_.selects.at(0).at(0).text), c.text) << shown;
    // The select's bytes end on the closing tag's '<'; the pass reads that tag again.
    EXPECT_EQ(Field(0, 1).tagEnd, page_.find(closing)) << shown;
    EXPECT_EQ(TextOf(Field(0, 2).name), "n") << shown;
    EXPECT_EQ(TextOf(Field(0, 2).label), "Next ") << shown;
  }
}

// The ninth form, a field beyond the hundred slots and the page's end each end
// the pass.
TEST_F(FormParser, TheFormsEndAtTheirLimitsAndWithThePage) {
  std::string page;
  for (int i = 1; i <= kMaxForms + 1; ++i) page += PostForm("<input name=f" + std::to_string(i) + ">");
  Parse(page + "<script></script>");
  ASSERT_EQ(scan_.forms.size(), static_cast<std::size_t>(kMaxForms));
  EXPECT_EQ(TextOf(Field(kMaxForms - 1, 1).name), "f8");
  EXPECT_TRUE(scan_.scripts.empty());

  Parse(PostForm(Inputs(kMaxFieldSlots - 1)) + PostForm(Inputs(1)));
  ASSERT_EQ(scan_.forms.size(), 2u);
  EXPECT_EQ(scan_.forms[0].fieldCount(), kMaxFieldSlots);
  Parse(PostForm(Inputs(kMaxFieldSlots)) + PostForm(Inputs(1)));
  ASSERT_EQ(scan_.forms.size(), 1u);
  EXPECT_EQ(scan_.forms[0].fieldCount(), kMaxFieldSlots);
  EXPECT_EQ(scan_.forms[0].end, page_.find("<input name=f99>"));

  Parse("</html>" + PostForm("<input name=a>"));
  EXPECT_TRUE(scan_.forms.empty());
  Parse("<form action=/p method=post><input name=a>");
  ASSERT_EQ(scan_.forms.size(), 1u);
  EXPECT_EQ(scan_.forms[0].end, page_.size());
}

TEST_F(FormParser, RecordsUpTo49ScriptBlocks) {
  Parse("</script><script src=x.js></script >" +
        PostForm("<script>go()</script><input name=a>"));
  const std::size_t inner = page_.find("<script>");
  ASSERT_EQ(scan_.scripts.size(), 2u);
  EXPECT_EQ(scan_.scripts[0].start, page_.find("<script src"));
  EXPECT_EQ(scan_.scripts[0].end, page_.find("<form"));
  EXPECT_EQ(scan_.scripts[1].start, inner);
  EXPECT_EQ(scan_.scripts[1].end, page_.find("<input"));
  EXPECT_EQ(scan_.forms.at(0).fieldCount(), 2);

  std::string many;
  for (int i = 0; i < kMaxScripts + 1; ++i) many += "<script>x</script>";
  Parse(many);
  ASSERT_EQ(scan_.scripts.size(), static_cast<std::size_t>(kMaxScripts));
  EXPECT_EQ(scan_.scripts.back().end, static_cast<std::size_t>(kMaxScripts) * 18);
}

TEST_F(FormParser, TablePrefixFromTheLastTableBeforeTheFirstForm) {
  const std::pair<std::string, std::string> cases[] = {
      {"<table align=\"center\" width=\"100%\" border=0 cellpadding='2'><tr><td>",
       "width=\"100%\" border=\"0\" cellpadding=\"2\" >"},
      {"<table width=1></table><TABLE border=2 ALIGN=left>", "border=\"2\" >"},
      {"<table>", ">"},
      {"<p>", ""},
  };
  for (const auto& [before, prefix] : cases) {
    Parse(before + PostForm("<table width=9><input name=a></table>") + "<table width=7>");
    EXPECT_EQ(scan_.tablePrefix, prefix) << before;
  }

  std::string wide = "<table";
  for (int i = 0; i < 300; ++i) wide += " a" + std::to_string(1000 + i) + "=\"xxxx\"";
  Parse(wide + ">" + PostForm(""));
  const std::string& prefix = scan_.tablePrefix;
  ASSERT_LE(prefix.size(), kMaxTablePrefixBytes);
  EXPECT_GT(prefix.size(), kMaxTablePrefixBytes - 16);
  EXPECT_EQ(prefix.substr(prefix.size() - 9), "=\"xxxx\" >");  // whole attributes only
}

TEST_F(FormParser, KeepsTheAttributesAndDumpsThemAsJson) {
  Parse("<table border=1><form name=\"f1\" action=\"../cgi/x.pl?a=b&c=d\" method=\"POST\" "
        "enctype=\"multipart/form-data\" value=\"_top\" onSubmit=\"check()\">Caf\xe9\x80\x7f\t\"x\""
        "<input type=text name=\"first name\" value='x' size=30 maxlength=\"20\" class=big checked "
        "onSubmit=\"go()\"><textarea name=a\\b rows=\"4\" cols=-2 value=v></textarea>"
        "<select name=s size=3 MULTIPLE><option value=1>One</select></form>");
  // A form's `value` lands in its target; only field tags supply onSubmit.
  EXPECT_EQ(FormScanToJson(scan_),
            "{\"forms\":[{\"action\":\"http://www.example.com/cgi/x.pl?a=b&c=d\",\"method\":\"POST\","
            "\"name\":\"f1\",\"enctype\":\"multipart/form-data\",\"target\":\"_top\","
            "\"onSubmit\":\"go()\",\"hasSubmit\":0,\"fields\":["
            "{\"kind\":2,\"name\":\"first name\",\"value\":\"x\",\"class\":\"big\",\"size\":30,"
            "\"maxlength\":20,\"rows\":0,\"cols\":0,\"checked\":1,\"multiple\":0,"
            "\"label\":\"Caf\\u00e9\\u0080\x7f\\t\\\"x\\\" \"},"
            "{\"kind\":5,\"name\":\"a\\\\b\",\"value\":\"v\",\"class\":null,\"size\":0,\"maxlength\":0,"
            "\"rows\":4,\"cols\":-2,\"checked\":0,\"multiple\":0,\"label\":null},"
            "{\"kind\":4,\"name\":\"s\",\"value\":null,\"class\":null,\"size\":3,\"maxlength\":0,"
            "\"rows\":0,\"cols\":0,\"checked\":0,\"multiple\":1,\"label\":null,"
            "\"options\":[{\"tag\":\"option value=1\",\"text\":\"One\"}]}]}],"
            "\"scripts\":[],\"tablePrefix\":\"border=\\\"1\\\" >\"}");
}

TEST_F(FormParser, ReportsTextsItCouldNotKeepAndFreesEveryBlock) {
  ASSERT_TRUE(scan_.document.Assign(PostForm("<input name=a>")));
  FailNextTextBlockAllocations(1);  // the action
  ParseFormPage(scan_, "www.example.com");
  EXPECT_TRUE(scan_.outOfMemory);
  EXPECT_TRUE(scan_.forms.empty());
  ParseFormPage(scan_, "www.example.com");  // a new pass starts clean
  EXPECT_FALSE(scan_.outOfMemory);
  EXPECT_EQ(scan_.forms.size(), 1u);

  Parse(PostForm("Label <input name=a value=b class=c onSubmit=d><select name=s><option>o</select>"));
  const HtmlForm& form = scan_.forms.at(0);
  const SelectOption& option = scan_.selects.at(0).at(0);
  std::vector<TextBlock> blocks = {form.action, form.method, form.onSubmit, option.tag, option.text};
  for (const FormField& f : form.fields) {
    for (TextBlock b : {f.name, f.value, f.className, f.label}) {
      if (b) blocks.push_back(b);
    }
  }
  ASSERT_EQ(blocks.size(), 10u);
  for (TextBlock b : blocks) ASSERT_TRUE(IsTextBlock(b));
  FreeFormScan(scan_);
  for (TextBlock b : blocks) EXPECT_FALSE(IsTextBlock(b));
  EXPECT_TRUE(scan_.forms.empty());
  EXPECT_EQ(scan_.document.length(), 0u);
}

}  // namespace
}  // namespace qb
