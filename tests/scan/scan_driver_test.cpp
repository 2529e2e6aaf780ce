// "Scan HTML" through the main window's command table: the address read from a
// browser window, the download through the real dialog from a loopback server, the
// statistics box, the failures, the registry entry and the browser opened on the
// filled page (a stand-in program that notes what it was asked to open).
#include "scan/scan_driver.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "acquire/browser.h"
#include "acquire/http_request.h"
#include "acquire/transport.h"
#include "tests/scan/scan_fixture.h"
#include "tests/support/loopback_server.h"

namespace qb::test {
namespace {

const std::string kOrderPage =
    "<html><body><form method=\"post\" action=\"/cgi/order\">\n"
    "Mail <input type=\"text\" name=\"email\">\n"
    "Nick <input type=\"text\" name=\"nick\" value=\"own\">\n"
    "<input type=\"submit\" value=\"Send\"></form></body></html>\n";
const std::string kMailFilled = "name=\"email\" value=\"me@example.com\" >";

std::string Http(const std::string& body) { return "HTTP/1.0 200 OK\r\n\r\n" + body; }

constexpr int kStallSlackSeconds = 15;

// The selection dialog's rows, then Cancel.
ModalStep ReadRowsAndCancel(std::vector<std::string>& rows) {
  return Custom([&rows](HWND dialog, const WindowSnapshot&) {
    rows = ListBoxRows(dialog, IDC_SELECT_BROWSER_LIST);
    ClickButton(dialog, IDCANCEL);
  });
}

class ScanHtmlCommand : public ScanTest {
 protected:
  // Serves `reply` on port 80 for what follows, in place of the server before.
  void Serve(LoopbackReply reply) {
    server_.reset();
    server_ = std::make_unique<LoopbackServer>(std::move(reply));
    ASSERT_TRUE(server_->listening()) << server_->error();
  }
  std::size_t Requests() const { return server_->Requests().size(); }

  // The key the filled page must carry, selected in the Keys view.
  void SelectMailKey() { SelectKeyRow(App().keysView, AddKey("Mail", "email", "", "me@example.com")); }

  // The browser shows only `address`.
  void Show(const std::string& address, bool editAddressBar = true) {
    CloseBrowsers();
    ShowBrowser("Page - Test Browser", address, editAddressBar);
  }

  // Copied as a browser copies: Unicode text.
  void Copy(const std::string& text) {
    ASSERT_TRUE(OpenClipboard(window_));
    EmptyClipboard();
    const int size = MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, nullptr, 0);
    HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, static_cast<SIZE_T>(size) * sizeof(wchar_t));
    MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, static_cast<wchar_t*>(GlobalLock(block)), size);
    GlobalUnlock(block);
    SetClipboardData(CF_UNICODETEXT, block);
    CloseClipboard();
  }

  // Runs `command` once the filled page of the scan before is gone.
  bool Scan(WORD command, std::vector<ModalStep> steps) {
    DeleteFileA(dir_.File("QuellbarrowTemproaryFile.htm").c_str());
    return RunCommand(command, std::move(steps));
  }

  std::unique_ptr<LoopbackServer> server_;
};

// The saved page keeps its server's header, whose Content-Type names the
// encoding: the key's text goes in as UTF-8. The question before the second
// download names the file the registry holds for the address.
TEST_F(ScanHtmlCommand, DownloadsFillsRecordsOpensAndAsksBeforeDownloadingAgain) {
  ASSERT_NO_FATAL_FAILURE(Serve({{"HTTP/1.0 200 OK\r\nContent-Type: text/html; charset=UTF-8\r\n\r\n" + kOrderPage}}));
  SelectKeyRow(App().keysView, AddKey("Mail", "email", "", "m\xFC@example.com"));
  Show("http://127.0.0.1/shop/order.asp?item=7");
  SavePage("other.htm", kOrderPage, "www.example.com/other.htm");  // the registry exists
  ASSERT_TRUE(Scan(IDM_SCAN_HTML, {}));
  const std::string saved = Saved("127.0.0.1.order.asp.htm");
  const std::string page = FilledPage();
  EXPECT_NE(page.find("<form action=\"http://127.0.0.1/cgi/order\" method=post >"), std::string::npos) << page;
  EXPECT_NE(page.find("name=\"email\" value=\"m\xC3\xBC@example.com\" >"), std::string::npos) << page;
  EXPECT_EQ(Opened(), dir_.File("QuellbarrowTemproaryFile.htm") + "\r\n");

  // Known now: the next scan asks before downloading again.
  ASSERT_TRUE(Scan(IDM_SCAN_HTML, {Press("No")}));
  EXPECT_EQ(Message(), "URL: http://127.0.0.1/shop/order.asp?item=7\nFILE: " + saved +
                           "\n\nThis site URL allready exist in ConfigHtml.cfg file.\n"
                           "Do you want to download an HTML document again ?");
  EXPECT_FALSE(FilledPageWritten());
  ASSERT_TRUE(Scan(IDM_SCAN_HTML, {Press("Yes")}));
  EXPECT_EQ(Requests(), 2u);
  EXPECT_TRUE(FilledPageWritten());
}

