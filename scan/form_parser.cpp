// The page pass. Conventions:
//  1. Outside a form the pass jumps from '<' to '<' and reads tag names with
//     ReadWord; inside one it reads labels and tag names with CollectFieldLabel.
//  2. Every FORM tag is entered, but only a form with an action and a POST
//     method is kept when it closes; the others are parsed and thrown away.
//  3. Each limit stops quietly: a 9th kept form or a field beyond a form's
//     100 slots ends the pass; selects, options and scripts beyond theirs are
//     not recorded.
//  4. Text blocks move from the open form into FormScan when the form is kept,
//     and are freed at once when it is not.
#include "scan/form_parser.h"

#include <climits>
#include <cstring>
#include <utility>

#include "scan/page_encoding.h"

namespace qb {
namespace {

enum class Attribute {
  kNone, kAction, kMethod, kName, kEnctype, kTarget, kType, kSize, kMaxlength,
  kValue, kRows, kCols, kClass, kOnSubmit, kChecked, kMultiple, kAlign,
};

struct AttributeName {
  std::string_view text;
  Attribute attribute;
};

constexpr AttributeName kFormAttributes[] = {
    {"action", Attribute::kAction}, {"method", Attribute::kMethod},
    {"name", Attribute::kName},     {"enctype", Attribute::kEnctype},
    {"target", Attribute::kTarget}, {"value", Attribute::kTarget},  // one slot for both
};

constexpr AttributeName kInputAttributes[] = {
    {"type", Attribute::kType},   {"size", Attribute::kSize},   {"maxlength", Attribute::kMaxlength},
    {"name", Attribute::kName},   {"value", Attribute::kValue}, {"rows", Attribute::kRows},
    {"cols", Attribute::kCols},   {"class", Attribute::kClass}, {"onSubmit", Attribute::kOnSubmit},
    {"checked", Attribute::kChecked},
};

constexpr AttributeName kSelectAttributes[] = {
    {"name", Attribute::kName}, {"size", Attribute::kSize}, {"multiple", Attribute::kMultiple},
};

struct InputType {
  std::string_view text;
  FieldKind kind;
};

constexpr InputType kInputTypes[] = {
    {"radio", kFieldRadio},       {"text", kFieldText},     {"textbox", kFieldText},
    {"checkbox", kFieldCheckbox}, {"submit", kFieldSubmit}, {"textarea", kFieldTextarea},
};

template <std::size_t N>
Attribute Classify(const AttributeName (&table)[N], std::string_view word) {
  for (const AttributeName& row : table) {
    if (EqualsNoCase(word, row.text)) return row.attribute;
  }
  return Attribute::kNone;
}

bool IsFlag(Attribute attribute) {
  return attribute == Attribute::kChecked || attribute == Attribute::kMultiple;
}

// Decimal text to integer as the C library reads it, but saturating instead of
// overflowing.
std::int32_t ParseDecimal(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size() && (text[i] == ' ' || (text[i] >= '\t' && text[i] <= '\r'))) ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) negative = text[i++] == '-';
  long long value = 0;
  for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
    value = value * 10 + (text[i] - '0');
    if (value > INT32_MAX) return negative ? INT32_MIN : INT32_MAX;
  }
  return static_cast<std::int32_t>(negative ? -value : value);
}

// A method is POST when it ends in "POST" ("xpost" passes, "post2" does not).
bool IsPostMethod(std::string_view method) {
  constexpr std::string_view kPost = "post";
  return method.size() >= kPost.size() &&
         EqualsNoCase(method.substr(method.size() - kPost.size()), kPost);
}

void FreeFieldTexts(FormField& field) {
  for (TextBlock* text : {&field.name, &field.value, &field.className, &field.label}) {
    FreeTextBlock(*text);
    *text = kNoBlock;
  }
}

void FreeFormTexts(HtmlForm& form) {
  for (TextBlock* text :
       {&form.action, &form.method, &form.enctype, &form.target, &form.name, &form.onSubmit}) {
    FreeTextBlock(*text);
    *text = kNoBlock;
  }
  for (FormField& field : form.fields) FreeFieldTexts(field);
  form.fields.clear();
}

void FreeOptions(std::vector<SelectOption>& options) {
  for (SelectOption& option : options) {
    FreeTextBlock(option.tag);
    FreeTextBlock(option.text);
  }
  options.clear();
}

// "</td>", "</tr>" and "</table>": what an unclosed select steps back over.
constexpr std::size_t kCellCloseBytes = 5;
constexpr std::size_t kTableCloseBytes = 8;

