#include "scan/html_scanner.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>

namespace qb {
namespace {

constexpr std::string_view kNbsp = "&nbsp;";
constexpr std::string_view kCloseTextarea = "/textarea";
constexpr std::string_view kFormRelevantTags[] = {"form",     "/form",  "input",  "select",
                                                  "textarea", "script", "/script"};

char Lower(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }

bool MatchesAt(const ScanDocument& document, ScanPosition pos, std::string_view what) {
  return pos <= document.length() && document.length() - pos >= what.size() &&
         StartsNoCase(document.bytes().substr(pos), what);
}

bool IsLineBlank(char c) { return c == '\n' || c == '\r' || c == ' '; }

void SkipLineBlanks(const ScanDocument& document, ScanPosition& pos) {
  while (pos < document.length() && IsLineBlank(document.At(pos))) ++pos;
}

// Every "&nbsp;" here counts as blank, and so do the line blanks after it.
void SkipNbspRuns(const ScanDocument& document, ScanPosition& pos) {
  while (MatchesAt(document, pos, kNbsp)) {
    pos += kNbsp.size();
    SkipLineBlanks(document, pos);
  }
}

bool IsSkippedBeforeWord(char c) {
  return c == '=' || c == '"' || c == '\'' || c == '\n' || c == '\r' || c == '\t' || c == ' ';
}

enum class WordMode { kPlain, kFormAttribute, kFormAction };

int ReadWordIn(const ScanDocument& document, WordBuffer& word, ScanPosition& pos, WordMode mode) {
  word.clear();
  const std::size_t length = document.length();
  if (pos > length) pos = length;
  const char* bytes = document.data();

  int doubleQuotes = 0;
  int singleQuotes = 0;
  while (pos < length && IsSkippedBeforeWord(bytes[pos])) {
    if (bytes[pos] == '"') ++doubleQuotes;
    if (bytes[pos] == '\'') ++singleQuotes;
    ++pos;
  }
  // Two quotes with nothing between them: an empty value, not a missing one.
  if (doubleQuotes > 1 || singleQuotes >= 2) return kWordRead;

  // Only a double quote protects spaces; a single-quoted value reads as unquoted.
  const bool quoted = pos > 0 && bytes[pos - 1] == '"';
  const char here = document.At(pos);
  if (pos < length && here != '<' && here != '>') {
    const ScanPosition start = pos;
    while (pos < length && pos - start < kMaxWordBytes) {
      const char c = bytes[pos];
      if (c == '\n' || c == '\r' || c == '\t' || c == '"') break;
      if (c == '=' && mode != WordMode::kFormAction) break;
      if (c == ' ' && !quoted) break;
      if (c == '>' && (!quoted || mode != WordMode::kPlain)) break;
      ++pos;
    }
    word.assign(bytes + start, pos - start);
    while (word.size() > 1 && (word.back() == '\'' || word.back() == ' ' || word.back() == '\n')) {
      word.pop_back();
    }
  }

  const char stop = document.At(pos);
  if (stop == '<') return kWordNone;
  if (stop == '>') return word.empty() ? kWordNone : kWordTagEnds;
  return kWordRead;
}

}  // namespace

bool EqualsNoCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && StartsNoCase(a, b);
}

bool StartsNoCase(std::string_view text, std::string_view prefix) {
  if (text.size() < prefix.size()) return false;
  for (std::size_t i = 0; i < prefix.size(); ++i) {
    if (Lower(text[i]) != Lower(prefix[i])) return false;
  }
  return true;
}

bool ScanDocument::Allocate(std::size_t length) {
  Free();
  if (length > SIZE_MAX - kDocumentSpareBytes) return false;
  TextBlock block = AllocTextBlock(length + kDocumentSpareBytes);
  if (!block) return false;
  char* data = LockTextBlock(block);
  if (!data) {
    FreeTextBlock(block);
    return false;
  }
  block_ = block;
  data_ = data;
  length_ = length;
  return true;
}

bool ScanDocument::Assign(std::string_view bytes) {
  if (!Allocate(bytes.size())) return false;
  if (!bytes.empty()) std::memcpy(data_, bytes.data(), bytes.size());
  return true;
}

void ScanDocument::Free() {
  if (block_) {
    UnlockTextBlock(block_);
    FreeTextBlock(block_);
  }
  block_ = kNoBlock;
  data_ = nullptr;
  length_ = 0;
}

