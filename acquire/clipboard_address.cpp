#include "acquire/clipboard_address.h"

#include <windows.h>

#include <algorithm>
#include <cwchar>

namespace qb {
namespace {

// Text that another program put there ends at its NUL or at the block's end,
// whichever comes first.
template <typename Char>
std::basic_string<Char> BlockText(HANDLE data) {
  std::basic_string<Char> text;
  const auto* chars = static_cast<const Char*>(GlobalLock(data));
  if (!chars) return text;
  const std::size_t room =
      std::min<std::size_t>(GlobalSize(data) / sizeof(Char), kClipboardTextMax);
  std::size_t length = 0;
  while (length < room && chars[length] != 0) ++length;
  text.assign(chars, length);
  GlobalUnlock(data);
  return text;
}

std::string AnsiFromWide(const std::wstring& wide) {
  if (wide.empty()) return std::string();
  const int wideLength = static_cast<int>(wide.size());
  const int size =
      WideCharToMultiByte(CP_ACP, 0, wide.data(), wideLength, nullptr, 0, nullptr, nullptr);
  std::string text(static_cast<std::size_t>(std::max(size, 0)), '\0');
  WideCharToMultiByte(CP_ACP, 0, wide.data(), wideLength, text.data(), size, nullptr, nullptr);
  return text;
}

}  // namespace

std::string ClipboardText() {
  std::string text;
  if (!OpenClipboard(nullptr)) return text;
  if (HANDLE wide = GetClipboardData(CF_UNICODETEXT)) {
    text = AnsiFromWide(BlockText<wchar_t>(wide));
  } else if (HANDLE plain = GetClipboardData(CF_TEXT)) {
    text = BlockText<char>(plain);
  }
  CloseClipboard();
  return text;
}

std::string LocalPathOfFileUrl(std::string_view fileUrl) {
  const std::string bytes = FileUrlPath(fileUrl);
  if (std::all_of(bytes.begin(), bytes.end(),
                  [](char c) { return static_cast<unsigned char>(c) < 0x80; }))
    return bytes;
  const int length = static_cast<int>(bytes.size());
  const int size =
      MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes.data(), length, nullptr, 0);
  if (size <= 0) return bytes;
  std::wstring wide(static_cast<std::size_t>(size), L'\0');
  MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes.data(), length, wide.data(), size);
  return AnsiFromWide(wide);
}

PastedAddress ClipboardAddress() {
  PastedAddress pasted = ParsePastedAddress(ClipboardText());
  if (pasted.kind == PastedKind::kLocalFile && IsFileUrl(pasted.line))
    pasted.text = LocalPathOfFileUrl(pasted.line);
  return pasted;
}

}  // namespace qb