// A server that accepts and never answers: the scan ends after the stall limit
// as a failed download does, and the keys stay as they were.
TEST_F(ScanHtmlCommand, SilentServerIsGivenUpAfterTheStallLimit) {
  LoopbackReply silent;
  silent.silent = true;
  ASSERT_NO_FATAL_FAILURE(Serve(silent));
  SelectMailKey();
  Show("http://127.0.0.1/slow.htm");
  const DWORD start = GetTickCount();
  DWORD told = 0;
  const auto noteTime = [&](HWND box, const WindowSnapshot&) {
    told = GetTickCount();
    ClickButton(box, IDOK);
  };
  ModalOptions options;
  options.stepTimeoutMs = (kStallLimitSeconds + kStallSlackSeconds) * 1000;
  ASSERT_TRUE(Run([&] { Command(IDM_SCAN_HTML); }, {Custom(noteTime)}, options));
  EXPECT_EQ(Message(), kNoFormText);
  EXPECT_GE(told - start, static_cast<DWORD>(kStallLimitSeconds * 1000));
  EXPECT_FALSE(FileExists(Saved("127.0.0.1.slow.htm.htm")));
  EXPECT_EQ(KeyFieldText(Keys(), 0, kDescription), "me@example.com");
  EXPECT_FALSE(DatabaseChanged());
}

