#include "tools/helpfile/help_source.h"

#include <cstdio>
#include <limits>

namespace qb::help {
namespace {

struct Line {
  std::string text;
  int number = 0;
};

// A paragraph as written, before its inline markup is read.
struct RawParagraph {
  Paragraph::Kind kind = Paragraph::kBody;
  std::string text;
  int line = 0;
};

std::string Trim(const std::string& s) {
  const std::size_t first = s.find_first_not_of(' ');
  if (first == std::string::npos) return {};
  return s.substr(first, s.find_last_not_of(' ') - first + 1);
}

bool StartsWith(const std::string& s, const char* prefix) {
  return s.compare(0, std::char_traits<char>::length(prefix), prefix) == 0;
}

class Parser {
 public:
  Parser(const std::string& name, std::string& error) : name_(name), error_(error) {}

  bool Fail(int line, const std::string& what) {
    error_ = name_ + ":" + std::to_string(line) + ": " + what;
    return false;
  }

  // Lines without their line ends; tabs read as blanks. Anything else outside
  // printable ASCII is refused, so no byte reaches the file in an unknown code page.
  bool SplitLines(const std::string& text, std::vector<Line>& lines) {
    Line line{{}, 1};
    for (std::size_t i = 0; i < text.size(); ++i) {
      const unsigned char c = static_cast<unsigned char>(text[i]);
      if (c == '\n') {
        lines.push_back(line);
        line = Line{{}, line.number + 1};
      } else if (c == '\r' && (i + 1 == text.size() || text[i + 1] == '\n')) {
        continue;
      } else if (c == '\t') {
        line.text += ' ';
      } else if (c < 0x20 || c >= 0x7F) {
        char code[8];
        std::snprintf(code, sizeof(code), "0x%02X", c);
        return Fail(line.number, std::string("not a printable ASCII character (") + code + ")");
      } else {
        line.text += static_cast<char>(c);
      }
    }
    if (!line.text.empty()) lines.push_back(line);
    return true;
  }

  bool HeaderField(const Line& line, Topic& topic) {
    const std::string field = line.text.substr(1, line.text.find(' ') - 1);
    const std::string value =
        line.text.find(' ') == std::string::npos ? std::string() : Trim(line.text.substr(line.text.find(' ')));
    if (field == "context") {
      if (!topic.context.empty()) return Fail(line.number, "a second @context");
      if (!IsValidContextName(value))
        return Fail(line.number, "context name \"" + value +
                                     "\" must be 1 to 255 letters, digits, '.' or '_'");
      topic.context = value;
    } else if (field == "map") {
      std::uint64_t number = 0;
      if (value.empty() || value.size() > 10 || value.find_first_not_of("0123456789") != std::string::npos)
        return Fail(line.number, "context number \"" + value + "\" is not a decimal number");
      number = std::stoull(value);
      if (number > std::numeric_limits<std::uint32_t>::max())
        return Fail(line.number, "context number " + value + " does not fit in 32 bits");
      for (std::uint32_t id : topic.mapIds)
        if (id == number) return Fail(line.number, "context number " + value + " given twice");
      topic.mapIds.push_back(static_cast<std::uint32_t>(number));
    } else if (field == "title") {
      if (!topic.title.empty()) return Fail(line.number, "a second @title");
      if (value.empty()) return Fail(line.number, "an empty @title");
      if (value.size() > kMaxTitleLength)
        return Fail(line.number, "title longer than " + std::to_string(kMaxTitleLength) + " characters");
      topic.title = value;
    } else {
      return Fail(line.number, "unknown field @" + field);
    }
    return true;
  }

