// The fill report on pages whose answers are known, and the starter database
// judged by the labels of the real pages.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "keys/key_text.h"
#include "tests/support/temp_dir.h"
#include "tools/fill_report.h"

namespace qb {
namespace {

constexpr char kKeys[] =
    "key E-mail\nsearch email, e-mail\n"
    "key First name\nsearch first_name, maxlength\n"
    "key Secret\nsearch pass, q\n";

// A key table of its own, read from a key list and freed at the end, and the kinds
// of labels its answers are judged by.
struct Judge {
  Judge(const std::string& keyList, const std::string& kindsList) {
    std::string error;
    EXPECT_TRUE(ParseKeyText(keyList, keys, error)) << error;
    EXPECT_TRUE(ParseLabelKinds(kindsList, kinds, error)) << error;
  }
  ~Judge() { ClearAllKeys(keys); }
  KeyTable keys;
  LabelKinds kinds;
};

std::string ReadSource(const std::string& relative) {
  std::ifstream in(std::string(QB_SOURCE_DIR) + "/" + relative, std::ios::binary);
  EXPECT_TRUE(in) << relative;
  return std::string(std::istreambuf_iterator<char>(in), {});
}

TEST(FillReport, ListsEveryNamedFieldWithItsFormAndKey) {
  test::TempDir dir;
  test::WriteText(dir.File("b.htm"),
                  "<input name=q data-manual-scoring=\"unknown\">"
                  "<form action=\"/get\"><input name=email></form>"
                  "<form action=\"/post\" method=post>\n"
                  "<input type=\"email\" NAME=\"E-Mail\" data-manual-scoring=\"emailAddress\">\n"
                  "<input autocomplete=\"name\" maxlength=\"35\" data-manual-scoring=\"fullName\">\n"
                  "<input type=password name=pass data-manual-scoring=\"password\">\n"
                  "<select name=\"first_name\"><option>x</select><textarea name=n/a/></textarea>"
                  "<input type=hidden name=email><input type=Submit name=email>"
                  "</form>");
  test::WriteText(dir.File("a.html"), "no forms");
  test::WriteText(dir.File("notes.txt"), "<input name=email>");
  EXPECT_EQ(ReportPageNames(dir.path()), (std::vector<std::string>{"a.html", "b.htm"}));

  const Judge judge(kKeys,
                    "want emailAddress E-mail\nwant fullName Full name\nguard pass\n"
                    "allow b.htm q Secret   # the search box\n");
  const KeyTable& keys = judge.keys;
  ReportPage page;
  ASSERT_EQ(ReadReportPage(dir.File("b.htm"), keys, page), ReportPageStatus::kRead);
  EXPECT_EQ(page.formActions, (std::vector<std::string>{"http://report.example/post"}));
  // Each field as "name|name as written|type|form|key".
  std::vector<std::string> fields;
  for (const ReportField& f : page.fields)
    fields.push_back(f.name + "|" + f.writtenName + "|" + f.type + "|" + std::to_string(f.form) + "|" +
                     KeyName(keys, f.key));
  EXPECT_EQ(fields, (std::vector<std::string>{
                        "q|q||0|Secret",
                        "email|email||0|E-mail",         // a GET form is never filled
                        "E-Mail|E-Mail|email|0|E-mail",  // type email is not a field a scan keeps
                        // The parser takes the value "name" for the attribute: the
                        // program reads a name that the page never sends.
                        "maxlength|||1|First name",
                        "pass|pass|password|0|Secret",
                        "first_name|first_name|select|1|First name",
                        "n/a/|n/a/|textarea|1|",
                    }));

  LabelTally tally;
  TallyLabels(judge.kinds, keys, "b.htm", page, tally);
  EXPECT_EQ(tally.total.wanted, 1);  // the full name field has no name to send
  EXPECT_EQ(tally.total.answered, 1);
  EXPECT_EQ(tally.total.scannedWanted, 0);
  ASSERT_EQ(tally.wrong.size(), 2u);
  EXPECT_EQ(tally.wrong[0].name, "maxlength");
  EXPECT_EQ(tally.wrong[1].keyName, "Secret");
  EXPECT_EQ(tally.guardedFills, 1);
  ASSERT_EQ(tally.acceptedFills.size(), 1u);
  EXPECT_EQ(tally.acceptedFills[0].name, "q");
}

TEST(FillReport, KindsListRulesAndTheirMistakes) {
  const std::pair<const char*, std::string> cases[] = {  // text, the start of its error
      {"relabel page.htm address addressStreet\nallow page.htm login E-mail key\n", ""},
      {"want phone\n", "line 1: "},
      {"guard card Card\n", "line 1: "},
      {"want a A\nrelabel page.htm address\n", "line 2: "},
      {"allow page.htm address\n", "line 1: "},
      {"relabel page.htm address username OR emailAddress\n", "line 1: "},
      {"mean phone Phone\n", "line 1: "},
  };
  for (const auto& [text, start] : cases) {
    LabelKinds kinds;
    std::string error;
    EXPECT_EQ(ParseLabelKinds(text, kinds, error), start.empty()) << text;
    EXPECT_EQ(error.substr(0, start.size()), start) << text;
  }
  const Judge judge("key Phone\nsearch tel, phone\n",
                    "# labels\n\nwant phone Phone\nwant phone Mobile phone\nguard card\nrelabel p.htm tel phone\n");
  EXPECT_EQ(judge.kinds.wanted.at("phone"), (std::vector<std::string>{"Phone", "Mobile phone"}));

  // A relabelled field counts as its new kind; "A OR B" takes a key of either.
  ReportPage page;
  page.fields = {{"tel", "tel", "text", "username", 1, 0, 0},
                 {"phone", "phone", "text", "username OR phone", 1, 0, 0}};
  LabelTally tally;
  TallyLabels(judge.kinds, judge.keys, "p.htm", page, tally);
  EXPECT_EQ(tally.kinds["phone"].wanted, 1);
  EXPECT_EQ(tally.kinds["phone"].scannedAnswered, 1);
  EXPECT_TRUE(tally.wrong.empty());
  EXPECT_EQ(tally.acceptedFills.size(), 1u);
}

// Every search name of the starter database, on every labelled field of the real
// pages: never a key for a field labelled as another kind or one that must stay
// empty, and nine in ten of the personal-data fields answered.
TEST(StarterDatabase, AnswersTheRealPagesRightly) {
  const Judge judge(ReadSource("resources/starter/keys.txt"), ReadSource("tools/fillreport_kinds.txt"));

  const std::string folder = std::string(QB_CORPUS_DIR) + "/duckduckgo";
  const std::vector<std::string> names = ReportPageNames(folder);
  ASSERT_EQ(names.size(), 120u) << "corpus not found under " << folder;
  LabelTally tally;
  for (const std::string& name : names) {
    ReportPage page;
    ASSERT_EQ(ReadReportPage(folder + "/" + name, judge.keys, page), ReportPageStatus::kRead) << name;
    TallyLabels(judge.kinds, judge.keys, name, page, tally);
  }
  for (const LabelledFill& fill : tally.wrong) {
    ADD_FAILURE() << fill.page << ": \"" << fill.name << "\" labelled " << fill.field.label << " gets key "
                  << fill.keyName;
  }
  EXPECT_EQ(tally.guardedFills, 0);
  EXPECT_GE(tally.total.answered * 10, tally.total.wanted * 9)
      << tally.total.answered << " of " << tally.total.wanted;
}

}  // namespace
}  // namespace qb
