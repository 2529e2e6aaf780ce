// The whole fill of a saved page from a key database file, with no prompt: load
// the keys and the page, parse the page's forms against the address's host, check
// the radio groups, write the filled page. What fillpage and the fill benchmark run.
#pragma once

#include <string>

#include "keys/key_table.h"
#include "scan/scan_options.h"

namespace qb {

struct SavedPageFill {
  std::string page;     // the saved page
  std::string address;  // its address without scheme
  std::string keys;     // the key database file
  std::string out;      // the filled page
  ScanOptions options;  // default: every value Never
  int currentKey = kNoKey;
  bool directPost = false;
};

enum class FillResult {
  kFilled,
  kKeysUnreadable,  // missing, or not a key database
  kPageUnreadable,
  kOutOfMemory,
  kNoForm,          // no form that posts to an action
  kNotWritten,      // the filled page could not be created or written
};

// `keys` is replaced by the database's keys. In direct-post mode `requestText`
// receives the request text; otherwise it is left empty.
FillResult FillSavedPage(const SavedPageFill& fill, KeyTable& keys, std::string& requestText);

}  // namespace qb
