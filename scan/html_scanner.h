// Readers over the raw bytes of one HTML page. There is no tree and no entity
// decoding: the form parser walks the page with one position and asks these
// readers for the next word, the rest of a tag, or the text before the next
// form tag. Conventions kept by every reader:
//  1. The position is a byte index owned by the caller and advanced in place.
//  2. No reader looks at or past the document length; a read there sees 0.
//  3. Every reader clears its destination before it writes.
//  4. Words are at most kMaxWordBytes long (no terminator is needed: the
//     buffers are std::string), labels at most kMaxLabelBytes.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "base/textblock.h"

namespace qb {

constexpr std::size_t kMaxWordBytes = 4096;
constexpr std::size_t kMaxLabelBytes = 1023;
// Zero bytes kept after the page, so code that peeks one byte ahead stays harmless.
constexpr std::size_t kDocumentSpareBytes = 100;

using ScanPosition = std::size_t;
using WordBuffer = std::string;
using LabelBuffer = std::string;

class ScanDocument;
enum class DocumentLoadStatus { kLoaded, kCannotOpen, kOutOfMemory };

// Reads the file whole (binary) into `document`.
DocumentLoadStatus LoadScanDocument(const std::string& path, ScanDocument& document);

// The page's bytes, held whole in one zero-filled text block of
// length + kDocumentSpareBytes, locked for the document's lifetime.
class ScanDocument {
 public:
  ScanDocument() = default;
  ~ScanDocument() { Free(); }
  ScanDocument(const ScanDocument&) = delete;
  ScanDocument& operator=(const ScanDocument&) = delete;

  // Replaces the content; false (and an empty document) when memory runs out.
  bool Assign(std::string_view bytes);
  void Free();

  std::size_t length() const { return length_; }
  const char* data() const { return data_ ? data_ : ""; }
  std::string_view bytes() const { return std::string_view(data(), length_); }
  char At(ScanPosition pos) const { return pos < length_ ? data_[pos] : '\0'; }

 private:
  friend DocumentLoadStatus LoadScanDocument(const std::string& path, ScanDocument& document);
  bool Allocate(std::size_t length);

  TextBlock block_ = kNoBlock;
  char* data_ = nullptr;
  std::size_t length_ = 0;
};

// Result codes of ReadWord and ReadFormAttribute.
enum WordResult : int {
  kWordNone = 0,     // stopped at '<', or at '>' with nothing read
  kWordRead = 1,     // a word (possibly empty: value="") and the tag goes on
  kWordTagEnds = 2,  // a word, and '>' follows it directly
};

// The next tag name, attribute name or attribute value inside a tag.
int ReadWord(const ScanDocument& document, WordBuffer& word, ScanPosition& pos);

// ReadWord for the FORM tag: '"' and '>' always end the word, and with
// `afterAction` set '=' does not, so an action's query string stays whole.
int ReadFormAttribute(const ScanDocument& document, WordBuffer& word, ScanPosition& pos,
                      bool afterAction);

// The rest of a tag, or the text up to the next tag, with CR, TAB and LF as
// spaces. 1 when text was read, 0 at the document end.
int ReadTagText(const ScanDocument& document, WordBuffer& text, ScanPosition& pos);

// The visible text up to the next form-relevant tag ("form", "/form", "input",
// "select", "textarea", "script", "/script"), collapsed and space-separated.
// 1: `tagName` holds that tag's name, `tagStart` the offset of its '<' and the
// position stands just after the name. 0: the document ended or the label
// reached kMaxLabelBytes; `tagName` is then a single space.
int CollectFieldLabel(const ScanDocument& document, LabelBuffer& label, WordBuffer& tagName,
                      ScanPosition& pos, ScanPosition& tagStart);

// When the text at `pos` is "/textarea", steps over it and over the '>' and
// line blanks after it; the text after a textarea's content starts so.
bool SkipClosingTextarea(const ScanDocument& document, ScanPosition& pos);

// Frees `oldBlock`, then returns a new block holding `text` (kNoBlock for an
// empty text or when memory runs out).
TextBlock StoreText(std::string_view text, TextBlock oldBlock);

// Case-insensitive (ASCII) comparisons used by the parser.
bool EqualsNoCase(std::string_view a, std::string_view b);
bool StartsNoCase(std::string_view text, std::string_view prefix);

}  // namespace qb
