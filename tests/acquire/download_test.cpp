// The download dialog over real sockets, against a scripted server on
// 127.0.0.1:80 in this process, also through fetchpage's fixed command line; and
// the Tools-menu command that compacts the registry, reached through the main
// window's command table.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "acquire/acquire_state.h"
#include "acquire/download_dialog.h"
#include "acquire/transport.h"
#include "base/app_state.h"
#include "tests/acquire/transfer_helpers.h"
#include "tests/support/main_window.h"
#include "tests/support/temp_dir.h"

namespace qb::test {
namespace {

using Texts = std::vector<std::string>;

const std::string kAccept = "Accept:text/plain\r\nAccept:text/html\r\nAccept:*/*\r\n\r\n";
const std::string kSent = "Connecting........OK\r\nReciving........\r\n";
const std::string kDone = "Downloaded OK\nClosing connection.....";
constexpr DWORD kGivenBackMs = 2000;  // "at once", as a person sees it
constexpr DWORD kStatusPatienceMs = 10000;
constexpr DWORD kStatusPollMs = 20;
constexpr std::uint32_t kBeyondLimit = 8u * 1024 * 1024;
constexpr int kStreamPatienceMs = 120000;

// The program directory and the Links folder in a fresh folder, no request pending.
class Acquire : public ::testing::Test {
 protected:
  void SetUp() override {
    SetProgramDirectory(dir.path());
    SetCurrentLinksFolder(dir.path() + "\\");
    SharedDownloadRequest() = DownloadRequest{};
    SharedRequestText().clear();
  }

