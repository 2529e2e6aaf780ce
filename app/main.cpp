#include <windows.h>

#include "app/frame.h"

int WINAPI WinMain(HINSTANCE instance, HINSTANCE previous, LPSTR, int showCommand) {
  return qb::QuellbarrowMain(instance, previous, showCommand);
}