class PagePass {
 public:
  PagePass(FormScan& scan, std::string_view host, std::string_view scheme)
      : scan_(scan), document_(scan.document), length_(scan.document.length()), host_(host), scheme_(scheme) {}

  void Run() {
    for (;;) {
      ScanPosition tagStart = 0;
      if (!inForm_) {
        const void* open = std::memchr(document_.data() + pos_, '<', length_ - pos_);
        if (!open) break;
        tagStart = static_cast<const char*>(open) - document_.data();
        pos_ = tagStart + 1;
        ReadWord(document_, tagName_, pos_);
      } else if (!CollectFieldLabel(document_, label_, tagName_, pos_, tagStart)) {
        if (pos_ >= length_) break;
        continue;  // the label filled up; the next one starts here
      }
      if (!HandleTag(tagStart)) break;
    }
    if (inForm_) CloseForm(stoppedAtField_ ? stopOffset_ : length_);
  }

 private:
  // False when the pass ends here.
  bool HandleTag(ScanPosition tagStart) {
    const std::string_view tag = tagName_;
    if (!inForm_ && EqualsNoCase(tag, "/html")) return false;
    if (EqualsNoCase(tag, "script")) {
      if (scan_.scripts.size() < kMaxScripts) {
        scriptStart_ = tagStart;
        scriptOpen_ = true;
      }
    } else if (EqualsNoCase(tag, "/script")) {
      const void* close = std::memchr(document_.data() + pos_, '>', length_ - pos_);
      pos_ = close ? static_cast<const char*>(close) - document_.data() + 1 : length_;
      if (scriptOpen_ && scan_.scripts.size() < kMaxScripts) {
        scan_.scripts.push_back({scriptStart_, pos_});
      }
      scriptOpen_ = false;
    } else if (EqualsNoCase(tag, "form")) {
      if (!inForm_) OpenForm(tagStart);
    } else if (EqualsNoCase(tag, "/form")) {
      if (inForm_) return !CloseForm(tagStart);
    } else if (inForm_ && (EqualsNoCase(tag, "input") || EqualsNoCase(tag, "select") ||
                           EqualsNoCase(tag, "textarea"))) {
      if (form_.fieldCount() >= kMaxFieldSlots) {
        stoppedAtField_ = true;
        stopOffset_ = tagStart;
        return false;
      }
      ReadField(tag, tagStart);
    } else if (EqualsNoCase(tag, "table") && !inForm_ && scan_.forms.empty()) {
      ReadTablePrefix();
    }
    return true;
  }

  void OpenForm(ScanPosition tagStart) {
    form_ = HtmlForm{};
    formSelects_ = scan_.selects.size();
    bool methodRejected = false;
    while (pos_ < length_) {
      if (ReadFormAttribute(document_, attributeName_, pos_, false) != kWordRead) break;
      const Attribute attribute = Classify(kFormAttributes, attributeName_);
      if (attribute == Attribute::kNone) continue;
      const int valueResult =
          ReadFormAttribute(document_, value_, pos_, attribute == Attribute::kAction);
      if (attribute == Attribute::kMethod && !IsPostMethod(value_)) {
        methodRejected = true;
        break;
      }
      TextBlock* slot = FormSlot(attribute);
      if (attribute == Attribute::kAction) {
        *slot = Keep(AbsoluteAction(value_, host_, scheme_), *slot);
      } else {
        *slot = Keep(value_, *slot);
      }
      if (valueResult != kWordRead) break;
    }
    StepPastTagEnd();

    form_.valid = !methodRejected && form_.action && form_.method;
    FormField self;
    self.kind = kFieldForm;
    self.tagStart = tagStart;
    self.tagEnd = pos_;
    form_.fields.push_back(self);
    inForm_ = true;
  }

  TextBlock* FormSlot(Attribute attribute) {
    switch (attribute) {
      case Attribute::kAction: return &form_.action;
      case Attribute::kMethod: return &form_.method;
      case Attribute::kEnctype: return &form_.enctype;
      case Attribute::kTarget: return &form_.target;
      case Attribute::kName:
      default: return &form_.name;
    }
  }

  // True when the pass ends: the last form that may be kept was just kept.
  bool CloseForm(ScanPosition end) {
    inForm_ = false;
    form_.end = end;
    if (form_.valid && form_.fieldCount() >= 1) {
      scan_.forms.push_back(std::move(form_));
      form_ = HtmlForm{};
      return scan_.forms.size() >= kMaxForms;
    }
    // The next form takes over this one's select rows.
    for (std::size_t i = formSelects_; i < scan_.selects.size(); ++i) FreeOptions(scan_.selects[i]);
    scan_.selects.resize(formSelects_);
    FreeFormTexts(form_);
    return false;
  }

