// Help topics as their sources spell them: one plain ASCII text file per topic.
//
//   @context key_editor        the topic's context name: letters, digits, '.' and '_'
//   @map 1900                  a context number a program opens the topic by (any count)
//   @title The key editor      the topic's title, shown as its heading
//                              a blank line ends the header
//   Lines of a paragraph are joined with one blank; a blank line ends the paragraph.
//   == Subheading              a heading line of its own
//   - item                     a bulleted paragraph; following lines continue it
//   **bold text**              inline: bold
//   [[context|text]]           inline: a jump to the topic named by `context`
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace qb::help {

constexpr std::size_t kMaxContextLength = 255;
constexpr std::size_t kMaxTitleLength = 127;
constexpr std::size_t kMaxJumpTextLength = 255;  // a jump never splits across records

struct Run {
  enum Kind { kText, kBold, kJump };
  Kind kind = kText;
  std::string text;
  std::string target;  // kJump: the context name jumped to
};

struct Paragraph {
  enum Kind { kBody, kHeading, kBullet };
  Kind kind = kBody;
  std::vector<Run> runs;
};

struct Topic {
  std::string context;
  std::vector<std::uint32_t> mapIds;
  std::string title;
  std::vector<Paragraph> paragraphs;
};

struct Project {
  std::string title;          // the help file's title
  std::vector<Topic> topics;  // the first one is the contents topic
};

// Reads one topic source; `name` starts every error text ("name:line: what").
bool ParseTopic(const std::string& name, const std::string& text, Topic& topic,
                std::string& error);

// A context name the help file can hold: 1 to kMaxContextLength characters of
// letters, digits, '.' and '_' (the only ones its hash counts).
bool IsValidContextName(const std::string& name);

}  // namespace qb::help
