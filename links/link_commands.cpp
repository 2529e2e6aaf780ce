#include "links/link_commands.h"

#include <cstdio>
#include <optional>
#include <vector>

#include "acquire/acquire_state.h"
#include "acquire/browser.h"
#include "acquire/document_registry.h"
#include "base/app_state.h"
#include "links/link_dialogs.h"
#include "links/link_paths.h"
#include "links/link_scan.h"
#include "links/links_view.h"
#include "resources/resource.h"

namespace qb {
namespace {

constexpr char kSelectFirst[] = "First you must select Link file from the ListView window";
constexpr char kNotALink[] = "This is not a Link file then Folder";
constexpr char kDeleteLinkQuestion[] = "Are you sure you want to delete a link file:\n%s";
constexpr char kLinkInfo[] = "Location URL:\nhttp://%s\n\nLocation File:\n%s";
constexpr char kRenameFolderText[] = "Type a new Folder name:";
constexpr char kRenameFileText[] = "Type a new File name:";

void Stop(const char* text) { ShowMessage(text, nullptr, MB_OK | MB_ICONSTOP); }

// The row a command acts on. Nothing while the view is hidden; without a row
// (the parent row is none) the user is told. The view is listed again after
// every command that had its row.
struct TargetRow {
  const LinkEntry* entry = nullptr;
  std::string path;  // current folder + name, ".ext" for a document
};

bool TakeRow(TargetRow& row) {
  if (!LinksViewShown()) return false;
  const LinkEntry* entry = SelectedLinkEntry();
  if (!entry || entry->kind == kLinkParent) {
    Stop(kSelectFirst);
    return false;
  }
  row.entry = entry;
  row.path = App().linksFolder + LinkFileName(*entry);
  return IsUnderRoot(row.path, App().dataHtmlDir);
}

// Commands that act on a saved page only.
bool TakeDocumentRow(TargetRow& row) {
  if (!TakeRow(row)) return false;
  if (row.entry->kind == kLinkDocument) return true;
  Stop(kNotALink);
  RefreshLinksView();
  return false;
}

// A name for the current folder, told off in the name dialog when refused.
bool AcceptName(HWND dialog, const std::string& name) {
  const std::string& folder = App().linksFolder;
  if (const auto refused = RefusedNameText(folder, name)) {
    MessageBoxA(dialog, refused->c_str(), "Warning", MB_OK | MB_ICONSTOP);
    return false;
  }
  return IsUnderRoot(folder + name, App().dataHtmlDir);
}

bool CreateNewFolder(HWND dialog, const std::string& name) {
  if (!AcceptName(dialog, name)) return false;
  SECURITY_ATTRIBUTES security{sizeof security, nullptr, TRUE};
  CreateDirectoryA((App().linksFolder + name).c_str(), &security);
  RefreshLinksView();
  return true;
}

// Renames the row's folder or page; every registry line that begins with the old
// path follows, whether or not it lies inside the renamed folder.
void RenameRow(const TargetRow& row, const std::string& name) {
  const std::string renamed = App().linksFolder + name;
  if (std::rename(row.path.c_str(), renamed.c_str()) == 0)
    ProgramRegistry().RenamePrefix(WithoutBackslash(row.path), WithoutBackslash(renamed));
}

std::optional<std::string> ReadWholeFile(const std::string& path) {
  std::FILE* in = std::fopen(path.c_str(), "rb");
  if (!in) return std::nullopt;
  std::string bytes;
  char buffer[4096];
  for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, in)) > 0;) bytes.append(buffer, n);
  const bool read = !std::ferror(in);
  std::fclose(in);
  return read ? std::optional<std::string>(bytes) : std::nullopt;
}

void WriteWholeFile(const std::string& path, const std::string& bytes) {
  if (std::FILE* out = std::fopen(path.c_str(), "wb")) {
    std::fwrite(bytes.data(), 1, bytes.size(), out);
    std::fclose(out);
  }
}

}  // namespace

LRESULT OnNewFolderCommand(HWND window, WORD, WORD, LPARAM) {
  NameRequest request;
  request.accept = CreateNewFolder;
  RunNameDialog(window, request);
  return 0;
}

namespace {

// Renamed, a folder link can take the place it leads to along (Wine moves the
// target), so it is left alone and the user told.
bool RefusedFolderLink(const TargetRow& row) {
  if (row.entry->kind != kLinkFolder || !(row.entry->attributes & FILE_ATTRIBUTE_REPARSE_POINT)) return false;
  ShowMessage(kFolderLinkText, kAppName, MB_OK | MB_ICONINFORMATION);
  return true;
}

}  // namespace

LRESULT OnRenameFolderCommand(HWND window, WORD, WORD, LPARAM) {
  TargetRow row;
  if (!TakeRow(row)) return 0;
  if (RefusedFolderLink(row)) return 0;
  NameRequest request;
  request.groupText = row.entry->kind == kLinkFolder ? kRenameFolderText : kRenameFileText;
  request.name = LinkFileName(*row.entry);
  request.accept = AcceptName;
  if (RunNameDialog(window, request) == 1) RenameRow(row, request.name);
  RefreshLinksView();
  return 0;
}

LRESULT OnDeleteLinkCommand(HWND window, WORD, WORD, LPARAM) {
  TargetRow row;
  if (!TakeRow(row)) return 0;
  if (row.entry->kind == kLinkFolder) {
    if (RunDeleteFolderDialog(window, row.path) == 1)
      DeleteFolderTree(row.path, DeleteSubfoldersOption());
  } else if (ShowMessage(FormatText(kDeleteLinkQuestion, row.path.c_str()), nullptr,
                         MB_YESNO | MB_ICONQUESTION) == IDYES) {
    // The registry keeps the entry as a deleted link until it is compacted.
    DeleteFileA(row.path.c_str());
  }
  RefreshLinksView();
  return 0;
}

