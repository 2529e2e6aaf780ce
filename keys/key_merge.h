// Merging the keys of another database into the key table ("Add / Compare").
//
// The rules, per selected loaded key:
//  - its Name is looked up in the table without regard to letter case; a key not
//    found is added at the count, a key found is merged into (or, with
//    kDoNotAdd, left alone);
//  - Search Names: a loaded name is taken only when no other key of the table
//    holds it, so a search name belongs to at most one key; kCompare keeps the
//    key's own names after the loaded ones, kOverwrite drops them;
//  - Selection: the new value list holds only the loaded values the key lacked,
//    and replaces the key's own list. With kOverwrite the key's list is first the
//    loaded one, so every value is found and the Selection ends up empty. Both
//    are what the program has always done and users' databases rely on it;
//  - Description: the loaded one replaces the key's.
//
// Platform-free. Names are found through hash indexes of folded texts, which give
// the same answers as walking every key (kept honest by the tests and the fuzzer
// against such a walk): a merge of 2000 keys into 2000 stays in milliseconds.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "keys/key_table.h"

namespace qb {

// The longest search name or selection value a merge reads; the rest of a longer
// one, up to its separator, is left out.
constexpr std::size_t kMergeNameMax = 512;

constexpr char kSafetyCopyName[] = "qbdkdTemp.tmp";
constexpr char kCantOpenDatabaseText[] = "Can't open Quellbarrow database file";

// What happens to a loaded key whose Name the table already holds; the values are
// those of the radio buttons' order.
enum DuplicateMode : int { kCompareDuplicated = 0, kOverwriteDuplicated = 1, kSkipDuplicated = 2 };

struct MergeOptions {
  bool takeSearchNames = true;
  bool takeSelection = true;
  bool takeDescription = true;
  DuplicateMode mode = kCompareDuplicated;
};

// Lists as the merge reads them. Search Names are separated by commas and line
// feeds; Selection values by line feeds only, and before a loaded value commas
// are skipped as well. Carriage returns are dropped, blanks before a name skipped
// and after it cut, and a name is cut at kMergeNameMax characters.
std::vector<std::string> SplitSearchNames(std::string_view text);
enum class SelectionSource { kLoaded, kOwn };
std::vector<std::string> SplitSelection(std::string_view text, SelectionSource source);

// The text compared for equality without regard to letter case.
std::string FoldedText(std::string_view text);

// Called when a loaded key is about to become key `index` (its Name already
// stored there); false drops it again (the dialog could not show its row).
using NewKeyHook = std::function<bool(int index, std::string_view name)>;

struct MergeOutcome {
  int added = 0;         // new keys
  int merged = 0;        // keys of the table merged into
  int skipped = 0;       // duplicates left alone, and keys the hook refused
  int noRoom = 0;        // new keys refused because the table was full
};

// Merges the loaded keys `selected` (indices into `loaded`, in the order given;
// indices outside it are passed over) into `table`. Sets the changed flag for
// every key merged or added. A field whose new text cannot be allocated keeps its
// old text; a merged text never grows past kMaxFieldLength (names that would
// not fit are left out).
MergeOutcome MergeKeys(KeyTable& table, const KeyTable& loaded, const std::vector<int>& selected,
                       const MergeOptions& options, const NewKeyHook& onNewKey = {});

// The safety copy behind Undo and Cancel: the table as it was when the merge
// began, in a database file, and the changed flag of that moment.
class MergeSession {
 public:
  // Writes the copy to `path`. False (the user told) when it cannot be written.
  bool Begin(const std::string& path, KeyTable& table);
  int savedCount() const { return savedCount_; }
  // Frees the keys added since the copy was made and sets the count back, so they
  // go even when the copy cannot be read.
  void DropAdded();
  // Puts the table back as the copy has it and the changed flag as it was. When
  // the copy cannot be opened the user is told "Can't open Quellbarrow database
  // file", the table keeps the keys it had and the result is false.
  bool Restore();
  // Deletes the copy.
  void End();

 private:
  std::string path_;
  KeyTable* table_ = nullptr;
  int savedCount_ = 0;
  bool changedBefore_ = false;
};

}  // namespace qb
