// Downloads one page through the real download dialog several times and prints
// the throughput of each run: bytes received over the time the dialog was open.
//   acquire_download_bench URL FOLDER RUNS
// Wine start-up is outside the measured time.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include "acquire/acquire_state.h"
#include "acquire/download_dialog.h"
#include "base/app_state.h"

namespace {

double Seconds(LARGE_INTEGER from, LARGE_INTEGER to) {
  LARGE_INTEGER frequency;
  QueryPerformanceFrequency(&frequency);
  return static_cast<double>(to.QuadPart - from.QuadPart) / static_cast<double>(frequency.QuadPart);
}

// The file was written in text mode: each line feed received gained a CR.
long long ReceivedBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  long long size = 0, lineFeeds = 0;
  for (std::istreambuf_iterator<char> it(in), end; it != end; ++it) {
    ++size;
    if (*it == '\n') ++lineFeeds;
  }
  return size - lineFeeds;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: acquire_download_bench URL FOLDER RUNS\n");
    return 2;
  }
  qb::App().instance = GetModuleHandleA(nullptr);
  std::string folder = argv[2];
  if (folder.back() != '\\') folder += '\\';
  qb::SetCurrentLinksFolder(folder);
  const int runs = std::atoi(argv[3]);
  for (int run = 1; run <= runs; ++run) {
    if (qb::PreparePageDownload(argv[1]) != qb::PrepareStatus::kReady) return 2;
    LARGE_INTEGER start, stop;
    QueryPerformanceCounter(&start);
    qb::DownloadPage();
    QueryPerformanceCounter(&stop);
    const double seconds = Seconds(start, stop);
    const long long bytes = ReceivedBytes(qb::SharedDownloadRequest().localFile);
    std::printf("dialog run %d: %lld bytes in %.3f s = %.1f MB/s\n", run, bytes, seconds,
                static_cast<double>(bytes) / seconds / 1e6);
  }
  return 0;
}
