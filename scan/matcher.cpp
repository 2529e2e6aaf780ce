#include "scan/matcher.h"

#include <array>
#include <utility>

#include "base/user_message.h"

namespace qb {
namespace {

constexpr char kOutOfMemoryText[] = "Not enough memory to store the data";
constexpr char kKeyTextTooLongText[] = "A key field can hold at most 29999 characters";

bool IsEntryGap(char c) { return c == ',' || c == ' ' || c == '\r' || c == '\n'; }

bool SameText(std::string_view a, std::string_view b) {
  return a.size() == b.size() && CompareNoCase(a, b) == 0;
}

std::string_view TrimTrailingSpaces(std::string_view text) {
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

std::string_view TrimSpaces(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  return TrimTrailingSpaces(text);
}

// Calls `visit` with each Selection line until it returns true. As with Search
// Names, but only a line end ends an entry (a comma does not), and CRs are left
// out of it.
template <typename Visit>
bool AnySelectionLine(std::string_view text, Visit visit) {
  std::string entry;
  std::size_t pos = 0;
  while (pos < text.size()) {
    while (pos < text.size() && IsEntryGap(text[pos])) ++pos;
    entry.clear();
    for (; pos < text.size() && text[pos] != '\n' && entry.size() < kMaxSearchEntryBytes; ++pos) {
      if (text[pos] != '\r') entry += text[pos];
    }
    const std::string_view line = TrimTrailingSpaces(entry);
    if (!line.empty() && visit(line)) return true;
  }
  return false;
}

// What learning appends to: the text without its trailing separators.
std::string_view TrimTrailingSeparators(std::string_view text) {
  while (!text.empty() && (text.back() == '\0' || IsEntryGap(text.back()))) text.remove_suffix(1);
  return text;
}

std::string Appended(std::string_view existing, std::string_view separator, std::string_view addition) {
  const std::string_view kept = TrimTrailingSeparators(existing);
  if (kept.empty()) return std::string(addition);
  std::string text(kept);
  text.append(separator).append(addition);
  return text;
}

// The entries of `text`, each with the separator that ends it, except those
// whose content equals `drop`. Entries end at any of `separators`.
std::string WithoutEntry(std::string_view text, std::string_view separators, std::size_t maxEntry,
                         std::string_view drop) {
  std::size_t pos = 0;
  while (pos < text.size() && (text[pos] == ' ' || text[pos] == ',' || text[pos] == '\n')) ++pos;
  std::string kept;
  while (pos < text.size()) {
    const std::size_t start = pos;
    while (pos < text.size() && separators.find(text[pos]) == std::string_view::npos &&
           pos - start + 1 < maxEntry) {
      ++pos;
    }
    if (pos < text.size()) ++pos;  // the separator, or the byte that fills the entry
    const std::string_view entry = text.substr(start, pos - start);
    std::string_view content = entry;
    while (!content.empty() && (separators.find(content.back()) != std::string_view::npos ||
                                content.back() == '\r' || content.back() == ' ')) {
      content.remove_suffix(1);
    }
    if (!SameText(TrimSpaces(content), drop)) kept.append(entry);
  }
  return kept;
}

// Puts new texts into a key's fields, all or none: the old texts stay when one
// is too long or memory runs out.
bool ReplaceKeyTexts(KeyTable& keys, std::uint32_t key,
                     const std::array<std::pair<KeyField, const std::string*>, 2>& changes) {
  std::array<TextBlock, 2> blocks{};
  for (std::size_t i = 0; i < changes.size(); ++i) {
    const std::string* text = changes[i].second;
    if (text && text->size() > kMaxFieldLength) {
      TellUser(kKeyTextTooLongText);
      return false;
    }
  }
  for (std::size_t i = 0; i < changes.size(); ++i) {
    const std::string* text = changes[i].second;
    if (!text || text->empty()) continue;
    blocks[i] = MakeTextBlock(*text);
    if (!blocks[i]) {
      for (TextBlock block : blocks) FreeTextBlock(block);
      TellUser(kOutOfMemoryText, "Information", MessageIcon::kInformation);
      return false;
    }
  }
  for (std::size_t i = 0; i < changes.size(); ++i) {
    if (!changes[i].second) continue;
    TextBlock& entry = keys.fields[changes[i].first][key];
    FreeTextBlock(entry);
    entry = blocks[i];
  }
  SetDatabaseChanged(true);
  return true;
}

}  // namespace

bool KeyInTable(const KeyTable& keys, std::uint32_t key) {
  return key < static_cast<std::uint32_t>(KeysInUse(keys));
}

std::string FoldCaseForCompare(std::string_view text) {
  std::string folded(text);
  for (char& c : folded) {
    const auto byte = static_cast<unsigned char>(c);
    // A-Z, and the capitals of the Windows single-byte code pages (0xD7 is x).
    if ((byte >= 'A' && byte <= 'Z') || (byte >= 0xC0 && byte <= 0xDE && byte != 0xD7)) {
      c = static_cast<char>(byte + 0x20);
    }
  }
  return folded;
}

void SearchNameIndex::Build(const KeyTable& keys) {
  first_.clear();
  const int count = KeysInUse(keys);
  for (int i = 0; i < count; ++i) {
    const TextLock names(keys.fields[kSearchNames][i]);
    AnySearchName(names.text(), [&](std::string_view entry) {
      first_.emplace(FoldCaseForCompare(entry), static_cast<std::uint32_t>(i));  // an earlier key stays
      return false;
    });
  }
}

std::uint32_t SearchNameIndex::Find(std::string_view name) const {
  if (name.empty()) return kNoMatch;
  const auto it = first_.find(FoldCaseForCompare(name));
  return it == first_.end() ? kNoMatch : it->second;
}

std::uint32_t FindKeyBySearchName(const KeyTable& keys, std::string_view fieldName) {
  if (fieldName.empty()) return kNoMatch;
  const int count = KeysInUse(keys);
  for (int i = 0; i < count; ++i) {
    const TextLock names(keys.fields[kSearchNames][i]);
    if (AnySearchName(names.text(), [&](std::string_view entry) { return SameText(entry, fieldName); })) {
      return static_cast<std::uint32_t>(i);
    }
  }
  return kNoMatch;
}

bool SelectionContains(std::string_view text, std::string_view selection) {
  if (text.empty()) return false;
  return AnySelectionLine(selection, [&](std::string_view line) { return SameText(line, text); });
}

std::string WithoutCarriageReturns(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (char c : text) {
    if (c != '\r') result += c;
  }
  return result;
}

bool LearnSearchName(KeyTable& keys, std::string_view fieldName, std::uint32_t key,
                     std::string_view value, bool withValue) {
  if (fieldName.empty() || !KeyInTable(keys, key) || FindKeyBySearchName(keys, fieldName) != kNoMatch) return false;
  const std::string names = Appended(KeyFieldText(keys, key, kSearchNames), ",", fieldName);
  std::string selection;
  bool addValue = false;
  if (withValue && !value.empty()) {
    selection = KeyFieldText(keys, key, kSelection);
    addValue = !SelectionContains(value, selection);
    if (addValue) selection = Appended(selection, "\r\n", value);
  }
  return ReplaceKeyTexts(keys, key, {{{kSearchNames, &names}, {kSelection, addValue ? &selection : nullptr}}});
}

bool ForgetSearchName(KeyTable& keys, std::string_view fieldName, std::uint32_t key,
                      std::string_view value, bool withValue) {
  if (!KeyInTable(keys, key) || FindKeyBySearchName(keys, fieldName) == kNoMatch) return false;
  const std::string oldNames = KeyFieldText(keys, key, kSearchNames);
  const std::string names = oldNames.empty()
                                ? std::string(fieldName)
                                : WithoutEntry(oldNames, ",\r\n", kMaxForgetEntryBytes, fieldName);
  std::string selection;
  bool dropValue = false;
  if (withValue && !value.empty()) {
    selection = KeyFieldText(keys, key, kSelection);
    dropValue = SelectionContains(value, selection);
    if (dropValue) selection = WithoutEntry(selection, "\n", kMaxSearchEntryBytes, TrimSpaces(value));
  }
  return ReplaceKeyTexts(keys, key, {{{kSearchNames, &names}, {kSelection, dropValue ? &selection : nullptr}}});
}

}  // namespace qb
