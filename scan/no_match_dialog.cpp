#include "scan/no_match_dialog.h"

#include <commctrl.h>

#include <string>
#include <vector>

#include "acquire/no_case.h"
#include "base/app_state.h"
#include "base/dispatch.h"
#include "base/help.h"
#include "keys/key_editor.h"
#include "keys/key_table.h"
#include "resources/resource.h"
#include "scan/matcher.h"
#include "scan/scan_options.h"

namespace qb {
namespace {

// Where the key list is created, in dialog units: left of the value list.
constexpr RECT kKeyListRect = {7, 101, 207, 209};
constexpr int kKeyIconSize = 16;

struct NoMatchState {
  const FormScan* scan = nullptr;
  const PromptRequest* request = nullptr;
  PromptAnswer answer;
  HIMAGELIST icons = nullptr;
};

NoMatchState& StateOf(HWND dialog) {
  return *reinterpret_cast<NoMatchState*>(GetWindowLongPtrA(dialog, DWLP_USER));
}

const FormField& FieldOf(const NoMatchState& state) {
  return state.scan->forms[state.request->form].fields[state.request->slot];
}

// The field's name as keys learn it: in capitals, as they always have; the page
// keeps the name as it is.
std::string LearnedName(const NoMatchState& state) {
  std::string name = TextOf(FieldOf(state).name);
  for (char& c : name) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return name;
}

bool ChoosesValue(PromptKind kind) { return kind == kPromptRadio || kind == kPromptSelect; }

const char* TypeText(PromptKind kind, const FormField& field) {
  switch (kind) {
    case kPromptRadio: return "RADIO BUTTON";
    case kPromptCheckbox: return "CHECK BOX BUTTON";
    case kPromptSelect:
      return field.multiple ? "LIST BOX [ MULTIPLE SELECTION ]" : "COMBO BOX [ SINGLE SELECTION ]";
    case kPromptText: return "TEXT EDIT BOX";
    case kPromptTextarea: return "TEXT AREA EDIT BOX";
  }
  return "";
}

std::string Described(const char* start, TextBlock label) {
  const std::string text = TextOf(label);
  return text.empty() ? std::string(start) + " No description" : start + text;
}

// The texts the value list offers: the radio group's values or the select's options.
std::vector<std::string> ValuesOf(const NoMatchState& state) {
  std::vector<std::string> values;
  const PromptRequest& request = *state.request;
  if (request.kind == kPromptRadio) {
    for (const std::string& value : request.radioValues) {
      values.push_back(value.substr(std::min(value.find_first_not_of(' '), value.size())));
    }
  } else if (request.kind == kPromptSelect && request.selectIndex >= 0 &&
             request.selectIndex < static_cast<int>(state.scan->selects.size())) {
    for (const SelectOption& option : state.scan->selects[request.selectIndex]) values.push_back(TextOf(option.text));
  }
  return values;
}

// One row per key, in key order, each naming its key.
void FillKeyList(HWND list) {
  SendMessageA(list, LVM_DELETEALLITEMS, 0, 0);
  const KeyTable& keys = Keys();
  for (int k = 0; k < KeysInUse(keys); ++k) {
    std::string name = KeyFieldText(keys, k, kName);
    LVITEMA item{};
    item.mask = LVIF_TEXT | LVIF_IMAGE | LVIF_PARAM;
    item.iItem = k;
    item.pszText = name.data();
    item.lParam = k;
    SendMessageA(list, LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item));
  }
  // The one column fills the list.
  SendMessageA(list, LVM_SETCOLUMNWIDTH, 0, LVSCW_AUTOSIZE_USEHEADER);
}

HWND CreateKeyList(HWND dialog, NoMatchState& state) {
  RECT r = kKeyListRect;
  MapDialogRect(dialog, &r);
  HWND list = CreateWindowExA(WS_EX_CLIENTEDGE, WC_LISTVIEWA, "",
                              WS_CHILD | WS_VISIBLE | WS_TABSTOP | LVS_REPORT | LVS_SINGLESEL | LVS_SHOWSELALWAYS |
                                  LVS_SHAREIMAGELISTS,
                              r.left, r.top, r.right - r.left, r.bottom - r.top, dialog,
                              reinterpret_cast<HMENU>(static_cast<INT_PTR>(IDC_NOMATCH_KEYS)),
                              GetModuleHandleA(nullptr), nullptr);
  if (!list) return nullptr;
  HINSTANCE instance = App().instance ? App().instance : GetModuleHandleA(nullptr);
  state.icons = ImageList_Create(kKeyIconSize, kKeyIconSize, ILC_COLOR32 | ILC_MASK, 1, 0);
  if (state.icons) {
    HICON key = static_cast<HICON>(LoadImageA(instance, "KEY_OFF", IMAGE_ICON, kKeyIconSize, kKeyIconSize, 0));
    ImageList_AddIcon(state.icons, key);
    DestroyIcon(key);
    ListView_SetImageList(list, state.icons, LVSIL_SMALL);
  }
  LVCOLUMNA column{};
  column.mask = LVCF_TEXT;
  column.pszText = const_cast<char*>("Keys");
  SendMessageA(list, LVM_INSERTCOLUMNA, 0, reinterpret_cast<LPARAM>(&column));
  FillKeyList(list);
  return list;
}

// The key of the selected row; kNoMatch when no row is selected.
std::uint32_t SelectedKey(HWND dialog) {
  HWND list = GetDlgItem(dialog, IDC_NOMATCH_KEYS);
  const LRESULT row = SendMessageA(list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED);
  if (row < 0) return kNoMatch;
  LVITEMA item{};
  item.mask = LVIF_PARAM;
  item.iItem = static_cast<int>(row);
  SendMessageA(list, LVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&item));
  return static_cast<std::uint32_t>(item.lParam);
}

