// Prints the system clipboard's text, as another program pasting it would get it.
#include <windows.h>

#include <cstdio>

int main() {
  if (!OpenClipboard(nullptr)) return 1;
  int rc = 2;
  if (HANDLE data = GetClipboardData(CF_TEXT)) {
    if (const char* text = static_cast<const char*>(GlobalLock(data))) {
      std::fputs(text, stdout);
      rc = 0;
      GlobalUnlock(data);
    }
  }
  CloseClipboard();
  return rc;
}
