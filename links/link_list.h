// The rows of the Links view: one folder of saved pages listed as records, folders
// first, a parent row when below the root, in one of four sort orders, and the
// texts each cell shows. Platform-free: a directory search hands in what it found.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qb {

// Records of one listing, the parent row included.
constexpr std::size_t kLinksEntryMax = 32001;
// Characters kept of a name and of an extension.
constexpr std::size_t kLinkNameMax = 255;
constexpr std::uint32_t kFolderAttribute = 0x10;
constexpr char kNoExtension[] = "   ";
constexpr char kFolderExtension[] = "DIR";

enum LinkKind : std::uint8_t { kLinkFolder = 0, kLinkDocument = 1, kLinkParent = 255 };
enum LinkSortColumn { kSortName = 0, kSortExt = 1, kSortSize = 2, kSortDate = 3 };
constexpr int kLinkColumns = 4;

// A file time split into calendar fields, in the time zone the file system keeps
// (no conversion to local time).
struct LinkTime {
  int year = 0, month = 0, dayOfWeek = 0, day = 0;
  int hour = 0, minute = 0, second = 0, milliseconds = 0;
};

// One entry of a directory search.
struct FoundFile {
  std::string name;
  std::uint32_t attributes = 0;
  std::uint32_t sizeLow = 0;
  std::uint32_t sizeHigh = 0;
  std::uint64_t lastWrite = 0;  // 100-nanosecond ticks since 1601-01-01
};

struct LinkEntry {
  std::string name;       // a document's name without its last extension
  std::string extension;  // after the last ".", three blanks for none, "DIR" for a folder
  std::uint32_t attributes = 0;
  std::uint32_t size = 0;
  LinkKind kind = kLinkDocument;
  std::uint32_t marked = 0;  // drawn in red
  LinkTime lastWrite;
  // Filled by the view when the row is first drawn.
  int image = 0;
  std::uintptr_t icon = 0;
  bool iconFetched = false;
};

LinkTime LinkTimeFromTicks(std::uint64_t ticks);

// Names beginning with "." are never listed.
bool IsListedName(std::string_view name);
LinkEntry MakeLinkEntry(const FoundFile& found);
LinkEntry MakeParentEntry();

// -1, 0 or 1: whether `a` belongs above `b` under `column`. Columns 0 to 2 put
// folders before documents and folders in name order; documents by name, by
// extension then name, or by size then name. The Date column orders two folders
// by name and calls everything else equal.
int CompareLinkEntries(const LinkEntry& a, const LinkEntry& b, int column);

// Sorts entries[first..] into the order of an insertion sort that moves each new
// entry up while it compares -1 with its upper neighbour: stable by the order
// above, and under the Date column each run of neighbouring folders sorted on its
// own while documents keep the search's order.
void SortLinkEntries(std::vector<LinkEntry>& entries, std::size_t first, int column);

// One listing being collected: the parent row first when below the root, then the
// search's entries up to the limit.
class LinkListing {
 public:
  void Begin(bool withParent);
  // False once the listing is full; the search stops there.
  bool Add(const FoundFile& found);
  void Sort(int column);
  std::vector<LinkEntry>& entries() { return entries_; }
  const std::vector<LinkEntry>& entries() const { return entries_; }
  std::size_t sortFrom() const { return sortFrom_; }

 private:
  std::vector<LinkEntry> entries_;
  std::size_t sortFrom_ = 0;
};

// 1234567 -> "1.234.567".
std::string DottedSize(std::uint32_t size);
// What a cell shows: the name ("name.ext" for a document), the extension, the
// dotted size, or the date as "month/day/year  hour:minute". The parent row shows
// no text.
std::string LinkCellText(const LinkEntry& entry, int column);
// "name.ext" for a document, "name" for a folder: the name the file system knows.
std::string LinkFileName(const LinkEntry& entry);

// Column widths: 56, 10, 14 and 20 percent of half of (client width - 8).
using LinkColumnWidths = std::array<int, kLinkColumns>;
LinkColumnWidths LinksColumnWidths(int clientWidth);

}  // namespace qb
