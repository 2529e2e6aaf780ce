#include "keys/key_text.h"

#include <array>

namespace qb {
namespace {

constexpr char kLineBreak[] = "\r\n";

struct Word {
  std::string_view word;
  KeyField field;
};
constexpr std::array<Word, 4> kWords{{
    {"key", kName},
    {"search", kSearchNames},
    {"select", kSelection},
    {"description", kDescription},
}};

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

std::string_view TrimEnd(std::string_view s) {
  while (!s.empty() && (IsBlank(s.back()) || s.back() == '\r')) s.remove_suffix(1);
  return s;
}

std::string_view TrimStart(std::string_view s) {
  while (!s.empty() && IsBlank(s.front())) s.remove_prefix(1);
  return s;
}

bool Fail(KeyTable& table, std::string& error, int line, const std::string& what) {
  ClearAllKeys(table);
  error = "line " + std::to_string(line) + ": " + what;
  return false;
}

// Stores the key gathered so far at the end of the table.
bool StoreKey(KeyTable& table, const std::array<std::string, kKeyFieldCount>& key) {
  const int index = table.count;
  for (int f = 0; f < kKeyFieldCount; ++f) {
    if (!SetKeyField(table, index, static_cast<KeyField>(f), key[f])) return false;
  }
  table.count = index + 1;
  return true;
}

}  // namespace

bool ParseKeyText(std::string_view text, KeyTable& table, std::string& error) {
  ClearAllKeys(table);
  std::array<std::string, kKeyFieldCount> key;
  std::array<bool, kKeyFieldCount> seen{};
  bool inKey = false;
  int keyLine = 0;
  int lineNumber = 0;
  auto finishKey = [&]() {
    if (!inKey) return true;
    for (const std::string& field : key) {
      if (field.size() > kMaxFieldLength) {
        return Fail(table, error, keyLine, "a field of this key is longer than " +
                                               std::to_string(kMaxFieldLength) + " bytes");
      }
    }
    if (FindKeyByName(table, key[kName]) != kNoKey) {
      return Fail(table, error, keyLine, "a key named \"" + key[kName] + "\" comes before");
    }
    if (table.count >= kMaxKeys) {
      return Fail(table, error, keyLine, "more than " + std::to_string(kMaxKeys) + " keys");
    }
    if (!StoreKey(table, key)) return Fail(table, error, keyLine, "out of memory");
    return true;
  };

  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    ++lineNumber;
    line = TrimStart(TrimEnd(line));
    if (line.empty() || line.front() == '#') continue;
    if (line.find('\0') != std::string_view::npos) {
      return Fail(table, error, lineNumber, "a NUL byte can't be kept in a key");
    }
    std::size_t wordEnd = 0;
    while (wordEnd < line.size() && !IsBlank(line[wordEnd])) ++wordEnd;
    const std::string_view word = line.substr(0, wordEnd);
    const std::string_view value = TrimStart(line.substr(wordEnd));
    const Word* known = nullptr;
    for (const Word& w : kWords) {
      if (w.word == word) known = &w;
    }
    if (!known) return Fail(table, error, lineNumber, "unknown word \"" + std::string(word) + "\"");
    if (known->field == kName) {
      if (!finishKey()) return false;
      if (value.empty()) return Fail(table, error, lineNumber, "a key needs a name");
      key = {std::string(value), {}, {}, {}};
      seen = {true, false, false, false};
      inKey = true;
      keyLine = lineNumber;
      continue;
    }
    if (!inKey) {
      return Fail(table, error, lineNumber, "\"" + std::string(word) + "\" before the first key");
    }
    std::string& field = key[known->field];
    if (seen[known->field]) field += kLineBreak;
    field += value;
    seen[known->field] = true;
  }
  return finishKey();
}

}  // namespace qb