// The value list's selected row, as the index of its value; -1 for none.
int SelectedValue(HWND dialog) {
  const LRESULT row = SendDlgItemMessageA(dialog, IDC_NOMATCH_VALUES, LB_GETCURSEL, 0, 0);
  return row == LB_ERR ? -1 : static_cast<int>(SendDlgItemMessageA(dialog, IDC_NOMATCH_VALUES, LB_GETITEMDATA, row, 0));
}

std::string SelectedValueText(HWND dialog) {
  const LRESULT row = SendDlgItemMessageA(dialog, IDC_NOMATCH_VALUES, LB_GETCURSEL, 0, 0);
  const LRESULT length = SendDlgItemMessageA(dialog, IDC_NOMATCH_VALUES, LB_GETTEXTLEN, row, 0);
  if (row == LB_ERR || length == LB_ERR) return {};
  std::string text(static_cast<std::size_t>(length) + 1, '\0');
  SendDlgItemMessageA(dialog, IDC_NOMATCH_VALUES, LB_GETTEXT, row, reinterpret_cast<LPARAM>(text.data()));
  text.resize(std::min<std::size_t>(static_cast<std::size_t>(length), kPromptTextMax));
  return text;
}

void SelectKeyRow(HWND list, int row) {
  LVITEMA item{};
  item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
  item.state = LVIS_SELECTED | LVIS_FOCUSED;
  SendMessageA(list, LVM_SETITEMSTATE, row, reinterpret_cast<LPARAM>(&item));
  SendMessageA(list, LVM_ENSUREVISIBLE, row, FALSE);
}