  bool Inline(const RawParagraph& raw, Paragraph& paragraph) {
    const std::string& s = raw.text;
    std::string text;
    const auto flushText = [&] {
      if (!text.empty()) paragraph.runs.push_back(Run{Run::kText, text, {}});
      text.clear();
    };
    std::size_t p = 0;
    while (p < s.size()) {
      if (s.compare(p, 2, "**") == 0) {
        const std::size_t close = s.find("**", p + 2);
        if (close == std::string::npos) return Fail(raw.line, "\"**\" without its closing \"**\"");
        if (close == p + 2) return Fail(raw.line, "empty bold text");
        flushText();
        paragraph.runs.push_back(Run{Run::kBold, s.substr(p + 2, close - p - 2), {}});
        p = close + 2;
      } else if (s.compare(p, 2, "[[") == 0) {
        const std::size_t close = s.find("]]", p + 2);
        if (close == std::string::npos) return Fail(raw.line, "\"[[\" without its closing \"]]\"");
        const std::string inner = s.substr(p + 2, close - p - 2);
        const std::size_t bar = inner.find('|');
        if (bar == std::string::npos) return Fail(raw.line, "a jump is written [[context|text]]");
        const std::string target = Trim(inner.substr(0, bar));
        const std::string label = Trim(inner.substr(bar + 1));
        if (!IsValidContextName(target))
          return Fail(raw.line, "jump to an invalid context name \"" + target + "\"");
        if (label.empty()) return Fail(raw.line, "jump to " + target + " without text");
        if (label.size() > kMaxJumpTextLength)
          return Fail(raw.line, "jump text longer than " + std::to_string(kMaxJumpTextLength) +
                                    " characters");
        flushText();
        paragraph.runs.push_back(Run{Run::kJump, label, target});
        p = close + 2;
      } else if (s.compare(p, 2, "]]") == 0) {
        return Fail(raw.line, "\"]]\" without \"[[\"");
      } else {
        text += s[p++];
      }
    }
    flushText();
    return true;
  }

  bool Parse(const std::string& source, Topic& topic) {
    topic = Topic{};
    std::vector<Line> lines;
    if (!SplitLines(source, lines)) return false;
    std::size_t i = 0;
    for (; i < lines.size() && StartsWith(lines[i].text, "@"); ++i)
      if (!HeaderField(lines[i], topic)) return false;
    const int headerEnd = i < lines.size() ? lines[i].number : static_cast<int>(lines.size()) + 1;
    if (topic.context.empty()) return Fail(headerEnd, "no @context before the text");
    if (topic.title.empty()) return Fail(headerEnd, "no @title before the text");

    std::vector<RawParagraph> raws;
    bool open = false;  // the last paragraph takes further lines
    for (; i < lines.size(); ++i) {
      const std::string t = Trim(lines[i].text);
      if (t.empty()) {
        open = false;
      } else if (StartsWith(t, "== ")) {
        raws.push_back(RawParagraph{Paragraph::kHeading, Trim(t.substr(3)), lines[i].number});
        open = false;
      } else if (StartsWith(t, "- ")) {
        raws.push_back(RawParagraph{Paragraph::kBullet, Trim(t.substr(2)), lines[i].number});
        open = true;
      } else if (open) {
        raws.back().text += " " + t;
      } else {
        raws.push_back(RawParagraph{Paragraph::kBody, t, lines[i].number});
        open = true;
      }
    }
    for (const RawParagraph& raw : raws) {
      Paragraph paragraph;
      paragraph.kind = raw.kind;
      if (!Inline(raw, paragraph)) return false;
      if (paragraph.runs.empty()) return Fail(raw.line, "a heading or item without text");
      topic.paragraphs.push_back(std::move(paragraph));
    }
    return true;
  }

 private:
  const std::string& name_;
  std::string& error_;
};

}  // namespace

bool IsValidContextName(const std::string& name) {
  if (name.empty() || name.size() > kMaxContextLength) return false;
  for (char c : name) {
    const bool ok = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
                    c == '.' || c == '_';
    if (!ok) return false;
  }
  return true;
}

bool ParseTopic(const std::string& name, const std::string& text, Topic& topic,
                std::string& error) {
  return Parser(name, error).Parse(text, topic);
}

}  // namespace qb::help