  void ReadField(std::string_view tag, ScanPosition tagStart) {
    FormField field;
    field.tagStart = tagStart;
    bool kept = true;
    if (EqualsNoCase(tag, "select")) {
      field.kind = kFieldSelect;
      ReadAttributes(kSelectAttributes, field, false);
      ReadOptions(field);
    } else {
      const bool textarea = EqualsNoCase(tag, "textarea");
      field.kind = textarea ? kFieldTextarea : kFieldText;
      kept = ReadAttributes(kInputAttributes, field, !textarea);
      if (kept && textarea) SkipTextareaContent();
    }
    if (!kept) {
      FreeFieldTexts(field);
      const void* close = std::memchr(document_.data() + pos_, '>', length_ - pos_);
      pos_ = close ? static_cast<const char*>(close) - document_.data() + 1 : length_;
      return;
    }
    field.tagEnd = pos_;
    field.label = Keep(label_, kNoBlock);
    if (field.kind == kFieldSubmit) form_.hasSubmit = true;
    form_.fields.push_back(field);
  }

  // The content is not kept: the writer puts in its own. The field's bytes
  // run on over the closing tag, and so does the pass; without one they stop
  // at the next tag.
  void SkipTextareaContent() {
    const void* next = std::memchr(document_.data() + pos_, '<', length_ - pos_);
    if (!next) {
      pos_ = length_;
      return;
    }
    const ScanPosition open = static_cast<const char*>(next) - document_.data();
    pos_ = open + 1;
    if (!SkipClosingTextarea(document_, pos_)) pos_ = open;
  }

  // Attribute words up to the tag's end. False when an input's type makes it a
  // field that is not kept; the rest of the tag is then left unread.
  template <std::size_t N>
  bool ReadAttributes(const AttributeName (&names)[N], FormField& field, bool typeCounts) {
    while (pos_ < length_) {
      int result = ReadWord(document_, attributeName_, pos_);
      const Attribute attribute = Classify(names, attributeName_);
      if (attribute == Attribute::kChecked) field.checked = true;
      if (attribute == Attribute::kMultiple) field.multiple = true;
      if (attribute != Attribute::kNone && !IsFlag(attribute) && result == kWordRead) {
        result = ReadWord(document_, value_, pos_);
        if (!Apply(attribute, field, typeCounts)) return false;
      }
      if (result != kWordRead) break;
    }
    StepPastTagEnd();
    return true;
  }

  bool Apply(Attribute attribute, FormField& field, bool typeCounts) {
    switch (attribute) {
      case Attribute::kType:
        if (!typeCounts || value_.empty()) return true;
        for (const InputType& type : kInputTypes) {
          if (EqualsNoCase(value_, type.text)) {
            field.kind = type.kind;
            return true;
          }
        }
        return false;
      case Attribute::kSize: field.size = ParseDecimal(value_); break;
      case Attribute::kMaxlength: field.maxlength = ParseDecimal(value_); break;
      case Attribute::kRows: field.rows = ParseDecimal(value_); break;
      case Attribute::kCols: field.cols = ParseDecimal(value_); break;
      case Attribute::kName: field.name = Keep(value_, field.name); break;
      case Attribute::kValue: field.value = Keep(value_, field.value); break;
      case Attribute::kClass: field.className = Keep(value_, field.className); break;
      case Attribute::kOnSubmit: form_.onSubmit = Keep(value_, form_.onSubmit); break;
      default: break;
    }
    return true;
  }

  void ReadOptions(FormField& field) {
    std::vector<SelectOption>* options = nullptr;
    if (scan_.selects.size() < kMaxSelects) {
      field.selectIndex = static_cast<int>(scan_.selects.size());
      options = &scan_.selects.emplace_back();
    }
    bool optionOpen = false;
    while (ReadTagText(document_, value_, pos_)) {
      if (StartsNoCase(value_, "/select")) {
        StepPastTagEnd();
        return;
      }
      // An unclosed select ends with its table cell, row or table; the pass
      // then reads that closing tag again, from its '<'.
      if (StartsNoCase(value_, "/td") || StartsNoCase(value_, "/tr")) {
        StepBackOverClosingTag(kCellCloseBytes, field.tagStart);
        return;
      }
      if (StartsNoCase(value_, "/table")) {
        StepBackOverClosingTag(kTableCloseBytes, field.tagStart);
        return;
      }
      if (StartsNoCase(value_, "option")) {
        optionOpen = options && options->size() < kMaxOptions;
        if (optionOpen) options->push_back({Keep(value_, kNoBlock), kNoBlock});
      } else if (StartsNoCase(value_, "/option")) {
        optionOpen = false;
      } else if (optionOpen && !StartsNoCase(value_, "/font")) {
        options->back().text = Keep(value_, options->back().text);
      }
    }
  }

