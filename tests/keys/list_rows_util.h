// What a test sees of a list view in a dialog, read through messages the dialog's
// thread answers (so from the watcher thread of RunModal too).
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <string>
#include <vector>

namespace qb::test {

inline std::vector<std::string> ListTexts(HWND list) {
  std::vector<std::string> rows;
  const int count = static_cast<int>(SendMessageA(list, LVM_GETITEMCOUNT, 0, 0));
  for (int row = 0; row < count; ++row) {
    char text[600] = {};
    LVITEMA item{};
    item.pszText = text;
    item.cchTextMax = sizeof(text);
    SendMessageA(list, LVM_GETITEMTEXTA, row, reinterpret_cast<LPARAM>(&item));
    rows.push_back(text);
  }
  return rows;
}

}  // namespace qb::test
