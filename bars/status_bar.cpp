#include "bars/status_bar.h"

#include <commctrl.h>

#include "base/relayout.h"
#include "resources/resource.h"

namespace qb {
namespace {

struct ProgressState {
  ProgressPlan plan;
  ProgressCounter counter;
  ProgressColumn column;
  HDC dc = nullptr;
  HBRUSH brush = nullptr;
  HGDIOBJ previousBrush = nullptr;
};

ProgressState& Progress() {
  static ProgressState state;
  return state;
}

void PaintColumn(ProgressState& p) {
  const int h = StatusBar().height;
  const RECT column{p.column.left(), kProgressInset, p.column.left() + 1, h - kProgressInset};
  FillRect(p.dc, &column, p.brush);
  // A full strip starts over on an empty bar.
  if (p.column.Advance(p.plan.extent)) SetStatusText(nullptr);
}

}  // namespace

StatusBarState& StatusBar() {
  static StatusBarState state;
  return state;
}

bool CreateStatusBar(HWND parent) {
  StatusBarState& bar = StatusBar();
  bar.shown = true;
  bar.window = CreateStatusWindowA(WS_CHILD | WS_VISIBLE | WS_BORDER, kStatusIdleText, parent,
                                   IDC_STATUS_BAR);
  if (!bar.window) return false;
  RECT r;
  GetWindowRect(bar.window, &r);
  bar.height = r.bottom - r.top;
  return true;
}

void SetStatusText(const char* text, int part, int type) {
  const StatusBarState& bar = StatusBar();
  if (!bar.shown || !bar.window) return;
  SendMessageA(bar.window, SB_SETTEXTA, static_cast<WPARAM>(part | type),
               reinterpret_cast<LPARAM>(text));
}

LRESULT OnStatusBarCommand(HWND window, WORD id, WORD code, LPARAM) {
  StatusBarState& bar = StatusBar();
  if (!bar.shown) {
    bar.shown = true;
    RECT client;
    GetClientRect(window, &client);
    SetWindowPos(bar.window, nullptr, client.left, client.bottom - bar.height, client.right,
                 bar.height, SWP_NOZORDER | SWP_SHOWWINDOW);
  } else {
    bar.shown = false;
    SetWindowPos(bar.window, nullptr, 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_HIDEWINDOW);
  }
  CheckMenuItem(GetMenu(window), id, MF_BYCOMMAND | (bar.shown ? MF_CHECKED : MF_UNCHECKED));
  if (code != kInternalCommand) RequestRelayout(window);
  return 0;
}

void ProgressBegin(int steps) {
  const StatusBarState& bar = StatusBar();
  if (!bar.shown || !bar.window) return;
  ProgressEnd();  // a strip still running gives back its device context first
  SetStatusText(nullptr);
  ProgressState& p = Progress();
  RECT client;
  GetClientRect(bar.window, &client);
  p.plan = PlanProgress(ProgressExtent(client.right), steps);
  p.counter = ProgressCounter{};
  p.column = ProgressColumn{};
  p.dc = GetDC(bar.window);
  p.brush = CreateSolidBrush(kProgressColour);
  p.previousBrush = SelectObject(p.dc, p.brush);
}

void ProgressStep() {
  ProgressState& p = Progress();
  if (!StatusBar().shown || !p.dc) return;
  for (int n = p.counter.Step(p.plan); n > 0; --n) PaintColumn(p);
}

void ProgressEnd() {
  ProgressState& p = Progress();
  if (!p.dc) return;
  if (p.previousBrush) SelectObject(p.dc, p.previousBrush);
  ReleaseDC(StatusBar().window, p.dc);
  DeleteObject(p.brush);
  p.dc = nullptr;
  p.brush = nullptr;
  p.previousBrush = nullptr;
  SetStatusText(kStatusIdleText);
}

const ProgressPlan& CurrentProgressPlan() { return Progress().plan; }
int ProgressNextColumn() { return Progress().column.left(); }

}  // namespace qb