void RenameSelectedLink(HWND owner, const std::string& name) {
  TargetRow row;
  if (!TakeRow(row) || RefusedFolderLink(row)) return;
  if (AcceptName(owner, name)) RenameRow(row, name);
  RefreshLinksView();
}

// Renaming a saved page is "&Rename Folder"'s work; this one only checks the row.
LRESULT OnRenameLinkCommand(HWND, WORD, WORD, LPARAM) {
  TargetRow row;
  if (TakeDocumentRow(row)) RefreshLinksView();
  return 0;
}

LRESULT OnMoveLinkCommand(HWND window, WORD, WORD, LPARAM) {
  TargetRow row;
  if (!TakeDocumentRow(row)) return 0;
  std::string destination;
  if (RunDestinationDialog(window, App().dataHtmlDir, destination) == 1 &&
      IsUnderRoot(destination, App().dataHtmlDir)) {
    const std::string moved = destination + LinkFileName(*row.entry);
    const DocumentRegistry& registry = ProgramRegistry();
    // Before the copy: the registry drops entries whose files are gone. When the
    // copy fails the page stays where it was, and so must its entry.
    const std::optional<std::string> before = ReadWholeFile(registry.path());
    registry.RenameFile(row.path, moved);
    if (!CopyFileA(row.path.c_str(), moved.c_str(), FALSE)) {
      if (before) WriteWholeFile(registry.path(), *before);
    } else {
      DeleteFileA(row.path.c_str());
    }
  }
  RefreshLinksView();
  return 0;
}

LRESULT OnGotoSiteCommand(HWND, WORD, WORD, LPARAM) {
  TargetRow row;
  if (!TakeDocumentRow(row)) return 0;
  OpenUrlOfFile(row.path);
  RefreshLinksView();
  return 0;
}

LRESULT OnScanLinkCommand(HWND, WORD id, WORD, LPARAM) {
  TargetRow row;
  if (!TakeDocumentRow(row)) return 0;
  ScanSavedLink(row.path, id == IDM_SCAN_PROMPT_HTML);
  RefreshLinksView();
  return 0;
}

LRESULT OnLinkInfoCommand(HWND window, WORD, WORD, LPARAM) {
  const LinkEntry* entry = SelectedLinkEntry();
  if (entry && entry->kind == kLinkDocument) {
    const std::string path = App().linksFolder + LinkFileName(*entry);
    if (const auto url = ProgramRegistry().FindUrlForFile(path))
      ShowMessage(FormatText(kLinkInfo, url->c_str(), path.c_str()), kAppName,
                  MB_OK | MB_ICONINFORMATION);
  }
  SendMessageA(window, WM_SIZE, 0, 0);
  return 0;
}

namespace {

// A symbolic link or junction to a folder, which may lie outside DataHtml.
bool IsLink(DWORD attributes) { return (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0; }

// Removes the link itself. Only a system that opens the link rather than what it
// points to (told by the handle's attributes) can remove it safely; elsewhere
// removing it would empty or remove the folder it points to, so it stays.
void RemoveLink(const std::string& path) {
  HANDLE handle = CreateFileA(path.c_str(), FILE_READ_ATTRIBUTES,
                              FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                              FILE_FLAG_OPEN_REPARSE_POINT | FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return;
  BY_HANDLE_FILE_INFORMATION info{};
  const bool linkItself = GetFileInformationByHandle(handle, &info) && IsLink(info.dwFileAttributes);
  CloseHandle(handle);
  if (linkItself) RemoveDirectoryA(path.c_str());
}

}  // namespace

void DeleteFolderTree(const std::string& folder, bool subfolders) {
  if (folder.size() < kDeletePathMin) return;
  const DWORD attributes = GetFileAttributesA(WithoutBackslash(folder).c_str());
  if (attributes != INVALID_FILE_ATTRIBUTES && IsLink(attributes)) {
    RemoveLink(WithoutBackslash(folder));
    return;
  }
  const std::string top = WithBackslash(folder);
  struct Level {
    HANDLE find;
    std::string folder;
  };
  std::vector<Level> levels;
  WIN32_FIND_DATAA found;
  HANDLE find = FindFirstFileA((top + "*.*").c_str(), &found);
  if (find != INVALID_HANDLE_VALUE) levels.push_back({find, top});
  bool pending = !levels.empty();  // `found` holds an entry not yet handled
  while (!levels.empty()) {
    const std::string here = levels.back().folder;
    if (!pending && !FindNextFileA(levels.back().find, &found)) {
      FindClose(levels.back().find);
      levels.pop_back();
      if (!levels.empty()) RemoveDirectoryA(here.c_str());
      continue;
    }
    pending = false;
    const std::string name = found.cFileName;
    if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) {
      DeleteFileA((here + name).c_str());
      continue;
    }
    if (!subfolders || !IsListedName(name)) continue;
    if (IsLink(found.dwFileAttributes)) {
      RemoveLink(here + name);
      continue;
    }
    if (levels.size() >= static_cast<std::size_t>(kDeleteLevelsMax)) continue;
    const std::string inner = here + name + "\\";
    find = FindFirstFileA((inner + "*.*").c_str(), &found);
    if (find == INVALID_HANDLE_VALUE) continue;
    levels.push_back({find, inner});
    pending = true;
  }
  RemoveDirectoryA(top.c_str());
}

}  // namespace qb
