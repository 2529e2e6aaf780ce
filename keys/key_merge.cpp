#include "keys/key_merge.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "base/user_message.h"
#include "keys/key_file.h"

namespace qb {
namespace {

bool IsBlankOrLineBreak(char c) { return c == ' ' || c == '\r' || c == '\n'; }
bool SearchNameSkip(char c) { return c == ',' || IsBlankOrLineBreak(c); }
bool SearchNameEnds(char c) { return c == ',' || c == '\n'; }
bool SelectionEnds(char c) { return c == '\n'; }

// Visits the names of `text`: a name starts after the characters `skip` accepts,
// ends before a character `ends` accepts (or the text's end), loses its carriage
// returns and trailing blanks, and is cut at kMergeNameMax characters. `name` is
// the caller's buffer, so a merge allocates nothing per name.
template <class Skip, class Ends, class Visit>
void ForEachName(std::string_view text, Skip skip, Ends ends, std::string& name, Visit visit) {
  std::size_t pos = 0;
  const std::size_t end = text.size();
  while (true) {
    while (pos < end && skip(text[pos])) ++pos;
    if (pos == end) break;
    const std::size_t start = pos;
    while (pos < end && !ends(text[pos])) ++pos;
    name.clear();
    // Carriage returns go; the first kMergeNameMax other characters stay.
    for (std::size_t from = start; from < pos && name.size() < kMergeNameMax;) {
      const std::string_view rest = text.substr(from, pos - from);
      const std::size_t cr = std::min(rest.find('\r'), rest.size());
      name.append(rest.data(), std::min(cr, kMergeNameMax - name.size()));
      from += cr + 1;
    }
    while (!name.empty() && name.back() == ' ') name.pop_back();
    if (!name.empty()) visit(static_cast<const std::string&>(name));
  }
}

template <class Visit>
void ForEachSearchName(std::string_view text, std::string& name, Visit visit) {
  ForEachName(text, SearchNameSkip, SearchNameEnds, name, visit);
}

template <class Visit>
void ForEachSelectionValue(std::string_view text, SelectionSource source, std::string& name, Visit visit) {
  if (source == SelectionSource::kLoaded) {
    ForEachName(text, [](char c) { return c == ',' || IsBlankOrLineBreak(c); }, SelectionEnds, name, visit);
  } else {
    ForEachName(text, IsBlankOrLineBreak, SelectionEnds, name, visit);
  }
}

// FoldCase as a table: folding is most of the work of reading a name.
const std::array<unsigned char, 256>& FoldTable() {
  static const std::array<unsigned char, 256> table = [] {
    std::array<unsigned char, 256> t{};
    for (int c = 0; c < 256; ++c) t[c] = FoldCase(static_cast<unsigned char>(c));
    return t;
  }();
  return table;
}

void FoldInto(std::string_view text, std::string& folded) {
  const auto& fold = FoldTable();
  folded.assign(text.data(), text.size());
  for (char& c : folded) c = static_cast<char>(fold[static_cast<unsigned char>(c)]);
}

std::uint64_t HashOf(std::string_view folded) {
  std::uint64_t h = 1469598103934665603ull;  // FNV-1a
  for (unsigned char c : folded) h = (h ^ c) * 1099511628211ull;
  return h;
}

// Folded names, each with an owner (a key index), in one flat hash table: no
// allocation per name, and a lookup compares only names of the same hash.
class FoldedNames {
 public:
  void Reset(std::size_t expected) {
    std::size_t size = 16;
    while (size < 2 * expected) size *= 2;
    buckets_.assign(size, -1);
    entries_.clear();
    entries_.reserve(expected);
    bytes_.clear();
    live_ = 0;
  }

  int size() const { return static_cast<int>(entries_.size()); }

  void Add(int owner, std::string_view folded) {
    if (2 * (live_ + 1) > buckets_.size()) Grow();
    const std::uint64_t hash = HashOf(folded);
    int& head = buckets_[hash & (buckets_.size() - 1)];
    entries_.push_back(Entry{hash, static_cast<std::uint32_t>(bytes_.size()),
                             static_cast<std::uint32_t>(folded.size()), owner, head});
    head = size() - 1;
    bytes_.append(folded.data(), folded.size());
    ++live_;
  }

  void Remove(int entry) {
    int* link = &buckets_[entries_[entry].hash & (buckets_.size() - 1)];
    while (*link != entry) link = &entries_[*link].next;
    *link = entries_[entry].next;
    entries_[entry].owner = kRemoved;
    --live_;
  }

  // Whether some owner for which `accept` holds has `folded`.
  template <class Accept>
  bool Any(std::string_view folded, Accept accept) const {
    const std::uint64_t hash = HashOf(folded);
    for (int e = buckets_[hash & (buckets_.size() - 1)]; e >= 0; e = entries_[e].next) {
      const Entry& entry = entries_[e];
      if (entry.hash == hash && accept(entry.owner) && Text(entry) == folded) return true;
    }
    return false;
  }

