#include "keys/key_merge.h"

#include <algorithm>
#include <cstdio>
#include <unordered_map>
#include <unordered_set>

#include "app/user_message.h"
#include "keys/key_file.h"

namespace qb {
namespace {

bool IsBlankOrLineBreak(char c) { return c == ' ' || c == '\r' || c == '\n'; }

// Reads the names of `text`: a name starts after the characters `skip` accepts,
// ends before a character `ends` accepts (or the text's end), loses its carriage
// returns and trailing blanks, and is cut at kMergeNameMax characters.
template <class Skip, class Ends>
std::vector<std::string> SplitNames(std::string_view text, Skip skip, Ends ends) {
  std::vector<std::string> names;
  std::size_t pos = 0;
  const std::size_t end = text.size();
  while (true) {
    while (pos < end && skip(text[pos])) ++pos;
    if (pos == end) break;
    std::string name;
    for (; pos < end && !ends(text[pos]); ++pos) {
      if (text[pos] != '\r' && name.size() < kMergeNameMax) name += text[pos];
    }
    while (!name.empty() && name.back() == ' ') name.pop_back();
    if (!name.empty()) names.push_back(std::move(name));
  }
  return names;
}

// Appends `name` and its separator unless the field would grow past its limit.
bool AppendWithin(std::string& list, const std::string& name, std::string_view separator) {
  if (list.size() + name.size() + separator.size() > kMaxFieldLength) return false;
  list += name;
  list += separator;
  return true;
}

// Replaces a field only once the new block exists, so a failed allocation keeps
// the old text.
void ReplaceField(KeyTable& table, int index, KeyField field, std::string_view text) {
  SetDatabaseChanged(true);
  TextBlock block = kNoBlock;
  if (!text.empty()) {
    block = MakeTextBlock(text);
    if (block == kNoBlock) return;
  }
  TextBlock& entry = table.fields[field][index];
  FreeTextBlock(entry);
  entry = block;
}

// Which keys hold each folded search name (a key once per time it holds it).
class SearchNameIndex {
 public:
  explicit SearchNameIndex(const KeyTable& table) : held_(kMaxKeys) {
    const int count = KeysInUse(table);
    for (int k = 0; k < count; ++k) Set(k, KeyFieldText(table, k, kSearchNames));
  }

  bool HeldByOtherThan(int key, const std::string& folded) const {
    const auto it = holders_.find(folded);
    if (it == holders_.end()) return false;
    for (int holder : it->second) {
      if (holder != key) return true;
    }
    return false;
  }

  // Key `key`'s Search Names are now `text`.
  void Set(int key, std::string_view text) {
    for (const std::string& folded : held_[key]) {
      auto it = holders_.find(folded);
      std::vector<int>& keys = it->second;
      keys.erase(std::find(keys.begin(), keys.end(), key));
      if (keys.empty()) holders_.erase(it);
    }
    held_[key].clear();
    for (const std::string& name : SplitSearchNames(text)) {
      std::string folded = FoldedText(name);
      holders_[folded].push_back(key);
      held_[key].push_back(std::move(folded));
    }
  }

 private:
  std::unordered_map<std::string, std::vector<int>> holders_;
  std::vector<std::vector<std::string>> held_;  // per key, the names it added
};

// The first key of each folded Name, as FindKeyByName walks them.
class NameIndex {
 public:
  explicit NameIndex(const KeyTable& table) {
    const int count = KeysInUse(table);
    for (int k = 0; k < count; ++k) Add(k, KeyFieldText(table, k, kName));
  }
  // -1 when no key has the Name.
  int Find(std::string_view name) const {
    if (name.empty()) return -1;
    const auto it = first_.find(FoldedText(name));
    return it == first_.end() ? -1 : it->second;
  }
  // Keys are only ever added past the others, so an earlier key keeps its place.
  void Add(int key, std::string_view name) {
    if (!name.empty()) first_.emplace(FoldedText(name), key);
  }

