// Start-up time of Quellbarrow beside a minimal Win32 program, both started the
// same way under the same system: from CreateProcess until the new process waits
// for input with its message queue empty (its window drawn), as WaitForInputIdle
// reports it. Each run then closes the program through its window.
//   startup_bench RUNS QUELLBARROW.EXE MINIMAL.EXE
// Quellbarrow starts in a fresh folder with a settings file, so no first-run
// message box holds it up.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "app/settings_file.h"

namespace {

constexpr DWORD kIdleTimeoutMs = 30000;
constexpr DWORD kExitTimeoutMs = 10000;
// After a program has ended, the system still tidies up after it for a moment;
// the next start waits so as not to pay for that.
constexpr DWORD kSettleMs = 300;

struct Program {
  std::string label;
  std::string exe;
  std::vector<double> ms;
};

BOOL CALLBACK CloseWindowsOf(HWND window, LPARAM pid) {
  DWORD owner = 0;
  GetWindowThreadProcessId(window, &owner);
  if (owner == static_cast<DWORD>(pid) && IsWindowVisible(window))
    PostMessageA(window, WM_CLOSE, 0, 0);
  return TRUE;
}

// Milliseconds from process creation to its first idle wait; negative on failure.
double StartOnce(const std::string& exe, const std::string& folder) {
  STARTUPINFOA si{};
  si.cb = sizeof(si);
  si.dwFlags = STARTF_USESHOWWINDOW;
  si.wShowWindow = SW_SHOWNORMAL;
  PROCESS_INFORMATION pi{};
  std::string command = "\"" + exe + "\"";
  LARGE_INTEGER frequency, start, idle;
  QueryPerformanceFrequency(&frequency);
  QueryPerformanceCounter(&start);
  if (!CreateProcessA(exe.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr,
                      folder.c_str(), &si, &pi))
    return -1;
  const DWORD waited = WaitForInputIdle(pi.hProcess, kIdleTimeoutMs);
  QueryPerformanceCounter(&idle);
  EnumWindows(CloseWindowsOf, static_cast<LPARAM>(pi.dwProcessId));
  if (WaitForSingleObject(pi.hProcess, kExitTimeoutMs) != WAIT_OBJECT_0)
    TerminateProcess(pi.hProcess, 1);
  CloseHandle(pi.hThread);
  CloseHandle(pi.hProcess);
  Sleep(kSettleMs);
  if (waited != 0) return -1;
  return 1000.0 * static_cast<double>(idle.QuadPart - start.QuadPart) /
         static_cast<double>(frequency.QuadPart);
}

std::string MakeFolder() {
  char temp[MAX_PATH] = {};
  GetTempPathA(MAX_PATH, temp);
  const std::string folder = std::string(temp) + "qb-startup-" + std::to_string(GetCurrentProcessId());
  CreateDirectoryA(folder.c_str(), nullptr);
  qb::AppSettings settings;
  settings.windowRect = qb::WindowRect{60, 40, 860, 560};
  std::snprintf(settings.slotNames[0].data(), qb::kSlotNameSize, "Data.dat");
  qb::WriteSettingsFile(folder + qb::kSettingsFileName, settings);
  return folder;
}

void Report(const Program& p) {
  std::vector<double> v = p.ms;
  std::sort(v.begin(), v.end());
  if (v.empty()) {
    std::printf("%-12s no successful run\n", p.label.c_str());
    return;
  }
  double sum = 0;
  for (double x : v) sum += x;
  std::printf("%-12s runs %zu  median %.1f ms  mean %.1f ms  min %.1f ms  max %.1f ms\n",
              p.label.c_str(), v.size(), v[v.size() / 2], sum / v.size(), v.front(), v.back());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: startup_bench RUNS QUELLBARROW.EXE MINIMAL.EXE\n");
    return 2;
  }
  const int runs = std::max(1, std::atoi(argv[1]));
  std::vector<Program> programs = {{"Quellbarrow", argv[2], {}}, {"minimal", argv[3], {}}};
  const std::string folder = MakeFolder();
  // One start of each first, not counted: the system's own caches warm up.
  for (Program& p : programs) StartOnce(p.exe, folder);
  // Alternating, so that both see the same conditions.
  for (int i = 0; i < runs; ++i)
    for (Program& p : programs) {
      const double ms = StartOnce(p.exe, folder);
      if (ms >= 0) p.ms.push_back(ms);
    }
  for (const Program& p : programs) Report(p);
  return 0;
}
