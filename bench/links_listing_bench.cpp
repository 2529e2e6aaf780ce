// Listing a large folder in the Links view, in each sort column, beside a bare
// FindFirstFile/FindNextFile walk of the same folder in the same run.
//   links_listing_bench [RUNS] [FOLDER] [PAGES]
// FOLDER (default: one under the temporary folder) is the program folder; its
// DataHtml\Big is filled with PAGES (32,000) saved pages and 500 folders when missing,
// and kept, so a second run measures without the set-up. The listing is the view's
// own RefreshLinks in a real main window: search, sort, rows inserted and drawn.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "app/frame.h"
#include "bars/dock_bar.h"
#include "base/app_state.h"
#include "links/links_view.h"

namespace {

int kPages = 32000;
constexpr int kFolders = 500;
constexpr char kFolderName[] = "Big";

double NowMs() {
  static LARGE_INTEGER frequency = [] {
    LARGE_INTEGER f;
    QueryPerformanceFrequency(&f);
    return f;
  }();
  LARGE_INTEGER now;
  QueryPerformanceCounter(&now);
  return 1000.0 * static_cast<double>(now.QuadPart) / static_cast<double>(frequency.QuadPart);
}

// Pages of a few sizes and names in no particular order, so every column sorts.
void Fill(const std::string& folder) {
  CreateDirectoryA(folder.c_str(), nullptr);
  char name[64];
  for (int i = 0; i < kFolders; ++i) {
    std::snprintf(name, sizeof name, "folder%03d", (i * 7919) % kFolders);
    CreateDirectoryA((folder + name).c_str(), nullptr);
  }
  const char* extensions[] = {"htm", "html", "asp", "php"};
  const std::string bytes(64, 'x');
  for (int i = 0; i < kPages; ++i) {
    const int n = static_cast<int>((static_cast<long long>(i) * 104729) % kPages);
    std::snprintf(name, sizeof name, "site%05d.page.%s", n, extensions[n % 4]);
    HANDLE file = CreateFileA((folder + name).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) continue;
    DWORD written = 0;
    WriteFile(file, bytes.data(), static_cast<DWORD>(n % 61), &written, nullptr);
    CloseHandle(file);
  }
}

// The listing's records alone: the search, the records and the sort, no rows.
std::size_t Records(const std::string& folder, int column) {
  qb::LinkListing listing;
  listing.Begin(true);
  WIN32_FIND_DATAA found;
  HANDLE find = FindFirstFileA((folder + "*.*").c_str(), &found);
  if (find == INVALID_HANDLE_VALUE) return 0;
  do {
    qb::FoundFile f;
    f.name = found.cFileName;
    f.attributes = found.dwFileAttributes;
    f.sizeLow = found.nFileSizeLow;
    f.sizeHigh = found.nFileSizeHigh;
    f.lastWrite = (static_cast<std::uint64_t>(found.ftLastWriteTime.dwHighDateTime) << 32) |
                  found.ftLastWriteTime.dwLowDateTime;
    if (!listing.Add(f)) break;
  } while (FindNextFileA(find, &found));
  FindClose(find);
  listing.Sort(column);
  return listing.entries().size();
}

// What a directory search alone costs: every name handed out and looked at once.
std::size_t BareWalk(const std::string& folder) {
  WIN32_FIND_DATAA found;
  HANDLE find = FindFirstFileA((folder + "*.*").c_str(), &found);
  if (find == INVALID_HANDLE_VALUE) return 0;
  std::size_t listed = 0;
  do {
    if (found.cFileName[0] != '.') ++listed;
  } while (FindNextFileA(find, &found));
  FindClose(find);
  return listed;
}

double Median(std::vector<double> v) {
  std::sort(v.begin(), v.end());
  return v[v.size() / 2];
}

}  // namespace

int main(int argc, char** argv) {
  const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5;
  if (argc > 3) kPages = std::max(1, std::atoi(argv[3]));
  std::string program;
  if (argc > 2) {
    program = argv[2];
  } else {
    char temp[MAX_PATH];
    GetTempPathA(MAX_PATH, temp);
    program = std::string(temp) + "qb_links_bench";
  }
  CreateDirectoryA(program.c_str(), nullptr);
  CreateDirectoryA((program + "\\DataHtml").c_str(), nullptr);
  const std::string big = program + "\\DataHtml\\" + kFolderName + "\\";
  if (BareWalk(big) != static_cast<std::size_t>(kPages + kFolders)) {
    const double start = NowMs();
    Fill(big);
    std::printf("filled %s in %.0f ms\n", big.c_str(), NowMs() - start);
  }

  HINSTANCE instance = GetModuleHandleA(nullptr);
  qb::App().instance = instance;
  qb::SetProgramDirectory(program);
  if (!qb::RegisterMainClass(instance) || !qb::RegisterToolBarClass(instance) ||
      !qb::RegisterDatabaseBarClass(instance))
    return 1;
  HWND main = qb::CreateMainWindow(instance, argc > 4 ? SW_HIDE : SW_SHOWNORMAL);
  if (!main) return 1;
  qb::App().linksFolder = big;

  static const char* kColumns[] = {"Name", "Ext", "Size", "Date"};
  std::printf("%d pages and %d folders, median of %d runs\n", kPages, kFolders, runs);
  std::printf("%-6s %10s %10s %10s %7s %6s\n", "column", "walk ms", "records ms", "listing ms",
              "ratio", "rows");
  double worst = 0;
  for (int column = 0; column < qb::kLinkColumns; ++column) {
    qb::LinksView().sortColumn = column;
    std::vector<double> walk, records, listing;
    std::size_t rows = 0;
    for (int r = 0; r < runs; ++r) {
      double t = NowMs();
      BareWalk(big);
      walk.push_back(NowMs() - t);
      t = NowMs();
      Records(big, column);
      records.push_back(NowMs() - t);
      t = NowMs();
      qb::RefreshLinks(big);
      listing.push_back(NowMs() - t);
      rows = static_cast<std::size_t>(SendMessageA(qb::App().linksView, LVM_GETITEMCOUNT, 0, 0));
    }
    const double ratio = Median(listing) / Median(walk);
    worst = std::max(worst, ratio);
    std::printf("%-6s %10.1f %10.1f %10.1f %7.2f %6zu\n", kColumns[column], Median(walk),
                Median(records), Median(listing), ratio, rows);
    std::fflush(stdout);
  }
  std::printf("worst ratio %.2f (limit 2.00)\n", worst);
  DestroyWindow(main);
  return worst <= 2.0 ? 0 : 2;
}
