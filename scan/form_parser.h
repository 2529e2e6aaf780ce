// The forms of one page, as the matcher and the filled-page writer need them:
// every kept attribute as a text block, the label before each field, the byte
// range of each field's tag in the page, the options of each select, the script
// blocks and the attributes of the table that wraps the first form.
// One FormScan owns all of it, the page's bytes included, until it is freed.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/textblock.h"
#include "scan/html_scanner.h"

namespace qb {

constexpr int kMaxForms = 8;
constexpr int kMaxFieldSlots = 100;  // per form, slot 0 (the FORM tag) included
constexpr int kMaxSelects = 100;     // per page
constexpr int kMaxOptions = 500;     // per select
constexpr int kMaxScripts = 49;      // per page
constexpr std::size_t kMaxTablePrefixBytes = 2048;

enum FieldKind : std::uint8_t {
  kFieldIgnored = 0,  // hidden, password, image, reset, button...: never kept
  kFieldRadio = 1,
  kFieldText = 2,
  kFieldCheckbox = 3,
  kFieldSelect = 4,
  kFieldTextarea = 5,
  kFieldSubmit = 10,
  kFieldForm = 255,  // slot 0: the FORM tag itself
};

struct FormField {
  std::uint8_t kind = kFieldIgnored;
  std::int32_t size = 0;
  std::int32_t maxlength = 0;
  std::int32_t rows = 0;
  std::int32_t cols = 0;
  TextBlock name = kNoBlock;
  TextBlock value = kNoBlock;
  TextBlock className = kNoBlock;  // the `class` attribute
  TextBlock label = kNoBlock;      // visible text since the previous form tag
  bool checked = false;
  bool multiple = false;       // select only
  bool forcedChecked = false;  // a radio button chosen in the no-match prompt
  int selectIndex = -1;        // row of FormScan::selects; -1 past the page's selects limit
  // The page's bytes [tagStart, tagEnd) are what the writer replaces with a new
  // tag: for a select its options too, for a textarea its opening tag and content.
  ScanPosition tagStart = 0;
  ScanPosition tagEnd = 0;
};

struct HtmlForm {
  TextBlock action = kNoBlock;  // always absolute
  TextBlock method = kNoBlock;  // only ever a POST method
  TextBlock enctype = kNoBlock;
  TextBlock target = kNoBlock;  // a FORM's `value` attribute lands here too
  TextBlock name = kNoBlock;
  TextBlock onSubmit = kNoBlock;  // from any field tag of the form
  bool valid = false;
  bool hasSubmit = false;
  std::vector<FormField> fields;  // fields[0] is the FORM tag, kind kFieldForm
  // Offset of the closing tag's '<', or where the page pass stopped.
  ScanPosition end = 0;

  int fieldCount() const { return static_cast<int>(fields.size()); }
};

struct SelectOption {
  TextBlock tag = kNoBlock;   // the OPTION tag without its brackets
  TextBlock text = kNoBlock;  // the text shown for it
};

struct ScriptBlock {
  ScanPosition start = 0;  // the '<' of "<script"
  ScanPosition end = 0;    // just after the '>' of "</script>"
};

struct FormScan {
  FormScan() = default;
  ~FormScan();
  FormScan(const FormScan&) = delete;
  FormScan& operator=(const FormScan&) = delete;

  ScanDocument document;
  std::vector<HtmlForm> forms;                    // kept forms, page order
  std::vector<std::vector<SelectOption>> selects;  // one row per select
  std::vector<ScriptBlock> scripts;
  std::string tablePrefix;  // e.g. `width="100%" border="0" >`; empty when none
  bool utf8 = false;  // the page is read as UTF-8 (IsUtf8Page)
  bool outOfMemory = false;  // some text could not be kept
};

// The scheme of a page whose address says none, or was never fetched over HTTPS.
constexpr std::string_view kPlainScheme = "http://";
constexpr std::string_view kSecureScheme = "https://";

// One pass over scan.document: fills the tables (cleared first) and finds the
// page's encoding. `scheme` and `host` are those of the address the page came
// from, the root that relative actions are resolved against.
void ParseFormPage(FormScan& scan, std::string_view host, std::string_view scheme = kPlainScheme);

// Frees every text block of the tables and empties them; the document stays.
void ClearFormTables(FormScan& scan);
// Frees everything the scan holds, the document included.
void FreeFormScan(FormScan& scan);

// `action` as an absolute address: unchanged when it starts with "http", else
// scheme + host + "/" + the action without its leading junk. Relative actions
// are resolved from the site root, not from the page's folder.
std::string AbsoluteAction(std::string_view action, std::string_view host,
                           std::string_view scheme = kPlainScheme);

}  // namespace qb
