// Fonts, icons, colours and brushes that the main window creates once and the
// views and bars draw with.
#pragma once

#include <windows.h>

namespace qb {

struct FrameGdi {
  HFONT smallFont = nullptr;  // 11 pixels high, 5 wide
  HFONT font = nullptr;       // 13 pixels high, 5 wide
  HICON hiddenIcon = nullptr;      // "ICON_HIDDEN"
  HICON rootFolderIcon = nullptr;  // "BFOLDER_ROOT"
  HICON openFolderIcon = nullptr;  // "BFOLDER_ON"
  HICON keyIcon = nullptr;         // "KEY_ICON", 16 x 16: every row of the Keys view
  COLORREF highlight = 0;   // COLOR_3DHILIGHT
  COLORREF menu = 0;        // COLOR_MENU
  COLORREF grayText = 0;    // COLOR_GRAYTEXT
  COLORREF darkShadow = 0;  // COLOR_3DDKSHADOW
  HBRUSH lightYellowBrush = nullptr;
  HBRUSH darkBlueBrush = nullptr;
  HBRUSH menuBrush = nullptr;
  HBRUSH highlightBrush = nullptr;
};

constexpr COLORREF kLightYellow = 0xC0FFFF;
constexpr COLORREF kDarkBlue = 0x800000;

FrameGdi& Gdi();
void CreateFrameGdi(HINSTANCE instance);
// Takes the system colours again and remakes the brushes made from them.
void RefreshFrameColours();
void ReleaseFrameGdi();

}  // namespace qb
