// Table-driven window procedures. A window class owns constant tables of message rows
// and command rows (and a dialog with list views its WM_NOTIFY rows); DialogProcedure
// and WindowProcedure below make its procedure from them. Lookup is linear and the
// first matching row wins, so a later duplicate row is dead. An unmatched message goes
// to the default procedure: 0 none (result 0), 1 DefWindowProc, 2 DefDlgProc, anything
// else none.
#pragma once

#include <windows.h>

#include <cstddef>
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

// A procedure's tables. A message row comes first; then WM_COMMAND goes to the command
// rows and WM_NOTIFY to the notification rows where there are any; the rest to the
// message map's default procedure.
struct ProcedureTables {
  MessageMap messages;
  CommandMap commands;
  NotifyMap notifications;
};

LRESULT RunTables(const ProcedureTables& tables, HWND window, UINT message, WPARAM wParam,
                  LPARAM lParam);

// For a window without commands of its own.
inline constexpr CommandRow kNoCommands[] = {{0, nullptr}};

namespace dispatch_detail {
constexpr NotifyMap NotifyTable() { return NotifyMap{0, nullptr}; }
template <std::size_t N>
constexpr NotifyMap NotifyTable(const NotifyRow (&rows)[N]) {
  return MakeNotifyMap(rows);
}
}  // namespace dispatch_detail

// The procedure of a dialog: DialogProcedure<kMessages, kCommands> or, with its WM_NOTIFY
// rows, DialogProcedure<kMessages, kCommands, kNotifications>.
template <const auto& Messages, const auto& Commands, const auto&... Notifications>
INT_PTR CALLBACK DialogProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  static_assert(sizeof...(Notifications) <= 1, "a dialog has one notification table");
  return RunTables({MakeMessageMap(Messages, kDefaultNone), MakeCommandMap(Commands, kDefaultNone),
                    dispatch_detail::NotifyTable(Notifications...)},
                   dialog, message, wParam, lParam);
}

// The procedure of a window class: what no row takes goes to DefWindowProc.
template <const auto& Messages, const auto& Commands = kNoCommands>
LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  return RunTables({MakeMessageMap(Messages, kDefaultWindowProc),
                    MakeCommandMap(Commands, kDefaultWindowProc), dispatch_detail::NotifyTable()},
                   window, message, wParam, lParam);
}

}  // namespace qb