// Each row: what the browser shows (or no browser) or the clipboard holds, and the
// one box the scan ends with. A downloaded page without a POST form is not kept,
// and a host that would step out of DataHtml writes nothing outside it.
TEST_F(ScanHtmlCommand, AddressesThatCannotBeScannedEndInOneMessage) {
  ASSERT_NO_FATAL_FAILURE(Serve({{Http("<html><form method=\"get\" action=\"/s\"><input name=\"q\"></form></html>")}}));
  CreateDirectoryA(dir_.File("outside").c_str(), nullptr);
  WriteText(dir_.File("outside\\host.index.htm.htm"), "kept");
  const std::string unsaved = SavePage("unsaved.htm", kOrderPage);
  const std::string missing = dir_.File("nowhere\\page.htm");
  struct Row {
    const char* what;
    WORD command;
    bool browser;
    std::string address, message, caption;  // the address: copied for "Scan Address from Clipboard"
  } rows[] = {
      {"no browser window", IDM_SCAN_HTML, false, "", kNoBrowserWindowText, "Quellbarrow"},
      {"empty address bar", IDM_SCAN_HTML, true, "", kNoLinkText, "Error"},
      {"local file that is not there", IDM_SCAN_HTML, true, missing,
       "Can not open a file from the location:\n" + missing, "Error"},
      {"local file not in the registry", IDM_SCAN_HTML, true, unsaved, kNotSavedByProgramText, "Error"},
      {"page with only GET forms", IDM_SCAN_HTML, true, "http://127.0.0.1/search.htm", kNoFormText, "Error"},
      // Unresolvable: an empty page without a form, removed again.
      {"host outside DataHtml", IDM_SCAN_HTML, true, "http://..\\outside\\host/", kNoFormText, "Error"},
      {"device name", IDM_SCAN_HTML, true, "http://con/", DescribePrepareStatus(PrepareStatus::kDeviceName), "Error"},
      // Which texts are addresses is the parser's own test.
      {"clipboard without an address", IDM_SCAN_CLIPBOARD, false, "", kNoClipboardAddressText, "Quellbarrow"},
      {"clipboard address too long", IDM_SCAN_CLIPBOARD, false,
       "http://127.0.0.1/a.htm?q=" + std::string(kUrlTextMax - 24, 'x'),
       DescribePrepareStatus(PrepareStatus::kUrlTooLong), "Error"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    CloseBrowsers();
    if (row.command == IDM_SCAN_CLIPBOARD) Copy(row.address);
    if (row.browser) Show(row.address);
    ASSERT_TRUE(RunCommand(row.command, {Press("OK")}));
    EXPECT_EQ(Message(), row.message);
    EXPECT_EQ(result_.seen.at(0).caption, row.caption);
    EXPECT_FALSE(FilledPageWritten());
  }
  EXPECT_FALSE(FileExists(Saved("127.0.0.1.search.htm.htm")));
  EXPECT_EQ(ProgramRegistry().FindUrlForFile(Saved("127.0.0.1.search.htm.htm")), std::nullopt);
  EXPECT_EQ(ReadText(dir_.File("outside\\host.index.htm.htm")), "kept");
  // Named by the caller, a page the registry does not know is filled; relative
  // actions then have no host to go to.
  ASSERT_TRUE(Run([&] { ScanSavedDocument(unsaved, false); }, {}));
  EXPECT_NE(FilledPage().find("action=\"http:///cgi/order\""), std::string::npos) << FilledPage();
}

// The browser's window belongs to another process whose thread stops pumping:
// its address bar cannot answer, and the scan must not wait for it.
TEST_F(ScanHtmlCommand, HungBrowserCountsAsAnEmptyAddress) {
  HANDLE ready = CreateEventA(nullptr, TRUE, FALSE, "QbHungBrowserReady");
  HANDLE stop = CreateEventA(nullptr, TRUE, FALSE, "QbHungBrowserStop");
  std::string command = "\"" + WinePath(QB_HUNG_BROWSER) + "\" QbHungBrowserReady QbHungBrowserStop";
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  ASSERT_TRUE(CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                             &process));
  ASSERT_EQ(WaitForSingleObject(ready, 20000), WAIT_OBJECT_0);
  constexpr DWORD kFewSecondsMs = 8000;
  const DWORD start = GetTickCount();
  const bool ran = Scan(IDM_SCAN_HTML, {Press("OK")});
  const DWORD elapsed = GetTickCount() - start;
  SetEvent(stop);
  WaitForSingleObject(process.hProcess, 20000);
  for (HANDLE h : {process.hProcess, process.hThread, ready, stop}) CloseHandle(h);
  ASSERT_TRUE(ran);
  EXPECT_EQ(Message(), kNoLinkText);
  EXPECT_LT(elapsed, kFewSecondsMs);
}

// Two forms of 3 and 5 fields: each figure counts the FORM tag too.
TEST_F(ScanHtmlCommand, StatisticsBoxCountsFormsFieldsAndScripts) {
  Settings().formStatistics = 1;
  const std::string path = SavePage("stats.htm",
                                    "<html><script>var a;</script><form method=post action=/a>"
                                    "<input name=a1><input name=a2><input type=submit></form>"
                                    "<form method=post action=/b><input name=b1><input name=b2>"
                                    "<input type=checkbox name=b3><textarea name=b4></textarea>"
                                    "<input type=submit></form></html>",
                                    "www.example.com/stats.htm");
  ASSERT_TRUE(Run([&] { ScanSavedDocument(path, false); }, {Press("OK")}));
  EXPECT_EQ(result_.seen.at(0).caption, "Quellbarrow");
  EXPECT_EQ(Message(), "Total Forms:                     2\nTotal fields in Form1:        4\n"
                       "Total fields in Form2:        6\nTotal Scripts(VB, Java):    1");
  EXPECT_NE(FilledPage().find("action=\"http://www.example.com/a\""), std::string::npos);
}

