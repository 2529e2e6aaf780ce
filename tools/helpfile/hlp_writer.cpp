#include "tools/helpfile/hlp_writer.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <utility>

namespace qb::help {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint32_t kFileMagic = 0x00035F3F;
constexpr std::uint8_t kInternalFileFlags = 4;
constexpr std::uint16_t kBTreeMagic = 0x293B;
constexpr std::uint16_t kBTreeFlags = 0x0002;
constexpr std::uint16_t kDirectoryFlags = 0x0402;
constexpr std::uint16_t kDirectoryPageSize = 1024;
constexpr std::uint16_t kIndexPageSize = 2048;
constexpr std::size_t kLeafHeader = 8;   // unused bytes, entries, previous page, next page
constexpr std::size_t kIndexHeader = 6;  // unused bytes, entries, first child page
constexpr std::size_t kMaxPages = 0xFFFF;  // page numbers are 16 bits, 0xFFFF meaning none

constexpr std::uint16_t kSystemMagic = 0x036C;
constexpr std::uint16_t kVersionMinor = 21;  // a Windows 3.1 help file
constexpr std::uint16_t kVersionMajor = 1;
constexpr std::uint16_t kLz77TopicBlocksOf4K = 4;
enum SystemRecord : std::uint16_t { kTitleRecord = 1, kContentsRecord = 3, kWindowRecord = 6 };
constexpr std::uint16_t kWindowNameValid = 0x0002;
constexpr std::uint16_t kWindowCaptionValid = 0x0004;
constexpr std::uint16_t kWindowPlaceValid = 0x0008 | 0x0010 | 0x0020 | 0x0040;  // x, y, width, height
// Where the main window opens: in 1/1024 of the screen for the viewers that scale
// it, in pixels for those that don't; a modest window either way.
constexpr std::uint16_t kWindowPlace[4] = {120, 80, 600, 560};
constexpr std::size_t kWindowTypeLength = 10;
constexpr std::size_t kWindowNameLength = 9;
constexpr std::size_t kWindowCaptionLength = 51;
constexpr std::size_t kWindowRecordSize = 90;

constexpr std::size_t kTopicBlockSize = 4096;
constexpr std::size_t kTopicBlockHeader = 12;
// Literal-only LZ77: a zero flag byte before every 8 bytes of data.
constexpr std::size_t kBlockCapacity = (kTopicBlockSize - kTopicBlockHeader) / 9 * 8;
constexpr std::uint32_t kTopicPosBlockSpan = 0x4000;     // decompressed bytes per block
constexpr std::uint32_t kTopicOffsetBlockSpan = 0x8000;  // characters per block
constexpr std::uint32_t kNone = 0xFFFFFFFF;
constexpr std::size_t kLinkHeader = 21;
constexpr std::size_t kTopicHeaderSize = 28;
// What a display record's strings and commands may take; the rest of a block is
// left for the record's headers.
constexpr std::size_t kMaxRecordContent = 3000;
static_assert(kMaxRecordContent + 64 <= kBlockCapacity, "a display record must fit in a topic block");
static_assert(kLinkHeader + kTopicHeaderSize + kMaxTitleLength + 1 <= kBlockCapacity,
              "a topic header must fit in a topic block");

enum RecordType : std::uint8_t { kTopicHeaderRecord = 0x02, kDisplayRecord = 0x20 };
enum Command : std::uint8_t {
  kFontCommand = 0x80,
  kParagraphEnd = 0x82,
  kTabCommand = 0x83,
  kHotspotEnd = 0x89,
  kTopicJump = 0xE3,
  kFormatEnd = 0xFF,
};
enum ParagraphBits : std::uint16_t {
  kSpaceAbove = 0x0002,
  kSpaceBelow = 0x0004,
  kLeftIndent = 0x0010,
  kFirstLineIndent = 0x0040,
  kTabStops = 0x0200,
};

// Fonts, in |FONT order. Sizes are in half points.
enum Font : std::uint16_t { kNormalFont, kTitleFont, kHeadingFont, kBoldFont };
struct FontStyle {
  std::uint8_t attributes;  // 1 bold
  std::uint8_t halfPoints;
};
constexpr FontStyle kFonts[] = {{0, 20}, {1, 28}, {1, 22}, {1, 20}};
constexpr char kFaceName[] = "Arial";
constexpr std::size_t kFaceNameLength = 20;
constexpr std::uint8_t kSwissFamily = 3;
constexpr char kBullet = '\x95';  // Windows-1252 bullet

void Put8(Bytes& b, std::uint32_t v) { b.push_back(static_cast<std::uint8_t>(v)); }
void Put16(Bytes& b, std::uint32_t v) {
  Put8(b, v);
  Put8(b, v >> 8);
}
void Put32(Bytes& b, std::uint32_t v) {
  Put16(b, v);
  Put16(b, v >> 16);
}
void PutText(Bytes& b, const std::string& s) { b.insert(b.end(), s.begin(), s.end()); }
void PutFixed(Bytes& b, const std::string& s, std::size_t width) {
  const std::size_t n = std::min(s.size(), width - 1);  // always zero-terminated
  b.insert(b.end(), s.begin(), s.begin() + n);
  b.insert(b.end(), width - n, 0);
}
void Set32(Bytes& b, std::size_t at, std::uint32_t v) {
  for (int i = 0; i < 4; ++i) b[at + i] = static_cast<std::uint8_t>(v >> (8 * i));
}

// The variable-length numbers of a display record. Each form's low bit says
// whether the long form follows.
void PutCompressedULong(Bytes& b, std::uint32_t v) {  // v < 2^30
  if (v < 0x8000) {
    Put16(b, v * 2);
  } else {
    Put32(b, v * 2 + 1);
  }
}
void PutCompressedUShort(Bytes& b, std::uint32_t v) {  // v < 2^15
  if (v < 0x80) {
    Put8(b, v * 2);
  } else {
    Put16(b, v * 2 + 1);
  }
}
void PutCompressedShort(Bytes& b, int v) {  // -64 <= v < 2^14
  if (v >= -64 && v < 64) {
    Put8(b, static_cast<std::uint32_t>(v * 2 + 0x80));
  } else {
    Put16(b, static_cast<std::uint32_t>(v * 2 + 0x8001));
  }
}

struct ParagraphStyle {
  Font font = kNormalFont;
  int spaceAbove = 0;  // half points
  int spaceBelow = 0;
  int leftIndent = 0;
  int firstLineIndent = 0;
  int tabStop = 0;  // 0: none
};

ParagraphStyle StyleOf(Paragraph::Kind kind) {
  switch (kind) {
    case Paragraph::kHeading: return ParagraphStyle{kHeadingFont, 16, 0, 0, 0, 0};
    case Paragraph::kBullet: return ParagraphStyle{kNormalFont, 6, 0, 28, -14, 28};
    case Paragraph::kBody: break;
  }
  return ParagraphStyle{kNormalFont, 10, 0, 0, 0, 0};
}
const ParagraphStyle kTitleStyle{kTitleFont, 0, 12, 0, 0, 0};

// One step of a paragraph: text, or a command (with the characters it counts for
// in topic offsets).
struct Item {
  bool isText = true;
  std::string text;
  Bytes command;
  int characters = 0;
  int font = -1;              // a font command's font
  bool opensHotspot = false;  // room for the whole hotspot is kept before it
};

Item Text(const std::string& text) { return Item{true, text, {}, 0, -1, false}; }
Item FontChange(Font font) {
  Bytes c{kFontCommand};
  Put16(c, font);
  return Item{false, {}, c, 0, font, false};
}
Item Simple(Command command, int characters) { return Item{false, {}, Bytes{command}, characters, -1, false}; }
Item Jump(const std::string& target) {
  Bytes c{kTopicJump};
  Put32(c, static_cast<std::uint32_t>(ContextHash(target)));
  return Item{false, {}, c, 0, -1, true};
}

// The string written before a command, and the command.
struct Piece {
  std::string text;
  Bytes command;
  int characters = 0;
};

struct Link {
  RecordType type;
  Bytes data1;  // without the link header
  Bytes data2;
  int characters = 0;  // what the record adds to topic offsets
  std::size_t topic = 0;
  // Placement
  std::size_t block = 0;
  std::size_t at = 0;
  std::uint32_t pos = 0;
  std::uint32_t offset = 0;  // topic offset where the record starts
  std::size_t Size() const { return kLinkHeader + data1.size() + data2.size(); }
};

Link DisplayLink(const ParagraphStyle& style, const std::vector<Piece>& pieces, std::size_t topic) {
  Link link{kDisplayRecord, {}, {}, 0, topic};
  Bytes commands;
  for (const Piece& p : pieces) {
    PutText(link.data2, p.text);
    Put8(link.data2, 0);
    commands.insert(commands.end(), p.command.begin(), p.command.end());
    link.characters += static_cast<int>(p.text.size()) + p.characters;
  }
  PutCompressedULong(link.data1, static_cast<std::uint32_t>(link.data2.size()));
  PutCompressedUShort(link.data1, static_cast<std::uint32_t>(link.characters));
  link.data1.insert(link.data1.end(), {0x00, 0x80, 0x00, 0x00});
  std::uint16_t bits = 0;
  if (style.spaceAbove) bits |= kSpaceAbove;
  if (style.spaceBelow) bits |= kSpaceBelow;
  if (style.leftIndent) bits |= kLeftIndent;
  if (style.firstLineIndent) bits |= kFirstLineIndent;
  if (style.tabStop) bits |= kTabStops;
  Put16(link.data1, bits);
  if (style.spaceAbove) PutCompressedShort(link.data1, style.spaceAbove);
  if (style.spaceBelow) PutCompressedShort(link.data1, style.spaceBelow);
  if (style.leftIndent) PutCompressedShort(link.data1, style.leftIndent);
  if (style.firstLineIndent) PutCompressedShort(link.data1, style.firstLineIndent);
  if (style.tabStop) {
    PutCompressedShort(link.data1, 1);
    PutCompressedUShort(link.data1, static_cast<std::uint32_t>(style.tabStop));
  }
  link.data1.insert(link.data1.end(), commands.begin(), commands.end());
  return link;
}

// Turns a paragraph's items into display records of at most kMaxRecordContent
// bytes each. A long text is cut after a blank where it can be; every record
// starts by setting the font in force, so each one reads on its own.
void AddParagraph(const ParagraphStyle& style, const std::vector<Item>& items, std::size_t topic,
                  std::vector<Link>& links) {
  std::vector<Piece> pieces;
  std::string pending;
  std::size_t used = 0;
  int font = style.font;
  const auto open = [&] {
    pieces.clear();
    Item f = FontChange(static_cast<Font>(font));
    pieces.push_back(Piece{{}, f.command, 0});
    used = 1 + f.command.size();
  };
  const auto room = [&] { return kMaxRecordContent - used - pending.size() - 2; };  // 2: the end
  const auto close = [&] {
    pieces.push_back(Piece{pending, Bytes{kFormatEnd}, 0});
    pending.clear();
    links.push_back(DisplayLink(style, pieces, topic));
  };
  open();
  for (const Item& item : items) {
    if (item.isText) {
      std::string rest = item.text;
      while (rest.size() > room()) {
        std::size_t cut = room();
        const std::size_t blank = rest.rfind(' ', cut > 0 ? cut - 1 : 0);
        if (blank != std::string::npos && blank > 0 && blank < cut) cut = blank + 1;
        pending += rest.substr(0, cut);
        rest.erase(0, cut);
        close();
        open();
      }
      pending += rest;
      continue;
    }
    std::size_t need = item.command.size() + 1;
    if (item.opensHotspot) need += kMaxJumpTextLength + 1 + 1;  // its text and its end
    if (need > room()) {
      close();
      open();
    }
    pieces.push_back(Piece{pending, item.command, item.characters});
    used += pending.size() + 1 + item.command.size();
    pending.clear();
    if (item.font >= 0) font = item.font;
  }
  close();
}

std::vector<Item> ParagraphItems(const Paragraph& paragraph, Font baseFont) {
  std::vector<Item> items;
  if (paragraph.kind == Paragraph::kBullet) {
    items.push_back(Text(std::string(1, kBullet)));
    items.push_back(Simple(kTabCommand, 1));
  }
  const Font bold = baseFont == kNormalFont ? kBoldFont : baseFont;
  for (const Run& run : paragraph.runs) {
    switch (run.kind) {
      case Run::kText:
        items.push_back(Text(run.text));
        break;
      case Run::kBold:
        if (bold != baseFont) items.push_back(FontChange(bold));
        items.push_back(Text(run.text));
        if (bold != baseFont) items.push_back(FontChange(baseFont));
        break;
      case Run::kJump:
        items.push_back(Jump(run.target));
        items.push_back(Text(run.text));
        items.push_back(Simple(kHotspotEnd, 0));
        break;
    }
  }
  items.push_back(Simple(kParagraphEnd, 1));
  return items;
}

Link TopicHeaderLink(const Topic& topic, std::size_t index) {
  Link link{kTopicHeaderRecord, Bytes(kTopicHeaderSize, 0), {}, 0, index};
  PutText(link.data2, topic.title);
  Put8(link.data2, 0);
  return link;
}

// Places the records in topic blocks; a record never crosses into the next block.
void Place(std::vector<Link>& links) {
  std::size_t block = 0, used = 0;
  std::uint32_t characters = 0;
  for (Link& link : links) {
    if (used + link.Size() > kBlockCapacity) {
      ++block;
      used = 0;
      characters = 0;
    }
    link.block = block;
    link.at = used;
    link.pos = static_cast<std::uint32_t>(block * kTopicPosBlockSpan + used + kTopicBlockHeader);
    link.offset = static_cast<std::uint32_t>(block * kTopicOffsetBlockSpan + characters);
    used += link.Size();
    characters += static_cast<std::uint32_t>(link.characters);
  }
}

void FillTopicHeaders(std::vector<Link>& links) {
  std::vector<std::size_t> headers;
  for (std::size_t i = 0; i < links.size(); ++i)
    if (links[i].type == kTopicHeaderRecord) headers.push_back(i);
  for (std::size_t h = 0; h < headers.size(); ++h) {
    const std::size_t first = headers[h];
    const std::size_t end = h + 1 < headers.size() ? headers[h + 1] : links.size();
    std::uint32_t size = 0;
    for (std::size_t i = first; i < end; ++i) size += static_cast<std::uint32_t>(links[i].Size());
    Bytes& d = links[first].data1;
    Set32(d, 0, size);
    Set32(d, 4, kNone);  // no browse sequence
    Set32(d, 8, kNone);
    Set32(d, 12, static_cast<std::uint32_t>(links[first].topic));
    Set32(d, 16, kNone);  // no non-scrolling region
    Set32(d, 20, first + 1 < end ? links[first + 1].pos : kNone);
    Set32(d, 24, h + 1 < headers.size() ? links[headers[h + 1]].pos : kNone);
  }
}

Bytes TopicFile(const std::vector<Link>& links) {
  const std::size_t blockCount = links.empty() ? 1 : links.back().block + 1;
  std::vector<Bytes> blocks(blockCount);
  std::vector<std::uint32_t> firstLink(blockCount, kNone), lastLink(blockCount, kNone),
      topicAtStart(blockCount, kNone);
  std::uint32_t lastHeader = kNone;
  for (std::size_t i = 0; i < links.size(); ++i) {
    const Link& link = links[i];
    if (link.type == kTopicHeaderRecord) lastHeader = link.pos;
    if (firstLink[link.block] == kNone) {
      firstLink[link.block] = link.pos;
      topicAtStart[link.block] = lastHeader;
    }
    lastLink[link.block] = link.pos;
    Bytes& b = blocks[link.block];
    Put32(b, static_cast<std::uint32_t>(link.Size()));
    Put32(b, static_cast<std::uint32_t>(link.data2.size()));
    Put32(b, i > 0 ? links[i - 1].pos : kNone);
    Put32(b, i + 1 < links.size() ? links[i + 1].pos : kNone);
    Put32(b, static_cast<std::uint32_t>(kLinkHeader + link.data1.size()));
    Put8(b, link.type);
    b.insert(b.end(), link.data1.begin(), link.data1.end());
    b.insert(b.end(), link.data2.begin(), link.data2.end());
  }
  Bytes out;
  for (std::size_t k = 0; k < blockCount; ++k) {
    const std::size_t start = out.size();
    Put32(out, k > 0 ? lastLink[k - 1] : kNone);
    Put32(out, firstLink[k]);
    Put32(out, topicAtStart[k]);
    const Bytes& data = blocks[k];
    for (std::size_t i = 0; i < data.size(); i += 8) {
      Put8(out, 0);  // eight literals follow
      out.insert(out.end(), data.begin() + i, data.begin() + std::min(i + 8, data.size()));
    }
    out.resize(start + kTopicBlockSize, 0);
  }
  return out;
}

Bytes SystemFile(const std::string& title, std::uint32_t contents) {
  Bytes b;
  Put16(b, kSystemMagic);
  Put16(b, kVersionMinor);
  Put16(b, kVersionMajor);
  Put32(b, 0);  // no build date: the same sources give the same file
  Put16(b, kLz77TopicBlocksOf4K);
  Put16(b, kTitleRecord);
  Put16(b, static_cast<std::uint32_t>(title.size() + 1));
  PutText(b, title);
  Put8(b, 0);
  Put16(b, kContentsRecord);
  Put16(b, 4);
  Put32(b, contents);
  // The main window, named so that its caption is the file's title.
  Put16(b, kWindowRecord);
  Put16(b, kWindowRecordSize);
  const std::size_t start = b.size();
  Put16(b, kWindowNameValid | kWindowCaptionValid | kWindowPlaceValid);
  PutFixed(b, "", kWindowTypeLength);
  PutFixed(b, "main", kWindowNameLength);
  PutFixed(b, title, kWindowCaptionLength);
  for (std::uint16_t v : kWindowPlace) Put16(b, v);
  b.resize(start + kWindowRecordSize, 0);  // not maximized; colours: the viewer's own
  return b;
}

Bytes FontFile() {
  Bytes b;
  const std::size_t fontCount = sizeof(kFonts) / sizeof(kFonts[0]);
  Put16(b, 1);
  Put16(b, static_cast<std::uint32_t>(fontCount));
  Put16(b, 8);
  Put16(b, static_cast<std::uint32_t>(8 + kFaceNameLength));
  PutFixed(b, kFaceName, kFaceNameLength);
  for (const FontStyle& f : kFonts) {
    Put8(b, f.attributes);
    Put8(b, f.halfPoints);
    Put8(b, kSwissFamily);
    Put16(b, 0);  // face name 0
    b.insert(b.end(), {0, 0, 0});        // black text
    b.insert(b.end(), {255, 255, 255});  // on white
  }
  return b;
}

bool Fail(std::string& error, const std::string& what) {
  error = what;
  return false;
}

bool CheckProject(const Project& project, std::map<std::int32_t, std::string>& hashes,
                  std::string& error) {
  if (project.topics.empty()) return Fail(error, "no topics");
  if (project.title.empty() || project.title.size() > kMaxFileTitleLength)
    return Fail(error, "the help file's title must be 1 to " + std::to_string(kMaxFileTitleLength) +
                           " characters");
  if (project.topics.size() > kMaxTopics)
    return Fail(error, "more than " + std::to_string(kMaxTopics) + " topics");
  std::map<std::uint32_t, std::string> numbers;
  for (const Topic& topic : project.topics) {
    if (!IsValidContextName(topic.context))
      return Fail(error, "invalid context name \"" + topic.context + "\"");
    if (topic.title.empty() || topic.title.size() > kMaxTitleLength)
      return Fail(error, topic.context + ": the title must be 1 to " + std::to_string(kMaxTitleLength) +
                             " characters");
    const std::int32_t hash = ContextHash(topic.context);
    if (hash == 0) return Fail(error, topic.context + ": its hash is 0, which means the contents topic");
    const auto known = hashes.emplace(hash, topic.context);
    if (!known.second)
      return Fail(error, "context names " + known.first->second + " and " + topic.context +
                             " have the same hash (names are compared without case)");
    for (std::uint32_t id : topic.mapIds) {
      const auto taken = numbers.emplace(id, topic.context);
      if (!taken.second)
        return Fail(error, "context number " + std::to_string(id) + " given to " + taken.first->second +
                               " and " + topic.context);
    }
  }
  if (numbers.size() > kMaxMapIds)
    return Fail(error, "more than " + std::to_string(kMaxMapIds) + " context numbers");
  for (const Topic& topic : project.topics)
    for (const Paragraph& paragraph : topic.paragraphs)
      for (const Run& run : paragraph.runs)
        if (run.kind == Run::kJump) {
          if (run.text.empty() || run.text.size() > kMaxJumpTextLength)
            return Fail(error, topic.context + ": jump text must be 1 to " +
                                   std::to_string(kMaxJumpTextLength) + " characters");
          if (!IsValidContextName(run.target) || !hashes.count(ContextHash(run.target)))
            return Fail(error, topic.context + ": jump to unknown context " + run.target);
        }
  return true;
}

void PutInternalFile(Bytes& out, const Bytes& content) {
  Put32(out, static_cast<std::uint32_t>(content.size() + 9));
  Put32(out, static_cast<std::uint32_t>(content.size()));
  Put8(out, kInternalFileFlags);
  out.insert(out.end(), content.begin(), content.end());
}

}  // namespace