DocumentLoadStatus LoadScanDocument(const std::string& path, ScanDocument& document) {
  document.Free();
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                        &std::fclose);
  if (!file) return DocumentLoadStatus::kCannotOpen;
  if (std::fseek(file.get(), 0, SEEK_END) != 0) return DocumentLoadStatus::kCannotOpen;
  const long size = std::ftell(file.get());
  if (size < 0 || std::fseek(file.get(), 0, SEEK_SET) != 0) return DocumentLoadStatus::kCannotOpen;
  if (!document.Allocate(static_cast<std::size_t>(size))) return DocumentLoadStatus::kOutOfMemory;
  // A file that shrank while being read keeps what could be read.
  document.length_ = std::fread(document.data_, 1, document.length_, file.get());
  return DocumentLoadStatus::kLoaded;
}

int ReadWord(const ScanDocument& document, WordBuffer& word, ScanPosition& pos) {
  return ReadWordIn(document, word, pos, WordMode::kPlain);
}

int ReadFormAttribute(const ScanDocument& document, WordBuffer& word, ScanPosition& pos,
                      bool afterAction) {
  return ReadWordIn(document, word, pos,
                    afterAction ? WordMode::kFormAction : WordMode::kFormAttribute);
}

int ReadTagText(const ScanDocument& document, WordBuffer& text, ScanPosition& pos) {
  text.clear();
  const std::size_t length = document.length();
  const char* bytes = document.data();
  if (pos > length) pos = length;
  while (pos < length &&
         (bytes[pos] == ' ' || bytes[pos] == '<' || bytes[pos] == '>' || bytes[pos] == '\n')) {
    ++pos;
  }
  if (pos >= length) return 0;

  const ScanPosition start = pos;
  while (pos < length && pos - start < kMaxWordBytes && bytes[pos] != '>' && bytes[pos] != '<') {
    ++pos;
  }
  text.assign(bytes + start, pos - start);
  for (char& c : text) {
    if (c == '\r' || c == '\t' || c == '\n') c = ' ';
  }
  while (text.size() > 1 && text.back() == ' ') text.pop_back();
  return text.empty() ? 0 : 1;
}

int CollectFieldLabel(const ScanDocument& document, LabelBuffer& label, WordBuffer& tagName,
                      ScanPosition& pos, ScanPosition& tagStart) {
  label.clear();
  tagName.clear();
  const std::size_t length = document.length();
  const char* bytes = document.data();
  if (pos > length) pos = length;
  for (;;) {
    SkipLineBlanks(document, pos);
    SkipNbspRuns(document, pos);

    SkipClosingTextarea(document, pos);  // a closing tag is no label

    const std::size_t before = label.size();
    while (pos < length && bytes[pos] != '<' && label.size() < kMaxLabelBytes) {
      char c = bytes[pos++];
      if (c == '\n') c = ' ';
      if (c == ' ' && !label.empty() && label.back() == ' ') continue;
      label.push_back(c);
    }
    // One blank after every run that copied something (table cells, lines),
    // also after a run that ended in a blank of its own: the collapsing above
    // is for the text, not for this separator. Never past the label's limit.
    if (label.size() > before && label.size() < kMaxLabelBytes) label.push_back(' ');

    if (pos >= length || label.size() >= kMaxLabelBytes) {
      tagName = " ";
      return 0;
    }

    tagStart = pos;
    ++pos;  // the '<'
    for (;;) {
      while (pos < length && (bytes[pos] == '=' || bytes[pos] == '"' || bytes[pos] == '\n' ||
                              bytes[pos] == ' ')) {
        ++pos;
      }
      if (!MatchesAt(document, pos, kNbsp)) break;
      SkipNbspRuns(document, pos);
    }

    const char here = document.At(pos);
    if (pos < length && here != '<' && here != '>') {
      const ScanPosition start = pos;
      while (pos < length && pos - start < kMaxWordBytes) {
        const char c = bytes[pos];
        if (c == ' ' || c == '=' || c == '\n' || c == '"' || c == '>') break;
        ++pos;
      }
      tagName.assign(bytes + start, pos - start);
    }
    for (std::string_view relevant : kFormRelevantTags) {
      if (EqualsNoCase(tagName, relevant)) return 1;
    }

    // Any other tag: step over it; the text around it belongs to the same label.
    const void* close = std::memchr(bytes + pos, '>', length - pos);
    if (!close) {
      pos = length;
      tagName = " ";
      return 0;
    }
    pos = static_cast<const char*>(close) - bytes + 1;
    tagName.clear();
  }
}

bool SkipClosingTextarea(const ScanDocument& document, ScanPosition& pos) {
  if (!MatchesAt(document, pos, kCloseTextarea)) return false;
  pos += kCloseTextarea.size();
  while (pos < document.length() && (document.At(pos) == '>' || IsLineBlank(document.At(pos)))) {
    ++pos;
  }
  return true;
}

TextBlock StoreText(std::string_view text, TextBlock oldBlock) {
  FreeTextBlock(oldBlock);
  return MakeTextBlock(text);
}

}  // namespace qb
