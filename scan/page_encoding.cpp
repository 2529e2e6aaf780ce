// Conventions of the readers here:
//  1. Every read is bounded: the header by kMaxResponseHeaderBytes, the meta
//     search by kCharsetPrescanBytes; a construct cut by the bound counts as absent.
//  2. Names of headers, tags and attributes and the charset labels compare
//     without regard to ASCII case.
#include "scan/page_encoding.h"

#include <cstdint>
#include <optional>

#include "scan/html_scanner.h"

namespace qb {
namespace {

constexpr std::string_view kUtf8Bom = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16BigEndianBom = "\xFE\xFF";
constexpr std::string_view kUtf16LittleEndianBom = "\xFF\xFE";

// The names browsers accept for UTF-8.
constexpr std::string_view kUtf8Labels[] = {
    "unicode-1-1-utf-8", "unicode11utf8", "unicode20utf8", "utf-8", "utf8", "x-unicode20utf8",
};

bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f'; }

std::string_view TrimSpaces(std::string_view text) {
  while (!text.empty() && IsSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsSpace(text.back())) text.remove_suffix(1);
  return text;
}

bool IsUtf8Label(std::string_view label) {
  label = TrimSpaces(label);
  for (std::string_view utf8 : kUtf8Labels) {
    if (EqualsNoCase(label, utf8)) return true;
  }
  return false;
}

// The answer's header (status line and fields) and what follows it. A saved page
// without a status line, or whose header does not end in time, is all body.
struct SavedAnswer {
  std::string_view header;
  std::string_view body;
};

SavedAnswer SplitAnswer(std::string_view saved) {
  if (!StartsNoCase(saved, "HTTP/")) return {{}, saved};
  const std::string_view head = saved.substr(0, kMaxResponseHeaderBytes);
  for (std::size_t lf = head.find('\n'); lf != std::string_view::npos; lf = head.find('\n', lf + 1)) {
    // An empty line ends the header. Lines end in LF after any number of CRs:
    // the program saves answers in text mode, so CR LF arrives as CR CR LF.
    std::size_t next = lf + 1;
    while (next < head.size() && head[next] == '\r') ++next;
    if (next < head.size() && head[next] == '\n') return {saved.substr(0, lf), saved.substr(next + 1)};
  }
  return {{}, saved};
}

// The charset of the header's last Content-Type field; nullopt when it names none.
std::optional<std::string_view> HeaderCharset(std::string_view header) {
  constexpr std::string_view kField = "content-type:";
  std::optional<std::string_view> charset;
  std::size_t pos = 0;
  while (pos < header.size()) {
    std::size_t end = header.find('\n', pos);
    if (end == std::string_view::npos) end = header.size();
    const std::string_view line = header.substr(pos, end - pos);
    if (StartsNoCase(line, kField)) {
      const std::string_view found = CharsetOfContentType(line.substr(kField.size()));
      charset = found.empty() ? std::nullopt : std::optional<std::string_view>(found);
    }
    pos = end + 1;
  }
  return charset;
}

// Walks the tags at the top of a page the way a browser's prescan does, so that
// a '>' inside a quoted attribute value or a comment hides nothing.
class MetaPrescan {
 public:
  explicit MetaPrescan(std::string_view page) : text_(page.substr(0, kCharsetPrescanBytes)) {}

  // The charset a meta tag declares; nullopt for none.
  std::optional<std::string_view> Run() {
    while (pos_ < text_.size()) {
      const std::string_view rest = text_.substr(pos_);
      if (rest.substr(0, 4) == "<!--") {
        const std::size_t end = text_.find("-->", pos_ + 2);
        if (end == std::string_view::npos) return std::nullopt;
        pos_ = end + 3;
      } else if (StartsNoCase(rest, "<meta") && rest.size() > 5 && (IsSpace(rest[5]) || rest[5] == '/')) {
        pos_ += 5;
        if (std::optional<std::string_view> charset = MetaCharset()) return charset;
      } else if (StartsTag(rest)) {
        pos_ = text_.find_first_of(" \t\n\r\f>", pos_);
        if (pos_ == std::string_view::npos) return std::nullopt;
        std::string_view name, value;
        while (NextAttribute(name, value)) {}
      } else if (rest.size() > 1 && rest[0] == '<' && (rest[1] == '!' || rest[1] == '/' || rest[1] == '?')) {
        pos_ = text_.find('>', pos_);
        if (pos_ == std::string_view::npos) return std::nullopt;
      } else {
        ++pos_;
      }
    }
    return std::nullopt;
  }

 private:
  static bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

  // "<" or "</" and a letter: a tag whose attributes are read past.
  static bool StartsTag(std::string_view rest) {
    const std::size_t name = rest.size() > 1 && rest[1] == '/' ? 2 : 1;
    return rest.size() > name && rest[0] == '<' && IsLetter(rest[name]);
  }