LRESULT OnNoMatchInit(HWND dialog, UINT, WPARAM, LPARAM lParam) {
  SetWindowLongPtrA(dialog, DWLP_USER, lParam);
  NoMatchState& state = *reinterpret_cast<NoMatchState*>(lParam);
  state.answer = PromptAnswer{};
  const PromptRequest& request = *state.request;
  const FormField& field = FieldOf(state);

  std::string name = TextOf(field.name).substr(0, kPromptTextMax);
  for (char& c : name) c = AsciiLower(c);
  SetDlgItemTextA(dialog, IDC_NOMATCH_NAME, name.c_str());
  SetDlgItemTextA(dialog, IDC_NOMATCH_TYPE, TypeText(request.kind, field));
  SetDlgItemTextA(dialog, IDC_NOMATCH_ABOVE, Described("TEXT ABOVE:", field.label).c_str());
  const std::vector<FormField>& fields = state.scan->forms[request.form].fields;
  const TextBlock below = request.slot + 1 < static_cast<int>(fields.size()) ? fields[request.slot + 1].label : kNoBlock;
  SetDlgItemTextA(dialog, IDC_NOMATCH_BELOW, Described("TEXT BELLOW:", below).c_str());

  HWND list = CreateKeyList(dialog, state);
  if (!list) {
    ShowMessage(kNoKeyListText, nullptr, MB_OK | MB_ICONSTOP);
    state.answer.cancelAll = true;
    EndDialog(dialog, 0);
    return FALSE;
  }
  HWND values = GetDlgItem(dialog, IDC_NOMATCH_VALUES);
  if (ChoosesValue(request.kind)) {
    const std::vector<std::string> texts = ValuesOf(state);
    for (std::size_t i = 0; i < texts.size(); ++i) {
      const LRESULT row = SendMessageA(values, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(texts[i].c_str()));
      SendMessageA(values, LB_SETITEMDATA, row, static_cast<LPARAM>(i));
    }
  } else {
    EnableWindow(values, FALSE);
  }
  // A field some key answers may only choose a value or be forgotten by its key.
  if (KeyInTable(Keys(), request.matchedKey)) {
    SelectKeyRow(list, static_cast<int>(request.matchedKey));
    EnableWindow(list, FALSE);
    EnableWindow(GetDlgItem(dialog, IDC_NOMATCH_CREATE), FALSE);
  } else {
    EnableWindow(GetDlgItem(dialog, IDC_NOMATCH_UNMATCH), FALSE);
  }
  CheckDlgButton(dialog, IDC_NOMATCH_LEARN,
                 AddKeysFor(ScanOptionsOf(Settings()), request.kind) ? BST_CHECKED : BST_UNCHECKED);
  SetFocus(list);
  return FALSE;
}

LRESULT OnNoMatchOk(HWND dialog, WORD, WORD, LPARAM) {
  NoMatchState& state = StateOf(dialog);
  const PromptRequest& request = *state.request;
  const std::uint32_t key = SelectedKey(dialog);
  if (AddKeysFor(ScanOptionsOf(Settings()), request.kind) && request.matchedKey == kNoMatch && key == kNoMatch) {
    ShowMessage(kSelectKeyFirstText, nullptr, MB_OK | MB_ICONERROR);
    return 0;
  }
  const std::string fieldName = LearnedName(state);
  // A field without a name gives no name to learn: the choice is taken as it is.
  if (IsDlgButtonChecked(dialog, IDC_NOMATCH_LEARN) != BST_CHECKED || fieldName.empty()) {
    state.answer.key = key;
    if (ChoosesValue(request.kind)) state.answer.valueIndex = SelectedValue(dialog);
  } else if (ChoosesValue(request.kind)) {
    if (SelectedValue(dialog) < 0) {
      ShowMessage(kSelectValueToLearnText, nullptr, MB_OK | MB_ICONSTOP);
      return 0;
    }
    LearnSearchName(Keys(), fieldName, key, SelectedValueText(dialog), true);
  } else {
    LearnSearchName(Keys(), fieldName, key, {}, false);
  }
  state.answer.result = 1;
  EndDialog(dialog, 1);
  return 0;
}

// The key forgets the field's name (and value); the dialog stays open.
LRESULT OnNoMatchUnMatch(HWND dialog, WORD, WORD, LPARAM) {
  NoMatchState& state = StateOf(dialog);
  const std::uint32_t key = SelectedKey(dialog);
  if (key == kNoMatch) return 0;
  const bool withValue = ChoosesValue(state.request->kind);
  if (withValue && SelectedValue(dialog) < 0) {
    ShowMessage(kSelectValueToForgetText, nullptr, MB_OK | MB_ICONSTOP);
    return 0;
  }
  ForgetSearchName(Keys(), TextOf(FieldOf(state).name), key, withValue ? SelectedValueText(dialog) : std::string(),
                   withValue);
  return 0;
}