  // Visits the names in the order they were added (removed ones left out).
  template <class Visit>
  void ForEach(Visit visit) const {
    for (const Entry& e : entries_) {
      if (e.owner != kRemoved) visit(Text(e));
    }
  }

  // The lowest owner of `folded`; -1 when none has it.
  int LowestOwner(std::string_view folded) const {
    int lowest = -1;
    const std::uint64_t hash = HashOf(folded);
    for (int e = buckets_[hash & (buckets_.size() - 1)]; e >= 0; e = entries_[e].next) {
      const Entry& entry = entries_[e];
      if (entry.hash == hash && (lowest < 0 || entry.owner < lowest) && Text(entry) == folded) lowest = entry.owner;
    }
    return lowest;
  }

 private:
  static constexpr int kRemoved = -1;
  struct Entry {
    std::uint64_t hash;
    std::uint32_t offset;
    std::uint32_t length;
    int owner;
    int next;
  };

  std::string_view Text(const Entry& e) const { return std::string_view(bytes_).substr(e.offset, e.length); }

  void Grow() {
    buckets_.assign(buckets_.size() * 2, -1);
    for (int e = 0; e < size(); ++e) {
      if (entries_[e].owner == kRemoved) continue;
      int& head = buckets_[entries_[e].hash & (buckets_.size() - 1)];
      entries_[e].next = head;
      head = e;
    }
  }

  std::vector<int> buckets_ = std::vector<int>(16, -1);
  std::vector<Entry> entries_;
  std::string bytes_;
  std::size_t live_ = 0;
};

// Appends `name` and its separator unless the field would grow past its limit.
bool AppendWithin(std::string& list, std::string_view name, std::string_view separator) {
  if (list.size() + name.size() + separator.size() > kMaxFieldLength) return false;
  list += name;
  list += separator;
  return true;
}

// Replaces a field only once the new block exists, so a failed allocation keeps
// the old text.
bool ReplaceField(KeyTable& table, int index, KeyField field, std::string_view text) {
  SetDatabaseChanged(true);
  TextBlock block = kNoBlock;
  if (!text.empty()) {
    block = MakeTextBlock(text);
    if (block == kNoBlock) return false;
  }
  TextBlock& entry = table.fields[field][index];
  FreeTextBlock(entry);
  entry = block;
  return true;
}

// One merge: the table's Names and Search Names indexed, and the buffers every
// key reuses.
class Merger {
 public:
  explicit Merger(KeyTable& table) : table_(table) {
    const int count = KeysInUse(table);
    names_.Reset(count);
    for (int k = 0; k < count; ++k) AddName(k);
  }

  // The first key whose Name equals `name` without regard to letter case; -1 for none.
  int FindName(std::string_view name) {
    if (name.empty()) return -1;
    FoldInto(name, folded_);
    return names_.LowestOwner(folded_);
  }

  void AddName(int key) {
    TextLock name(table_.fields[kName][key]);
    if (name.text().empty()) return;
    FoldInto(name.text(), folded_);
    names_.Add(key, folded_);
  }

  // Builds the index of Search Names the first time it is needed.
  void IndexSearchNames() {
    if (searchIndexed_) return;
    searchIndexed_ = true;
    const int count = KeysInUse(table_);
    heldBy_.assign(kMaxKeys, Held{});
    searchNames_.Reset(count * 8);
    for (int k = 0; k < count; ++k) IndexSearchNamesOf(k);
  }

  // The merged Search Names of key `key`; with kOverwriteDuplicated the key's
  // own names are the loaded ones.
  void MergeSearchNames(int key, std::string_view loaded, DuplicateMode mode) {
    IndexSearchNames();
    std::string result;
    inResult_.Reset(16);
    ForEachSearchName(loaded, name_, [&](const std::string& name) {
      FoldInto(name, folded_);
      if (searchNames_.Any(folded_, [key](int owner) { return owner != key; })) return;
      if (AppendWithin(result, name, ",")) inResult_.Add(key, folded_);
    });
    if (mode == kCompareDuplicated) {
      TextLock own(table_.fields[kSearchNames][key]);
      ForEachSearchName(own.text(), name_, [&](const std::string& name) {
        FoldInto(name, folded_);
        if (inResult_.Any(folded_, [](int) { return true; })) return;
        if (AppendWithin(result, name, ",")) inResult_.Add(key, folded_);
      });
    }
    // The names appended are exactly those the new text reads back as, so they go
    // into the index as they are; should the text fail to be stored, the key keeps
    // its old one (the loaded text with kOverwriteDuplicated), read again.
    if (StoreReplacing(key, kSearchNames, result, mode == kOverwriteDuplicated ? loaded : std::string_view())) {
      UnindexSearchNamesOf(key);
      heldBy_[key].first = searchNames_.size();
      heldBy_[key].count = inResult_.size();
      inResult_.ForEach([&](std::string_view folded) { searchNames_.Add(key, folded); });
    } else {
      IndexSearchNamesOf(key);
    }
  }

