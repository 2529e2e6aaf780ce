// A real main window in a fresh program folder with the pieces a scan meets: keys
// in the table and in the Keys view, stand-in browser windows with an address
// bar, a registry file, and a stand-in browser program that notes what it opened.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>
#include <commctrl.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "acquire/acquire_state.h"
#include "acquire/browser.h"
#include "acquire/document_registry.h"
#include "keys/key_table.h"
#include "scan/page_writer.h"
#include "tests/support/main_window_fixture.h"

namespace qb::test {

constexpr char kBrowserClass[] = "QbTestBrowser";
constexpr char kTestBrowserName[] = "Test Browser";

inline void StoreSetting(std::array<char, kBrowserTextSize>& field, const std::string& text) {
  field.fill('\0');
  std::strncpy(field.data(), text.c_str(), field.size() - 1);
}

// The build's path of a program, seen through Wine's drive for "/".
inline std::string WinePath(std::string path) {
  std::replace(path.begin(), path.end(), '/', '\\');
  return "Z:" + path;
}

// The rows of a dialog's list box, in order.
inline std::vector<std::string> ListBoxRows(HWND dialog, int id) {
  std::vector<std::string> rows;
  HWND list = GetDlgItem(dialog, id);
  for (LRESULT i = 0, n = SendMessageA(list, LB_GETCOUNT, 0, 0); i < n; ++i) {
    std::string text(static_cast<std::size_t>(SendMessageA(list, LB_GETTEXTLEN, i, 0)) + 1, '\0');
    SendMessageA(list, LB_GETTEXT, i, reinterpret_cast<LPARAM>(text.data()));
    rows.push_back(text.c_str());
  }
  return rows;
}

// Selects a row of a list view as a click would (the Keys view's selected row is
// the key a scan starts with).
inline void SelectKeyRow(HWND list, int row) {
  LVITEMA item{};
  item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
  item.state = LVIS_SELECTED | LVIS_FOCUSED;
  SendMessageA(list, LVM_SETITEMSTATE, row, reinterpret_cast<LPARAM>(&item));
}

// Makes the stand-in the browser that opens pages.
inline void UseStandInBrowser() {
  Settings().browserKind = kBrowserOther;
  StoreSetting(Settings().otherBrowserCaption, kTestBrowserName);
  StoreSetting(Settings().browserProgram, WinePath(QB_BROWSER_STAND_IN));
}

// A stand-in browser window titled `caption` whose address bar shows `address`.
// Without `editAddressBar` the bar is drawn by the browser, as today's browsers do.
inline HWND ShowStandInBrowserWindow(const std::string& caption, const std::string& address,
                                     bool editAddressBar = true) {
  HINSTANCE instance = GetModuleHandleA(nullptr);
  WNDCLASSA wc{};
  // Registered once per process; a test may have taken it away.
  if (!GetClassInfoA(instance, kBrowserClass, &wc)) {
    wc.lpfnWndProc = DefWindowProcA;
    wc.hInstance = instance;
    wc.lpszClassName = kBrowserClass;
    RegisterClassA(&wc);
  }
  HWND w = CreateWindowExA(0, kBrowserClass, caption.c_str(), WS_OVERLAPPEDWINDOW | WS_VISIBLE, 10, 10, 300, 120,
                           nullptr, nullptr, instance, nullptr);
  CreateWindowExA(0, "Button", "Go", WS_CHILD | WS_VISIBLE, 0, 0, 40, 20, w, nullptr, instance, nullptr);
  if (editAddressBar) {
    CreateWindowExA(0, "Edit", address.c_str(), WS_CHILD | WS_VISIBLE, 40, 0, 250, 20, w, nullptr, instance,
                    nullptr);
  }
  return w;
}

// Adds `name` as row `index` of a list view such as the Keys view.
inline void InsertKeyRow(HWND list, int index, const std::string& name) {
  LVITEMA item{};
  item.mask = LVIF_TEXT;
  item.iItem = index;
  item.pszText = const_cast<char*>(name.c_str());
  SendMessageA(list, LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item));
}

// The download dialog closes by itself, often before anyone could see it.
inline bool IsDownloadDialog(HWND window) {
  return GetDlgItem(window, IDC_DOWNLOAD_STATUS) && GetDlgItem(window, IDC_DOWNLOAD_GROUP);
}

struct AddressBar {
  std::string wanted;  // a part of the address
  HWND browser = nullptr;
  std::string text;
};

inline BOOL CALLBACK FindEdit(HWND child, LPARAM param) {
  auto* bar = reinterpret_cast<AddressBar*>(param);
  char cls[64] = {};
  GetClassNameA(child, cls, sizeof(cls));
  if (_stricmp(cls, "Edit") != 0) return TRUE;
  const std::string text = WindowText(child);
  if (text.find(bar->wanted) == std::string::npos) return TRUE;
  bar->text = text;
  return FALSE;
}

