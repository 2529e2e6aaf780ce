#include "app/menu_state.h"

#include <array>

#include "app/frame.h"
#include "app/layout.h"
#include "bars/dock_bar.h"
#include "bars/status_bar.h"
#include "base/app_state.h"
#include "keys/key_table.h"
#include "resources/resource.h"

namespace qb {
namespace {

// The help line of the highlighted item; it keeps its text when a load finds none.
std::array<char, kMenuHelpMax + 1> g_statusText{};

enum Fact : int {
  kKeysPresent,
  kDatabaseModified,
  kKeyCopied,
  kToolBarShown,
  kDatabaseBarShown,
  kLinksViewShown,
  kKeysViewShown,
  kStatusBarShown,
  kNotOnTop,
  kOnTop,
  kArrangedHorizontally,
  kArrangedVertically,
  kFactCount,
};

using Facts = std::array<bool, kFactCount>;

bool BarShown(const DockBar& bar) { return bar.state == kBarDocked || bar.state == kBarFloating; }

Facts CurrentFacts() {
  const AppSettings& s = Settings();
  Facts f{};
  f[kKeysPresent] = Keys().count > 0;
  f[kDatabaseModified] = DatabaseChanged();
  f[kKeyCopied] = CopiedKeyIndex() != kNoCopiedKey;
  f[kToolBarShown] = BarShown(ToolBarDescriptor());
  f[kDatabaseBarShown] = BarShown(DatabaseBarDescriptor());
  f[kLinksViewShown] = Layout().linksShown;
  f[kKeysViewShown] = Layout().keysShown;
  f[kStatusBarShown] = StatusBar().shown;
  f[kNotOnTop] = s.onTop != 1;
  f[kOnTop] = s.onTop == 1;
  f[kArrangedHorizontally] = s.arrangement == kHorizontal;
  f[kArrangedVertically] = s.arrangement == kVertical;
  return f;
}

enum RuleKind : int { kGreyUnless, kCheckWhen };

struct MenuRule {
  RuleKind kind;
  WORD first;
  WORD last;
  Fact fact;
};

// Applied in this order; a later line overrides an earlier one for the same item.
// "&New database" and "&Open database" stay grey while the database is empty, and
// "&Paste key" is available whenever a key was copied, even into an empty one.
const MenuRule kMenuRules[] = {
    {kGreyUnless, IDM_NEW_DATABASE,      IDM_SAVEAS_DATABASE,   kKeysPresent},
    {kGreyUnless, IDM_SAVE_DATABASE,     IDM_SAVE_DATABASE,     kDatabaseModified},
    {kCheckWhen,  IDM_TOOL_BAR,          IDM_TOOL_BAR,          kToolBarShown},
    {kCheckWhen,  IDM_DATABASES_BAR,     IDM_DATABASES_BAR,     kDatabaseBarShown},
    {kCheckWhen,  IDM_KEY_WINDOW,        IDM_KEY_WINDOW,        kLinksViewShown},
    {kCheckWhen,  IDM_LINK_WINDOW,       IDM_LINK_WINDOW,       kKeysViewShown},
    {kCheckWhen,  IDM_STATUS_BAR,        IDM_STATUS_BAR,        kStatusBarShown},
    {kGreyUnless, IDM_ADD_KEY,           IDM_DELETE_KEY,        kKeysPresent},
    {kGreyUnless, IDM_PASTE_KEY,         IDM_PASTE_KEY,         kKeyCopied},
    {kGreyUnless, IDM_DELETE_DATABASE,   IDM_DELETE_DATABASE,   kKeysPresent},
    {kCheckWhen,  IDM_WINDOW_NORMAL,     IDM_WINDOW_NORMAL,     kNotOnTop},
    {kCheckWhen,  IDM_WINDOW_ONTOP,      IDM_WINDOW_ONTOP,      kOnTop},
    {kCheckWhen,  IDM_WINDOW_HORIZONTAL, IDM_WINDOW_HORIZONTAL, kArrangedHorizontally},
    {kCheckWhen,  IDM_WINDOW_VERTICAL,   IDM_WINDOW_VERTICAL,   kArrangedVertically},
};

}  // namespace

bool CommandAvailable(WORD id) {
  const Facts facts = CurrentFacts();
  bool available = true;
  for (const MenuRule& rule : kMenuRules)
    if (rule.kind == kGreyUnless && id >= rule.first && id <= rule.last)
      available = facts[rule.fact];
  return available;
}

void ApplyMenuState(HMENU menu) {
  const Facts facts = CurrentFacts();
  for (const MenuRule& rule : kMenuRules) {
    const bool yes = facts[rule.fact];
    for (UINT id = rule.first; id <= rule.last; ++id) {
      if (rule.kind == kGreyUnless)
        EnableMenuItem(menu, id, MF_BYCOMMAND | (yes ? MF_ENABLED : MF_GRAYED));
      else
        CheckMenuItem(menu, id, MF_BYCOMMAND | (yes ? MF_CHECKED : MF_UNCHECKED));
    }
  }
}

LRESULT OnMainInitMenu(HWND window, UINT, WPARAM wParam, LPARAM) {
  HMENU menu = reinterpret_cast<HMENU>(wParam);
  if (menu != GetMenu(window)) return 1;  // a pop-up menu of a list view
  ApplyMenuState(menu);
  return 0;
}

LRESULT OnMainMenuSelect(HWND, UINT, WPARAM wParam, LPARAM lParam) {
  const WORD item = LOWORD(wParam);
  const WORD flags = HIWORD(wParam);
  const bool closing = flags == 0xFFFF && lParam == 0;
  if (!closing && !(flags & MF_SEPARATOR)) {
    // A pop-up title passes its position as the item; no help line has such an id.
    LoadStringA(App().instance ? App().instance : GetModuleHandleA(nullptr), item,
                g_statusText.data(), static_cast<int>(g_statusText.size()));
  } else {
    std::snprintf(g_statusText.data(), g_statusText.size(), "%s", kMenuClosedText);
  }
  SetStatusText(g_statusText.data());
  return 0;
}

}  // namespace qb
