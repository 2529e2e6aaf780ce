// The Windows half of the end-to-end scan (scan_end_to_end_test.py runs it): the
// program's real main window with the sample keys, browser kind "Other" set to
// Wine's Internet Explorer, which the driver has opened on the sample form served
// from 127.0.0.1:80, or set to a stand-in window showing the form's HTTPS address.
// "Scan HTML" is pressed, the one unmatched field's prompt is answered with the
// Phone key, and the filled page must reach the browser. Prints "FILLED <path>"
// for the driver, which submits the page.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "keys/key_text.h"
#include "scan/no_match_dialog.h"
#include "scan/scan_driver.h"
#include "scan/scan_options.h"
#include "tests/scan/scan_fixture.h"

namespace qb::test {
namespace {

constexpr char kWineBrowserCaption[] = "Wine Internet Explorer";
constexpr char kWineBrowserProgram[] = "C:\\Program Files\\Internet Explorer\\iexplore.exe";

// The sample keys in the table and the Keys view, the first selected, text fields
// prompted when unmatched.
class EndToEnd : public ScanTest {
 protected:
  void SetUp() override {
    ScanTest::SetUp();
    ASSERT_NO_FATAL_FAILURE();
    const char* keyList = std::getenv("QB_E2E_KEYS");
    address_ = std::getenv("QB_E2E_ADDRESS") ? std::getenv("QB_E2E_ADDRESS") : "";
    ASSERT_TRUE(keyList && !address_.empty()) << "run by scan_end_to_end_test.py";
    std::string error;
    ASSERT_TRUE(ParseKeyText(ReadText(keyList), Keys(), error)) << error;
    for (int k = 0; k < KeysInUse(Keys()); ++k) InsertKeyRow(App().keysView, k, KeyFieldText(Keys(), k, kName));
    SelectKeyRow(App().keysView, 0);
    Settings().askForSelect[kPromptText] = kAskUnMatched;
  }

  // "Scan HTML", the one unmatched field answered with the Phone key. The filled
  // page's path, once it was written.
  std::string Scan() {
    const int phone = FindKeyByName(Keys(), "Phone");
    EXPECT_NE(phone, kNoKey);
    std::string promptedField;
    const auto answer = Custom([&](HWND dialog, const WindowSnapshot& snap) {
      promptedField = snap.Control(IDC_NOMATCH_NAME)->text;
      SelectKeyRow(GetDlgItem(dialog, IDC_NOMATCH_KEYS), phone);
      ClickButton(dialog, IDOK);
    });
    RunCommand(IDM_SCAN_HTML, {answer});
    EXPECT_EQ(promptedField, "referrer");
    const std::string filled = dir_.File("QuellbarrowTemproaryFile.htm");
    return FileExists(filled) ? filled : std::string();
  }

  // Tells the driver where the filled page is, and waits until it has read it
  // before the folder goes.
  static void HandOver(const std::string& filled) {
    std::printf("FILLED %s\n", filled.c_str());
    std::fflush(stdout);
    const char* done = std::getenv("QB_E2E_DONE");
    if (done) PumpUntil([&] { return FileExists(done); }, 90000);
  }

  std::string address_;
};

TEST_F(EndToEnd, ScanHtmlFillsTheFormShownInWinesBrowser) {
  StoreSetting(Settings().otherBrowserCaption, kWineBrowserCaption);
  StoreSetting(Settings().browserProgram, kWineBrowserProgram);
  const AddressBar shown = WaitForBrowser(address_, 60000);
  ASSERT_NE(shown.browser, nullptr) << "no browser window shows " << address_;

  const std::string filled = Scan();
  ASSERT_FALSE(filled.empty());
  const AddressBar opened = WaitForBrowser("QuellbarrowTemproaryFile.htm", 60000);
  EXPECT_NE(opened.browser, nullptr) << "the filled page did not show in the browser";
  HandOver(filled);
  if (opened.browser) PostMessageA(opened.browser, WM_CLOSE, 0, 0);
}

// Wine's browser shows no HTTPS page: a stand-in window shows the address, and the
// stand-in browser program notes the filled page it is asked to open.
TEST_F(EndToEnd, ScanHtmlFillsAnHttpsPageShownInAStandInBrowser) {
  ShowBrowser(kTestBrowserName, address_);
  const std::string filled = Scan();
  ASSERT_FALSE(filled.empty());
  EXPECT_NE(Opened().find("QuellbarrowTemproaryFile.htm"), std::string::npos) << Opened();
  HandOver(filled);
}

}  // namespace
}  // namespace qb::test
