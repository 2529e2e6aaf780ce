#include <gtest/gtest.h>

#ifdef _WIN32
#include <windows.h>
#include <commctrl.h>
#endif

int main(int argc, char** argv) {
#ifdef _WIN32
  INITCOMMONCONTROLSEX icc{sizeof(icc), ICC_WIN95_CLASSES};
  InitCommonControlsEx(&icc);
  // No "abort, retry, ignore" boxes from the C run-time under test.
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
#endif
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
