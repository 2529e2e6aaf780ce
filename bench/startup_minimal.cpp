// The yardstick for the start-up benchmark: a Win32 program that registers one
// class, creates and shows one window and runs its message loop, nothing more.
#include <windows.h>

namespace {

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_DESTROY) {
    PostQuitMessage(0);
    return 0;
  }
  return DefWindowProcA(window, message, wParam, lParam);
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int showCommand) {
  WNDCLASSA wc{};
  wc.lpfnWndProc = Procedure;
  wc.hInstance = instance;
  wc.hCursor = LoadCursor(nullptr, IDC_ARROW);
  wc.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1);
  wc.lpszClassName = "StartupMinimal";
  if (!RegisterClassA(&wc)) return 1;
  HWND window = CreateWindowExA(0, "StartupMinimal", "Minimal", WS_OVERLAPPEDWINDOW, 60, 40, 800,
                                520, nullptr, nullptr, instance, nullptr);
  if (!window) return 1;
  ShowWindow(window, showCommand);
  UpdateWindow(window);
  MSG msg;
  while (GetMessageA(&msg, nullptr, 0, 0) > 0) {
    TranslateMessage(&msg);
    DispatchMessageA(&msg);
  }
  return static_cast<int>(msg.wParam);
}
