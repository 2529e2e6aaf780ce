// The nine database slots: which one is current, the save prompt before another
// database replaces the table, the switch itself with its window title, the file
// commands (New, Open, Save, Save As) and Delete database. The slots' names are
// the settings record's; the changed flag is the key table's.
#pragma once

#include <windows.h>

#include <string>

#include "keys/key_table.h"

namespace qb {

constexpr int kSlotCount = 9;
constexpr char kSaveQuestionFormat[] = "Database %s.dat was changed\nDo you want to save it?";
constexpr char kQuestionCaption[] = "Question";
constexpr char kDatabaseDialogTitle[] = "Quellbarrow database";
constexpr char kNewNameTitle[] = "Quellbarrow - New name";
constexpr char kNewDatabaseGroupText[] = "Type a new Database name";
constexpr char kNewDatabaseStartName[] = "Data.dat";
constexpr DWORD kNewDatabaseHelpContext = 1210;

int CurrentSlot();
void SetCurrentSlot(int slot);
SlotName& CurrentSlotName();
// The file of the current slot's database: program folder, "\Databases\", name.
std::string CurrentDatabasePath();

// With unsaved changes asks whether to save them: Yes saves (a failed save counts
// as Cancel, so nothing is lost; a database without a name is saved under one the
// user chooses, or goes on when it has no keys), No goes on; false on Cancel.
// Without changes true.
bool AskToSaveChanges();
// Makes `slot` current and loads its database (after the save prompt; Cancel puts
// the databases bar's buttons back as they were).
void SwitchToSlot(int slot);
// The main window's creation: slot 0's database into the table and the list.
void LoadFirstDatabase();

// The file dialog of Open and Save As; on OK the chosen bare file name becomes the
// current slot's name.
bool ChooseDatabaseFile(HWND owner, bool save);

// The name dialog "IDD_MAKEDIR" as New database uses it, and the dialog
// "IDD_NAMEKEY" that puts the new database together (1 after OK).
INT_PTR RunNewNameDialog(HWND owner);
INT_PTR RunNewDatabaseDialog(HWND owner);

// Command rows of the main window.
LRESULT OnNewDatabaseCommand(HWND window, WORD id, WORD code, LPARAM control);
LRESULT OnDatabaseFileCommand(HWND window, WORD id, WORD code, LPARAM control);
LRESULT OnSaveDatabaseCommand(HWND window, WORD id, WORD code, LPARAM control);
LRESULT OnSelectDatabaseCommand(HWND window, WORD id, WORD code, LPARAM control);
LRESULT OnDeleteDatabaseCommand(HWND window, WORD id, WORD code, LPARAM control);

}  // namespace qb
