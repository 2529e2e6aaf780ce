// The compressed blocks of |TOPIC: records placed in 4 KB topic blocks, each block
// written as LZ77 literals only, so that a record's position (16 KB of decompressed
// bytes a block) and its topic offset (32 K characters a block) are plain sums.
#pragma once

#include <vector>

#include "tools/helpfile/hlp_bytes.h"
#include "tools/helpfile/hlp_topic.h"

namespace qb::help {

// Places the records in topic blocks; a record never crosses into the next block.
void Place(std::vector<Link>& links);

// Points every placed topic header at its first record and at the next topic.
void FillTopicHeaders(std::vector<Link>& links);

// The |TOPIC file of placed records.
Bytes TopicFile(const std::vector<Link>& links);

}  // namespace qb::help