  // Keeps the attributes of the TABLE tag, except its alignment, in the form
  // `name="value" ` and ends them with '>'. An attribute that would not fit
  // whole is left out rather than cut, so the prefix stays well-formed.
  void ReadTablePrefix() {
    std::string& prefix = scan_.tablePrefix;
    prefix.clear();
    while (pos_ < length_) {
      const int nameResult = ReadWord(document_, attributeName_, pos_);
      int result = nameResult;
      const bool hasValue = nameResult == kWordRead && !attributeName_.empty() && EqualsSignFollows();
      if (hasValue) result = ReadWord(document_, value_, pos_);
      if (!attributeName_.empty() && !EqualsNoCase(attributeName_, "align")) {
        const std::size_t needed =
            attributeName_.size() + 1 + (hasValue ? value_.size() + 3 : 0) + 1;  // + final '>'
        if (prefix.size() + needed <= kMaxTablePrefixBytes) {
          prefix += attributeName_;
          if (hasValue) prefix.append("=\"").append(value_).append("\"");
          prefix += ' ';
        }
      }
      if (result != kWordRead) break;
    }
    prefix += '>';
  }

  bool EqualsSignFollows() const {
    ScanPosition at = pos_;
    while (at < length_ && (document_.At(at) == ' ' || document_.At(at) == '\t' ||
                            document_.At(at) == '\r' || document_.At(at) == '\n')) {
      ++at;
    }
    return document_.At(at) == '=';
  }

  void StepPastTagEnd() {
    if (document_.At(pos_) == '>') ++pos_;
  }

  // ReadTagText leaves the position on the closing tag's '>' (or where its text
  // stopped without one); the count starts one byte further. Never back to or
  // before the select's own '<', so the pass always moves on.
  void StepBackOverClosingTag(std::size_t bytes, ScanPosition selectStart) {
    const ScanPosition pastTag = pos_ + 1;
    const ScanPosition floor = selectStart + 1;
    pos_ = (pastTag >= floor + bytes) ? pastTag - bytes : floor;
  }

  TextBlock Keep(std::string_view text, TextBlock old) {
    const TextBlock block = StoreText(text, old);
    if (!block && !text.empty()) scan_.outOfMemory = true;
    return block;
  }

  FormScan& scan_;
  const ScanDocument& document_;
  const std::size_t length_;
  const std::string_view host_;
  const std::string_view scheme_;

  ScanPosition pos_ = 0;
  WordBuffer tagName_;
  WordBuffer attributeName_;
  WordBuffer value_;
  LabelBuffer label_;

  bool inForm_ = false;
  HtmlForm form_;
  std::size_t formSelects_ = 0;  // selects rows before the open form's first
  bool stoppedAtField_ = false;       // a field beyond the slots ended the pass
  ScanPosition stopOffset_ = 0;

  bool scriptOpen_ = false;
  ScanPosition scriptStart_ = 0;
};

}  // namespace

FormScan::~FormScan() { FreeFormScan(*this); }

void ParseFormPage(FormScan& scan, std::string_view host, std::string_view scheme) {
  ClearFormTables(scan);
  scan.utf8 = IsUtf8Page(scan.document.bytes());
  PagePass(scan, host, scheme).Run();
}

void ClearFormTables(FormScan& scan) {
  for (HtmlForm& form : scan.forms) FreeFormTexts(form);
  scan.forms.clear();
  for (std::vector<SelectOption>& options : scan.selects) FreeOptions(options);
  scan.selects.clear();
  scan.scripts.clear();
  scan.tablePrefix.clear();
  scan.outOfMemory = false;
}

void FreeFormScan(FormScan& scan) {
  ClearFormTables(scan);
  scan.document.Free();
}

std::string AbsoluteAction(std::string_view action, std::string_view host, std::string_view scheme) {
  if (StartsNoCase(action, "http")) return std::string(action);
  constexpr std::string_view kLeadingJunk = " ./\"'\\\n";
  const std::size_t skip = action.find_first_not_of(kLeadingJunk);
  std::string absolute(scheme);
  absolute.append(host).append("/");
  if (skip != std::string_view::npos) absolute.append(action.substr(skip));
  return absolute;
}

}  // namespace qb
