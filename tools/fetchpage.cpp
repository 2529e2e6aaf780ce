// fetchpage: one transfer through the program's own download dialog, for tools
// and tests that need a page fetched exactly as a scan fetches it.
//
//   fetchpage URL FOLDER
//       Prepares the download of URL as a scan does (the local file is named in
//       FOLDER), runs the GET dialog, prints the local file's path on stdout.
//   fetchpage --post HOST REQUEST FOLDER
//       Sends REQUEST ("POST /cgi/a?x=1") to HOST through the POST dialog with
//       FOLDER as the program folder: the response lands in its datahtml folder.
//
// Both print the dialog's last status text on stderr. Exit status: 0 when the
// dialog ran (whatever the transfer did), 2 when it could not be started.
#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <string>
#include <string_view>

#include "acquire/acquire_state.h"
#include "acquire/download_dialog.h"
#include "app/frame.h"
#include "base/app_state.h"

namespace {

constexpr int kDialogRan = 0;
constexpr int kNotStarted = 2;

int Fail(const std::string& message) {
  std::fprintf(stderr, "fetchpage: %s\n", message.c_str());
  return kNotStarted;
}

std::string WithBackslash(std::string folder) {
  if (folder.empty() || folder.back() != '\\') folder += '\\';
  return folder;
}

int FetchPage(const std::string& url, const std::string& folder) {
  qb::SetProgramDirectory(qb::FindProgramDirectory());
  qb::App().dataHtmlDir = qb::App().programDir + qb::kDataHtmlFolder;
  qb::SetCurrentLinksFolder(WithBackslash(folder));
  const qb::PrepareStatus status = qb::PreparePageDownload(url);
  if (status == qb::PrepareStatus::kNotWebAddress)
    return Fail("not a web address (http://, https:// or www.): " + url);
  if (status != qb::PrepareStatus::kReady) return Fail(qb::DescribePrepareStatus(status));
  qb::DownloadPage();
  std::printf("%s\n", qb::SharedDownloadRequest().localFile.c_str());
  std::fprintf(stderr, "%s\n", qb::LastDownloadStatus().c_str());
  return kDialogRan;
}

int PostForm(const std::string& host, const std::string& request, std::string folder) {
  if (host.size() > qb::kHostMax) return Fail("the host name is too long");
  if (request.size() > qb::kRequestTextMax) return Fail("the request is too long");
  while (!folder.empty() && folder.back() == '\\') folder.pop_back();
  qb::SetProgramDirectory(folder);
  qb::SharedDownloadRequest().host = host;
  qb::SharedRequestText() = request;
  qb::PostRequest();
  std::fprintf(stderr, "%s\n", qb::LastDownloadStatus().c_str());
  return kDialogRan;
}

}  // namespace

int main(int argc, char** argv) {
  // Exact bytes on both streams: the status text carries its own CR LF.
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stderr), _O_BINARY);
  qb::App().instance = GetModuleHandleA(nullptr);
  if (argc == 3 && std::string_view(argv[1]) != "--post") return FetchPage(argv[1], argv[2]);
  if (argc == 5 && std::string_view(argv[1]) == "--post") return PostForm(argv[2], argv[3], argv[4]);
  return Fail("usage: fetchpage URL FOLDER | fetchpage --post HOST REQUEST FOLDER");
}
