// Tying form fields to keys. A field is answered by the first key (lowest index;
// no scoring) whose Search Names list its name. Search Names are separated by
// commas or line ends; a Selection holds one value per line, so "Yes, please" is
// one value there. Both comparisons ignore letter case, and leave the texts
// they compare as they are: a page's names and values reach the filled page and
// the server as the page has them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

#include "base/textblock.h"
#include "keys/key_table.h"

namespace qb {

constexpr std::uint32_t kNoMatch = 0xFFFFFFFFu;
// One Search Name or Selection line; a longer run is read as several.
constexpr std::size_t kMaxSearchEntryBytes = 2048;
// One Search Name as ForgetSearchName takes it apart, separator included.
constexpr std::size_t kMaxForgetEntryBytes = 258;

// Whether `key` is one of the table's keys (kNoMatch is not).
bool KeyInTable(const KeyTable& keys, std::uint32_t key);

// The first key whose Search Names hold `fieldName`; kNoMatch for none and for an
// empty name.
std::uint32_t FindKeyBySearchName(const KeyTable& keys, std::string_view fieldName);

// Calls `visit` with each Search Name of `text` until it returns true. An entry
// runs to the next comma, CR or LF (at most kMaxSearchEntryBytes); the gaps before
// it are skipped and trailing spaces trimmed, so inner spaces stay ("first name").
template <typename Visit>
bool AnySearchName(std::string_view text, Visit visit) {
  const auto gap = [](char c) { return c == ',' || c == ' ' || c == '\r' || c == '\n'; };
  std::size_t pos = 0;
  while (pos < text.size()) {
    while (pos < text.size() && gap(text[pos])) ++pos;
    const std::size_t start = pos;
    while (pos < text.size() && text[pos] != ',' && text[pos] != '\r' && text[pos] != '\n' &&
           pos - start < kMaxSearchEntryBytes) {
      ++pos;
    }
    std::size_t end = pos;
    while (end > start && text[end - 1] == ' ') --end;
    if (end > start && visit(text.substr(start, end - start))) return true;
  }
  return false;
}

// Every Search Name of a key table with the first key that lists it: the answer
// of FindKeyBySearchName in one look-up instead of a walk over every key. It holds
// the table as it was at Build; a change to the keys needs another Build.
class SearchNameIndex {
 public:
  void Build(const KeyTable& keys);
  std::uint32_t Find(std::string_view name) const;  // kNoMatch for none and for ""

 private:
  std::unordered_map<std::string, std::uint32_t> first_;
};

// `text` with the letter-case fold of CompareNoCase: two texts compare equal
// exactly when their folds are the same bytes.
std::string FoldCaseForCompare(std::string_view text);

// Whether a line of `selection` equals `text`.
bool SelectionContains(std::string_view text, std::string_view selection);

// A matched key's Description as text fields receive it: CR LF line ends become LF.
std::string WithoutCarriageReturns(std::string_view text);

// Adds `fieldName` to key `key`'s Search Names ("postcode, " + "zip" gives
// "postcode,zip") and, with `withValue`, `value` as a new Selection line unless it
// is there already. Only while no key matches the name. Sets the database-changed
// flag. False when nothing was learned: a name some key already answers, a key
// outside the table, an empty name, or a text that would pass kMaxFieldLength or not fit in
// memory (the user is told of those two, and the key stays as it was).
bool LearnSearchName(KeyTable& keys, std::string_view fieldName, std::uint32_t key,
                     std::string_view value, bool withValue);

// Removes from key `key`'s Search Names every entry equal to `fieldName` and, with
// `withValue`, every Selection line equal to `value`; the other entries stay as
// they stand, separators included. Only while some key matches the name. A key
// with no Search Names at all gets the field name instead, as it always has.
// Sets the database-changed flag. False when nothing was done, as for learning.
bool ForgetSearchName(KeyTable& keys, std::string_view fieldName, std::uint32_t key,
                      std::string_view value, bool withValue);

}  // namespace qb
