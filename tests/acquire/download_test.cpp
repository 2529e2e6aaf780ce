// The download dialog over real sockets, against a scripted server on
// 127.0.0.1:80 in this process, also through fetchpage's fixed command line; and
// the Tools-menu command that compacts the registry, reached through the main
// window's command table.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "acquire/acquire_state.h"
#include "acquire/download_dialog.h"
#include "acquire/transport.h"
#include "base/app_state.h"
#include "resources/resource.h"
#include "tests/acquire/transfer_helpers.h"
#include "tests/support/gui_helper.h"
#include "tests/support/loopback_server.h"
#include "tests/support/main_window.h"
#include "tests/support/temp_dir.h"

namespace qb::test {
namespace {

using Texts = std::vector<std::string>;

const std::string kAccept = "Accept:text/plain\r\nAccept:text/html\r\nAccept:*/*\r\n\r\n";
constexpr DWORD kGivenBackMs = 2000;  // "at once", as a person sees it
constexpr int kStreamPatienceMs = 120000;

// Records, on this thread, the text of the dialog's status edit after each
// WM_SETTEXT (the dialog blocks in its sockets between changes, so nothing else
// could read them). A paced server is let go on to its next step each time a byte
// count is shown.
class StatusRecorder {
 public:
  explicit StatusRecorder(LoopbackServer* paced = nullptr)
      : paced_(paced),
        hook_(SetWindowsHookExA(WH_CALLWNDPROCRET, Hook, nullptr, GetCurrentThreadId())) {
    current_ = this;
  }
  ~StatusRecorder() {
    UnhookWindowsHookEx(hook_);
    current_ = nullptr;
  }
  StatusRecorder(const StatusRecorder&) = delete;
  StatusRecorder& operator=(const StatusRecorder&) = delete;

  std::vector<std::string> texts;

 private:
  static LRESULT CALLBACK Hook(int code, WPARAM wParam, LPARAM lParam) {
    const auto* call = reinterpret_cast<const CWPRETSTRUCT*>(lParam);
    StatusRecorder* self = code == HC_ACTION ? current_ : nullptr;
    if (self && call->message == WM_SETTEXT && GetDlgCtrlID(call->hwnd) == IDC_DOWNLOAD_STATUS) {
      const std::string& text = self->texts.emplace_back(WindowText(call->hwnd));
      if (self->paced_ && text.size() > 6 && text.compare(text.size() - 6, 6, " Bytes") == 0)
        self->paced_->Continue();
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
  }
  inline static StatusRecorder* current_ = nullptr;
  LoopbackServer* paced_;
  HHOOK hook_;
};

// The program directory and the Links folder in a fresh folder, no request pending.
class Acquire : public ::testing::Test {
 protected:
  void SetUp() override {
    SetProgramDirectory(dir.path());
    SetCurrentLinksFolder(dir.path() + "\\");
    SharedDownloadRequest() = DownloadRequest{};
    SharedRequestText().clear();
  }

  // Serves `reply` on port 80 for the rest of the test.
  bool Serve(LoopbackReply reply) {
    server.emplace(std::move(reply));
    return server->listening();
  }

