// Ids of the program's resources. Menu command ids are grouped by menu in blocks of
// 100; a dialog's control ids stay near each other. Dialogs, menus, icons and the
// accelerator table are named resources (their names are strings, not defined here).
// This header is read by windres as well as by C++, so it holds only #defines.
#ifndef QB_RESOURCE_H
#define QB_RESOURCE_H

// &File
#define IDM_NEW_DATABASE        50000
#define IDM_OPEN_DATABASE       50001
#define IDM_SAVE_DATABASE       50002
#define IDM_SAVEAS_DATABASE     50003
#define IDM_GLOBAL_OPTIONS      50008
#define IDM_SELECT_BROWSER      50009
#define IDM_EXIT                50010

// &View
#define IDM_TOOL_BAR            50100
#define IDM_DATABASES_BAR       50101
#define IDM_KEY_WINDOW          50102
#define IDM_LINK_WINDOW         50103
#define IDM_STATUS_BAR          50104
#define IDM_LINK_INFO           50105

// &Keys
#define IDM_ADD_KEY             50200
#define IDM_ADD_COMPARE         50201
#define IDM_MODIFY_KEY          50202
#define IDM_COPY_KEY            50203
#define IDM_PASTE_KEY           50204
#define IDM_DELETE_KEY          50205
#define IDM_DATABASE_FIRST      50206
#define IDM_DATABASE_LAST       50214
#define IDM_DELETE_DATABASE     50215
// F2 in the Keys view: the selected key's Name edited in place (no menu item)
#define IDM_RENAME_KEY          50290

// &Links
#define IDM_NEW_FOLDER          50300
#define IDM_RENAME_FOLDER       50301
#define IDM_DELETE_LINK         50302
#define IDM_GOTO_SITE           50303
#define IDM_RENAME_LINK         50304
#define IDM_MOVE_LINK           50305
#define IDM_LINKS_PAGE          50306

// Enter in a list view, passed on to the Links view (sent by the program, no menu item)
#define IDM_LINKS_ENTER         50390

// &Tools
#define IDM_SCAN_HTML           50500
#define IDM_SCAN_FILE_HTML      50501
#define IDM_SCAN_PROMPT_HTML    50502
#define IDM_SCAN_MANUAL         50503
#define IDM_SCAN_OPTIONS        50504
#define IDM_COMPACT_CONFIGHTML  50505
#define IDM_SCAN_CLIPBOARD      50506

// &Window
#define IDM_WINDOW_NORMAL       50800
#define IDM_WINDOW_ONTOP        50801
#define IDM_WINDOW_HORIZONTAL   50802
#define IDM_WINDOW_VERTICAL     50803

// &Help
#define IDM_HELP_TOPICS         50900
#define IDM_ABOUT               50902

// Child windows of the main window
#define IDC_LINKS_VIEW          2587
#define IDC_KEYS_VIEW           2901
#define IDC_STATUS_BAR          12888

// Bitmaps of the two docking bars
#define IDB_TOOLBAR             500
#define IDB_TOOLBAR_MASK        501
#define IDB_DATABASEBAR         502
#define IDB_DATABASEBAR_MASK    503

// Standard dialog buttons under the ids the program's dialogs have always used
#define IDC_HELP_BUTTON         9

// IDD_OPTIONS
#define IDC_OPT_COPY_DESCRIPTION 300
#define IDC_OPT_FIRST_BROWSER    302
#define IDC_OPT_PROMPT_BROWSER   303
#define IDC_OPT_FORM_STATISTICS  304

// IDD_SCANHTML_OPTION: ask groups 200..214 (Never, Allways, UnMatched per kind),
// add-keys groups 215..224 (Never, UnMatched per kind)
#define IDC_SCANOPT_ASK_FIRST    200
#define IDC_SCANOPT_ADD_FIRST    215

// IDD_LOAD_COMPARE: duplicate mode m (0 compare, 1 overwrite, 2 do not add) is
// radio button IDC_MERGE_MODE_FIRST + m
#define IDC_MERGE_CURRENT_LIST     300
#define IDC_MERGE_LOADED_LIST      301
#define IDC_MERGE_FILE_NAME        302
#define IDC_MERGE_LOAD             303
#define IDC_MERGE_TAKE_SEARCH      306
#define IDC_MERGE_TAKE_SELECTION   307
#define IDC_MERGE_TAKE_DESCRIPTION 308
#define IDC_MERGE_ADD              310
#define IDC_MERGE_SELECT_ALL       311
#define IDC_MERGE_UNDO             312
#define IDC_MERGE_MODE_FIRST       313

// IDD_KEY_VALUES: edits 400..403 show Name, Search Names, Selection, Description
#define IDC_KEYVALUES_FIRST        400

// IDD_ABOUT
#define IDC_ABOUT_ICON           424
#define IDC_ABOUT_NAME           425
#define IDC_ABOUT_VERSION        426
#define IDC_ABOUT_LINKS          427
#define IDC_ABOUT_WEB_PAGE       428

// The program's version, shown in the about box
#define QB_VERSION               "1.0"

// IDD_DEFAULT_KEYS: the key editor
#define IDC_KEYEDIT_NAME           120
#define IDC_KEYEDIT_SEARCH         121
#define IDC_KEYEDIT_SELECTION      122
#define IDC_KEYEDIT_DESCRIPTION    123
#define IDC_KEYEDIT_CREATE         124
#define IDC_KEYEDIT_SAVE           127
#define IDC_KEYEDIT_DELETE         128
#define IDC_KEYEDIT_LIST           129

// IDD_DOWNLOADING
#define IDC_DOWNLOAD_STATUS      400
#define IDC_DOWNLOAD_GROUP       401
// Self-posted command that starts a transfer once the dialog is shown
#define IDC_DOWNLOAD_START       735

// IDD_MAKEDIR (new folder, rename, new database)
#define IDC_MAKEDIR_NAME         100
#define IDC_MAKEDIR_GROUP        101

// IDD_DELETEDIR
#define IDC_DELETEDIR_SUBFOLDERS 102
#define IDC_DELETEDIR_PATH       103

// IDD_DESTINATION_DIR
#define IDC_DESTINATION_LIST     100

// IDD_DEFAULT_BROWSER: the three kinds are also the browser kind values
#define IDC_BROWSER_EXPLORER     500
#define IDC_BROWSER_NETSCAPE     501
#define IDC_BROWSER_OTHER        502
#define IDC_BROWSER_CAPTION      503
#define IDC_BROWSER_BROWSE       504
#define IDC_BROWSER_PROGRAM      505

// IDD_SELECT_BROWSER
#define IDC_SELECT_BROWSER_LIST  600

// IDD_MANUAL: the address of a hand-picked page
#define IDC_MANUAL_URL           650

// IDD_NOMATCH
#define IDC_NOMATCH_NAME         100
#define IDC_NOMATCH_KEYS         101
#define IDC_NOMATCH_TYPE         103
#define IDC_NOMATCH_CREATE       104
#define IDC_NOMATCH_CANCEL_ALL   105
#define IDC_NOMATCH_VALUES       106
#define IDC_NOMATCH_ABOVE        107
#define IDC_NOMATCH_BELOW        108
#define IDC_NOMATCH_UNMATCH      109
#define IDC_NOMATCH_LEARN        110

// IDD_NAMEKEY: the loaded database's keys (200) and the new database's (201)
#define IDC_NAMEKEY_LOADED         200
#define IDC_NAMEKEY_NEW            201
#define IDC_NAMEKEY_ADD            202
#define IDC_NAMEKEY_REMOVE         203
#define IDC_NAMEKEY_LOAD           205

#endif
