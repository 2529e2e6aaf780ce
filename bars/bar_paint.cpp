// Drawing of the docking bars: their pictures (colour, transparency and the
// etched look of a greyed button, all made from the two bitmaps), grips,
// separators and buttons.
#include "bars/bar_paint.h"

#include <cstdint>
#include <vector>


namespace qb {
namespace {

constexpr BYTE kEmbossBelowLuma = 128;  // darker pixels make a greyed picture's outline
constexpr DWORD kPatternWhereSourceBlack = 0x00B8074A;  // PSDPxax

// 32-bit pixels, rows from the top.
BITMAPINFO TopDown32(int width, int height) {
  BITMAPINFO bi{};
  bi.bmiHeader.biSize = sizeof(bi.bmiHeader);
  bi.bmiHeader.biWidth = width;
  bi.bmiHeader.biHeight = -height;
  bi.bmiHeader.biPlanes = 1;
  bi.bmiHeader.biBitCount = 32;
  bi.bmiHeader.biCompression = BI_RGB;
  return bi;
}

std::vector<std::uint32_t> PixelsOf(HBITMAP bitmap, int width, int height) {
  std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width) * height);
  BITMAPINFO bi = TopDown32(width, height);
  HDC screen = GetDC(nullptr);
  const int rows = GetDIBits(screen, bitmap, 0, height, pixels.data(), &bi, DIB_RGB_COLORS);
  ReleaseDC(nullptr, screen);
  if (rows != height) pixels.clear();
  return pixels;
}

// A monochrome bitmap with 1 (white) where `white(i)` holds.
template <typename Pred>
HBITMAP MonochromeFrom(int width, int height, Pred white) {
  const int stride = ((width + 15) / 16) * 2;  // CreateBitmap rows are WORD aligned
  std::vector<BYTE> bits(static_cast<std::size_t>(stride) * height, 0);
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x)
      if (white(static_cast<std::size_t>(y) * width + x))
        bits[static_cast<std::size_t>(y) * stride + x / 8] |= static_cast<BYTE>(0x80 >> (x % 8));
  return CreateBitmap(width, height, 1, 1, bits.data());
}

int Luma(std::uint32_t bgr) {
  const int b = bgr & 0xFF, g = (bgr >> 8) & 0xFF, r = (bgr >> 16) & 0xFF;
  return (r * 30 + g * 59 + b * 11) / 100;
}

void DrawPicture(HDC dc, const DockBar& bar, int image, int x, int y, bool enabled) {
  if (image < 0 || image >= bar.imageCount) return;
  HDC mem = CreateCompatibleDC(dc);
  const COLORREF oldBk = SetBkColor(dc, RGB(255, 255, 255));
  const COLORREF oldText = SetTextColor(dc, RGB(0, 0, 0));
  const int sx = image * kImageSize;
  HGDIOBJ oldBitmap;
  if (enabled) {
    oldBitmap = SelectObject(mem, bar.mask);
    BitBlt(dc, x, y, kImageSize, kImageSize, mem, sx, 0, SRCAND);
    SelectObject(mem, bar.images);
    BitBlt(dc, x, y, kImageSize, kImageSize, mem, sx, 0, SRCPAINT);
  } else {
    // Etched: the outline in highlight one pixel down and right, then in shadow.
    oldBitmap = SelectObject(mem, bar.emboss);
    HGDIOBJ oldBrush = SelectObject(dc, GetSysColorBrush(COLOR_3DHILIGHT));
    BitBlt(dc, x + 1, y + 1, kImageSize, kImageSize, mem, sx, 0, kPatternWhereSourceBlack);
    SelectObject(dc, GetSysColorBrush(COLOR_3DSHADOW));
    BitBlt(dc, x, y, kImageSize, kImageSize, mem, sx, 0, kPatternWhereSourceBlack);
    SelectObject(dc, oldBrush);
  }
  SelectObject(mem, oldBitmap);
  DeleteDC(mem);
  SetBkColor(dc, oldBk);
  SetTextColor(dc, oldText);
}

void FillChecked(HDC dc, const RECT& r) {
  // The dithered face of a button that stays down.
  static const WORD kDither[8] = {0x55, 0xAA, 0x55, 0xAA, 0x55, 0xAA, 0x55, 0xAA};
  HBITMAP pattern = CreateBitmap(8, 8, 1, 1, kDither);
  HBRUSH brush = CreatePatternBrush(pattern);
  const COLORREF oldText = SetTextColor(dc, GetSysColor(COLOR_3DHILIGHT));
  const COLORREF oldBk = SetBkColor(dc, GetSysColor(COLOR_BTNFACE));
  FillRect(dc, &r, brush);
  SetTextColor(dc, oldText);
  SetBkColor(dc, oldBk);
  DeleteObject(brush);
  DeleteObject(pattern);
}