 private:
  std::unordered_map<std::string, int> first_;
};

std::string MergedSearchNames(const SearchNameIndex& index, int key, std::string_view loaded,
                              std::string_view own, DuplicateMode mode) {
  std::string result;
  std::unordered_set<std::string> inResult;
  for (const std::string& name : SplitSearchNames(loaded)) {
    std::string folded = FoldedText(name);
    if (index.HeldByOtherThan(key, folded)) continue;
    if (AppendWithin(result, name, ",")) inResult.insert(std::move(folded));
  }
  if (mode == kCompareDuplicated) {
    for (const std::string& name : SplitSearchNames(own)) {
      std::string folded = FoldedText(name);
      if (inResult.count(folded)) continue;
      if (AppendWithin(result, name, ",")) inResult.insert(std::move(folded));
    }
  }
  return result;
}

std::string MergedSelection(std::string_view loaded, std::string_view own) {
  std::unordered_set<std::string> ownValues;
  for (const std::string& value : SplitSelection(own, SelectionSource::kOwn)) {
    ownValues.insert(FoldedText(value));
  }
  std::string result;
  for (const std::string& value : SplitSelection(loaded, SelectionSource::kLoaded)) {
    if (!ownValues.count(FoldedText(value))) AppendWithin(result, value, "\r\n");
  }
  return result;
}

}  // namespace

std::vector<std::string> SplitSearchNames(std::string_view text) {
  return SplitNames(
      text, [](char c) { return c == ',' || IsBlankOrLineBreak(c); },
      [](char c) { return c == ',' || c == '\n'; });
}

std::vector<std::string> SplitSelection(std::string_view text, SelectionSource source) {
  const bool skipCommas = source == SelectionSource::kLoaded;
  return SplitNames(
      text, [skipCommas](char c) { return (skipCommas && c == ',') || IsBlankOrLineBreak(c); },
      [](char c) { return c == '\n'; });
}

std::string FoldedText(std::string_view text) {
  std::string folded(text);
  for (char& c : folded) c = static_cast<char>(FoldCase(static_cast<unsigned char>(c)));
  return folded;
}

MergeOutcome MergeKeys(KeyTable& table, const KeyTable& loaded, const std::vector<int>& selected,
                       const MergeOptions& options, const NewKeyHook& onNewKey) {
  MergeOutcome outcome;
  NameIndex names(table);
  SearchNameIndex searchNames(table);
  const int loadedCount = KeysInUse(loaded);
  for (int source : selected) {
    if (source < 0 || source >= loadedCount) continue;
    const std::string name = KeyFieldText(loaded, source, kName);
    const int count = KeysInUse(table);
    const int found = names.Find(name);
    if (found >= 0 && options.mode == kSkipDuplicated) {
      ++outcome.skipped;
      continue;
    }
    const bool isNew = found < 0;
    if (isNew) {
      if (count >= kMaxKeys) {
        ++outcome.noRoom;
        continue;
      }
      FreeKeyFields(table, count);
      if (!SetKeyField(table, count, kName, name) ||
          (onNewKey && !onNewKey(count, name))) {
        FreeKeyFields(table, count);
        ++outcome.skipped;
        continue;
      }
    }
    const int target = isNew ? count : found;

    const std::string loadedSearch = KeyFieldText(loaded, source, kSearchNames);
    if (options.takeSearchNames && !loadedSearch.empty()) {
      if (options.mode == kOverwriteDuplicated) ReplaceField(table, target, kSearchNames, loadedSearch);
      const std::string merged = MergedSearchNames(searchNames, target, loadedSearch,
                                                   KeyFieldText(table, target, kSearchNames), options.mode);
      ReplaceField(table, target, kSearchNames, merged);
      searchNames.Set(target, KeyFieldText(table, target, kSearchNames));
    }
    if (options.takeSelection) {
      const std::string loadedSelection = KeyFieldText(loaded, source, kSelection);
      if (options.mode == kOverwriteDuplicated) ReplaceField(table, target, kSelection, loadedSelection);
      ReplaceField(table, target, kSelection,
                   MergedSelection(loadedSelection, KeyFieldText(table, target, kSelection)));
    }
    const std::string description = KeyFieldText(loaded, source, kDescription);
    if (options.takeDescription && !description.empty()) {
      ReplaceField(table, target, kDescription, description);
    }
    if (isNew) {
      names.Add(target, name);
      table.count = count + 1;
      ++outcome.added;
    } else {
      ++outcome.merged;
    }
    SetDatabaseChanged(true);
  }
  return outcome;
}

bool MergeSession::Begin(const std::string& path, KeyTable& table) {
  path_ = path;
  table_ = &table;
  savedCount_ = KeysInUse(table);
  changedBefore_ = DatabaseChanged();
  return SaveDatabase(path_, table);
}

bool MergeSession::Restore() {
  if (!table_) return false;
  const LoadResult result = LoadDatabase(path_, *table_);
  if (result.status == DatabaseLoadStatus::kMissing) TellUser(kCantOpenDatabaseText);
  if (!result.loaded()) return false;
  savedCount_ = KeysInUse(*table_);
  SetDatabaseChanged(changedBefore_);
  return true;
}

void MergeSession::End() {
  if (!path_.empty()) std::remove(path_.c_str());
}

}  // namespace qb