std::int32_t ContextHash(const std::string& name) {
  std::uint32_t hash = 0;  // unsigned: the sum wraps as the readers' 32-bit one does
  for (char c : name) {
    std::uint32_t x = 0;
    if (c >= 'A' && c <= 'Z') x = static_cast<std::uint32_t>(c - 'A' + 17);
    if (c >= 'a' && c <= 'z') x = static_cast<std::uint32_t>(c - 'a' + 17);
    if (c >= '1' && c <= '9') x = static_cast<std::uint32_t>(c - '0');
    if (c == '0') x = 10;
    if (c == '.') x = 12;
    if (c == '_') x = 13;
    if (x) hash = hash * 43 + x;
  }
  return static_cast<std::int32_t>(hash);
}

std::vector<std::uint8_t> BuildBTree(const std::vector<BTreeEntry>& entries, std::uint16_t pageSize,
                                     std::uint16_t flags, const char* structure) {
  struct Child {
    std::uint16_t page;
    const Bytes* firstKey;
  };
  static const Bytes kNoKey;
  std::vector<Bytes> pages;

  // Leaves, filled in order.
  std::vector<std::vector<const BTreeEntry*>> leaves(1);
  std::size_t used = 0;
  for (const BTreeEntry& e : entries) {
    const std::size_t size = e.key.size() + e.value.size();
    if (size > pageSize - kLeafHeader) return {};
    if (used + size > pageSize - kLeafHeader) {
      leaves.emplace_back();
      used = 0;
    }
    leaves.back().push_back(&e);
    used += size;
  }
  std::vector<Child> level;
  for (std::size_t i = 0; i < leaves.size(); ++i) {
    Bytes page;
    std::size_t content = 0;
    for (const BTreeEntry* e : leaves[i]) content += e->key.size() + e->value.size();
    Put16(page, static_cast<std::uint32_t>(pageSize - kLeafHeader - content));
    Put16(page, static_cast<std::uint32_t>(leaves[i].size()));
    Put16(page, i > 0 ? static_cast<std::uint32_t>(i - 1) : 0xFFFF);
    Put16(page, i + 1 < leaves.size() ? static_cast<std::uint32_t>(i + 1) : 0xFFFF);
    for (const BTreeEntry* e : leaves[i]) {
      page.insert(page.end(), e->key.begin(), e->key.end());
      page.insert(page.end(), e->value.begin(), e->value.end());
    }
    page.resize(pageSize, 0);
    level.push_back(Child{static_cast<std::uint16_t>(pages.size()),
                          leaves[i].empty() ? &kNoKey : &leaves[i].front()->key});
    pages.push_back(std::move(page));
  }

  // Index levels until one page holds them all. An index page's first child needs
  // no key: it is where every key below the page's first entry lies.
  std::uint16_t levels = 1;
  while (level.size() > 1) {
    std::vector<Child> upper;
    std::size_t i = 0;
    while (i < level.size()) {
      Bytes page;
      Put16(page, 0);  // unused bytes, set below
      Put16(page, 0);  // entries
      Put16(page, level[i].page);
      const Bytes* firstKey = level[i].firstKey;
      std::size_t count = 0;
      for (++i; i < level.size(); ++i) {
        const std::size_t size = level[i].firstKey->size() + 2;
        if (kIndexHeader + size > pageSize) return {};
        if (page.size() + size > pageSize) break;
        page.insert(page.end(), level[i].firstKey->begin(), level[i].firstKey->end());
        Put16(page, level[i].page);
        ++count;
      }
      const std::size_t unused = pageSize - page.size();
      page[0] = static_cast<std::uint8_t>(unused);
      page[1] = static_cast<std::uint8_t>(unused >> 8);
      page[2] = static_cast<std::uint8_t>(count);
      page[3] = static_cast<std::uint8_t>(count >> 8);
      page.resize(pageSize, 0);
      upper.push_back(Child{static_cast<std::uint16_t>(pages.size()), firstKey});
      pages.push_back(std::move(page));
      if (pages.size() >= kMaxPages) return {};
    }
    level = std::move(upper);
    ++levels;
  }
  if (pages.size() >= kMaxPages) return {};

  Bytes tree;
  Put16(tree, kBTreeMagic);
  Put16(tree, flags);
  Put16(tree, pageSize);
  PutFixed(tree, structure, 16);
  Put16(tree, 0);  // must be zero
  Put16(tree, 0);  // page splits
  Put16(tree, level.front().page);
  Put16(tree, 0xFFFF);
  Put16(tree, static_cast<std::uint32_t>(pages.size()));
  Put16(tree, levels);
  Put32(tree, static_cast<std::uint32_t>(entries.size()));
  for (const Bytes& page : pages) tree.insert(tree.end(), page.begin(), page.end());
  return tree;
}