void PaintButton(HDC dc, const DockBar& bar, int i, RECT r) {
  const BarButton& b = bar.kind->buttons[i];
  const bool enabled = BarCommandAvailable(b.command);
  const bool checked = bar.rows[RowOfButton(i)].pressed;
  const bool down = bar.held == i && bar.heldInside;
  const bool hot = bar.hot == i && enabled && bar.held < 0 && !bar.suppressPaint;
  const bool empty = bar.kind->looksEmpty && bar.kind->looksEmpty(i);

  if (checked && !down) FillChecked(dc, r);
  if (down || checked) DrawEdge(dc, &r, BDR_SUNKENOUTER, BF_RECT);
  else if (hot) DrawEdge(dc, &r, BDR_RAISEDINNER, BF_RECT);

  const int shift = down || checked ? 1 : 0;
  const int x = r.left + kImageInset + shift;
  const int y = r.top + kImageInset + shift;
  DrawPicture(dc, bar, b.image, x, y, enabled && !empty);

  if (bar.kind->label && IsHorizontal(bar)) {
    RECT text{x + kImageSize + kLabelGap, r.top + shift, r.right - kImageInset + shift,
              r.bottom + shift};
    const std::string label = bar.kind->label(i);
    HGDIOBJ oldFont = SelectObject(dc, BarFont());
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, GetSysColor(enabled && !empty ? COLOR_BTNTEXT : COLOR_GRAYTEXT));
    DrawTextA(dc, label.c_str(), static_cast<int>(label.size()), &text,
              DT_SINGLELINE | DT_VCENTER | DT_LEFT | DT_END_ELLIPSIS | DT_NOPREFIX);
    SelectObject(dc, oldFont);
  }
}

}  // namespace

HFONT BarFont() { return static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT)); }

// The bitmap pair as the bar draws it: the mask resource is white where the
// picture is transparent.
BarPictures LoadBarPictures(HINSTANCE instance, int imagesId, int maskId) {
  BarPictures out;
  auto load = [&](int id) {
    return static_cast<HBITMAP>(
        LoadImageA(instance, MAKEINTRESOURCEA(id), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION));
  };
  HBITMAP images = load(imagesId);
  HBITMAP mask = load(maskId);
  BITMAP info{}, maskInfo{};
  if (images && mask && GetObjectA(images, sizeof(info), &info) &&
      GetObjectA(mask, sizeof(maskInfo), &maskInfo) && info.bmWidth == maskInfo.bmWidth &&
      info.bmHeight == maskInfo.bmHeight && info.bmHeight == kImageSize) {
    const int w = info.bmWidth, h = info.bmHeight;
    std::vector<std::uint32_t> colour = PixelsOf(images, w, h);
    const std::vector<std::uint32_t> holes = PixelsOf(mask, w, h);
    if (!colour.empty() && !holes.empty()) {
      auto transparent = [&](std::size_t i) { return (holes[i] & 0xFFFFFF) == 0xFFFFFF; };
      for (std::size_t i = 0; i < colour.size(); ++i)
        if (transparent(i)) colour[i] = 0;
      out.mask = MonochromeFrom(w, h, transparent);
      out.emboss = MonochromeFrom(w, h, [&](std::size_t i) {
        return transparent(i) || Luma(colour[i]) >= kEmbossBelowLuma;
      });
      BITMAPINFO bi = TopDown32(w, h);
      HDC screen = GetDC(nullptr);
      out.colour = CreateCompatibleBitmap(screen, w, h);
      if (out.colour) SetDIBits(screen, out.colour, 0, h, colour.data(), &bi, DIB_RGB_COLORS);
      ReleaseDC(nullptr, screen);
      out.count = w / kImageSize;
    }
  }
  if (images) DeleteObject(images);
  if (mask) DeleteObject(mask);
  if (!out.colour || !out.mask || !out.emboss) {
    for (HBITMAP b : {out.colour, out.mask, out.emboss})
      if (b) DeleteObject(b);
    return BarPictures{};
  }
  return out;
}

void PaintBar(const DockBar& bar, HDC dc, const RECT& client) {
  FillRect(dc, &client, GetSysColorBrush(COLOR_BTNFACE));
  if (IsDocked(bar)) {
    RECT edge = client;
    DrawEdge(dc, &edge, BDR_RAISEDINNER, BF_RECT);
  }
  const RECT grip = BarGripRect(bar);
  for (int k = 0; k < 2; ++k) {
    RECT g = grip;
    if (IsHorizontal(bar)) {
      g.left += k * (kGripBarWidth + kGripGap);
      g.right = g.left + kGripBarWidth;
    } else {
      g.top += k * (kGripBarWidth + kGripGap);
      g.bottom = g.top + kGripBarWidth;
    }
    DrawEdge(dc, &g, BDR_RAISEDINNER, BF_RECT);
  }
  const std::vector<RECT> rects = BarButtonRects(bar);
  for (int i = 0; i < static_cast<int>(rects.size()); ++i) {
    if (!IsSeparator(bar, i)) {
      PaintButton(dc, bar, i, rects[i]);
      continue;
    }
    // An etched line across the middle of the gap.
    RECT line = rects[i];
    if (IsHorizontal(bar)) {
      line.left += (line.right - line.left) / 2 - 1;
      line.right = line.left + 2;
    } else {
      line.top += (line.bottom - line.top) / 2 - 1;
      line.bottom = line.top + 2;
    }
    DrawEdge(dc, &line, EDGE_ETCHED, IsHorizontal(bar) ? BF_LEFT : BF_TOP);
  }
}


}  // namespace qb
