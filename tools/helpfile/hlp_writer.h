// Writes a WinHelp 3.1 help file (.HLP) from parsed help topics.
//
// What the file holds: the internal files |SYSTEM (title, contents topic, the main
// window's caption), |FONT, |TOPIC (the topics), |CONTEXT (context-name hash ->
// topic offset, a B+ tree) and |CTXOMAP (context number -> topic offset), found
// through the internal directory, itself a B+ tree. Topic text is not compressed:
// each 4 KB topic block carries LZ77 literals only, so topic positions follow the
// 16 KB-per-block addressing that every reader of compressed files agrees on.
//
// The pieces: hlp_topic (the topic text), hlp_blocks (the compressed blocks of
// |TOPIC), hlp_directory (the B+ trees and the file's directory).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/helpfile/help_source.h"

namespace qb::help {

constexpr std::size_t kMaxFileTitleLength = 50;
constexpr std::size_t kMaxTopics = 32767;
constexpr std::size_t kMaxMapIds = 65535;  // |CTXOMAP counts its entries in 16 bits

// The hash a help file keys a context name by (letters count without case).
std::int32_t ContextHash(const std::string& name);

// The whole file; false with `error` when the project can't be written (no topics,
// two context names with one hash, a context number given twice, a jump to no topic).
bool WriteHelpFile(const Project& project, std::vector<std::uint8_t>& out, std::string& error);

}  // namespace qb::help