bool WriteHelpFile(const Project& project, std::vector<std::uint8_t>& out, std::string& error) {
  out.clear();
  std::map<std::int32_t, std::string> hashes;
  if (!CheckProject(project, hashes, error)) return false;

  std::vector<Link> links;
  for (std::size_t t = 0; t < project.topics.size(); ++t) {
    const Topic& topic = project.topics[t];
    links.push_back(TopicHeaderLink(topic, t));
    AddParagraph(kTitleStyle, {Text(topic.title), Simple(kParagraphEnd, 1)}, t, links);
    for (const Paragraph& paragraph : topic.paragraphs) {
      const ParagraphStyle style = StyleOf(paragraph.kind);
      AddParagraph(style, ParagraphItems(paragraph, style.font), t, links);
    }
  }
  Place(links);
  FillTopicHeaders(links);

  std::vector<std::uint32_t> topicOffsets;
  for (const Link& link : links)
    if (link.type == kTopicHeaderRecord) topicOffsets.push_back(link.offset);

  std::vector<BTreeEntry> contexts;
  for (const auto& [hash, context] : hashes) {  // in signed hash order, as readers compare
    std::size_t t = 0;
    while (project.topics[t].context != context) ++t;
    BTreeEntry e;
    Put32(e.key, static_cast<std::uint32_t>(hash));
    Put32(e.value, topicOffsets[t]);
    contexts.push_back(std::move(e));
  }
  std::map<std::uint32_t, std::uint32_t> numbers;
  for (std::size_t t = 0; t < project.topics.size(); ++t)
    for (std::uint32_t id : project.topics[t].mapIds) numbers[id] = topicOffsets[t];
  Bytes map;
  Put16(map, static_cast<std::uint32_t>(numbers.size()));
  for (const auto& [id, offset] : numbers) {
    Put32(map, id);
    Put32(map, offset);
  }

  const Bytes contextTree = BuildBTree(contexts, kIndexPageSize, kBTreeFlags, "L4");
  if (contextTree.empty()) return Fail(error, "too many context names for one index");
  // Internal files by name, in the byte order the directory keeps.
  const std::map<std::string, Bytes> files = {
      {"|CONTEXT", contextTree},
      {"|CTXOMAP", map},
      {"|FONT", FontFile()},
      {"|SYSTEM", SystemFile(project.title, topicOffsets.front())},
      {"|TOPIC", TopicFile(links)},
  };
  out.assign(16, 0);
  std::vector<BTreeEntry> directory;
  for (const auto& [name, content] : files) {
    BTreeEntry e;
    PutText(e.key, name);
    Put8(e.key, 0);
    Put32(e.value, static_cast<std::uint32_t>(out.size()));
    directory.push_back(std::move(e));
    PutInternalFile(out, content);
  }
  const std::uint32_t directoryStart = static_cast<std::uint32_t>(out.size());
  PutInternalFile(out, BuildBTree(directory, kDirectoryPageSize, kDirectoryFlags, "z4"));
  Set32(out, 0, kFileMagic);
  Set32(out, 4, directoryStart);
  Set32(out, 8, kNone);  // no free blocks
  Set32(out, 12, static_cast<std::uint32_t>(out.size()));
  return true;
}

}  // namespace qb::help
