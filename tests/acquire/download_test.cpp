// The download dialog over real sockets, against a scripted server on
// 127.0.0.1:80 in this process.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "acquire/acquire_state.h"
#include "acquire/download_dialog.h"
#include "app/app_state.h"
#include "app/frame.h"
#include "tests/acquire/transfer_helpers.h"
#include "tests/support/loopback_server.h"
#include "tests/support/temp_dir.h"

namespace qb {
namespace {

using test::FileExists;
using test::LoopbackReply;
using test::LoopbackServer;
using test::ReadText;
using test::StatusRecorder;
using test::TempDir;
using test::TextMode;

const std::string kSent = "Connecting........OK\r\nReciving........\r\n";
const std::string kDone = "Downloaded OK\nClosing connection.....";

bool EndsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

class Download : public ::testing::Test {
 protected:
  void SetUp() override {
    SetProgramDirectory(dir.path());
    App().dataHtmlDir = dir.path() + "\\DataHtml\\";
    SetCurrentLinksFolder(dir.path() + "\\");
    SharedDownloadRequest() = DownloadRequest{};
    SharedRequestText().clear();
  }

  // A paced server: the recorder lets each next chunk go once the dialog shows
  // the count of the one before.
  static std::function<void(const std::string&)> ContinueOnCount(LoopbackServer& server) {
    return [&server](const std::string& text) {
      if (EndsWith(text, " Bytes")) server.Continue();
    };
  }

