#include "scan/page_writer.h"

#include <cstdint>
#include <cstdio>
#include <optional>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "base/user_message.h"
#include "scan/matcher.h"
#include "scan/post_request.h"

namespace qb {
namespace {

constexpr std::string_view kHead =
    "<html><head><meta http-equiv=\"Content-Type\" content=\"text/html; charset=iso-8859-1\">"
    "<meta name=\"description\" content=\"A web form filled in from your keys\">"
    "<meta name=\"author\" content=\"Quellbarrow\">"
    "<meta name=\"generator\" content=\"Quellbarrow\">"
    // The mark a browser leaves on a page it saves: the page is opened from a local
    // file, and Internet Explorer then gives its scripts the Internet zone's rights,
    // not a local file's. The number is the length of the address after it.
    "<!-- saved from url=(0014)about:internet -->\r\n"
    "<title>Quellbarrow - Filled form</title></head>\n"
    "<body background=\"tovback.jpg\" bgcolor=\"#FFFFFF\" text=\"#000000\" vlink=\"#000080\">\n";
// The head's charset; a UTF-8 page's filled page declares UTF-8 instead.
constexpr std::string_view kHeadCharset = "charset=iso-8859-1";
constexpr std::size_t kHeadCharsetAt = kHead.find(kHeadCharset);
static_assert(kHeadCharsetAt != std::string_view::npos, "the head declares its charset");
constexpr std::string_view kUtf8Charset = "charset=utf-8";
constexpr std::string_view kBanner =
    "<center><font size=\"2\" face=\"MS Sans Serif\"><b>Quellbarrow</b><br>"
    "Check the filled form below, then submit it.\n";
constexpr std::string_view kScriptNote =
    "<br><br></font><font color=\"black\"  size=\"2\" face=\"MS Sans Serif\"><b>Notes:</b> This HTML "
    "document has a Java or VB scripts. In some cases you may not be able to submit.</font>";
constexpr std::string_view kNoSubmitNote =
    "<br></font><font color=\"black\"  size=\"2\" face=\"MS Sans Serif\"><b>Notes:</b> This HTML "
    "document does not have a <b>\"Submit\"</b> button and becouse of that <b>maybe</b> you could "
    "not Submit it.</font>";
constexpr std::string_view kNotesEnd = "</center><hr></font>";
constexpr std::string_view kTail =
    "</font><hr><center>"
    "<font size=\"1\" face=\"MS Sans Serif\">Filled in by Quellbarrow</font>"
    "</center>"
    "<p align=\"center\"><font size=\"1\" face=\"MS Sans Serif\">Your answers stay in your own key "
    "databases.</font></p>\n"
    "</body></html>";

bool StartsWithScheme(std::string_view action) {
  return StartsNoCase(action, "http://") || StartsNoCase(action, "https://");
}

// Calls `visit` with each word of an OPTION tag's text until it returns true.
template <typename Visit>
bool ForEachOptionWord(std::string_view tag, Visit visit) {
  std::size_t pos = 0;
  while (pos < tag.size() && tag[pos] != '>') {
    while (pos < tag.size() && (tag[pos] == ' ' || tag[pos] == '\r' || tag[pos] == '\n')) ++pos;
    const std::size_t start = pos;
    while (pos < tag.size() && tag[pos] != ' ' && tag[pos] != '>' && pos - start < kMaxOptionWordBytes) ++pos;
    const std::string_view word = tag.substr(start, pos - start);
    if (!word.empty() && visit(word)) return true;
  }
  return false;
}

// `selected`, also as XHTML writes it (selected="selected").
bool IsSelectedWord(std::string_view word) {
  return EqualsNoCase(word, "selected") || StartsNoCase(word, "selected=");
}

// An option's value in the post: what follows the first "=" of its tag; an option
// without one has an empty value.
std::string OptionPairValue(std::string_view rebuiltTag) {
  const std::size_t equals = rebuiltTag.find('=');
  return equals == std::string_view::npos ? std::string() : std::string(rebuiltTag.substr(equals + 1));
}

class PageWriter {
 public:
  PageWriter(FormScan& scan, ScanSession& session)
      : scan_(scan), session_(session), keys_(session.keys), page_(scan.document.bytes()) {}

