#include "tools/helpfile/hlp_topic.h"

#include <string>

#include "tools/helpfile/hlp_writer.h"

namespace qb::help {
namespace {

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

}  // namespace

std::vector<Link> TopicRecords(const Project& project) {
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
  return links;
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

}  // namespace qb::help
