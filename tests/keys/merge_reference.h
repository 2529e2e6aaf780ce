// The merge rules written as plainly as they read: every name looked up by walking
// every key and every name it holds. Slow, and meant to be: the indexed merge must
// give the same table, byte for byte.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "keys/key_merge.h"

namespace qb::test {

inline bool ListHolds(const std::vector<std::string>& names, const std::string& name) {
  for (const std::string& n : names) {
    if (CompareNoCase(n, name) == 0) return true;
  }
  return false;
}

inline void AppendIfRoom(std::string& list, const std::string& name, const char* separator) {
  if (list.size() + name.size() + std::string(separator).size() <= kMaxFieldLength) {
    list += name + separator;
  }
}

// `refuse(index)` plays the dialog that cannot show a new key's row.
inline void ReferenceMerge(KeyTable& table, const KeyTable& loaded, const std::vector<int>& selected,
                           const MergeOptions& o, const std::function<bool(int)>& refuse = {}) {
  for (int source : selected) {
    if (source < 0 || source >= KeysInUse(loaded)) continue;
    const std::string name = KeyFieldText(loaded, source, kName);
    const int count = KeysInUse(table);
    int found = FindKeyByName(table, name);
    if (found == kNoKey) found = -1;
    if (found >= 0 && o.mode == kSkipDuplicated) continue;
    if (found < 0) {
      if (count >= kMaxKeys) continue;
      FreeKeyFields(table, count);
      SetKeyField(table, count, kName, name);
      if (refuse && refuse(count)) {
        FreeKeyFields(table, count);
        continue;
      }
    }
    const int target = found < 0 ? count : found;

    const std::string loadedSearch = KeyFieldText(loaded, source, kSearchNames);
    if (o.takeSearchNames && !loadedSearch.empty()) {
      if (o.mode == kOverwriteDuplicated) SetKeyField(table, target, kSearchNames, loadedSearch);
      std::string result;
      for (const std::string& n : SplitSearchNames(loadedSearch)) {
        bool held = false;
        for (int k = 0; k < count; ++k) {
          if (k != target && ListHolds(SplitSearchNames(KeyFieldText(table, k, kSearchNames)), n)) held = true;
        }
        if (!held) AppendIfRoom(result, n, ",");
      }
      if (o.mode == kCompareDuplicated) {
        for (const std::string& n : SplitSearchNames(KeyFieldText(table, target, kSearchNames))) {
          if (!ListHolds(SplitSearchNames(result), n)) AppendIfRoom(result, n, ",");
        }
      }
      SetKeyField(table, target, kSearchNames, result);
    }
    if (o.takeSelection) {
      const std::string loadedSelection = KeyFieldText(loaded, source, kSelection);
      if (o.mode == kOverwriteDuplicated) SetKeyField(table, target, kSelection, loadedSelection);
      const auto own = SplitSelection(KeyFieldText(table, target, kSelection), SelectionSource::kOwn);
      std::string result;
      for (const std::string& v : SplitSelection(loadedSelection, SelectionSource::kLoaded)) {
        if (!ListHolds(own, v)) AppendIfRoom(result, v, "\r\n");
      }
      SetKeyField(table, target, kSelection, result);
    }
    const std::string description = KeyFieldText(loaded, source, kDescription);
    if (o.takeDescription && !description.empty()) SetKeyField(table, target, kDescription, description);
    if (found < 0) table.count = count + 1;
  }
}

}  // namespace qb::test