// Direct post: no prompt (although every option asks), the pairs posted through
// the dialog instead of a page opened, and nothing recorded.
TEST_F(ScanHtmlCommand, DirectPostSendsThePairsInsteadOfOpeningThePage) {
  CreateDirectoryA(dir_.File("datahtml").c_str(), nullptr);
  ASSERT_NO_FATAL_FAILURE(Serve({{Http("<html>Thank you</html>")}}));
  Settings().askForSelect.fill(kAskAllways);
  SelectMailKey();
  const std::string path = SavePage("order.htm", kOrderPage, "127.0.0.1/shop/order.asp");
  ASSERT_TRUE(Run([&] { ScanHtml(kScanSavedDocument, path, true, false, true); }, {}));
  const std::vector<std::string> requests = server_->Requests();
  ASSERT_EQ(requests.size(), 1u);
  const std::string line = "POST http://127.0.0.1/cgi/order?email=me%40example.com&nick=own";
  EXPECT_EQ(requests[0].substr(0, line.size()), line) << requests[0];
  EXPECT_TRUE(FileExists(dir_.File("datahtml\\ReciveData.htm")));
  EXPECT_FALSE(FileExists(dir_.File("opened.txt")));
}

// From a program folder with blanks in its path, the browser gets the filled page
// as one argument.
TEST_F(ScanHtmlCommand, BrowserGetsTheFilledPageAsOneArgumentFromAFolderWithBlanks) {
  const std::string program = dir_.File("Program Files");
  CreateDirectoryA(program.c_str(), nullptr);
  CreateDirectoryA((program + "\\DataHtml").c_str(), nullptr);
  SetProgramDirectory(program);
  const std::string saved = program + "\\DataHtml\\my order.htm";
  WriteText(saved, kOrderPage);
  WriteText(program + "\\" + kRegistryFileName,
            std::string(kRegistryHeader) + "\r\nwww.example.com/my order.htm\r\n" + saved + "\r\n");
  const std::string opened = program + "\\opened.txt";
  EXPECT_TRUE(Run([&] { ScanSavedDocument(saved, false); }, {}));
  EXPECT_TRUE(PumpUntil([&] { return FileExists(opened) && !ReadText(opened).empty(); }, 10000));
  SetProgramDirectory(dir_.path());
  EXPECT_EQ(ReadText(opened), program + "\\QuellbarrowTemproaryFile.htm\r\n");
}

// Browser capture: every window whose caption holds the other browser's text (in
// any case, once per occurrence), topmost first, and the choice among them.
TEST_F(ScanHtmlCommand, SelectionListsEveryBrowserWindowTopmostFirst) {
  StoreSetting(Settings().otherBrowserCaption, "Opera");
  SetBrowserWindowChoiceOption(kPromptForBrowserWindow);
  ShowBrowser("Page - opera", "http://127.0.0.1/p.htm");
  ShowBrowser("Opera - OPERA", "www.example.com/twice.htm");
  ShowBrowser("Operetta", "http://127.0.0.1/not.htm");
  std::vector<std::string> rows;
  ASSERT_TRUE(Scan(IDM_SCAN_HTML, {ReadRowsAndCancel(rows)}));
  EXPECT_EQ(result_.seen.at(0).caption, "Quellbarrow - Select an Internet browser");
  EXPECT_EQ(rows, (std::vector<std::string>{"http://127.0.0.1/p.htm", "www.example.com/twice.htm",
                                            "www.example.com/twice.htm"}));
  EXPECT_FALSE(FilledPageWritten());

  // OK without a row keeps the dialog open after the message.
  const auto unselectAndOk = [](HWND dialog, const WindowSnapshot&) {
    SendDlgItemMessageA(dialog, IDC_SELECT_BROWSER_LIST, LB_SETCURSEL, static_cast<WPARAM>(-1), 0);
    ClickButton(dialog, IDOK);
  };
  ASSERT_TRUE(Scan(IDM_SCAN_HTML, {Custom(unselectAndOk), Press("OK"), Again(Press("Cancel"))}));
  EXPECT_EQ(Message(1), kSelectLinkText);
  EXPECT_EQ(result_.seen.at(1).caption, "Error");
}

