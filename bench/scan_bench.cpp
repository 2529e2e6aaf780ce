// The whole "Scan HTML" under Wine, from the command to the filled page written:
// the program's main window with the sample keys, a browser window whose address
// bar holds URL, the page downloaded through the real dialog from a loopback
// server; no prompts (every scan option Never). Beside it, on the same page, the
// download dialog alone and the fill of the saved page alone (what fillpage runs,
// without Wine's process start).
//   scan_bench URL KEYS RUNS       (bench/scan_timing.sh runs it)
#include <windows.h>
#include <commctrl.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "acquire/acquire_state.h"
#include "acquire/browser.h"
#include "acquire/download_dialog.h"
#include "app/frame.h"
#include "base/app_state.h"
#include "keys/key_file.h"
#include "keys/key_text.h"
#include "resources/resource.h"
#include "scan/page_writer.h"
#include "scan/saved_page_fill.h"

namespace {

constexpr char kBrowserCaption[] = "Bench Browser";
constexpr DWORD kBrowserEndMs = 1500;

double Milliseconds(LARGE_INTEGER from, LARGE_INTEGER to) {
  LARGE_INTEGER frequency;
  QueryPerformanceFrequency(&frequency);
  return 1000.0 * static_cast<double>(to.QuadPart - from.QuadPart) / static_cast<double>(frequency.QuadPart);
}

template <typename F>
double TimeIt(F f) {
  LARGE_INTEGER start, stop;
  QueryPerformanceCounter(&start);
  f();
  QueryPerformanceCounter(&stop);
  return Milliseconds(start, stop);
}

std::uint64_t Ticks(FILETIME t) { return (std::uint64_t{t.dwHighDateTime} << 32) | t.dwLowDateTime; }

// 100-ns ticks of the file's last write.
std::uint64_t WrittenAt(const std::string& path) {
  WIN32_FILE_ATTRIBUTE_DATA data{};
  GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data);
  return Ticks(data.ftLastWriteTime);
}

double Median(std::vector<double> v) {
  std::sort(v.begin(), v.end());
  return v[v.size() / 2];
}

void Store(std::array<char, qb::kBrowserTextSize>& field, const std::string& text) {
  field.fill('\0');
  text.copy(field.data(), field.size() - 1);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: scan_bench URL KEYS RUNS\n");
    return 2;
  }
  const std::string url = argv[1];
  const int runs = std::max(1, std::atoi(argv[3]));
  char temp[MAX_PATH];
  GetTempPathA(MAX_PATH, temp);
  const std::string dir = std::string(temp) + "qb_scan_bench";
  CreateDirectoryA(dir.c_str(), nullptr);
  CreateDirectoryA((dir + "\\DataHtml").c_str(), nullptr);

  HINSTANCE instance = GetModuleHandleA(nullptr);
  qb::App().instance = instance;
  qb::SetProgramDirectory(dir);
  if (!qb::RegisterMainClass(instance) || !qb::RegisterBarClasses(instance)) return 1;
  HWND main = qb::CreateMainWindow(instance, SW_SHOWNORMAL);
  if (!main) return 1;

  std::ifstream keyFile(argv[2], std::ios::binary);
  std::string error;
  if (!qb::ParseKeyText(std::string(std::istreambuf_iterator<char>(keyFile), {}), qb::Keys(), error)) {
    std::fprintf(stderr, "scan_bench: %s\n", error.c_str());
    return 1;
  }
  for (int k = 0; k < qb::KeysInUse(qb::Keys()); ++k) {
    std::string name = qb::KeyFieldText(qb::Keys(), k, qb::kName);
    LVITEMA item{};
    item.mask = LVIF_TEXT;
    item.iItem = k;
    item.pszText = name.data();
    SendMessageA(qb::App().keysView, LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item));
  }
  LVITEMA selected{};
  selected.stateMask = selected.state = LVIS_SELECTED;
  SendMessageA(qb::App().keysView, LVM_SETITEMSTATE, 0, reinterpret_cast<LPARAM>(&selected));

  // The browser: a window of ours; the filled page "opens" in this program, which
  // ends at once on a wrong command line.
  WNDCLASSA wc{};
  wc.lpfnWndProc = DefWindowProcA;
  wc.hInstance = instance;
  wc.lpszClassName = "QbBenchBrowser";
  RegisterClassA(&wc);
  HWND browser = CreateWindowExA(0, wc.lpszClassName, kBrowserCaption, WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 300,
                                 100, nullptr, nullptr, instance, nullptr);
  CreateWindowExA(0, "Edit", url.c_str(), WS_CHILD | WS_VISIBLE, 0, 0, 280, 20, browser, nullptr, instance, nullptr);
  SetWindowPos(browser, main, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
  char self[MAX_PATH];
  GetModuleFileNameA(nullptr, self, MAX_PATH);
  qb::AppSettings& settings = qb::Settings();
  settings.browserKind = qb::kBrowserOther;
  Store(settings.otherBrowserCaption, kBrowserCaption);
  Store(settings.browserProgram, self);
  qb::SetBrowserWindowChoiceOption(qb::kFirstBrowserWindow);

  const std::string filled = dir + qb::kFilledPageName;
  const std::string registry = dir + "\\" + qb::kRegistryFileName;
  std::vector<double> toWritten, whole, download, fill;
  // The scans first: the browser each one starts (this program, ending at once)
  // is given time to end before the next measurement, so it takes no CPU from it.
  for (int run = 0; run < runs; ++run) {
    DeleteFileA(registry.c_str());  // a known address would be asked about
    DeleteFileA(filled.c_str());
    FILETIME start;
    GetSystemTimeAsFileTime(&start);
    whole.push_back(TimeIt([&] { SendMessageA(main, WM_COMMAND, MAKEWPARAM(IDM_SCAN_HTML, 0), 0); }));
    toWritten.push_back(static_cast<double>(WrittenAt(filled) - Ticks(start)) / 10000.0);
    Sleep(kBrowserEndMs);
  }
  const std::string saved = qb::SharedDownloadRequest().localFile;
  const std::string address(qb::StripScheme(url).value_or(""));
  for (int run = 0; run < runs; ++run) {
    if (qb::PreparePageDownload(url) != qb::PrepareStatus::kReady) return 1;
    download.push_back(TimeIt([] { qb::DownloadPage(); }));
  }
  qb::SavedPageFill job;
  job.page = saved;
  job.address = address;
  job.keys = dir + "\\bench.dat";
  job.out = dir + "\\fillpage-out.htm";
  job.currentKey = 0;
  if (!qb::SaveDatabase(job.keys, qb::Keys())) return 1;
  for (int run = 0; run < runs; ++run) {
    qb::KeyTable copy;
    std::string request;
    fill.push_back(TimeIt([&] { qb::FillSavedPage(job, copy, request); }));
    qb::ClearAllKeys(copy);
  }
  WIN32_FILE_ATTRIBUTE_DATA page{};
  GetFileAttributesExA(saved.c_str(), GetFileExInfoStandard, &page);
  std::printf("page %s: saved %lu bytes, filled page %s\n", url.c_str(), page.nFileSizeLow, filled.c_str());
  std::printf("median of %d runs: command to filled page written %.1f ms (whole command %.1f ms); "
              "download dialog alone %.1f ms; fill of the saved page alone %.1f ms\n",
              runs, Median(toWritten), Median(whole), Median(download), Median(fill));
  DestroyWindow(browser);
  DestroyWindow(main);
  return 0;
}