inline BOOL CALLBACK FindBrowser(HWND w, LPARAM param) {
  auto* bar = reinterpret_cast<AddressBar*>(param);
  if (!IsWindowVisible(w) || WindowText(w).find("Internet Explorer") == std::string::npos) return TRUE;
  EnumChildWindows(w, FindEdit, param);
  if (bar->text.empty()) return TRUE;
  bar->browser = w;
  return FALSE;
}

// An Internet Explorer window whose address bar holds `wanted`, once one shows it.
inline AddressBar WaitForBrowser(const std::string& wanted, int timeoutMs) {
  AddressBar bar;
  bar.wanted = wanted;
  PumpUntil([&] {
    EnumWindows(FindBrowser, reinterpret_cast<LPARAM>(&bar));
    return bar.browser != nullptr;
  }, timeoutMs);
  return bar;
}

class ScanTest : public MainWindowTest {
 protected:
  void SetUp() override {
    MainWindowTest::SetUp();
    ASSERT_NO_FATAL_FAILURE();
    ASSERT_TRUE(Open());
    CreateDirectoryA(dir_.File("DataHtml").c_str(), nullptr);
    SetCurrentLinksFolder("");
    SharedDownloadRequest() = DownloadRequest{};
    UseStandInBrowser();
    SetBrowserWindowChoiceOption(kFirstBrowserWindow);
    EmptyTheClipboard();
  }

  void TearDown() override {
    CloseBrowsers();
    EmptyTheClipboard();
    MainWindowTest::TearDown();
  }

  // An address copied before would be offered where the browser shows none.
  void EmptyTheClipboard() {
    if (!OpenClipboard(window_)) return;
    EmptyClipboard();
    CloseClipboard();
  }

  // A stand-in browser placed just below the main window or below the previous one.
  HWND ShowBrowser(const std::string& caption, const std::string& address, bool editAddressBar = true) {
    HWND w = ShowStandInBrowserWindow(caption, address, editAddressBar);
    SetWindowPos(w, browsers_.empty() ? window_ : browsers_.back(), 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    browsers_.push_back(w);
    return w;
  }

  void CloseBrowsers() {
    for (HWND w : browsers_) DestroyWindow(w);
    browsers_.clear();
  }

  // Runs `action`, answering its windows with `steps`; false, with what went
  // wrong reported, when they were not the windows the steps expected.
  bool Run(const std::function<void()>& action, std::vector<ModalStep> steps, ModalOptions options = {}) {
    options.passOver = IsDownloadDialog;
    result_ = RunModal(action, std::move(steps), options);
    if (!result_.ok()) ADD_FAILURE() << result_.Describe();
    return result_.ok();
  }
  bool RunCommand(WORD id, std::vector<ModalStep> steps) { return Run([&] { Command(id); }, std::move(steps)); }
  std::string Message(std::size_t i = 0) const { return result_.seen.at(i).MessageText(); }

  // A key at the end of the table; it is also a row of the Keys view.
  int AddKey(const std::string& name, const std::string& searchNames, const std::string& selection,
             const std::string& description) {
    const int index = Keys().count++;
    const std::string texts[kKeyFieldCount] = {name, searchNames, selection, description};
    for (int f = 0; f < kKeyFieldCount; ++f) SetKeyField(Keys(), index, static_cast<KeyField>(f), texts[f]);
    SetDatabaseChanged(false);
    InsertKeyRow(App().keysView, index, name);
    return index;
  }

  std::string Saved(const std::string& name) const { return dir_.File("DataHtml\\" + name); }

  // A page saved in DataHtml, recorded under `url` unless that is empty.
  std::string SavePage(const std::string& name, const std::string& html, const std::string& url = "") {
    const std::string path = Saved(name);
    WriteText(path, html);
    if (!url.empty()) registry_ += url + "\r\n" + path + "\r\n";
    WriteText(dir_.File(kRegistryFileName), std::string(kRegistryHeader) + "\r\n" + registry_);
    return path;
  }

  std::string FilledPage() const { return ReadText(dir_.File("QuellbarrowTemproaryFile.htm")); }
  bool FilledPageWritten() const { return FileExists(dir_.File("QuellbarrowTemproaryFile.htm")); }

  // What the stand-in browser was asked to open, one line per start, once it has
  // written it.
  std::string Opened() {
    const std::string file = dir_.File("opened.txt");
    PumpUntil([&] { return FileExists(file) && !ReadText(file).empty(); }, 10000);
    return FileExists(file) ? ReadText(file) : std::string();
  }

  std::vector<HWND> browsers_;
  std::string registry_;
  ModalResult result_;
};

}  // namespace qb::test