  TempDir dir;
};

TEST_F(Download, SavesTheWholeResponseWithOneGrowingCountLine) {
  const std::vector<std::string> chunks = {
      "HTTP/1.0 200 OK\r\nContent-Type: text/html\r\n\r\n",
      "<html><body>\n<form method=\"post\" action=\"/cgi/order\">\n",
      // A zero byte ends what is written of its chunk.
      std::string("<input type=\"text\" name=\"email\">\n</form></body></html>\n\0tail", 60),
  };
  LoopbackServer server({chunks, /*paced=*/true});
  ASSERT_TRUE(server.listening()) << server.error();
  ASSERT_EQ(PreparePageDownload("http://127.0.0.1/shop/form.asp?item=7"), PrepareStatus::kReady);
  StatusRecorder recorder(ContinueOnCount(server));

  EXPECT_EQ(DownloadPage(), 0);

  ASSERT_EQ(server.Requests().size(), 1u);
  EXPECT_EQ(server.Requests()[0],
            "GET http://127.0.0.1/shop/form.asp HTTP/1.0\r\nAccept:text/plain\r\n"
            "Accept:text/html\r\nAccept:*/*\r\n\r\n");
  const std::string file = dir.File("127.0.0.1.form.asp.htm");
  EXPECT_EQ(SharedDownloadRequest().localFile, file);
  EXPECT_EQ(ReadText(file), TextMode(chunks[0] + chunks[1] + chunks[2].substr(0, chunks[2].find('\0'))));

  const std::string connecting = "Connecting to: 127.0.0.1/shop/form.asp\r\n";
  const std::string receiving = connecting + kSent;
  std::vector<std::string> expected = {connecting, connecting + "Connecting........",
                                       connecting + "Connecting........OK\r\n", receiving};
  std::size_t total = 0;
  for (const std::string& chunk : chunks) {
    total += chunk.size();
    expected.push_back(receiving + std::to_string(total) + " Bytes");
  }
  expected.push_back(receiving + kDone);
  EXPECT_EQ(recorder.texts, expected);
  EXPECT_EQ(LastDownloadStatus(), expected.back());

  EXPECT_EQ(recorder.caption, "Quellbarrow - Downloading HTML document");
  EXPECT_EQ(recorder.groupText, "Downloading HTML document status:");
  EXPECT_TRUE(recorder.editStyle & ES_MULTILINE);
  EXPECT_TRUE(recorder.editStyle & ES_READONLY);
}

TEST_F(Download, EmptyResponseGivesAnEmptyFileAndStillCompletes) {
  LoopbackServer server({});
  ASSERT_TRUE(server.listening()) << server.error();
  ASSERT_EQ(PreparePageDownload("www.example.com"), PrepareStatus::kReady);
  // "www.example.com" resolves elsewhere; this test only needs the empty reply.
  SharedDownloadRequest().host = "127.0.0.1";

  EXPECT_EQ(DownloadPage(), 0);
  ASSERT_EQ(server.Requests().size(), 1u);
  EXPECT_EQ(server.Requests()[0].substr(0, 37), "GET http://127.0.0.1 HTTP/1.0\r\nAccept");
  const std::string file = dir.File("example.com.index.htm.htm");
  ASSERT_TRUE(FileExists(file));
  EXPECT_EQ(ReadText(file), "");
  EXPECT_EQ(LastDownloadStatus(), "Connecting to: 127.0.0.1\r\n" + kSent + kDone);
}

TEST_F(Download, UnresolvableHostStopsAtTheFirstLineAndDeletesTheDiscardFile) {
  // The discard file is the address without scheme, relative to the working folder.
  CreateDirectoryA(dir.File("nosuchhost.invalid").c_str(), nullptr);
  test::WriteText(dir.File("nosuchhost.invalid\\gone.htm"), "x");
  std::string previous(MAX_PATH, '\0');
  previous.resize(GetCurrentDirectoryA(MAX_PATH, previous.data()));
  SetCurrentDirectoryA(dir.path().c_str());
  ASSERT_EQ(PreparePageDownload("http://nosuchhost.invalid/gone.htm"), PrepareStatus::kReady);
  StatusRecorder recorder;

  EXPECT_EQ(DownloadPage(), 0);
  SetCurrentDirectoryA(previous.c_str());

  EXPECT_EQ(recorder.texts, std::vector<std::string>{"Connecting to: nosuchhost.invalid/gone.htm\r\n"});
  const std::string file = dir.File("nosuchhost.invalid.gone.htm.htm");
  ASSERT_TRUE(FileExists(file));
  EXPECT_EQ(ReadText(file), "");
  EXPECT_FALSE(FileExists(dir.File("nosuchhost.invalid\\gone.htm")));
}

TEST_F(Download, ConnectionResetMidResponseKeepsThePartialFile) {
  LoopbackServer server({{"HTTP/1.0 200 OK\r\n\r\n<html>part"}, /*paced=*/true, /*reset=*/true});
  ASSERT_TRUE(server.listening()) << server.error();
  ASSERT_EQ(PreparePageDownload("http://127.0.0.1/cut.htm"), PrepareStatus::kReady);
  StatusRecorder recorder(ContinueOnCount(server));

  EXPECT_EQ(DownloadPage(), 0);
  EXPECT_EQ(ReadText(dir.File("127.0.0.1.cut.htm.htm")), "HTTP/1.0 200 OK\r\r\n\r\r\n<html>part");
  // The box stops at the last line shown: the count, never "Downloaded OK".
  EXPECT_EQ(LastDownloadStatus(), "Connecting to: 127.0.0.1/cut.htm\r\n" + kSent + "29 Bytes");
}

TEST_F(Download, LocalFileThatCannotBeCreatedTransfersNothing) {
  SetCurrentLinksFolder(dir.path() + "\\missing\\");
  ASSERT_EQ(PreparePageDownload("http://127.0.0.1/a.htm"), PrepareStatus::kReady);
  StatusRecorder recorder;

  EXPECT_EQ(DownloadPage(), 0);
  EXPECT_TRUE(recorder.texts.empty());
  EXPECT_EQ(recorder.caption, "Quellbarrow - Downloading HTML document");
  EXPECT_FALSE(FileExists(dir.File("missing")));
}

TEST_F(Download, PostSendsItsHeaderAndSavesTheResponseInDatahtml) {
  CreateDirectoryA(dir.File("datahtml").c_str(), nullptr);
  const std::string reply = "HTTP/1.0 200 OK\r\n\r\n<html>Thank you</html>\n";
  LoopbackServer server({{reply}});
  ASSERT_TRUE(server.listening()) << server.error();
  SharedDownloadRequest().host = "127.0.0.1";
  SharedDownloadRequest().path = "/last/page.htm";  // left by the page download
  SharedRequestText() = "POST /cgi/a?x=1";

  EXPECT_EQ(PostRequest(), 0);
  ASSERT_EQ(server.Requests().size(), 1u);
  EXPECT_EQ(server.Requests()[0], "POST /cgi/a?x=1 HTTP/1.0\r\nCONTENT-LENGTH: 42\r\n\r\n");
  EXPECT_EQ(ReadText(dir.File("datahtml\\ReciveData.htm")), TextMode(reply));
  EXPECT_EQ(LastDownloadStatus(), "Connecting to: 127.0.0.1/last/page.htm\r\n" + kSent + kDone);
}

TEST_F(Download, PostWithoutHostEndsAtOnce) {
  CreateDirectoryA(dir.File("datahtml").c_str(), nullptr);
  SharedRequestText() = "POST /cgi/a?x=1";
  StatusRecorder recorder;

  EXPECT_EQ(PostRequest(), 0);
  EXPECT_TRUE(recorder.texts.empty());
  EXPECT_EQ(SharedRequestText(), "POST /cgi/a?x=1");
  EXPECT_FALSE(FileExists(dir.File("datahtml\\ReciveData.htm")));
}

}  // namespace
}  // namespace qb
