// A browser window that stops answering: a top-level window titled as the scan
// tests' browser, with an address bar, whose thread then stops pumping messages.
// It signals the event named by its first argument once the window is shown and
// hangs until the event named by its second one is set (at most a minute).
#include <windows.h>

int main(int argc, char** argv) {
  if (argc < 3) return 1;
  constexpr DWORD kLongestHangMs = 60000;
  WNDCLASSA wc{};
  wc.lpfnWndProc = DefWindowProcA;
  wc.hInstance = GetModuleHandleA(nullptr);
  wc.lpszClassName = "QbHungBrowser";
  RegisterClassA(&wc);
  HWND window = CreateWindowExA(0, wc.lpszClassName, "Hung - Test Browser", WS_OVERLAPPEDWINDOW | WS_VISIBLE,
                                10, 10, 300, 120, nullptr, nullptr, wc.hInstance, nullptr);
  CreateWindowExA(0, "Edit", "http://127.0.0.1/hung.htm", WS_CHILD | WS_VISIBLE, 0, 0, 250, 20, window, nullptr,
                  wc.hInstance, nullptr);
  MSG msg;
  while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&msg);
  HANDLE ready = OpenEventA(EVENT_MODIFY_STATE, FALSE, argv[1]);
  HANDLE stop = OpenEventA(SYNCHRONIZE, FALSE, argv[2]);
  if (!ready || !stop) return 1;
  SetEvent(ready);
  WaitForSingleObject(stop, kLongestHangMs);
  return 0;
}