  std::string Run() {
    out_.reserve(page_.size() + page_.size() / 4 + 4096);
    out_ += kHead;
    if (scan_.utf8) out_.replace(kHeadCharsetAt, kHeadCharset.size(), kUtf8Charset);
    out_ += kBanner;
    if (!scan_.scripts.empty()) out_ += kScriptNote;
    for (const HtmlForm& form : scan_.forms) {
      if (!form.hasSubmit) {
        out_ += kNoSubmitNote;
        break;
      }
    }
    out_ += kNotesEnd;
    for (const ScriptBlock& script : scan_.scripts) Copy(script.start, script.end);
    for (std::size_t f = 0; f < scan_.forms.size(); ++f) WriteForm(static_cast<int>(f));
    out_ += kTail;
    return std::move(out_);
  }

 private:
  void WriteForm(int f) {
    form_ = f;
    HtmlForm& form = scan_.forms[f];
    collect_ = session_.directPost && f == 0;
    DecideRadioGroups(form);
    for (std::size_t s = 0; s < form.fields.size(); ++s) {
      if (s > 0) Copy(form.fields[s - 1].tagEnd, form.fields[s].tagStart);
      slot_ = static_cast<int>(s);
      WriteSlot(form, form.fields[s]);
    }
    if (!form.fields.empty()) Copy(form.fields.back().tagEnd, form.end);
    out_ += "</form>";
    if (f + 1 == static_cast<int>(scan_.forms.size()) && !scan_.tablePrefix.empty()) out_ += "</table>";
  }

  void WriteSlot(HtmlForm& form, FormField& field) {
    switch (field.kind) {
      case kFieldForm: return WriteFormTag(form);
      case kFieldSubmit: return WriteSubmit(form, field);
      case kFieldRadio: return WriteRadio(field);
      case kFieldCheckbox: return WriteCheckbox(field);
      case kFieldText: return WriteText(field);
      case kFieldTextarea: return WriteTextarea(field);
      case kFieldSelect: return WriteSelect(field);
      default: TellUser(kProgramMistakeText);  // the slot is left out
    }
  }

  void WriteFormTag(const HtmlForm& form) {
    if (form_ == 0 && !scan_.tablePrefix.empty()) {
      out_.append("\n<table ").append(scan_.tablePrefix).append("\n<form ");
    } else {
      out_ += "<form ";
    }
    Attribute("name", form.name);
    std::string action = TextOf(form.action);
    // The same rule as the parser's, for an action that starts "http" and is
    // still no address; the leading "/" makes AbsoluteAction treat it so.
    if (!StartsWithScheme(action)) action = AbsoluteAction("/" + action, session_.host, session_.scheme);
    out_.append("action=\"").append(action).append("\" ");
    out_.append("method=").append(TextOf(form.method)).append(" ");
    Attribute("enctype", form.enctype);
    Attribute("target", form.target);
    out_ += ">\n";
    if (collect_) session_.requestText = StartPostRequest(action);
  }

  void WriteSubmit(const HtmlForm& form, const FormField& field) {
    out_ += "<input type=\"submit\" ";
    Attribute("name", field.name);
    Attribute("onSubmit", form.onSubmit);
    Attribute("value", field.value);
    out_ += ">\n";
    Collect(TextOf(field.name), TextOf(field.value), PairRule::kKeepsFirst);
  }

  // A radio button is checked by the prompt's choice or when its key's Selection
  // lists its value. A group (the buttons of the form with the same name) where
  // that checks some button has only those checked; any other group keeps the
  // page's own `checked`, as the user's browser would have sent it.
  void DecideRadioGroups(const HtmlForm& form) {
    radioChecked_.assign(form.fields.size(), false);
    decidedGroups_.clear();
    for (std::size_t s = 0; s < form.fields.size(); ++s) {
      const FormField& field = form.fields[s];
      if (field.kind != kFieldRadio) continue;
      const std::uint32_t key = session_.FindKey(field.name);
      radioChecked_[s] = field.forcedChecked ||
                         (key != kNoMatch && SelectionContains(TextOf(field.value),
                                                               session_.KeyTextForPage(scan_, key, kSelection)));
      if (radioChecked_[s]) decidedGroups_.insert(TextOf(field.name));
    }
  }

  void WriteRadio(const FormField& field) {
    const bool decided = decidedGroups_.count(TextOf(field.name)) != 0;
    WriteButton("<input type=\"radio\" ", field, decided ? radioChecked_[slot_] : field.checked);
  }