  // The attributes of a meta tag: `charset`, or `content` with a charset together
  // with http-equiv="content-type". The first of each name counts.
  std::optional<std::string_view> MetaCharset() {
    bool seenCharset = false, seenContent = false, seenHttpEquiv = false, pragma = false;
    std::optional<std::string_view> charset;
    bool needsPragma = false;
    std::string_view name, value;
    closed_ = false;
    while (NextAttribute(name, value)) {
      if (EqualsNoCase(name, "http-equiv") && !seenHttpEquiv) {
        seenHttpEquiv = true;
        pragma = EqualsNoCase(value, "content-type");
      } else if (EqualsNoCase(name, "content") && !seenContent) {
        seenContent = true;
        const std::string_view found = CharsetOfContentType(value);
        if (!charset && !found.empty()) {
          charset = found;
          needsPragma = true;
        }
      } else if (EqualsNoCase(name, "charset") && !seenCharset) {
        seenCharset = true;
        charset = value;
        needsPragma = false;
      }
    }
    if (!closed_ || !charset || (needsPragma && !pragma)) return std::nullopt;
    return charset;
  }

  // The next attribute of the tag at the position; false at its '>' or the end.
  bool NextAttribute(std::string_view& name, std::string_view& value) {
    while (pos_ < text_.size() && (IsSpace(text_[pos_]) || text_[pos_] == '/')) ++pos_;
    if (pos_ >= text_.size()) return false;
    if (text_[pos_] == '>') {
      ++pos_;
      closed_ = true;
      return false;
    }
    const std::size_t nameStart = pos_++;  // a first '=' belongs to the name
    while (pos_ < text_.size() && !IsSpace(text_[pos_]) && text_[pos_] != '=' && text_[pos_] != '/' &&
           text_[pos_] != '>') {
      ++pos_;
    }
    name = text_.substr(nameStart, pos_ - nameStart);
    value = {};
    SkipSpaces();
    if (pos_ >= text_.size() || text_[pos_] != '=') return true;
    ++pos_;
    SkipSpaces();
    if (pos_ >= text_.size()) return false;
    const char quote = text_[pos_];
    if (quote == '"' || quote == '\'') {
      const std::size_t end = text_.find(quote, pos_ + 1);
      if (end == std::string_view::npos) {
        pos_ = text_.size();
        return false;
      }
      value = text_.substr(pos_ + 1, end - pos_ - 1);
      pos_ = end + 1;
      return true;
    }
    const std::size_t valueStart = pos_;
    while (pos_ < text_.size() && !IsSpace(text_[pos_]) && text_[pos_] != '>') ++pos_;
    value = text_.substr(valueStart, pos_ - valueStart);
    return true;
  }

  void SkipSpaces() {
    while (pos_ < text_.size() && IsSpace(text_[pos_])) ++pos_;
  }

  std::string_view text_;
  std::size_t pos_ = 0;
  bool closed_ = false;  // the last tag read reached its '>'
};

void AppendUtf8(std::string& out, std::uint32_t codePoint) {
  if (codePoint < 0x80) {
    out += static_cast<char>(codePoint);
  } else if (codePoint < 0x800) {
    out += static_cast<char>(0xC0 | (codePoint >> 6));
    out += static_cast<char>(0x80 | (codePoint & 0x3F));
  } else {
    out += static_cast<char>(0xE0 | (codePoint >> 12));
    out += static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (codePoint & 0x3F));
  }
}

// Windows-1252's 0x80-0x9F; the five bytes it leaves undefined stand for the
// control characters of the same number, as Windows converts them.
constexpr std::uint16_t kWindows1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

}  // namespace

std::string_view CharsetOfContentType(std::string_view value) {
  constexpr std::string_view kCharset = "charset";
  for (std::size_t pos = 0; pos + kCharset.size() <= value.size(); ++pos) {
    if (!StartsNoCase(value.substr(pos), kCharset)) continue;
    std::size_t at = pos + kCharset.size();
    while (at < value.size() && IsSpace(value[at])) ++at;
    if (at >= value.size() || value[at] != '=') continue;
    ++at;
    while (at < value.size() && IsSpace(value[at])) ++at;
    if (at >= value.size()) return {};
    if (value[at] == '"' || value[at] == '\'') {
      const std::size_t end = value.find(value[at], at + 1);
      return end == std::string_view::npos ? std::string_view() : value.substr(at + 1, end - at - 1);
    }
    std::size_t end = at;
    while (end < value.size() && !IsSpace(value[end]) && value[end] != ';') ++end;
    return value.substr(at, end - at);
  }
  return {};
}

bool IsUtf8Page(std::string_view saved) {
  const SavedAnswer answer = SplitAnswer(saved);
  if (answer.body.substr(0, kUtf8Bom.size()) == kUtf8Bom) return true;
  const std::string_view bom = answer.body.substr(0, 2);
  if (bom == kUtf16BigEndianBom || bom == kUtf16LittleEndianBom) return false;
  if (const std::optional<std::string_view> charset = HeaderCharset(answer.header)) {
    return IsUtf8Label(*charset);
  }
  const std::optional<std::string_view> declared = MetaPrescan(answer.body).Run();
  return declared && IsUtf8Label(*declared);
}

std::string Windows1252ToUtf8(std::string_view text) {
  std::string out;
  out.reserve(text.size() + text.size() / 2);
  for (char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    const bool high = byte >= 0x80 && byte < 0xA0;
    AppendUtf8(out, high ? kWindows1252High[byte - 0x80] : byte);
  }
  return out;
}

}  // namespace qb
