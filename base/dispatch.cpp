#include "base/dispatch.h"

#include "base/app_state.h"

namespace qb {

LRESULT EndDialogCancelled(HWND dialog, WORD, WORD, LPARAM) {
  EndDialog(dialog, 0);
  return 1;
}

LRESULT LookupDialogNotify(const NotifyMap& map, HWND dialog, LPARAM lParam) {
  const NMHDR& header = *reinterpret_cast<const NMHDR*>(lParam);
  for (std::int32_t i = 0; i < map.count; ++i) {
    const NotifyRow& row = map.rows[i];
    if (row.control == static_cast<int>(header.idFrom) && row.code == header.code && row.handler) {
      SetWindowLongPtrA(dialog, DWLP_MSGRESULT, row.handler(header));
      return TRUE;
    }
  }
  return 0;
}

LRESULT DefaultProcedure(std::uint32_t selector, HWND window, UINT message, WPARAM wParam,
                         LPARAM lParam) {
  switch (selector) {
    case kDefaultWindowProc:
      return DefWindowProcA(window, message, wParam, lParam);
    case kDefaultDialogProc:
      return DefDlgProcA(window, message, wParam, lParam);
    default:
      return 0;
  }
}

namespace {

// The system's dialog class, whose atom every dialog template's window carries.
constexpr ULONG_PTR kDialogClassAtom = 0x8002;

bool IsDialog(HWND window) { return GetClassLongPtrA(window, GCW_ATOM) == kDialogClassAtom; }

// A box a dialog raises is the dialog's: it stays disabled behind the box, so none of
// its buttons can end it while the handler waits for the answer.
template <typename Handler>
LRESULT RunOwned(HWND window, Handler&& handler) {
  if (!IsDialog(window)) return handler();
  const MessageOwnerScope owner(window);
  return handler();
}

}  // namespace

LRESULT RunTables(const ProcedureTables& tables, HWND window, UINT message, WPARAM wParam,
                  LPARAM lParam) {
  const MessageMap& map = tables.messages;
  for (std::int32_t i = 0; i < map.count; ++i) {
    const MessageRow& row = map.rows[i];
    if (row.message == message && row.handler)
      return RunOwned(window, [&] { return row.handler(window, message, wParam, lParam); });
  }
  if (message == WM_COMMAND && tables.commands.count > 0)
    return RunOwned(window, [&] { return LookupCommand(tables.commands, window, wParam, lParam); });
  if (message == WM_NOTIFY && tables.notifications.count > 0)
    return RunOwned(window,
                    [&] { return LookupDialogNotify(tables.notifications, window, lParam); });
  return DefaultProcedure(map.defaultSelector, window, message, wParam, lParam);
}

LRESULT LookupMessage(const MessageMap& map, HWND window, UINT message, WPARAM wParam,
                      LPARAM lParam) {
  return RunTables({map, CommandMap{0, nullptr, kDefaultNone}, NotifyMap{0, nullptr}}, window,
                   message, wParam, lParam);
}

LRESULT LookupCommand(const CommandMap& map, HWND window, WPARAM wParam, LPARAM lParam) {
  const WORD id = LOWORD(wParam);
  for (std::int32_t i = 0; i < map.count; ++i) {
    const CommandRow& row = map.rows[i];
    if (row.id == id && row.handler) return row.handler(window, id, HIWORD(wParam), lParam);
  }
  return DefaultProcedure(map.defaultSelector, window, WM_COMMAND, wParam, lParam);
}

}  // namespace qb
