#include "acquire/download_dialog.h"

#include <cstdio>
#include <deque>
#include <memory>
#include <mutex>
#include <string_view>
#include <thread>
#include <utility>

#include "acquire/acquire_state.h"
#include "acquire/transport.h"
#include "acquire/winhttp_transfer.h"
#include "base/app_state.h"
#include "base/dispatch.h"
#include "resources/resource.h"

namespace qb {
namespace {

// The worker's nudge that events wait in the channel.
constexpr UINT kTransferEventMessage = WM_APP + 1;
constexpr UINT_PTR kStallTimerId = 1;
constexpr UINT kStallCheckMilliseconds = 1000;
constexpr DWORD kStallLimitMilliseconds = kStallLimitSeconds * 1000;
constexpr std::uint32_t kBytesPerMegabyte = 1024 * 1024;
constexpr char kTooLargeFormat[] =
    "This HTML document is larger than %u MB,\nso the download was stopped.\n"
    "The part received so far has been removed.";

std::string& LastStatusText() {
  static std::string text;
  return text;
}

struct TransferEvent {
  enum class Kind { kStep, kData, kTooLarge, kRedirect, kRefused, kEnd };
  Kind kind;
  TransferStep step = TransferStep::kResolved;
  std::string bytes;  // data, the redirect's address or the refusal's message
  bool completed = false;
};

// What the worker tells the dialog, queued under a lock and announced by a posted
// message. Shared by both: the worker may still be finishing after the dialog is
// gone, and then its events go nowhere.
class TransferChannel : public TransferLink {
 public:
  explicit TransferChannel(HWND dialog) : dialog_(dialog) {}

  bool Cancelled() const override {
    std::lock_guard<std::mutex> lock(mutex_);
    return dialog_ == nullptr;
  }
  void Reached(TransferStep step) override { Push({TransferEvent::Kind::kStep, step, {}, false}); }
  bool Received(std::string_view bytes) override {
    received_ += bytes.size();
    if (received_ > kMaxDownloadBytes) {
      Push({TransferEvent::Kind::kTooLarge, TransferStep::kResolved, {}, false});
      return false;
    }
    return Push({TransferEvent::Kind::kData, TransferStep::kResolved, std::string(bytes), false});
  }
  void Redirected(const std::string& address) override {
    Push({TransferEvent::Kind::kRedirect, TransferStep::kResolved, address, false});
  }
  void Refused(const std::string& message) override {
    Push({TransferEvent::Kind::kRefused, TransferStep::kResolved, message, false});
  }
  void Ended(bool completed) {
    Push({TransferEvent::Kind::kEnd, TransferStep::kResolved, std::string(), completed});
  }

  // User-interface thread.
  std::deque<TransferEvent> Take() {
    std::lock_guard<std::mutex> lock(mutex_);
    return std::exchange(events_, {});
  }
  void Detach() {
    std::lock_guard<std::mutex> lock(mutex_);
    dialog_ = nullptr;
    events_.clear();
  }

 private:
  bool Push(TransferEvent event) {
    std::lock_guard<std::mutex> lock(mutex_);
    if (!dialog_) return false;
    events_.push_back(std::move(event));
    PostMessageA(dialog_, kTransferEventMessage, 0, 0);
    return true;
  }

  mutable std::mutex mutex_;
  HWND dialog_;
  std::deque<TransferEvent> events_;
  std::uint64_t received_ = 0;  // worker thread only
};

struct FileCloser {
  void operator()(std::FILE* f) const { std::fclose(f); }
};

// One transfer as its dialog sees it: the status lines, the local file, the
// limits and how the dialog ends. Lives on the caller's stack for the dialog.
class DownloadSession {
 public:
  enum class Variant { kGet, kPost };
  explicit DownloadSession(Variant variant) : variant_(variant) {}
  ~DownloadSession() { Stop(); }
  DownloadSession(const DownloadSession&) = delete;
  DownloadSession& operator=(const DownloadSession&) = delete;

