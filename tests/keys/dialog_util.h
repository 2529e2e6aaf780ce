// What the keys' GUI tests do to dialogs and list views: through messages the
// window's thread answers, so from the watcher thread of RunModal too.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>
#include <commctrl.h>

#include <functional>
#include <string>
#include <vector>

#include "base/app_state.h"
#include "base/user_message.h"
#include "keys/key_table.h"
#include "keys/merge_dialog.h"
#include "resources/resource.h"
#include "tests/support/gui_helper.h"

namespace qb::test {

inline std::vector<std::string> ListTexts(HWND list) {
  std::vector<std::string> rows(ListView_GetItemCount(list));
  for (std::size_t row = 0; row < rows.size(); ++row) {
    char text[600] = {};
    ListView_GetItemText(list, static_cast<int>(row), 0, text, sizeof(text));
    rows[row] = text;
  }
  return rows;
}

inline std::vector<std::string> ListTexts(HWND dialog, int listId) {
  return ListTexts(GetDlgItem(dialog, listId));
}

inline std::vector<int> SelectedRows(HWND dialog, int listId) {
  std::vector<int> rows;
  HWND list = GetDlgItem(dialog, listId);
  for (int row = -1; (row = ListView_GetNextItem(list, row, LVNI_SELECTED)) >= 0;) rows.push_back(row);
  return rows;
}

inline void SelectOnly(HWND dialog, int listId, const std::vector<int>& rows) {
  HWND list = GetDlgItem(dialog, listId);
  ListView_SetItemState(list, -1, 0, LVIS_SELECTED);
  for (int row : rows) ListView_SetItemState(list, row, LVIS_SELECTED, LVIS_SELECTED);
}

// A button pressed and its work done before this returns (for buttons that raise no box).
inline void PressNow(HWND dialog, int id) {
  SendMessageA(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED),
               reinterpret_cast<LPARAM>(GetDlgItem(dialog, id)));
}

// The control ids Tab walks through, from control `first` round to it.
inline std::vector<int> TabOrder(HWND dialog, int first) {
  std::vector<int> order;
  HWND start = GetDlgItem(dialog, first);
  for (HWND at = start; at && order.size() < 20;) {
    order.push_back(GetDlgCtrlID(at));
    at = GetNextDlgTabItem(dialog, at, FALSE);
    if (at == start) break;
  }
  return order;
}

// Polls from the watcher thread until the dialog's thread has done its part.
inline bool WaitFor(const std::function<bool()>& condition) { return PollUntil(condition); }

// The open pop-up menu's item texts, read by a timer the menu's own loop runs,
// which then closes the menu.
inline std::vector<std::string>& PopupMenuItems() {
  static std::vector<std::string> items;
  return items;
}
inline void CALLBACK ReadAndClosePopupMenu(HWND, UINT, UINT_PTR timer, DWORD) {
  HWND menu = FindWindowA("#32768", nullptr);
  if (!menu || !IsWindowVisible(menu)) return;
  KillTimer(nullptr, timer);
  auto handle = reinterpret_cast<HMENU>(SendMessageA(menu, MN_GETHMENU, 0, 0));
  for (int k = 0; k < GetMenuItemCount(handle); ++k) {
    char text[64] = {};
    GetMenuStringA(handle, k, text, sizeof text, MF_BYPOSITION);
    if (text[0]) PopupMenuItems().push_back(text);
  }
  EndMenu();
}

// The item texts of the pop-up menu that `open` brings up (none if none came),
// pumping messages until it has been read and closed.
inline std::vector<std::string> PopupMenuTexts(const std::function<void()>& open) {
  PopupMenuItems().clear();
  const UINT_PTR timer = SetTimer(nullptr, 0, 10, ReadAndClosePopupMenu);
  open();
  PumpUntil([] { return !PopupMenuItems().empty(); }, 3000);
  KillTimer(nullptr, timer);
  return PopupMenuItems();
}

// The keys tests' name for RunAnswered.
inline ModalResult Answered(const std::function<void()>& action, std::vector<ModalStep> steps) {
  return RunAnswered(action, std::move(steps));
}

// A dialog given `text` in its control `id` (the key editor's Name) and closed with OK.
inline ModalStep TypeAndOk(const std::string& text, int id = IDC_KEYEDIT_NAME) {
  return Custom([text, id](HWND dialog, const WindowSnapshot&) {
    SetControlText(dialog, id, text);
    ClickButton(dialog, IDOK);
  });
}

// A key dialog opened on its own, without a main window; `refills` counts the
// times it had the Keys view filled again.
class KeyDialogTest : public ::testing::Test {
 protected:
  void SetUp() override {
    App().mainWindow = nullptr;
    UseMessageBoxes();
    SetDatabaseChanged(false);
    refills = 0;
    SetKeyListRefill([] { ++refills; });
  }
  void TearDown() override {
    ClearAllKeys(Keys());
    SetDatabaseChanged(false);
    SetUserMessageSink(nullptr);
    SetKeyListRefill(nullptr);
  }

  static inline int refills = 0;
};

}  // namespace qb::test