// An address copied in a browser whose address bar is none of Windows' edit
// controls: "Scan Address from Clipboard", and the offer of "Scan HTML".
TEST_F(ScanHtmlCommand, CopiedWebAddressIsDownloadedAndFilled) {
  SelectMailKey();
  SavePage("other.htm", kOrderPage, "www.example.com/other.htm");  // the registry exists
  const struct {
    const char* what;
    bool browser;
    WORD command;
    std::string address;
    std::vector<ModalStep> steps;
  } rows[] = {
      {"the command, an address at the length limit", true, IDM_SCAN_CLIPBOARD,
       "http://127.0.0.1/a.htm?q=" + std::string(kUrlTextMax - 25, 'x'), {}},
      {"the offer, browser without an edit", true, IDM_SCAN_HTML, "http://127.0.0.1/two.asp", {Press("Yes")}},
      {"the offer, no browser window", false, IDM_SCAN_HTML, "http://127.0.0.1/three.asp", {Press("Yes")}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    CloseBrowsers();
    if (row.browser) Show("", false);
    Copy("  " + row.address + " \r\nsecond line");
    ASSERT_NO_FATAL_FAILURE(Serve({{Http(kOrderPage)}}));
    ASSERT_TRUE(Scan(row.command, row.steps));
    if (!row.steps.empty()) {
      EXPECT_EQ(Message(), std::string(kOfferClipboardText) + "\n\n" + row.address);
      EXPECT_EQ(result_.seen.at(0).caption, "Quellbarrow");
    }
    EXPECT_EQ(Requests(), 1u);
    EXPECT_NE(FilledPage().find(kMailFilled), std::string::npos) << FilledPage();
    const std::string schemeless(*StripScheme(row.address));
    EXPECT_TRUE(ProgramRegistry().FindFileForUrl(schemeless)) << schemeless;
  }

  // Declined, the scan ends as it did before the clipboard was asked.
  Copy("http://127.0.0.1/four.asp");
  ASSERT_TRUE(Scan(IDM_SCAN_HTML, {Press("No"), Press("OK")}));
  EXPECT_EQ(Message(1), kNoBrowserWindowText);
  EXPECT_FALSE(FilledPageWritten());
}

// Saved pages by their file:/// address: from the clipboard even when the program
// did not save them, from the browser's address bar when it did.
TEST_F(ScanHtmlCommand, FileAddressNamesASavedPage) {
  SelectMailKey();
  CreateDirectoryA(Saved("My Pages").c_str(), nullptr);
  const std::string own = SavePage("My Pages\\order form.htm", kOrderPage);
  const std::string accented = SavePage("My Pages\\caf\xE9.htm", kOrderPage);
  const std::string known = SavePage("My Pages\\known page.htm", kOrderPage, "127.0.0.1/known.asp");
  const auto fileUrl = [](std::string path, const std::string& name, const std::string& escaped) {
    std::replace(path.begin(), path.end(), '\\', '/');
    path.replace(path.find(" Pages/" + name), 7 + name.size(), "%20Pages/" + escaped);
    return "file:///" + path;
  };
  const std::string ownUrl = fileUrl(own, "order form.htm", "order%20form.htm");
  const struct {
    const char* what;
    std::string address;
    bool browser;
    const char* action;
  } rows[] = {
      {"clipboard", ownUrl, false, "http:///cgi/order"},
      {"clipboard, UTF-8 escapes", fileUrl(accented, "caf\xE9.htm", "caf%C3%A9.htm"), false, "http:///cgi/order"},
      {"address bar", fileUrl(known, "known page.htm", "known%20page.htm"), true, "http://127.0.0.1/cgi/order"},
      {"address bar, a page saved elsewhere", ownUrl, true, "http:///cgi/order"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    CloseBrowsers();
    if (row.browser) Show(row.address);
    Copy(row.address);
    ASSERT_TRUE(Scan(row.browser ? IDM_SCAN_HTML : IDM_SCAN_CLIPBOARD, {}));
    EXPECT_NE(FilledPage().find(kMailFilled), std::string::npos) << FilledPage();
    EXPECT_NE(FilledPage().find(std::string("action=\"") + row.action + "\""), std::string::npos) << FilledPage();
  }
}

// The default-browser dialog through 50009: the kind changes at the click and
// Cancel keeps it; "Other" needs a title, then a program.
using DefaultBrowserDialog = ScanTest;

TEST_F(DefaultBrowserDialog, KindChangesAtTheClickAndOtherNeedsATitleThenAProgram) {
  Settings().browserKind = kBrowserExplorer;
  const auto clickNetscapeThenCancel = [](HWND dialog, const WindowSnapshot&) {
    PostMessageA(GetDlgItem(dialog, IDC_BROWSER_NETSCAPE), BM_CLICK, 0, 0);
    PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
  };
  ASSERT_TRUE(RunCommand(IDM_SELECT_BROWSER, {Custom(clickNetscapeThenCancel)}));
  const WindowSnapshot dialog = result_.seen.at(0);
  EXPECT_EQ(dialog.caption, "Quellbarrow - Default browser");
  EXPECT_EQ(dialog.Control(IDC_BROWSER_EXPLORER)->checked, BST_CHECKED);
  EXPECT_FALSE(dialog.Control(IDC_BROWSER_CAPTION)->enabled);
  EXPECT_FALSE(dialog.Control(IDC_BROWSER_BROWSE)->enabled);
  EXPECT_EQ(Settings().browserKind, kBrowserNetscape);

  Settings().browserKind = kBrowserOther;
  StoreSetting(Settings().otherBrowserCaption, "");
  StoreSetting(Settings().browserProgram, "C:\\b.exe");
  const auto typeTitle = [](const std::string& title) {
    return Custom([title](HWND dialog, const WindowSnapshot&) {
      SetControlText(dialog, IDC_BROWSER_CAPTION, title);
      ClickButton(dialog, IDOK);
    });
  };
  // The title is checked first, even with a program path set.
  ASSERT_TRUE(RunCommand(IDM_SELECT_BROWSER, {typeTitle(""), Press("OK"), Again(Press("Cancel"))}));
  EXPECT_TRUE(result_.seen.at(0).Control(IDC_BROWSER_CAPTION)->enabled);
  EXPECT_EQ(result_.seen.at(0).Control(IDC_BROWSER_PROGRAM)->text, "C:\\b.exe");
  EXPECT_EQ(Message(1), kTypeTitleText);

  StoreSetting(Settings().browserProgram, "C:\\b");
  ASSERT_TRUE(RunCommand(IDM_SELECT_BROWSER, {typeTitle("Opera"), Press("OK"), Again(Press("Cancel"))}));
  EXPECT_EQ(Message(1), kSelectProgramText);
  EXPECT_EQ(std::string(Settings().otherBrowserCaption.data()), "Opera");

  // With both, OK closes the dialog.
  StoreSetting(Settings().browserProgram, "C:\\b.exe");
  EXPECT_TRUE(RunCommand(IDM_SELECT_BROWSER, {typeTitle("Opera")}));
}

// Launching: the message when the named program cannot be started; Netscape that
// is not there gives way to Internet Explorer, which stays the kind.
TEST_F(ScanHtmlCommand, BrowserThatCannotBeStartedIsReportedAndMissingNetscapeGivesWay) {
  StoreSetting(Settings().browserProgram, dir_.File("no-such-browser.exe"));
  ASSERT_TRUE(Run([] { OpenInBrowser("C:\\page.htm"); }, {Press("OK")}));
  EXPECT_EQ(Message(), kCantOpenBrowserText);
  EXPECT_EQ(Settings().browserKind, kBrowserOther);

  Settings().browserKind = kBrowserNetscape;
  const std::string page = dir_.File("fallback.htm");
  WriteText(page, "<html><head><title>Fallback page</title></head><body>x</body></html>");
  ASSERT_TRUE(Run([&] { OpenInBrowser(page); }, {}));
  EXPECT_EQ(Settings().browserKind, kBrowserExplorer);
  const AddressBar explorer = WaitForBrowser("fallback.htm", 30000);
  ASSERT_NE(explorer.browser, nullptr);
  // Closed before the next test, whose browser windows it would stand among.
  PostMessageA(explorer.browser, WM_CLOSE, 0, 0);
  EXPECT_TRUE(PumpUntil([&] { return !IsWindow(explorer.browser); }, 30000));
}

}  // namespace
}  // namespace qb::test