  TempDir dir;
  std::optional<LoopbackServer> server;
};

// The status texts of a transfer from `target`: the steps of connecting, then one
// text for each of `counts` after "Reciving".
Texts Shown(const std::string& target, const Texts& counts) {
  const std::string connecting = "Connecting to: " + target + "\r\n";
  Texts texts{connecting, connecting + "Connecting........", connecting + "Connecting........OK\r\n",
              connecting + kSent};
  for (const std::string& count : counts) texts.push_back(connecting + kSent + count);
  return texts;
}

// The whole answer is saved, with one count line that grows; an empty answer
// still completes; part of a page is not kept (scanned later, it would pass for
// the page); a host that can't be resolved stops at the first line. That address,
// read as a path from the working folder, names the user's key database: the
// clean-up deletes nothing the download did not write.
TEST_F(Acquire, TransferEndsWithItsFileWholeEmptyOrGone) {
  const std::vector<std::string> chunks = {
      "HTTP/1.0 200 OK\r\nContent-Type: text/html\r\n\r\n",
      "<html><body>\n<form method=\"post\" action=\"/cgi/order\">\n",
      // A zero byte ends what is written of its chunk (the count takes all 60).
      std::string("<input type=\"text\" name=\"email\">\n</form></body></html>\n\0tail", 60),
  };
  CreateDirectoryA(dir.File("Databases").c_str(), nullptr);
  WriteText(dir.File("Databases\\Data.dat"), "keys");
  std::string previous(MAX_PATH, '\0');
  previous.resize(GetCurrentDirectoryA(MAX_PATH, previous.data()));
  SetCurrentDirectoryA(dir.path().c_str());
  const struct {
    LoopbackReply reply;
    const char* address;
    INT_PTR ended;
    const char* file;
    std::optional<std::string> saved;  // none: no file
    std::string request;               // the request line sent, if any
    Texts shown;
    const char* links = "";            // the Links folder below the test's
  } rows[] = {
      {{chunks, /*paced=*/true}, "http://127.0.0.1/shop/form.asp?item=7", 0, "127.0.0.1.form.asp.htm",
       TextMode(chunks[0] + chunks[1] + chunks[2].substr(0, chunks[2].find('\0'))),
       "GET http://127.0.0.1/shop/form.asp HTTP/1.0\r\n",
       Shown("127.0.0.1/shop/form.asp", {"44 Bytes", "98 Bytes", "158 Bytes", kDone})},
      {{}, "http://127.0.0.1", 0, "127.0.0.1.index.htm.htm", "", "GET http://127.0.0.1 HTTP/1.0\r\n",
       Shown("127.0.0.1", {kDone})},
      // The box stops at the count, never "Downloaded OK".
      {{{"HTTP/1.0 200 OK\r\n\r\n<html>part"}, /*paced=*/true, /*reset=*/true}, "http://127.0.0.1/cut.htm",
       kDownloadBrokenOff, "127.0.0.1.cut.htm.htm", std::nullopt, "GET http://127.0.0.1/cut.htm HTTP/1.0\r\n",
       Shown("127.0.0.1/cut.htm", {"29 Bytes"})},
      {{}, "http://Databases/Data.dat", 0, "databases.Data.dat.htm", "", "",
       {"Connecting to: Databases/Data.dat\r\n"}},
      // A file that can't be created: nothing is sent or shown.
      {{}, "http://127.0.0.1/a.htm", 0, "missing", std::nullopt, "", {}, "missing\\"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.address);
    ASSERT_TRUE(Serve(row.reply)) << server->error();
    SetCurrentLinksFolder(dir.path() + "\\" + row.links);
    ASSERT_EQ(PreparePageDownload(row.address), PrepareStatus::kReady);
    StatusRecorder recorder(&*server);
    EXPECT_EQ(DownloadPage(), row.ended);
    EXPECT_EQ(server->Requests(), row.request.empty() ? Texts{} : Texts{row.request + kAccept});
    EXPECT_EQ(FileExists(dir.File(row.file)), row.saved.has_value());
    EXPECT_EQ(ReadText(dir.File(row.file)), row.saved.value_or(""));
    EXPECT_EQ(recorder.texts, row.shown);
  }
  SetCurrentDirectoryA(previous.c_str());
  EXPECT_EQ(ReadText(dir.File("Databases\\Data.dat")), "keys");
}

// A server that reads the request and never answers: the dialog has shown every
// step so far, the keyboard's focus is on Cancel, which is also the default
// button, and a click, Esc or Enter ends the transfer at once and removes its file.
TEST_F(Acquire, CancelEndsASilentTransferAtOnceFromTheMouseOrTheKeyboard) {
  LoopbackReply silent;
  silent.silent = true;
  ASSERT_TRUE(Serve(silent)) << server->error();
  const std::string waiting = "Connecting to: 127.0.0.1/slow.htm\r\n" + kSent;
  for (const WPARAM key : {0, VK_ESCAPE, VK_RETURN}) {  // 0: a click
    SCOPED_TRACE(key);
    ASSERT_EQ(PreparePageDownload("http://127.0.0.1/slow.htm"), PrepareStatus::kReady);
    INT_PTR ended = -1;
    DWORD pressed = 0, returned = 0;
    const auto cancel = [&](HWND dialog, const WindowSnapshot&) {
      HWND status = GetDlgItem(dialog, IDC_DOWNLOAD_STATUS);
      EXPECT_TRUE(PumpUntil([&] { return WindowText(status) == waiting; }, 10000));
      GUITHREADINFO info{};
      info.cbSize = sizeof(info);
      ASSERT_TRUE(GetGUIThreadInfo(GetWindowThreadProcessId(dialog, nullptr), &info));
      EXPECT_EQ(info.hwndFocus, GetDlgItem(dialog, IDCANCEL));
      EXPECT_EQ(LOWORD(SendMessageA(dialog, DM_GETDEFID, 0, 0)), IDCANCEL);
      pressed = GetTickCount();
      if (key == 0) {
        ClickButton(dialog, IDCANCEL);
      } else {  // as the keyboard delivers it: to the focused control, through the dialog's loop
        PostMessageA(info.hwndFocus, WM_KEYDOWN, key, 1);
        PostMessageA(info.hwndFocus, WM_KEYUP, key, 0xC0000001);
      }
    };
    const ModalResult result = RunModal(
        [&] {
          ended = DownloadPage();
          returned = GetTickCount();
        },
        {Custom(cancel)});
    ASSERT_TRUE(result.ok()) << result.Describe();
    EXPECT_EQ(ended, kDownloadCancelled);
    EXPECT_LT(returned - pressed, kGivenBackMs);
    EXPECT_EQ(LastDownloadStatus(), waiting);
    EXPECT_FALSE(FileExists(dir.File("127.0.0.1.slow.htm.htm")));
  }
}

// A transfer the program stops is told in a message box and leaves no file. The
// redirects write more status lines than the box holds: the latest one is still in
// sight when the message comes.
TEST_F(Acquire, StoppedTransferIsToldWithItsLatestStatusLineInSight) {
  LoopbackReply endless{{"HTTP/1.0 200 OK\r\n\r\n"}};
  endless.streamBytes = kMaxDownloadBytes + 8u * 1024 * 1024;
  const struct {
    LoopbackReply reply;
    const char* page;
    INT_PTR ended;
    const char* message;
  } rows[] = {
      {endless, "endless.htm", kDownloadTooLarge,
       "This HTML document is larger than 32 MB,\nso the download was stopped.\n"
       "The part received so far has been removed."},
      {{{"HTTP/1.0 302 Found\r\nLocation: http://127.0.0.1/again.htm\r\n\r\n"}}, "again.htm", kDownloadRefused,
       "The page http://127.0.0.1/again.htm was redirected more than 5 times.\n"
       "The download stopped; nothing was saved."},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.page);
    ASSERT_TRUE(Serve(row.reply)) << server->error();
    ASSERT_EQ(PreparePageDownload(std::string("http://127.0.0.1/") + row.page), PrepareStatus::kReady);
    LRESULT lines = 0;
    int lastLineTop = -1, lineHeight = 0;
    RECT box{};
    const auto look = [&](HWND message, const WindowSnapshot&) {
      HWND status = GetDlgItem(GetWindow(message, GW_OWNER), IDC_DOWNLOAD_STATUS);
      const auto top = [&](std::size_t at) {
        return static_cast<short>(HIWORD(SendMessageA(status, EM_POSFROMCHAR, at, 0)));
      };
      lines = SendMessageA(status, EM_GETLINECOUNT, 0, 0);
      lineHeight = top(SendMessageA(status, EM_LINEINDEX, 1, 0)) - top(0);
      lastLineTop = top(WindowText(status).find_last_not_of("\r\n"));
      GetClientRect(status, &box);
      ClickButton(message, IDOK);
    };
    ModalOptions options;  // the download dialog comes and goes by itself
    options.passOver = [](HWND window) { return GetDlgItem(window, IDC_DOWNLOAD_STATUS) != nullptr; };
    options.stepTimeoutMs = kStreamPatienceMs;
    INT_PTR ended = -1;
    const ModalResult result = RunModal([&] { ended = DownloadPage(); }, {Custom(look)}, options);
    EXPECT_EQ(ended, row.ended);
    ASSERT_TRUE(result.ok()) << result.Describe();
    EXPECT_EQ(result.seen.at(0).MessageText(), row.message);
    EXPECT_FALSE(FileExists(dir.File(std::string("127.0.0.1.") + row.page + ".htm")));
    ASSERT_GT(lineHeight, 0);
    if (row.ended == kDownloadRefused) {
      EXPECT_GT(lines * lineHeight, box.bottom);  // more than it holds
    }
    EXPECT_GE(lastLineTop, 0);
    EXPECT_LE(lastLineTop + lineHeight, box.bottom);
  }
}

TEST_F(Acquire, PostNeedsAHostThenSendsItsHeaderAndSavesTheResponseInDatahtml) {
  CreateDirectoryA(dir.File("datahtml").c_str(), nullptr);
  const std::string reply = "HTTP/1.0 200 OK\r\n\r\n<html>Thank you</html>\n";
  ASSERT_TRUE(Serve({{reply}})) << server->error();
  SharedRequestText() = "POST /cgi/a?x=1";
  EXPECT_EQ(PostRequest(), 0);  // no host: ends at once, the text as it was
  EXPECT_EQ(SharedRequestText(), "POST /cgi/a?x=1");
  EXPECT_FALSE(FileExists(dir.File("datahtml\\ReciveData.htm")));

  SharedDownloadRequest().host = "127.0.0.1";
  SharedDownloadRequest().path = "/last/page.htm";  // left by the page download
  EXPECT_EQ(PostRequest(), 0);
  EXPECT_EQ(server->Requests(), Texts{"POST /cgi/a?x=1 HTTP/1.0\r\nCONTENT-LENGTH: 42\r\n\r\n"});
  EXPECT_EQ(ReadText(dir.File("datahtml\\ReciveData.htm")), TextMode(reply));
  EXPECT_EQ(LastDownloadStatus(), "Connecting to: 127.0.0.1/last/page.htm\r\n" + kSent + kDone);
}

struct ToolRun {
  int exitCode = 0;
  std::string out, err;
};

// Runs the tool through the command interpreter, stdout piped back, stderr to a file.
ToolRun RunFetchpage(const TempDir& dir, const std::string& arguments) {
  // The build's path, seen through Wine's drive for "/".
  std::string exe = "Z:" + std::string(QB_FETCHPAGE_EXE);
  std::replace(exe.begin(), exe.end(), '/', '\\');
  const std::string err = dir.File("stderr.txt");
  // The whole line in one more pair of quotes, which the interpreter takes off.
  std::FILE* pipe =
      _popen(("\"\"" + exe + "\" " + arguments + " 2>\"" + err + "\"\"").c_str(), "rb");
  ToolRun run;
  for (int c; (c = std::fgetc(pipe)) != EOF;) run.out += static_cast<char>(c);
  run.exitCode = _pclose(pipe);
  run.err = ReadText(err);
  return run;
}

using Fetchpage = Acquire;

// The transfers themselves are the dialog's, tested above: here, the command line
// and what the tool prints.
TEST_F(Fetchpage, GetPrintsTheLocalFileAndPostTheStatus) {
  ASSERT_TRUE(Serve({{"HTTP/1.0 200 OK\r\n\r\n<html>page</html>\n"}})) << server->error();
  const ToolRun get = RunFetchpage(dir, "http://127.0.0.1/tool/page.htm \"" + dir.path() + "\"");
  EXPECT_EQ(get.exitCode, 0);
  EXPECT_EQ(get.out, dir.File("127.0.0.1.page.htm.htm") + "\n");
  EXPECT_EQ(get.err, "Connecting to: 127.0.0.1/tool/page.htm\r\n" + kSent + kDone + "\n");

  CreateDirectoryA(dir.File("datahtml").c_str(), nullptr);
  const ToolRun post =
      RunFetchpage(dir, "--post 127.0.0.1 \"POST /cgi/a?x=1\" \"" + dir.path() + "\\\\\"");
  EXPECT_EQ(post.exitCode, 0);
  EXPECT_EQ(post.out, "");
  EXPECT_EQ(post.err, "Connecting to: 127.0.0.1\r\n" + kSent + kDone + "\n");
  EXPECT_TRUE(FileExists(dir.File("datahtml\\ReciveData.htm")));

  const ToolRun local = RunFetchpage(dir, "C:\\page.htm \"" + dir.path() + "\"");
  EXPECT_EQ(local.exitCode, 2);
  EXPECT_NE(local.err.find("not a web address"), std::string::npos);
  EXPECT_EQ(RunFetchpage(dir, "--post 127.0.0.1").exitCode, 2);
}

// Which entries go is the registry's rule; here, that the command applies it.
TEST_F(Acquire, CompactConfigHtmlCommandDropsDeletedLinks) {
  const std::string header = std::string(kRegistryHeader) + "\r\n";
  WriteText(dir.File(kRegistryFileName), header + "www.gone.com/\r\n" + dir.File("gone.htm") + "\r\n");
  EXPECT_EQ(LookupCommand(kMainCommandMap, nullptr, MAKEWPARAM(IDM_COMPACT_CONFIGHTML, 0), 0), 0);
  EXPECT_EQ(ReadText(dir.File(kRegistryFileName)), header);
}

}  // namespace
}  // namespace qb::test
