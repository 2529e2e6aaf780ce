// "Scan Manual" through the main window: the site folder confirmed, a page picked in
// the file dialog, copied into DataHtml unless it lies there already, recorded under
// the site and scanned; and the ways it ends early.
#include "acquire/manual_scan.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "acquire/browser.h"
#include "tests/scan/scan_fixture.h"

namespace qb::test {
namespace {

const std::string kMailPage =
    "<html><body><form method=\"post\" action=\"/cgi/mail\">\n"
    "Mail <input type=\"text\" name=\"email\">\n"
    "<input type=\"submit\"></form></body></html>\n";

class ManualScan : public ScanTest {
 protected:
  void SetUp() override {
    ScanTest::SetUp();
    ASSERT_NO_FATAL_FAILURE();
    // The Keys view's selected key fills the text fields.
    SelectKeyRow(App().keysView, AddKey("Mail", "email", "", "me@example.com"));
    SavePage("other.htm", kMailPage, "www.example.com/other.htm");  // the registry exists
  }

  // A page outside the program folder's DataHtml.
  std::string PageElsewhere(const std::string& name) {
    CreateDirectoryA(dir_.File("Picked").c_str(), nullptr);
    const std::string path = dir_.File("Picked\\" + name);
    WriteText(path, kMailPage);
    return path;
  }

  bool FilledWithMail() const { return FilledPage().find("value=\"me@example.com\"") != std::string::npos; }
};

// A page from elsewhere is copied into DataHtml; one in any folder under DataHtml
// is recorded where it lies.
TEST_F(ManualScan, SiteFolderIsConfirmedThePageCopiedRecordedAndScanned) {
  ShowBrowser("Shop - Test Browser", "http://www.example.com/shop/");
  const std::string chosen = PageElsewhere("order.htm");
  ASSERT_TRUE(RunCommand(IDM_SCAN_MANUAL, {Press("Yes"), ChooseFile(chosen)}));
  ASSERT_EQ(result_.seen.size(), 2u);
  EXPECT_EQ(result_.seen[0].caption, "Confirmation");
  EXPECT_EQ(Message(), "This is a site URL to an HTML document:\nhttp://www.example.com/shop/ ?");
  EXPECT_EQ(result_.seen[1].caption, kAddDocumentTitle);
  const std::string copy = Saved("order.htm");
  EXPECT_EQ(ReadText(copy), kMailPage);
  EXPECT_TRUE(FileExists(chosen));
  EXPECT_EQ(ProgramRegistry().FindUrlForFile(copy), std::optional<std::string>("www.example.com/shop/order.htm"));
  EXPECT_TRUE(FilledWithMail()) << FilledPage();
  EXPECT_EQ(Opened(), dir_.File("QuellbarrowTemproaryFile.htm") + "\r\n");

  CreateDirectoryA(Saved("Shops").c_str(), nullptr);
  const std::string inside = Saved("Shops\\inside.htm");
  WriteText(inside, kMailPage);
  DeleteFileA(dir_.File("QuellbarrowTemproaryFile.htm").c_str());
  CloseBrowsers();
  ShowBrowser("Forms - Test Browser", "www.example.com/forms/");
  ASSERT_TRUE(RunCommand(IDM_SCAN_MANUAL, {Press("Yes"), ChooseFile(inside)}));
  EXPECT_FALSE(FileExists(Saved("inside.htm")));
  EXPECT_EQ(ProgramRegistry().FindUrlForFile(inside), std::optional<std::string>("www.example.com/forms/inside.htm"));
  EXPECT_TRUE(FilledWithMail()) << FilledPage();
}

// Each row: the address the browser shows (none: no browser window), the answers,
// and the last message seen. Nothing is recorded on any of these roads.
TEST_F(ManualScan, RoadsThatEndWithoutARecord) {
  const std::string chosen = PageElsewhere("form.htm");
  const struct {
    const char* address;
    std::vector<ModalStep> steps;
    std::string lastMessage;
  } rows[] = {
      // No address captured: the hand-typed address is requested under a name
      // that has no template, so only the browser message shows.
      {nullptr, {Press("OK")}, kNoBrowserWindowText},
      {"http://www.example.com/a/form.htm", {Press("No")}, "This is a site URL to an HTML document:\nh ?"},
      {"http://www.example.com/shop/", {Press("Yes"), Press("Cancel")}, ""},
      // Confirmed as cut down, the address is no address: the scan reports it.
      {"http://www.example.com/a/form.htm", {Press("Yes"), ChooseFile(chosen), Press("OK")},
       "Can not open a file from the location:\nh/form.htm"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.address ? row.address : "no browser");
    CloseBrowsers();
    if (row.address) ShowBrowser("Page - Test Browser", row.address);
    ASSERT_TRUE(RunCommand(IDM_SCAN_MANUAL, row.steps));
    if (!row.lastMessage.empty()) {
      EXPECT_EQ(result_.seen.back().MessageText(), row.lastMessage);
    }
    EXPECT_EQ(ProgramRegistry().FindUrlForFile(Saved("form.htm")), std::nullopt);
    EXPECT_FALSE(FilledPageWritten());
  }
}

}  // namespace
}  // namespace qb::test