  TempDir dir;
};

TEST_F(Acquire, SavesTheWholeResponseWithOneGrowingCountLine) {
  const std::vector<std::string> chunks = {
      "HTTP/1.0 200 OK\r\nContent-Type: text/html\r\n\r\n",
      "<html><body>\n<form method=\"post\" action=\"/cgi/order\">\n",
      // A zero byte ends what is written of its chunk (the count takes all 60).
      std::string("<input type=\"text\" name=\"email\">\n</form></body></html>\n\0tail", 60),
  };
  LoopbackServer server({chunks, /*paced=*/true});
  ASSERT_TRUE(server.listening()) << server.error();
  ASSERT_EQ(PreparePageDownload("http://127.0.0.1/shop/form.asp?item=7"), PrepareStatus::kReady);
  StatusRecorder recorder(&server);

  EXPECT_EQ(DownloadPage(), 0);
  EXPECT_EQ(server.Requests(), Texts{"GET http://127.0.0.1/shop/form.asp HTTP/1.0\r\n" + kAccept});
  EXPECT_EQ(ReadText(dir.File("127.0.0.1.form.asp.htm")),
            TextMode(chunks[0] + chunks[1] + chunks[2].substr(0, chunks[2].find('\0'))));
  const std::string connecting = "Connecting to: 127.0.0.1/shop/form.asp\r\n";
  const std::string receiving = connecting + kSent;
  EXPECT_EQ(recorder.texts,
            (Texts{connecting, connecting + "Connecting........",
                   connecting + "Connecting........OK\r\n", receiving, receiving + "44 Bytes",
                   receiving + "98 Bytes", receiving + "158 Bytes", receiving + kDone}));
  EXPECT_EQ(LastDownloadStatus(), receiving + kDone);
}

TEST_F(Acquire, EmptyResponseGivesAnEmptyFileAndStillCompletes) {
  LoopbackServer server({});
  ASSERT_TRUE(server.listening()) << server.error();
  ASSERT_EQ(PreparePageDownload("www.example.com"), PrepareStatus::kReady);
  // Served here under its own empty path: "www.example.com" resolves elsewhere.
  SharedDownloadRequest().host = "127.0.0.1";

  EXPECT_EQ(DownloadPage(), 0);
  EXPECT_EQ(server.Requests(), Texts{"GET http://127.0.0.1 HTTP/1.0\r\n" + kAccept});
  const std::string file = dir.File("example.com.index.htm.htm");
  ASSERT_TRUE(FileExists(file));
  EXPECT_EQ(ReadText(file), "");
  EXPECT_EQ(LastDownloadStatus(), "Connecting to: 127.0.0.1\r\n" + kSent + kDone);
}

// An address read as a path from the working folder names the user's key
// database; the clean-up deletes nothing the download did not write.
TEST_F(Acquire, UnresolvableHostStopsAtTheFirstLineAndDeletesNothingTheAddressNames) {
  CreateDirectoryA(dir.File("Databases").c_str(), nullptr);
  WriteText(dir.File("Databases\\Data.dat"), "keys");
  std::string previous(MAX_PATH, '\0');
  previous.resize(GetCurrentDirectoryA(MAX_PATH, previous.data()));
  SetCurrentDirectoryA(dir.path().c_str());
  ASSERT_EQ(PreparePageDownload("http://Databases/Data.dat"), PrepareStatus::kReady);
  StatusRecorder recorder;

  EXPECT_EQ(DownloadPage(), 0);
  SetCurrentDirectoryA(previous.c_str());
  EXPECT_EQ(recorder.texts, Texts{"Connecting to: Databases/Data.dat\r\n"});
  const std::string file = dir.File("databases.Data.dat.htm");
  ASSERT_TRUE(FileExists(file));
  EXPECT_EQ(ReadText(file), "");
  EXPECT_EQ(ReadText(dir.File("Databases\\Data.dat")), "keys");
}

// Part of a page is not kept: scanned later, it would pass for the page.
TEST_F(Acquire, ConnectionResetMidResponseRemovesThePartialFile) {
  LoopbackServer server({{"HTTP/1.0 200 OK\r\n\r\n<html>part"}, /*paced=*/true, /*reset=*/true});
  ASSERT_TRUE(server.listening()) << server.error();
  ASSERT_EQ(PreparePageDownload("http://127.0.0.1/cut.htm"), PrepareStatus::kReady);
  StatusRecorder recorder(&server);

  EXPECT_EQ(DownloadPage(), kDownloadBrokenOff);
  EXPECT_FALSE(FileExists(dir.File("127.0.0.1.cut.htm.htm")));
  // The box stops at the last line shown: the count, never "Downloaded OK".
  EXPECT_EQ(LastDownloadStatus(), "Connecting to: 127.0.0.1/cut.htm\r\n" + kSent + "29 Bytes");
}

// The dialog, not a step of its own: it comes and goes with every transfer.
bool IsDownloadDialog(HWND window) { return GetDlgItem(window, IDC_DOWNLOAD_STATUS) != nullptr; }

// Waits, off the dialog's thread, until its status box shows `text`.
bool StatusShows(HWND dialog, const std::string& text) {
  const DWORD start = GetTickCount();
  while (WindowText(GetDlgItem(dialog, IDC_DOWNLOAD_STATUS)) != text) {
    if (GetTickCount() - start > kStatusPatienceMs) return false;
    Sleep(kStatusPollMs);
  }
  return true;
}

// A server that reads the request and never answers: the dialog has shown every
// step so far, and Cancel ends the transfer at once and removes its file.
TEST_F(Acquire, CancelEndsASilentTransferAtOnceAndRemovesItsFile) {
  LoopbackReply silent;
  silent.silent = true;
  LoopbackServer server(silent);
  ASSERT_TRUE(server.listening()) << server.error();
  ASSERT_EQ(PreparePageDownload("http://127.0.0.1/slow.htm"), PrepareStatus::kReady);
  const std::string waiting = "Connecting to: 127.0.0.1/slow.htm\r\n" + kSent;
  INT_PTR ended = -1;
  DWORD pressed = 0, returned = 0;
  const auto cancelWhileWaiting = [&](HWND dialog, const WindowSnapshot&) {
    EXPECT_TRUE(StatusShows(dialog, waiting));
    pressed = GetTickCount();
    ClickButton(dialog, IDCANCEL);
  };
  const ModalResult result = RunModal(
      [&] {
        ended = DownloadPage();
        returned = GetTickCount();
      },
      {Custom(cancelWhileWaiting)});
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_EQ(ended, kDownloadCancelled);
  EXPECT_LT(returned - pressed, kGivenBackMs);
  EXPECT_EQ(LastDownloadStatus(), waiting);
  EXPECT_FALSE(FileExists(dir.File("127.0.0.1.slow.htm.htm")));
}

// The keyboard's focus is on Cancel, which is also the default button, so both
// Esc and Enter end a transfer that hangs.
TEST_F(Acquire, EscAndEnterReachCancelFromTheKeyboard) {
  LoopbackReply silent;
  silent.silent = true;
  LoopbackServer server(silent);
  ASSERT_TRUE(server.listening()) << server.error();
  for (const WPARAM key : {VK_ESCAPE, VK_RETURN}) {
    SCOPED_TRACE(key);
    ASSERT_EQ(PreparePageDownload("http://127.0.0.1/slow.htm"), PrepareStatus::kReady);
    INT_PTR ended = -1;
    const auto pressKey = [&](HWND dialog, const WindowSnapshot&) {
      EXPECT_TRUE(StatusShows(dialog, "Connecting to: 127.0.0.1/slow.htm\r\n" + kSent));
      GUITHREADINFO info{};
      info.cbSize = sizeof(info);
      ASSERT_TRUE(GetGUIThreadInfo(GetWindowThreadProcessId(dialog, nullptr), &info));
      EXPECT_EQ(info.hwndFocus, GetDlgItem(dialog, IDCANCEL));
      EXPECT_EQ(LOWORD(SendMessageA(dialog, DM_GETDEFID, 0, 0)), IDCANCEL);
      // As the keyboard delivers it: to the focused control, through the dialog's loop.
      PostMessageA(info.hwndFocus, WM_KEYDOWN, key, 1);
      PostMessageA(info.hwndFocus, WM_KEYUP, key, 0xC0000001);
    };
    const ModalResult result = RunModal([&] { ended = DownloadPage(); }, {Custom(pressKey)});
    ASSERT_TRUE(result.ok()) << result.Describe();
    EXPECT_EQ(ended, kDownloadCancelled);
  }
}

TEST_F(Acquire, AnswerWithoutEndStopsAtTheSizeLimitAndLeavesNoFile) {
  LoopbackReply endless;
  endless.chunks = {"HTTP/1.0 200 OK\r\n\r\n"};
  endless.streamBytes = kMaxDownloadBytes + kBeyondLimit;
  LoopbackServer server(endless);
  ASSERT_TRUE(server.listening()) << server.error();
  ASSERT_EQ(PreparePageDownload("http://127.0.0.1/endless.htm"), PrepareStatus::kReady);
  INT_PTR ended = -1;
  ModalOptions options;
  options.passOver = IsDownloadDialog;
  options.stepTimeoutMs = kStreamPatienceMs;
  const ModalResult result = RunModal([&] { ended = DownloadPage(); }, {Press("OK")}, options);
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_EQ(result.seen.at(0).MessageText(),
            "This HTML document is larger than 32 MB,\nso the download was stopped.\n"
            "The part received so far has been removed.");
  EXPECT_EQ(ended, kDownloadTooLarge);
  EXPECT_FALSE(FileExists(dir.File("127.0.0.1.endless.htm.htm")));
}

// A redirect that never ends writes more status lines than the box holds: the
// latest one is still in sight when the message about it comes.
TEST_F(Acquire, StatusBoxKeepsItsLatestLineInSight) {
  LoopbackReply again;
  again.chunks = {"HTTP/1.0 302 Found\r\nLocation: http://127.0.0.1/again.htm\r\n\r\n"};
  LoopbackServer server(again);
  ASSERT_TRUE(server.listening()) << server.error();
  ASSERT_EQ(PreparePageDownload("http://127.0.0.1/again.htm"), PrepareStatus::kReady);
  LRESULT lines = 0;
  int lastLineTop = -1, lineHeight = 0;
  RECT box{};
  const auto look = [&](HWND message, const WindowSnapshot&) {
    HWND status = GetDlgItem(GetWindow(message, GW_OWNER), IDC_DOWNLOAD_STATUS);
    const std::string text = WindowText(status);
    lines = SendMessageA(status, EM_GETLINECOUNT, 0, 0);
    const LRESULT secondLine = SendMessageA(status, EM_LINEINDEX, 1, 0);
    lineHeight = static_cast<short>(HIWORD(SendMessageA(status, EM_POSFROMCHAR, secondLine, 0))) -
                 static_cast<short>(HIWORD(SendMessageA(status, EM_POSFROMCHAR, 0, 0)));
    const LRESULT last = SendMessageA(status, EM_POSFROMCHAR, text.find_last_not_of("\r\n"), 0);
    lastLineTop = static_cast<short>(HIWORD(last));
    GetClientRect(status, &box);
    ClickButton(message, IDOK);
  };
  INT_PTR ended = -1;
  ModalOptions options;
  options.passOver = IsDownloadDialog;
  const ModalResult result = RunModal([&] { ended = DownloadPage(); }, {Custom(look)}, options);
  ASSERT_TRUE(result.ok()) << result.Describe();
  EXPECT_EQ(ended, kDownloadRefused);
  ASSERT_GT(lineHeight, 0);
  EXPECT_GT(lines * lineHeight, box.bottom);  // more than it holds
  EXPECT_GE(lastLineTop, 0);
  EXPECT_LE(lastLineTop + lineHeight, box.bottom);
}

TEST_F(Acquire, LocalFileThatCannotBeCreatedTransfersNothing) {
  SetCurrentLinksFolder(dir.path() + "\\missing\\");
  ASSERT_EQ(PreparePageDownload("http://127.0.0.1/a.htm"), PrepareStatus::kReady);
  StatusRecorder recorder;

  EXPECT_EQ(DownloadPage(), 0);
  EXPECT_TRUE(recorder.texts.empty());
  EXPECT_FALSE(FileExists(dir.File("missing")));
}

TEST_F(Acquire, PostNeedsAHostThenSendsItsHeaderAndSavesTheResponseInDatahtml) {
  CreateDirectoryA(dir.File("datahtml").c_str(), nullptr);
  const std::string reply = "HTTP/1.0 200 OK\r\n\r\n<html>Thank you</html>\n";
  LoopbackServer server({{reply}});
  ASSERT_TRUE(server.listening()) << server.error();
  SharedRequestText() = "POST /cgi/a?x=1";
  EXPECT_EQ(PostRequest(), 0);  // no host: ends at once, the text as it was
  EXPECT_EQ(SharedRequestText(), "POST /cgi/a?x=1");
  EXPECT_FALSE(FileExists(dir.File("datahtml\\ReciveData.htm")));

  SharedDownloadRequest().host = "127.0.0.1";
  SharedDownloadRequest().path = "/last/page.htm";  // left by the page download
  EXPECT_EQ(PostRequest(), 0);
  EXPECT_EQ(server.Requests(), Texts{"POST /cgi/a?x=1 HTTP/1.0\r\nCONTENT-LENGTH: 42\r\n\r\n"});
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

TEST_F(Fetchpage, GetPrintsTheLocalFileAndPostTheStatus) {
  const std::string page = "HTTP/1.0 200 OK\r\n\r\n<html>page</html>\n";
  LoopbackServer server({{page}});
  ASSERT_TRUE(server.listening()) << server.error();
  const ToolRun get = RunFetchpage(dir, "http://127.0.0.1/tool/page.htm \"" + dir.path() + "\"");
  EXPECT_EQ(get.exitCode, 0);
  EXPECT_EQ(get.out, dir.File("127.0.0.1.page.htm.htm") + "\n");
  EXPECT_EQ(get.err, "Connecting to: 127.0.0.1/tool/page.htm\r\n" + kSent + kDone + "\n");
  EXPECT_EQ(ReadText(dir.File("127.0.0.1.page.htm.htm")), TextMode(page));

  CreateDirectoryA(dir.File("datahtml").c_str(), nullptr);
  const ToolRun post =
      RunFetchpage(dir, "--post 127.0.0.1 \"POST /cgi/a?x=1\" \"" + dir.path() + "\\\\\"");
  EXPECT_EQ(post.exitCode, 0);
  EXPECT_EQ(post.out, "");
  EXPECT_EQ(post.err, "Connecting to: 127.0.0.1\r\n" + kSent + kDone + "\n");
  EXPECT_EQ(server.Requests(), (Texts{"GET http://127.0.0.1/tool/page.htm HTTP/1.0\r\n" + kAccept,
                                      "POST /cgi/a?x=1 HTTP/1.0\r\nCONTENT-LENGTH: 42\r\n\r\n"}));
  EXPECT_EQ(ReadText(dir.File("datahtml\\ReciveData.htm")), TextMode(page));

  const ToolRun local = RunFetchpage(dir, "C:\\page.htm \"" + dir.path() + "\"");
  EXPECT_EQ(local.exitCode, 2);
  EXPECT_NE(local.err.find("not a web address"), std::string::npos);
  EXPECT_EQ(RunFetchpage(dir, "--post 127.0.0.1").exitCode, 2);
}

TEST_F(Acquire, CompactConfigHtmlCommandDropsDeletedLinks) {
  const std::string kept = dir.File("kept.htm"), header = std::string(kRegistryHeader) + "\r\n";
  WriteText(kept, "<html></html>");
  WriteText(dir.File(kRegistryFileName), header + "www.gone.com/\r\n" + dir.File("gone.htm") +
                                             "\r\nwww.kept.com/\r\n" + kept + "\r\n");

  EXPECT_EQ(LookupCommand(kMainCommandMap, nullptr, MAKEWPARAM(IDM_COMPACT_CONFIGHTML, 0), 0), 0);
  EXPECT_EQ(ReadText(dir.File(kRegistryFileName)), header + "www.kept.com/\r\n" + kept + "\r\n");
}

}  // namespace
}  // namespace qb::test
