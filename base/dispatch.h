// Table-driven window procedures. A window class owns a constant MessageMap; its
// WM_COMMAND row runs a CommandMap. Lookup is linear and the first matching row wins,
// so a later duplicate row is dead. An unmatched message goes to the map's default
// procedure: 0 none (result 0), 1 DefWindowProc, 2 DefDlgProc, anything else none.
#pragma once

#include <windows.h>

#include <cstdint>

namespace qb {

using MessageHandler = LRESULT (*)(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
using CommandHandler = LRESULT (*)(HWND window, WORD id, WORD code, LPARAM control);

struct MessageRow {
  std::uint32_t message;
  MessageHandler handler;
};

struct CommandRow {
  std::uint16_t id;
  CommandHandler handler;  // a row without a handler never matches
};

enum DefaultSelector : std::uint32_t {
  kDefaultNone = 0,
  kDefaultWindowProc = 1,
  kDefaultDialogProc = 2,
};

struct MessageMap {
  std::int32_t count;
  const MessageRow* rows;
  std::uint32_t defaultSelector;
};

struct CommandMap {
  std::int32_t count;
  const CommandRow* rows;
  std::uint32_t defaultSelector;
};

template <std::size_t N>
constexpr MessageMap MakeMessageMap(const MessageRow (&rows)[N], std::uint32_t selector) {
  return MessageMap{static_cast<std::int32_t>(N), rows, selector};
}

template <std::size_t N>
constexpr CommandMap MakeCommandMap(const CommandRow (&rows)[N], std::uint32_t selector) {
  return CommandMap{static_cast<std::int32_t>(N), rows, selector};
}

// A dialog's WM_NOTIFY: rows keyed by the sending control and the notification code.
struct NotifyRow {
  int control;
  UINT code;
  LRESULT (*handler)(const NMHDR& header);
};

struct NotifyMap {
  std::int32_t count;
  const NotifyRow* rows;
};

template <std::size_t N>
constexpr NotifyMap MakeNotifyMap(const NotifyRow (&rows)[N]) {
  return NotifyMap{static_cast<std::int32_t>(N), rows};
}

// Runs the first row that matches the notification in `lParam` and hands its
// result to the dialog's caller through DWLP_MSGRESULT; 0 when no row matches.
LRESULT LookupDialogNotify(const NotifyMap& map, HWND dialog, LPARAM lParam);

// The Cancel row modal dialogs share: ends the dialog with 0, nothing changed.
LRESULT EndDialogCancelled(HWND dialog, WORD id, WORD code, LPARAM control);

LRESULT DefaultProcedure(std::uint32_t selector, HWND window, UINT message, WPARAM wParam,
                         LPARAM lParam);
LRESULT LookupMessage(const MessageMap& map, HWND window, UINT message, WPARAM wParam,
                      LPARAM lParam);
LRESULT LookupCommand(const CommandMap& map, HWND window, WPARAM wParam, LPARAM lParam);

}  // namespace qb
