// Key database files (*.dat): the magic C6 1E 27 00, a signed 32-bit key count and,
// per key, four fields (Name, Search Names, Selection, Description), each a 32-bit
// little-endian length followed by that many bytes. No trailer.
//
// Only a length L with 0 < L < 30000 is followed by text; any other length is read
// as a bare length and the next four bytes are the next length. A field of 30000
// bytes or more therefore throws the rest of the file out of step; the format has
// always been read this way and stays so. Saving writes every text as it stands, so
// whoever stores a field keeps it within kMaxFieldLength.
//
// A file that goes wrong past its magic still loads what it holds (at most
// kMaxKeys keys) and the user is told what was wrong. Saving goes through a
// temporary file, so the database on disk is always the old one or the whole new one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "keys/key_table.h"

namespace qb {

constexpr std::uint32_t kDatabaseMagic = 0x00271EC6;
constexpr std::uint32_t kFieldLengthLimit = 30000;  // lengths at or above it carry no text
constexpr char kDatabaseTempSuffix[] = ".tmp";

constexpr char kNotADatabaseText[] = "This is not a Quellbarrow database file";
constexpr char kCantWriteText[] = "Can't write to database file";

enum class DatabaseLoadStatus { kLoaded, kMissing, kNotADatabase };

struct LoadResult {
  DatabaseLoadStatus status = DatabaseLoadStatus::kMissing;
  std::int32_t declaredCount = 0;  // the count the file states
  int keysRead = 0;                // keys now in the table (its count)
  bool countTooLarge = false;      // above kMaxKeys: only the first kMaxKeys were read
  bool countNegative = false;      // no key was read
  bool endedEarly = false;         // the file ended inside the keys it declares
  bool lastKeyCut = false;         // ...and the last key read lacks part of its fields

  bool loaded() const { return status == DatabaseLoadStatus::kLoaded; }
  bool damaged() const { return countTooLarge || countNegative || endedEarly; }
};

// Reads a database image into `table`, which is cleared first unless the magic is
// wrong (then the table is left as it is). Tells the user nothing.
LoadResult ReadDatabaseBytes(const std::uint8_t* data, std::size_t size, KeyTable& table);
// The file image of the table's keys.
std::vector<std::uint8_t> DatabaseBytes(const KeyTable& table);

// What the user is told about a damaged file; empty when there is nothing to tell.
std::string DamageReport(const LoadResult& result);

// Loads the database file at `path` into `table`, replacing what it held once the
// magic is found (until then the table is left alone). A file that can't be opened
// fills `slotName` (when given) with zero bytes and fails silently; a wrong magic
// fails with "This is not a Quellbarrow database file"; damage past the magic
// loads what can be read and tells the user.
LoadResult LoadDatabase(const std::string& path, KeyTable& table, SlotName* slotName = nullptr);

// Writes the table to `path`, replacing the file only once the whole new one is on
// disk. On failure the user is told "Can't write to database file", the old file is
// as it was and the result is false. The changed flag is left to the caller.
bool SaveDatabase(const std::string& path, const KeyTable& table);

}  // namespace qb