  void Start(HWND dialog) {
    dialog_ = dialog;
    LastStatusText().clear();
    const DownloadRequest& request = SharedDownloadRequest();
    std::string wire;
    if (variant_ == Variant::kGet) {
      path_ = request.localFile;
      wire = BuildGetRequest(request.host, request.path);
    } else {
      std::string& text = SharedRequestText();
      if (request.host.empty() || !AppendPostHeader(text)) return End(kDownloadEnded);
      path_ = App().programDir + kPostResponseFile;
      wire = text;
    }
    // Text mode: every line feed of the response is written as CR LF.
    file_.reset(std::fopen(path_.c_str(), "w"));
    if (!file_) return End(kDownloadEnded);
    created_ = true;

    status_.Append("Connecting to: ");
    status_.Append(request.host);
    // A POST shows the path of the most recent page download: it never sets one.
    status_.Append(request.path);
    status_.Append("\r\n");
    Show();
    lastActivity_ = GetTickCount();
    SetTimer(dialog_, kStallTimerId, kStallCheckMilliseconds, nullptr);
    channel_ = std::make_shared<TransferChannel>(dialog_);
    std::shared_ptr<Transport> transport = variant_ == Variant::kGet
                                               ? MakePageTransport(request.address, request.host, std::move(wire))
                                               : MakeWinsockTransport(request.host, std::move(wire));
    std::thread([channel = channel_, transport] { channel->Ended(transport->Run(*channel)); }).detach();
  }

  void OnEvents() {
    if (!channel_) return;
    std::deque<TransferEvent> events = channel_->Take();
    for (std::size_t i = 0; i < events.size() && channel_; ++i) {
      lastActivity_ = GetTickCount();
      TransferEvent& event = events[i];
      switch (event.kind) {
        case TransferEvent::Kind::kStep: ShowStep(event.step); break;
        case TransferEvent::Kind::kData: {
          // Chunks that queued up while the window was busy share one count line.
          const bool more = i + 1 < events.size() && events[i + 1].kind == TransferEvent::Kind::kData;
          Write(event.bytes, !more);
          break;
        }
        case TransferEvent::Kind::kTooLarge: TooLarge(); break;
        case TransferEvent::Kind::kRedirect: ShowRedirect(event.bytes); break;
        case TransferEvent::Kind::kRefused: Refuse(event.bytes, kDownloadRefused); break;
        case TransferEvent::Kind::kEnd:
          // What the run-time still holds must reach the file too.
          if (file_ && std::fflush(file_.get()) != 0) return NotWritten();
          if (!event.completed && total_ > 0) return BrokenOff();
          if (event.completed) Complete();
          End(kDownloadEnded);
          break;
      }
    }
  }

  // A server that went quiet ends the transfer as a failed one: before any byte
  // came the empty file stays, and the scan goes on to report a page without a form.
  void OnTimer() {
    if (!channel_ || GetTickCount() - lastActivity_ < kStallLimitMilliseconds) return;
    if (total_ > 0) return BrokenOff();
    End(kDownloadEnded);
  }

  void Cancel() {
    Discard();
    End(kDownloadCancelled);
  }

 private:
  void ShowStep(TransferStep step) {
    switch (step) {
      case TransferStep::kResolved: status_.Append("Connecting........"); break;
      case TransferStep::kConnected: status_.Append("OK\r\n"); break;
      case TransferStep::kSent: status_.Append("Reciving........\r\n"); break;
    }
    Show();
    if (step == TransferStep::kSent) status_.MarkCountLine();
  }

  void Write(std::string_view chunk, bool show) {
    total_ += static_cast<std::uint32_t>(chunk.size());
    if (show) {
      status_.AppendByteCount(total_);
      Show();
      status_.CutToMark();
    }
    // Written as a text string: a zero byte ends what is kept of the chunk.
    chunk = chunk.substr(0, chunk.find('\0'));
    if (std::fwrite(chunk.data(), 1, chunk.size(), file_.get()) != chunk.size()) NotWritten();
  }

  // Part of a page would be scanned, filled and recorded as if it were the page.
  void BrokenOff() {
    Discard();
    End(kDownloadBrokenOff);
  }

  // A page cut short by a full disk would be scanned and recorded as if whole.
  void NotWritten() {
    Discard();
    MessageBoxA(dialog_, kNotWrittenText, nullptr, MB_OK | MB_ICONSTOP);
    End(kDownloadNotWritten);
  }

