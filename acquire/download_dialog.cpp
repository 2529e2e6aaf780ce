#include "acquire/download_dialog.h"

#include <winsock.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>

#include "acquire/acquire_state.h"
#include "base/app_state.h"
#include "base/dispatch.h"
#include "resources/resource.h"

namespace qb {
namespace {

constexpr WORD kWinsockVersion = 0x0101;

std::string& LastStatusText() {
  static std::string text;
  return text;
}

struct FileCloser {
  void operator()(std::FILE* f) const { std::fclose(f); }
};

// One transfer, from WSAStartup to the dialog's end. Every failed step leaves
// through CleanUp(), which releases whatever is still held exactly once.
class Transfer {
 public:
  explicit Transfer(HWND dialog) : dialog_(dialog) {}

  bool StartWinsock() {
    WSADATA data;
    winsock_ = WSAStartup(kWinsockVersion, &data) == 0;
    return winsock_;
  }

  // Text mode: every line feed of the response is written as CR LF.
  bool OpenOutput(const std::string& path) {
    file_.reset(std::fopen(path.c_str(), "w"));
    return file_ != nullptr;
  }

  // Connects to port 80 of `host`, sends `request` in one call and writes the
  // response into the output file. True when the server ended it normally.
  bool Exchange(const std::string& host, const std::string& shownPath, const std::string& request) {
    status_.Append("Connecting to: ");
    status_.Append(host);
    status_.Append(shownPath);
    status_.Append("\r\n");
    Show();
    socket_ = socket(AF_INET, SOCK_STREAM, 0);
    if (socket_ == INVALID_SOCKET) return false;
    const hostent* entry = gethostbyname(host.c_str());
    if (!entry || entry->h_addrtype != AF_INET || !entry->h_addr_list || !entry->h_addr_list[0])
      return false;
    status_.Append("Connecting........");
    Show();

    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(kHttpPort);
    std::memcpy(&address.sin_addr, entry->h_addr_list[0], sizeof(address.sin_addr));
    if (connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0)
      return false;
    status_.Append("OK\r\n");
    Show();

    if (send(socket_, request.data(), static_cast<int>(request.size()), 0) == SOCKET_ERROR)
      return false;
    status_.Append("Reciving........\r\n");
    Show();
    status_.MarkCountLine();
    return Receive();
  }

  void Complete() {
    status_.Append("Downloaded OK\nClosing connection.....");
    Show();
    file_.reset();
    closesocket(socket_);
    socket_ = INVALID_SOCKET;
    WSACleanup();
    winsock_ = false;
    EndDialog(dialog_, 1);
  }

  // Every path ends here, a completed transfer included: its EndDialog(1) is
  // overridden, so callers always get 0 and go on to open the local file.
  void CleanUp() {
    file_.reset();
    if (socket_ != INVALID_SOCKET) closesocket(socket_);
    socket_ = INVALID_SOCKET;
    const std::string& discard = SharedDownloadRequest().discardFile;
    if (!discard.empty()) DeleteFileA(discard.c_str());
    if (winsock_) WSACleanup();
    winsock_ = false;
    EndDialog(dialog_, 0);
  }

 private:
  bool Receive() {
    std::array<char, kReceiveChunkSize> buffer;
    for (;;) {
      const int received = recv(socket_, buffer.data(), static_cast<int>(buffer.size()), 0);
      if (received == SOCKET_ERROR) return false;  // the file keeps what came so far
      if (received == 0) return true;
      total_ += static_cast<std::uint32_t>(received);
      status_.AppendByteCount(total_);
      Show();
      // Written as a text string: a zero byte ends what is kept of the chunk.
      std::string_view chunk(buffer.data(), static_cast<std::size_t>(received));
      chunk = chunk.substr(0, chunk.find('\0'));
      std::fwrite(chunk.data(), 1, chunk.size(), file_.get());
      status_.CutToMark();
    }
  }

