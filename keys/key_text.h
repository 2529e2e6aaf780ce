// Readable key lists, the source of the sample database: one line per field.
//
//   # a comment
//   key Country              starts a key and gives its Name
//   search country, land     Search Names
//   select Germany           one Selection value per line
//   description Germany      Description
//
// Repeated "search", "select" and "description" lines of a key add further lines to
// that field (joined with CR LF, as the key editor's edits keep them). Blank lines
// are ignored; a line's trailing blanks and CR are dropped.
#pragma once

#include <string>
#include <string_view>

#include "keys/key_table.h"

namespace qb {

// Fills `table` (cleared first) from `text`. On a mistake the table is cleared
// again, `error` says "line N: ..." and the result is false.
bool ParseKeyText(std::string_view text, KeyTable& table, std::string& error);

}  // namespace qb
