#include "base/frame_gdi.h"

namespace qb {
namespace {

HFONT MakeFont(int height, int width) {
  LOGFONTA lf{};
  lf.lfHeight = height;
  lf.lfWidth = width;
  lf.lfWeight = FW_NORMAL;
  lf.lfCharSet = DEFAULT_CHARSET;
  lf.lfOutPrecision = OUT_DEFAULT_PRECIS;
  lf.lfClipPrecision = CLIP_DEFAULT_PRECIS;
  lf.lfQuality = PROOF_QUALITY;
  lf.lfPitchAndFamily = FF_SWISS;
  return CreateFontIndirectA(&lf);
}

void FreeBrush(HBRUSH& brush) {
  if (brush) DeleteObject(brush);
  brush = nullptr;
}

}  // namespace

FrameGdi& Gdi() {
  static FrameGdi gdi;
  return gdi;
}

void CreateFrameGdi(HINSTANCE instance) {
  FrameGdi& g = Gdi();
  ReleaseFrameGdi();
  g.smallFont = MakeFont(11, 5);
  g.font = MakeFont(13, 5);
  g.hiddenIcon = LoadIconA(instance, "ICON_HIDDEN");
  g.rootFolderIcon = LoadIconA(instance, "BFOLDER_ROOT");
  g.openFolderIcon = LoadIconA(instance, "BFOLDER_ON");
  g.keyIcon = static_cast<HICON>(LoadImageA(instance, "KEY_ICON", IMAGE_ICON, 16, 16, LR_SHARED));
  g.lightYellowBrush = CreateSolidBrush(kLightYellow);
  g.darkBlueBrush = CreateSolidBrush(kDarkBlue);
  RefreshFrameColours();
}

void RefreshFrameColours() {
  FrameGdi& g = Gdi();
  g.highlight = GetSysColor(COLOR_3DHILIGHT);
  g.menu = GetSysColor(COLOR_MENU);
  g.grayText = GetSysColor(COLOR_GRAYTEXT);
  g.darkShadow = GetSysColor(COLOR_3DDKSHADOW);
  FreeBrush(g.menuBrush);
  FreeBrush(g.highlightBrush);
  g.menuBrush = CreateSolidBrush(g.menu);
  g.highlightBrush = CreateSolidBrush(g.highlight);
}

void ReleaseFrameGdi() {
  FrameGdi& g = Gdi();
  if (g.smallFont) DeleteObject(g.smallFont);
  if (g.font) DeleteObject(g.font);
  g.smallFont = g.font = nullptr;
  // Icons from resources are shared and need no freeing.
  g.hiddenIcon = g.rootFolderIcon = g.openFolderIcon = g.keyIcon = nullptr;
  FreeBrush(g.lightYellowBrush);
  FreeBrush(g.darkBlueBrush);
  FreeBrush(g.menuBrush);
  FreeBrush(g.highlightBrush);
}

}  // namespace qb