// A key made on the spot from the field's name (and the chosen value). The editor
// may have sorted the table while the Keys view was filled again, so the list is
// filled anew and the new key looked up where it stands now.
LRESULT OnNoMatchCreateNew(HWND dialog, WORD, WORD, LPARAM) {
  NoMatchState& state = StateOf(dialog);
  const std::string name = LearnedName(state).substr(0, kCreateNewTextMax);
  const std::string value =
      ChoosesValue(state.request->kind) ? SelectedValueText(dialog).substr(0, kCreateNewTextMax) : std::string();
  OpenKeyEditor(dialog, kEditorAddPrepared, name, value);
  const int created = KeyEditorNewKey();
  HWND list = GetDlgItem(dialog, IDC_NOMATCH_KEYS);
  FillKeyList(list);
  if (KeyInTable(Keys(), static_cast<std::uint32_t>(created))) SelectKeyRow(list, created);
  SetFocus(list);
  return 0;
}

LRESULT OnNoMatchCancelAll(HWND dialog, WORD, WORD, LPARAM) {
  StateOf(dialog).answer.cancelAll = true;
  EndDialog(dialog, 0);
  return 0;
}

LRESULT OnNoMatchHelp(HWND, WORD, WORD, LPARAM) {
  ShowHelpTopic(kNoMatchHelpContext);
  return 0;
}

const CommandRow kNoMatchCommands[] = {
    {IDOK,                   OnNoMatchOk},
    {IDCANCEL,               EndDialogCancelled},
    {IDC_NOMATCH_CANCEL_ALL, OnNoMatchCancelAll},
    {IDC_NOMATCH_UNMATCH,    OnNoMatchUnMatch},
    {IDC_NOMATCH_CREATE,     OnNoMatchCreateNew},
    {IDC_HELP_BUTTON,        OnNoMatchHelp},
};

// The key list's own notifications. A double click on a key chooses it as OK
// does; the Keys view's routine would open the key editor on the main window's
// selection and could reorder the table under the scan.
LRESULT OnKeyListDoubleClick(HWND dialog, const NMHDR& header) {
  const int row = reinterpret_cast<const NMITEMACTIVATE&>(header).iItem;
  if (row < 0 || !IsWindowEnabled(header.hwndFrom)) return 0;
  SelectKeyRow(header.hwndFrom, row);
  return OnNoMatchOk(dialog, IDOK, BN_CLICKED, 0);
}

struct KeyListNotifyRow {
  UINT code;
  LRESULT (*handler)(HWND dialog, const NMHDR& header);
};
const KeyListNotifyRow kKeyListNotifications[] = {
    {NM_DBLCLK, OnKeyListDoubleClick},
};

LRESULT OnNoMatchNotify(HWND dialog, UINT, WPARAM, LPARAM lParam) {
  const auto& header = *reinterpret_cast<const NMHDR*>(lParam);
  if (header.idFrom != IDC_NOMATCH_KEYS) return 0;
  for (const KeyListNotifyRow& row : kKeyListNotifications)
    if (row.code == header.code) return row.handler(dialog, header);
  return 0;
}

const MessageRow kNoMatchMessages[] = {
    {WM_INITDIALOG, OnNoMatchInit},
    {WM_NOTIFY,     OnNoMatchNotify},
};

}  // namespace

PromptAnswer NoMatchDialog::Ask(const FormScan& scan, const PromptRequest& request) {
  NoMatchState state;
  state.scan = &scan;
  state.request = &request;
  HINSTANCE instance = App().instance ? App().instance : GetModuleHandleA(nullptr);
  const INT_PTR result = DialogBoxParamA(instance, kNoMatchDialogName, App().mainWindow,
                                         DialogProcedure<kNoMatchMessages, kNoMatchCommands>,
                                         reinterpret_cast<LPARAM>(&state));
  if (state.icons) ImageList_Destroy(state.icons);
  state.answer.result = result == 1 ? 1 : 0;
  return state.answer;
}

}  // namespace qb