  // The loaded values key `key` lacks; with kOverwriteDuplicated the key's own
  // values are the loaded ones.
  void MergeSelection(int key, std::string_view loaded, DuplicateMode mode) {
    std::string result;
    {
      TextLock ownLock(table_.fields[kSelection][key]);
      const std::string_view own = mode == kOverwriteDuplicated ? loaded : ownLock.text();
      ownValues_.Reset(16);
      ForEachSelectionValue(own, SelectionSource::kOwn, name_, [&](const std::string& value) {
        FoldInto(value, folded_);
        ownValues_.Add(0, folded_);
      });
      ForEachSelectionValue(loaded, SelectionSource::kLoaded, name_, [&](const std::string& value) {
        FoldInto(value, folded_);
        if (!ownValues_.Any(folded_, [](int) { return true; })) AppendWithin(result, value, "\r\n");
      });
    }
    StoreReplacing(key, kSelection, result, mode == kOverwriteDuplicated ? loaded : std::string_view());
  }

 private:
  struct Held {
    int first = 0;
    int count = 0;
  };

  // Key `key`'s entries in the index follow its Search Names as they are now.
  void UnindexSearchNamesOf(int key) {
    const Held& held = heldBy_[key];
    for (int e = held.first; e < held.first + held.count; ++e) searchNames_.Remove(e);
  }

  void IndexSearchNamesOf(int key) {
    UnindexSearchNamesOf(key);
    Held& held = heldBy_[key];
    held.first = searchNames_.size();
    held.count = 0;
    TextLock text(table_.fields[kSearchNames][key]);
    ForEachSearchName(text.text(), name_, [&](const std::string& name) {
      FoldInto(name, folded_);
      searchNames_.Add(key, folded_);
      ++held.count;
    });
  }

  // Stores `text` as the field. With kOverwriteDuplicated the field first took the
  // loaded text (`first`), so when `text` cannot be stored that is what the field
  // keeps; both allocations failing keep the old text. False when `text` is not stored.
  bool StoreReplacing(int key, KeyField field, std::string_view text, std::string_view first) {
    if (ReplaceField(table_, key, field, text)) return true;
    if (!first.empty()) ReplaceField(table_, key, field, first);
    return false;
  }

  KeyTable& table_;
  FoldedNames names_;
  FoldedNames searchNames_;
  bool searchIndexed_ = false;
  std::vector<Held> heldBy_;  // per key, its run of entries in searchNames_
  FoldedNames inResult_;
  FoldedNames ownValues_;
  std::string name_;
  std::string folded_;
};

}  // namespace

std::vector<std::string> SplitSearchNames(std::string_view text) {
  std::vector<std::string> names;
  std::string name;
  ForEachSearchName(text, name, [&names](const std::string& n) { names.push_back(n); });
  return names;
}

std::vector<std::string> SplitSelection(std::string_view text, SelectionSource source) {
  std::vector<std::string> values;
  std::string value;
  ForEachSelectionValue(text, source, value, [&values](const std::string& v) { values.push_back(v); });
  return values;
}

std::string FoldedText(std::string_view text) {
  std::string folded;
  FoldInto(text, folded);
  return folded;
}

MergeOutcome MergeKeys(KeyTable& table, const KeyTable& loaded, const std::vector<int>& selected,
                       const MergeOptions& options, const NewKeyHook& onNewKey) {
  MergeOutcome outcome;
  Merger merger(table);
  const int loadedCount = KeysInUse(loaded);
  for (int source : selected) {
    if (source < 0 || source >= loadedCount) continue;
    TextLock name(loaded.fields[kName][source]);
    const int count = KeysInUse(table);
    const int found = merger.FindName(name.text());
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
      if (!SetKeyField(table, count, kName, name.text()) || (onNewKey && !onNewKey(count, name.text()))) {
        FreeKeyFields(table, count);
        ++outcome.skipped;
        continue;
      }
    }
    const int target = isNew ? count : found;

    TextLock search(loaded.fields[kSearchNames][source]);
    if (options.takeSearchNames && !search.text().empty()) {
      merger.MergeSearchNames(target, search.text(), options.mode);
    }
    if (options.takeSelection) {
      TextLock selection(loaded.fields[kSelection][source]);
      merger.MergeSelection(target, selection.text(), options.mode);
    }
    TextLock description(loaded.fields[kDescription][source]);
    if (options.takeDescription && !description.text().empty()) {
      ReplaceField(table, target, kDescription, description.text());
    }
    if (isNew) {
      merger.AddName(target);
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

void MergeSession::DropAdded() {
  if (!table_) return;
  const int count = KeysInUse(*table_);
  for (int i = savedCount_; i < count; ++i) FreeKeyFields(*table_, i);
  if (count > savedCount_) table_->count = savedCount_;
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
