// fetchpage's fixed command line, run as its own process against the scripted
// server of this process.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/acquire/transfer_helpers.h"
#include "tests/support/temp_dir.h"

namespace qb::test {
namespace {

using Texts = std::vector<std::string>;

struct ToolRun {
  DWORD exitCode = 0;
  std::string out, err;
};

// Runs the tool in `dir` with its stdout and stderr in files there.
ToolRun RunFetchpage(const TempDir& dir, const std::string& arguments) {
  // The build's path, seen through Wine's drive for "/".
  std::string exe = "Z:" + std::string(QB_FETCHPAGE_EXE);
  std::replace(exe.begin(), exe.end(), '/', '\\');
  SECURITY_ATTRIBUTES inherit{sizeof(inherit), nullptr, TRUE};
  const auto output = [&](const char* name) {
    return CreateFileA(dir.File(name).c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherit,
                       CREATE_ALWAYS, 0, nullptr);
  };
  STARTUPINFOA startup{};
  startup.cb = sizeof(startup);
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdOutput = output("stdout.txt");
  startup.hStdError = output("stderr.txt");
  std::string commandLine = "\"" + exe + "\" " + arguments;
  PROCESS_INFORMATION process{};
  const BOOL started = CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0,
                                      nullptr, dir.path().c_str(), &startup, &process);
  CloseHandle(startup.hStdOutput);
  CloseHandle(startup.hStdError);
  ToolRun run;
  EXPECT_TRUE(started) << commandLine;
  if (!started) return run;
  EXPECT_EQ(WaitForSingleObject(process.hProcess, 60000), WAIT_OBJECT_0);
  GetExitCodeProcess(process.hProcess, &run.exitCode);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  run.out = ReadText(dir.File("stdout.txt"));
  run.err = ReadText(dir.File("stderr.txt"));
  return run;
}

const std::string kReceived =
    "Connecting........OK\r\nReciving........\r\nDownloaded OK\nClosing connection.....\n";

TEST(Fetchpage, GetPrintsTheLocalFileAndPostTheStatus) {
  TempDir dir;
  const std::string page = "HTTP/1.0 200 OK\r\n\r\n<html>page</html>\n";
  {
    LoopbackServer server({{page}});
    ASSERT_TRUE(server.listening()) << server.error();
    const ToolRun get = RunFetchpage(dir, "http://127.0.0.1/tool/page.htm \"" + dir.path() + "\"");
    EXPECT_EQ(get.exitCode, 0u);
    EXPECT_EQ(get.out, dir.File("127.0.0.1.page.htm.htm") + "\n");
    EXPECT_EQ(get.err, "Connecting to: 127.0.0.1/tool/page.htm\r\n" + kReceived);
    EXPECT_EQ(ReadText(dir.File("127.0.0.1.page.htm.htm")), TextMode(page));
  }
  {
    CreateDirectoryA(dir.File("datahtml").c_str(), nullptr);
    LoopbackServer server({{page}});
    ASSERT_TRUE(server.listening()) << server.error();
    const ToolRun post =
        RunFetchpage(dir, "--post 127.0.0.1 \"POST /cgi/a?x=1\" \"" + dir.path() + "\\\\\"");
    EXPECT_EQ(post.exitCode, 0u);
    EXPECT_EQ(post.out, "");
    EXPECT_EQ(post.err, "Connecting to: 127.0.0.1\r\n" + kReceived);
    EXPECT_EQ(server.Requests(), Texts{"POST /cgi/a?x=1 HTTP/1.0\r\nCONTENT-LENGTH: 42\r\n\r\n"});
    EXPECT_EQ(ReadText(dir.File("datahtml\\ReciveData.htm")), TextMode(page));
  }
  const ToolRun local = RunFetchpage(dir, "C:\\page.htm \"" + dir.path() + "\"");
  EXPECT_EQ(local.exitCode, 2u);
  EXPECT_NE(local.err.find("not a web address"), std::string::npos);
  EXPECT_EQ(RunFetchpage(dir, "--post 127.0.0.1").exitCode, 2u);
}

}  // namespace
}  // namespace qb::test
