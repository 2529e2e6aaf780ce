// The topic text: every topic becomes a topic header record and display records
// (text with font changes, tabs and jumps, cut to fit a block) for |TOPIC; the
// fonts those records name make |FONT.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tools/helpfile/help_source.h"
#include "tools/helpfile/hlp_bytes.h"

namespace qb::help {

constexpr std::size_t kLinkHeader = 21;
constexpr std::size_t kTopicHeaderSize = 28;
// What a display record's strings and commands may take; the rest of a block is
// left for the record's headers.
constexpr std::size_t kMaxRecordContent = 3000;

enum RecordType : std::uint8_t { kTopicHeaderRecord = 0x02, kDisplayRecord = 0x20 };

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

// Every topic's header record and display records, in file order, not yet placed.
std::vector<Link> TopicRecords(const Project& project);

Bytes FontFile();

}  // namespace qb::help