  // A check box is matched against the Description. The match stands only while
  // prompts are suppressed; otherwise the options decide, and the prompt's
  // answer is the box's state. A box that neither decides keeps the page's own
  // state.
  void WriteCheckbox(const FormField& field) {
    const std::uint32_t key = session_.FindKey(field.name);
    if (PromptsCheckboxes(session_.options, session_.promptAll) && field.name && session_.MayPrompt()) {
      const PromptAnswer answer = session_.Ask(scan_, Request(kPromptCheckbox, key));
      // "Cancel All" answers nothing: the box goes as those after it do.
      if (!answer.cancelAll) return WriteButton("<input type=\"checkbox\" ", field, answer.result == 1);
    }
    bool checked = field.checked;
    if (session_.promptsSuppressed && key != kNoMatch) {
      checked = SelectionContains(TextOf(field.value), session_.KeyTextForPage(scan_, key, kDescription));
    }
    WriteButton("<input type=\"checkbox\" ", field, checked);
  }

  void WriteButton(std::string_view start, const FormField& field, bool checked) {
    out_ += start;
    if (checked) out_ += "checked ";
    Attribute("class", field.className);
    Attribute("name", field.name);
    Attribute("value", field.value);
    out_ += ">\n";
    if (checked) Collect(TextOf(field.name), TextOf(field.value), PairRule::kReplaces);
  }

  // Text fields are written up to their name, then matched (and prompted), then
  // given their value. Returns whether the field has a name.
  bool WriteUpToName(std::string_view start, const FormField& field) {
    out_ += start;
    Numbers(field);
    Attribute("class", field.className);
    const std::string name = TextOf(field.name);
    Attribute("name", name);
    return !name.empty();
  }

  void WriteText(FormField& field) {
    const bool named = WriteUpToName("<input type=\"text\" ", field);
    // Without a name the field is written without a value: nothing to ask for.
    const std::string value = named ? FilledText(field, kPromptText) : TextOf(field.value);
    if (named) out_.append("value=\"").append(value).append("\" ");
    out_ += ">\n";
    Collect(TextOf(field.name), value, PairRule::kReplaces);
  }

  void WriteTextarea(FormField& field) {
    WriteUpToName("<textarea ", field);
    const std::string content = FilledText(field, kPromptTextarea);
    out_.append(">").append(content).append("</textarea>\n");
    Collect(TextOf(field.name), content, PairRule::kReplaces);
  }

  // The page's own value unless the current key has a Description and a key or
  // the prompt answers the field. A key picked in the prompt gives its
  // Description as it stands; a matched key's loses its CRs. A UTF-8 page gets
  // the Description in UTF-8.
  std::string FilledText(FormField& field, PromptKind kind) {
    std::string own = TextOf(field.value);
    if (!session_.CurrentKeyHasDescription()) return own;
    const std::uint32_t key = session_.FindKey(field.name);
    if (session_.MayPrompt() && PromptsTextField(session_.options, kind, session_.promptAll, key != kNoMatch)) {
      const PromptAnswer answer = session_.Ask(scan_, Request(kind, key));
      if (answer.result == 1 && KeyInTable(keys_, answer.key)) {
        return session_.KeyTextForPage(scan_, answer.key, kDescription);
      }
    }
    if (key != kNoMatch) return WithoutCarriageReturns(session_.KeyTextForPage(scan_, key, kDescription));
    return own;
  }

  // When the prompt picks an option or the key's Selection lists one, that one
  // alone is selected, also in a multiple list: the one picked in the prompt,
  // else the first listed. Otherwise the page's own `selected` marks stay.
  void WriteSelect(const FormField& field) {
    std::vector<SelectOption> beyondLimit;  // the page had more selects than are kept
    std::vector<SelectOption>& options =
        field.selectIndex >= 0 && field.selectIndex < static_cast<int>(scan_.selects.size())
            ? scan_.selects[field.selectIndex]
            : beyondLimit;
    const std::uint32_t matched = session_.FindKey(field.name);
    std::uint32_t key = matched;
    int selected = -1;
    const auto optionListed = [&] { return FirstListedOption(options, matched) >= 0; };
    if (session_.MayPrompt() &&
        PromptsSelect(session_.options, session_.promptAll, matched != kNoMatch, optionListed)) {
      PromptRequest request = Request(kPromptSelect, matched);
      request.selectIndex = field.selectIndex;
      const PromptAnswer answer = session_.Ask(scan_, request);
      if (answer.result == 1) {
        if (answer.valueIndex >= 0 && answer.valueIndex < static_cast<int>(options.size())) {
          selected = answer.valueIndex;
        }
        if (KeyInTable(keys_, answer.key)) key = answer.key;
      }
    }
    if (selected < 0) selected = FirstListedOption(options, key);
    std::vector<bool> marked(options.size(), false);
    if (selected >= 0) {
      marked[selected] = true;
    } else {
      marked = PageSelection(options, field.multiple);
    }

    out_ += "<select ";
    if (field.multiple) out_ += "multiple ";
    Attribute("name", field.name);
    Number("size", field.size);
    out_ += ">\n";
    std::optional<std::string> selectedValue;  // of the first selected option
    for (std::size_t i = 0; i < options.size(); ++i) {
      const bool isSelected = marked[i];
      const std::string tag = TextOf(options[i].tag);
      const std::string text = TextOf(options[i].text);
      std::string value;
      if (tag.empty()) {
        out_ += isSelected ? "<option selected>" : "<option>";
      } else {
        const std::string rebuilt = RebuildOptionTag(tag);
        out_.append("<").append(rebuilt).append(isSelected ? "selected>" : ">");
        value = OptionPairValue(rebuilt);
      }
      if (isSelected && !selectedValue) selectedValue = std::move(value);
      out_.append(text).append("</option>\n");
    }
    out_ += "</select>\n";
    if (selectedValue) Collect(TextOf(field.name), *selectedValue, PairRule::kKeepsFirst);
  }