  void Complete() {
    status_.Append("Downloaded OK\nClosing connection.....");
    Show();
    EndDialog(dialog_, 1);
  }

  // The scan reads the page as coming from the last address shown here.
  void ShowRedirect(const std::string& address) {
    SharedDownloadRequest().address = address;
    status_.Append("Redirected to: ");
    status_.Append(address);
    status_.Append("\r\n");
    Show();
  }

  void TooLarge() {
    const unsigned megabytes = kMaxDownloadBytes / kBytesPerMegabyte;
    Refuse(FormatText(kTooLargeFormat, megabytes), kDownloadTooLarge);
  }

  void Refuse(const std::string& message, INT_PTR result) {
    Discard();
    MessageBoxA(dialog_, message.c_str(), nullptr, MB_OK | MB_ICONSTOP);
    End(result);
  }

  // Removes the file this transfer wrote, and only that one.
  void Discard() {
    Stop();
    if (created_) DeleteFileA(path_.c_str());
  }

  void Stop() {
    if (channel_) {
      channel_->Detach();
      channel_.reset();
      KillTimer(dialog_, kStallTimerId);
    }
    file_.reset();
  }

  void End(INT_PTR result) {
    Stop();
    EndDialog(dialog_, result);
  }

  void Show() {
    LastStatusText() = status_.text();
    HWND box = GetDlgItem(dialog_, IDC_DOWNLOAD_STATUS);
    SetWindowTextA(box, status_.text().c_str());
    // New text starts at the top; redirects can add more lines than the box holds,
    // and the latest is the one that tells how the transfer is going.
    SendMessageA(box, EM_LINESCROLL, 0, SendMessageA(box, EM_GETLINECOUNT, 0, 0));
    UpdateWindow(box);
  }

  Variant variant_;
  HWND dialog_ = nullptr;
  std::string path_;
  bool created_ = false;
  std::unique_ptr<std::FILE, FileCloser> file_;
  TransferStatus status_;
  std::shared_ptr<TransferChannel> channel_;
  std::uint32_t total_ = 0;
  DWORD lastActivity_ = 0;
};

DownloadSession& SessionOf(HWND dialog) {
  return *reinterpret_cast<DownloadSession*>(GetWindowLongPtrA(dialog, DWLP_USER));
}

LRESULT OnDownloadInit(HWND dialog, UINT, WPARAM, LPARAM lParam) {
  SetWindowLongPtrA(dialog, DWLP_USER, lParam);
  PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(IDC_DOWNLOAD_START, 0), 0);
  return TRUE;
}

LRESULT OnStart(HWND dialog, WORD, WORD, LPARAM) {
  SessionOf(dialog).Start(dialog);
  return 0;
}

LRESULT OnCancel(HWND dialog, WORD, WORD, LPARAM) {
  SessionOf(dialog).Cancel();
  return 0;
}

const CommandRow kDownloadCommands[] = {
    {IDC_DOWNLOAD_START, OnStart},
    {IDCANCEL,           OnCancel},
};

LRESULT OnTransferEvent(HWND dialog, UINT, WPARAM, LPARAM) {
  SessionOf(dialog).OnEvents();
  return 0;
}

LRESULT OnStallTimer(HWND dialog, UINT, WPARAM, LPARAM) {
  SessionOf(dialog).OnTimer();
  return 0;
}

const MessageRow kDownloadMessages[] = {
    {WM_INITDIALOG,         OnDownloadInit},
    {kTransferEventMessage, OnTransferEvent},
    {WM_TIMER,              OnStallTimer},
};

INT_PTR RunDialog(DownloadSession::Variant variant) {
  DownloadSession session(variant);
  HINSTANCE instance = App().instance ? App().instance : GetModuleHandleA(nullptr);
  return DialogBoxParamA(instance, kDownloadDialogName, App().mainWindow,
                         DialogProcedure<kDownloadMessages, kDownloadCommands>,
                         reinterpret_cast<LPARAM>(&session));
}

}  // namespace

INT_PTR DownloadPage() { return RunDialog(DownloadSession::Variant::kGet); }

INT_PTR PostRequest() { return RunDialog(DownloadSession::Variant::kPost); }

const std::string& LastDownloadStatus() { return LastStatusText(); }

}  // namespace qb
