// Drawing of the docking bars, shared by both bar classes.
#pragma once

#include <windows.h>

#include "bars/dock_bar.h"

namespace qb {

constexpr int kImageSize = 16;  // pictures in the bitmaps, side by side
constexpr int kButtonSize = 22;
constexpr int kImageInset = (kButtonSize - kImageSize) / 2;
constexpr int kLabelGap = 3;  // between a button's picture and its caption
constexpr int kGripBarWidth = 3;
constexpr int kGripGap = 1;

struct BarPictures {
  HBITMAP colour = nullptr;  // transparent parts black
  HBITMAP mask = nullptr;    // 1 where transparent
  HBITMAP emboss = nullptr;  // 0 where a greyed picture shows its outline
  int count = 0;
};

// The pictures of bitmap `imagesId` with their mask `maskId` (white where
// transparent); all null when either is missing or they do not match.
BarPictures LoadBarPictures(HINSTANCE instance, int imagesId, int maskId);

HFONT BarFont();
void PaintBar(const DockBar& bar, HDC dc, const RECT& client);

}  // namespace qb