  int FirstListedOption(const std::vector<SelectOption>& options, std::uint32_t key) const {
    if (key == kNoMatch) return -1;
    const std::string selection = session_.KeyTextForPage(scan_, key, kSelection);
    for (std::size_t i = 0; i < options.size(); ++i) {
      if (SelectionContains(TextOf(options[i].text), selection)) return static_cast<int>(i);
    }
    return -1;
  }

  // The options the page marks `selected`; in a single-choice list only the
  // last of them, the one a browser shows.
  static std::vector<bool> PageSelection(const std::vector<SelectOption>& options, bool multiple) {
    std::vector<bool> marked(options.size(), false);
    for (std::size_t i = 0; i < options.size(); ++i) {
      if (!OptionTagSelected(TextOf(options[i].tag))) continue;
      if (!multiple) marked.assign(options.size(), false);
      marked[i] = true;
    }
    return marked;
  }

  PromptRequest Request(PromptKind kind, std::uint32_t matchedKey) const {
    PromptRequest request;
    request.kind = kind;
    request.form = form_;
    request.slot = slot_;
    request.matchedKey = matchedKey;
    return request;
  }

  void Collect(const std::string& name, const std::string& value, PairRule rule) {
    if (collect_ && !name.empty()) AddRequestPair(session_.requestText, name, value, rule);
  }

  void Attribute(std::string_view name, TextBlock value) { Attribute(name, TextOf(value)); }
  void Attribute(std::string_view name, const std::string& value) {
    if (!value.empty()) out_.append(name).append("=\"").append(value).append("\" ");
  }

  void Number(std::string_view name, std::int32_t value) {
    if (value > 0) out_.append(name).append("=\"").append(std::to_string(value)).append("\" ");
  }

  void Numbers(const FormField& field) {
    Number("size", field.size);
    Number("rows", field.rows);
    Number("cols", field.cols);
    Number("maxlenght", field.maxlength);  // spelled so in every filled page
  }

  void Copy(ScanPosition from, ScanPosition to) {
    if (to > page_.size()) to = page_.size();
    if (from < to) out_.append(page_.substr(from, to - from));
  }

  FormScan& scan_;
  ScanSession& session_;
  KeyTable& keys_;
  const std::string_view page_;
  std::string out_;
  int form_ = 0;
  int slot_ = 0;
  bool collect_ = false;
  std::vector<bool> radioChecked_;  // per slot of the form being written
  std::set<std::string> decidedGroups_;  // radio names a key or the prompt answers
};

}  // namespace

std::string RebuildOptionTag(std::string_view tag) {
  std::string rebuilt;
  ForEachOptionWord(tag, [&](std::string_view word) {
    if (!IsSelectedWord(word)) rebuilt.append(word).append(" ");
    return false;
  });
  return rebuilt;
}

bool OptionTagSelected(std::string_view tag) { return ForEachOptionWord(tag, IsSelectedWord); }

std::string FilledPage(FormScan& scan, ScanSession& session) { return PageWriter(scan, session).Run(); }

bool WriteFilledPage(const std::string& path, FormScan& scan, ScanSession& session) {
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (!file) {
    TellUser(kCantCreatePageText);
    return false;
  }
  const std::string page = FilledPage(scan, session);
  const bool written = std::fwrite(page.data(), 1, page.size(), file) == page.size();
  if (std::fclose(file) != 0 || !written) {
    TellUser(std::string(kCantWritePageText) + path);
    return false;
  }
  return true;
}

}  // namespace qb
