#include "links/link_dialogs.h"

#include <commctrl.h>
#include <shellapi.h>

#include <array>

#include "acquire/no_case.h"
#include "base/app_state.h"
#include "base/dispatch.h"
#include "base/frame_gdi.h"
#include "links/link_list.h"
#include "links/link_paths.h"
#include "resources/resource.h"

namespace qb {
namespace {

constexpr char kNameDialog[] = "IDD_MAKEDIR";
constexpr char kDeleteDialog[] = "IDD_DELETEDIR";
constexpr char kDestinationDialog[] = "IDD_DESTINATION_DIR";
constexpr char kUpRow[] = "...";
constexpr int kFolderIconAt = 24;  // where the delete dialog paints the folder's icon

template <typename T>
T* DialogData(HWND dialog) {
  return reinterpret_cast<T*>(GetWindowLongPtrA(dialog, DWLP_USER));
}

// ---- IDD_MAKEDIR

LRESULT OnNameInit(HWND dialog, UINT, WPARAM, LPARAM lParam) {
  SetWindowLongPtrA(dialog, DWLP_USER, lParam);
  const auto& request = *reinterpret_cast<NameRequest*>(lParam);
  if (request.groupText) SetDlgItemTextA(dialog, IDC_MAKEDIR_GROUP, request.groupText);
  SendDlgItemMessageA(dialog, IDC_MAKEDIR_NAME, EM_LIMITTEXT, kLinkPathMax, 0);
  SetDlgItemTextA(dialog, IDC_MAKEDIR_NAME, request.name.c_str());
  SetFocus(GetDlgItem(dialog, IDC_MAKEDIR_NAME));
  return FALSE;  // the focus is set
}

LRESULT OnNameOk(HWND dialog, WORD, WORD, LPARAM) {
  auto& request = *DialogData<NameRequest>(dialog);
  std::array<char, kLinkPathSize> text{};
  GetDlgItemTextA(dialog, IDC_MAKEDIR_NAME, text.data(), static_cast<int>(text.size()));
  request.name = text.data();
  if (request.name.empty()) {
    EndDialog(dialog, 0);
    return 1;
  }
  if (request.accept && !request.accept(dialog, request.name)) {
    SetFocus(GetDlgItem(dialog, IDC_MAKEDIR_NAME));
    return 1;
  }
  EndDialog(dialog, 1);
  return 1;
}

const CommandRow kNameCommands[] = {
    {IDOK,     OnNameOk},
    {IDCANCEL, EndDialogCancelled},
};

const MessageRow kNameMessages[] = {
    {WM_INITDIALOG, OnNameInit},
};

// ---- IDD_DELETEDIR

struct DeleteDialogData {
  std::string folder;
  HICON icon = nullptr;
};

LRESULT OnDeleteInit(HWND dialog, UINT, WPARAM, LPARAM lParam) {
  SetWindowLongPtrA(dialog, DWLP_USER, lParam);
  auto& data = *reinterpret_cast<DeleteDialogData*>(lParam);
  SetDlgItemTextA(dialog, IDC_DELETEDIR_PATH, data.folder.c_str());
  CheckDlgButton(dialog, IDC_DELETEDIR_SUBFOLDERS,
                 DeleteSubfoldersOption() ? BST_CHECKED : BST_UNCHECKED);
  SHFILEINFOA info{};
  if (SHGetFileInfoA(data.folder.c_str(), 0, &info, sizeof info, SHGFI_ICON)) data.icon = info.hIcon;
  return TRUE;
}

LRESULT OnDeletePaint(HWND dialog, UINT, WPARAM, LPARAM) {
  PAINTSTRUCT paint;
  HDC dc = BeginPaint(dialog, &paint);
  if (const auto* data = DialogData<DeleteDialogData>(dialog); data && data->icon)
    DrawIcon(dc, kFolderIconAt, kFolderIconAt, data->icon);
  EndPaint(dialog, &paint);
  return 1;
}

LRESULT OnDeleteConfirmed(HWND dialog, WORD, WORD, LPARAM) {
  DeleteSubfoldersOption() = IsDlgButtonChecked(dialog, IDC_DELETEDIR_SUBFOLDERS) == BST_CHECKED;
  EndDialog(dialog, 1);
  return 1;
}

const CommandRow kDeleteCommands[] = {
    {IDOK,     OnDeleteConfirmed},
    {IDCANCEL, EndDialogCancelled},
};

const MessageRow kDeleteMessages[] = {
    {WM_INITDIALOG, OnDeleteInit},
    {WM_PAINT,      OnDeletePaint},
};

// ---- IDD_DESTINATION_DIR

struct DestinationData {
  std::string root;
  std::string folder;
  HIMAGELIST images = nullptr;
};

constexpr int kUpImage = 0;
constexpr int kFolderImage = 1;

void AddDestinationRow(HWND list, const char* text, int image) {
  LVITEMA item{};
  item.mask = LVIF_TEXT | LVIF_IMAGE;
  item.iItem = static_cast<int>(SendMessageA(list, LVM_GETITEMCOUNT, 0, 0));
  item.pszText = const_cast<char*>(text);
  item.iImage = image;
  SendMessageA(list, LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item));
}

// The folder's sub-folders in the search's order, after "..." below the root.
void ListDestination(HWND dialog, const DestinationData& data) {
  HWND list = GetDlgItem(dialog, IDC_DESTINATION_LIST);
  SendMessageA(list, LVM_DELETEALLITEMS, 0, 0);
  if (data.folder != data.root) AddDestinationRow(list, kUpRow, kUpImage);
  WIN32_FIND_DATAA found;
  HANDLE find = FindFirstFileA((data.folder + "*.*").c_str(), &found);
  if (find == INVALID_HANDLE_VALUE) return;
  do {
    // A folder link may lead out of DataHtml: a page moved into it would land there.
    if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) &&
        !(found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) && IsListedName(found.cFileName))
      AddDestinationRow(list, found.cFileName, kFolderImage);
  } while (FindNextFileA(find, &found));
  FindClose(find);
}