  void Show() {
    LastStatusText() = status_.text();
    SetDlgItemTextA(dialog_, IDC_DOWNLOAD_STATUS, status_.text().c_str());
    UpdateWindow(GetDlgItem(dialog_, IDC_DOWNLOAD_STATUS));
  }

  HWND dialog_;
  TransferStatus status_;
  std::unique_ptr<std::FILE, FileCloser> file_;
  SOCKET socket_ = INVALID_SOCKET;
  bool winsock_ = false;
  std::uint32_t total_ = 0;
};

LRESULT OnDownloadInit(HWND dialog, UINT, WPARAM, LPARAM) {
  PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(IDC_DOWNLOAD_START, 0), 0);
  return TRUE;
}

LRESULT OnStartGet(HWND dialog, WORD, WORD, LPARAM) {
  const DownloadRequest& request = SharedDownloadRequest();
  Transfer transfer(dialog);
  LastStatusText().clear();
  if (transfer.StartWinsock() && transfer.OpenOutput(request.localFile) &&
      transfer.Exchange(request.host, request.path, BuildGetRequest(request.host, request.path)))
    transfer.Complete();
  transfer.CleanUp();
  return 0;
}

LRESULT OnStartPost(HWND dialog, WORD, WORD, LPARAM) {
  const DownloadRequest& request = SharedDownloadRequest();
  LastStatusText().clear();
  if (request.host.empty()) {
    EndDialog(dialog, 0);
    return 0;
  }
  Transfer transfer(dialog);
  std::string& text = SharedRequestText();
  // The path shown is the one of the most recent page download: a POST never sets it.
  if (transfer.StartWinsock() && AppendPostHeader(text) &&
      transfer.OpenOutput(App().programDir + kPostResponseFile) &&
      transfer.Exchange(request.host, request.path, text))
    transfer.Complete();
  transfer.CleanUp();
  return 0;
}

const CommandRow kGetCommands[] = {
    {IDC_DOWNLOAD_START, OnStartGet},
};
const CommandRow kPostCommands[] = {
    {IDC_DOWNLOAD_START, OnStartPost},
};
const CommandMap kGetCommandMap = MakeCommandMap(kGetCommands, kDefaultNone);
const CommandMap kPostCommandMap = MakeCommandMap(kPostCommands, kDefaultNone);

LRESULT OnGetCommand(HWND dialog, UINT, WPARAM wParam, LPARAM lParam) {
  return LookupCommand(kGetCommandMap, dialog, wParam, lParam);
}

LRESULT OnPostCommand(HWND dialog, UINT, WPARAM wParam, LPARAM lParam) {
  return LookupCommand(kPostCommandMap, dialog, wParam, lParam);
}

const MessageRow kGetMessages[] = {
    {WM_INITDIALOG, OnDownloadInit},
    {WM_COMMAND,    OnGetCommand},
};
const MessageRow kPostMessages[] = {
    {WM_INITDIALOG, OnDownloadInit},
    {WM_COMMAND,    OnPostCommand},
};
const MessageMap kGetMessageMap = MakeMessageMap(kGetMessages, kDefaultNone);
const MessageMap kPostMessageMap = MakeMessageMap(kPostMessages, kDefaultNone);

INT_PTR RunDialog(DLGPROC procedure) {
  HINSTANCE instance = App().instance ? App().instance : GetModuleHandleA(nullptr);
  return DialogBoxParamA(instance, kDownloadDialogName, App().mainWindow, procedure, 0);
}

}  // namespace

INT_PTR CALLBACK DownloadGetProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  return LookupMessage(kGetMessageMap, dialog, message, wParam, lParam);
}

INT_PTR CALLBACK DownloadPostProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  return LookupMessage(kPostMessageMap, dialog, message, wParam, lParam);
}

INT_PTR DownloadPage() { return RunDialog(DownloadGetProc); }

INT_PTR PostRequest() { return RunDialog(DownloadPostProc); }

const std::string& LastDownloadStatus() { return LastStatusText(); }

}  // namespace qb
