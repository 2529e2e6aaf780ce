#include "tools/helpfile/hlp_blocks.h"

#include <algorithm>

namespace qb::help {
namespace {

constexpr std::size_t kTopicBlockSize = 4096;
constexpr std::size_t kTopicBlockHeader = 12;
// Literal-only LZ77: a zero flag byte before every 8 bytes of data.
constexpr std::size_t kBlockCapacity = (kTopicBlockSize - kTopicBlockHeader) / 9 * 8;
constexpr std::uint32_t kTopicPosBlockSpan = 0x4000;     // decompressed bytes per block
constexpr std::uint32_t kTopicOffsetBlockSpan = 0x8000;  // characters per block
static_assert(kMaxRecordContent + 64 <= kBlockCapacity, "a display record must fit in a topic block");
static_assert(kLinkHeader + kTopicHeaderSize + kMaxTitleLength + 1 <= kBlockCapacity,
              "a topic header must fit in a topic block");

}  // namespace

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

}  // namespace qb::help