LRESULT OnDestinationInit(HWND dialog, UINT, WPARAM, LPARAM lParam) {
  SetWindowLongPtrA(dialog, DWLP_USER, lParam);
  auto& data = *reinterpret_cast<DestinationData*>(lParam);
  HWND list = GetDlgItem(dialog, IDC_DESTINATION_LIST);
  SendMessageA(list, LVM_DELETEALLITEMS, 0, 0);
  data.images = ImageList_Create(16, 16, ILC_MASK | ILC_COLOR32, 2, 0);
  if (data.images) {
    ImageList_AddIcon(data.images, Gdi().rootFolderIcon);
    ImageList_AddIcon(data.images, Gdi().openFolderIcon);
    SendMessageA(list, LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(data.images));
  } else {
    ShowMessage("No Image List", nullptr, MB_OK);
  }
  ListDestination(dialog, data);
  return TRUE;
}

LRESULT OnDestinationDoubleClick(HWND dialog, const NMITEMACTIVATE& activate) {
  auto& data = *DialogData<DestinationData>(dialog);
  std::array<char, kLinkPathSize> name{};
  LVITEMA item{};
  item.iSubItem = 0;
  item.pszText = name.data();
  item.cchTextMax = static_cast<int>(name.size());
  if (activate.iItem < 0 ||
      !SendMessageA(activate.hdr.hwndFrom, LVM_GETITEMTEXTA, activate.iItem,
                    reinterpret_cast<LPARAM>(&item)))
    return 0;
  if (EqualNoCase(name.data(), kUpRow)) {
    const std::string up = DestinationUp(data.folder, data.root);
    if (up == data.folder) return 0;
    data.folder = up;
  } else {
    data.folder += std::string(name.data()) + "\\";
  }
  ListDestination(dialog, data);
  return 0;
}

LRESULT OnDestinationNotify(HWND dialog, UINT, WPARAM, LPARAM lParam) {
  const auto& header = *reinterpret_cast<const NMHDR*>(lParam);
  if (header.idFrom == IDC_DESTINATION_LIST && header.code == NM_DBLCLK)
    return OnDestinationDoubleClick(dialog, reinterpret_cast<const NMITEMACTIVATE&>(header));
  return 0;
}

LRESULT EndDestination(HWND dialog, INT_PTR result) {
  auto& data = *DialogData<DestinationData>(dialog);
  if (data.images) ImageList_Destroy(data.images);
  data.images = nullptr;
  EndDialog(dialog, result);
  return 1;
}

LRESULT OnDestinationOk(HWND dialog, WORD, WORD, LPARAM) { return EndDestination(dialog, 1); }
LRESULT OnDestinationCancel(HWND dialog, WORD, WORD, LPARAM) { return EndDestination(dialog, 0); }

const CommandRow kDestinationCommands[] = {
    {IDOK,     OnDestinationOk},
    {IDCANCEL, OnDestinationCancel},
};

const MessageRow kDestinationMessages[] = {
    {WM_INITDIALOG, OnDestinationInit},
    {WM_NOTIFY,     OnDestinationNotify},
};

}  // namespace

INT_PTR RunNameDialog(HWND owner, NameRequest& request) {
  return DialogBoxParamA(App().instance, kNameDialog, owner,
                         DialogProcedure<kNameMessages, kNameCommands>,
                         reinterpret_cast<LPARAM>(&request));
}

bool& DeleteSubfoldersOption() {
  static bool option = true;
  return option;
}

INT_PTR RunDeleteFolderDialog(HWND owner, const std::string& folder) {
  DeleteDialogData data{folder};
  const INT_PTR result = DialogBoxParamA(App().instance, kDeleteDialog, owner,
                                         DialogProcedure<kDeleteMessages, kDeleteCommands>,
                                         reinterpret_cast<LPARAM>(&data));
  if (data.icon) DestroyIcon(data.icon);
  return result;
}

INT_PTR RunDestinationDialog(HWND owner, const std::string& root, std::string& chosen) {
  DestinationData data{root, root};
  const INT_PTR result = DialogBoxParamA(
      App().instance, kDestinationDialog, owner,
      DialogProcedure<kDestinationMessages, kDestinationCommands>, reinterpret_cast<LPARAM>(&data));
  if (result == 1) chosen = data.folder;
  return result;
}

}  // namespace qb
