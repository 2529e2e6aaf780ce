#include "tools/fill_report.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <sstream>
#include <unordered_map>

#include "scan/form_parser.h"

namespace qb {
namespace {

constexpr char kLabelAttribute[] = "data-manual-scoring";
constexpr std::string_view kLabelSeparator = " OR ";
// The report's page address: relative form actions only need some host.
constexpr char kReportHost[] = "report.example";

// Inputs that never carry an answer of the user's: the walk over the whole page
// leaves them out (some pages hold thousands of hidden ones).
constexpr std::string_view kNoAnswerTypes[] = {"hidden", "submit", "button", "image", "reset", "file"};

bool IsFillable(std::uint8_t kind) {
  return kind == kFieldRadio || kind == kFieldText || kind == kFieldCheckbox || kind == kFieldSelect ||
         kind == kFieldTextarea;
}

// The name and type of the field tag whose '<' is at `tagStart`, read word by
// word as the parser reads a field's attributes.
ReportField ReadFieldTag(const ScanDocument& document, ScanPosition tagStart, std::string_view tagName) {
  ReportField field;
  if (!EqualsNoCase(tagName, "input")) field.type = EqualsNoCase(tagName, "select") ? "select" : "textarea";
  ScanPosition pos = tagStart + 1;
  WordBuffer word, value;
  ReadWord(document, word, pos);
  while (pos < document.length()) {
    int result = ReadWord(document, word, pos);
    std::string* target = nullptr;
    if (EqualsNoCase(word, "name")) target = &field.name;
    if (EqualsNoCase(word, "type") && field.type.empty()) target = &field.type;
    if (target && result == kWordRead) {
      result = ReadWord(document, value, pos);
      *target = value;
    }
    if (result != kWordRead) break;
  }
  return field;
}

// An attribute of the tag at `tagStart` as the page writes it, quotes and line
// breaks honoured: the name a browser submits, and so the name a key should list.
std::string WrittenAttribute(std::string_view bytes, ScanPosition tagStart, std::string_view wanted) {
  const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
  const auto space = [&](char c) { return blank(c) || c == '/'; };  // between attributes
  std::size_t pos = tagStart + 1;
  while (pos < bytes.size() && !space(bytes[pos]) && bytes[pos] != '>') ++pos;  // the tag name
  while (pos < bytes.size()) {
    while (pos < bytes.size() && space(bytes[pos])) ++pos;
    if (pos >= bytes.size() || bytes[pos] == '>') break;
    const std::size_t start = pos;
    while (pos < bytes.size() && !space(bytes[pos]) && bytes[pos] != '=' && bytes[pos] != '>') ++pos;
    const std::string_view attribute = bytes.substr(start, pos - start);
    while (pos < bytes.size() && space(bytes[pos])) ++pos;
    if (pos >= bytes.size() || bytes[pos] != '=') continue;
    ++pos;
    while (pos < bytes.size() && space(bytes[pos])) ++pos;
    std::size_t valueStart = pos, valueEnd;
    if (pos < bytes.size() && (bytes[pos] == '"' || bytes[pos] == '\'')) {
      const std::size_t close = bytes.find(bytes[pos], pos + 1);
      valueStart = pos + 1;
      valueEnd = close == std::string_view::npos ? bytes.size() : close;
      pos = valueEnd + 1;
    } else {
      while (pos < bytes.size() && !blank(bytes[pos]) && bytes[pos] != '>') ++pos;
      valueEnd = pos;
    }
    if (EqualsNoCase(attribute, wanted)) return std::string(bytes.substr(valueStart, valueEnd - valueStart));
  }
  return std::string();
}

std::uint32_t MatchKey(const KeyTable& keys, const std::string& name) { return FindKeyBySearchName(keys, name); }

std::vector<std::string> LabelParts(const std::string& label) {
  std::vector<std::string> parts;
  std::size_t at = 0;
  while (true) {
    const std::size_t end = label.find(kLabelSeparator, at);
    parts.push_back(label.substr(at, end == std::string::npos ? std::string::npos : end - at));
    if (end == std::string::npos) return parts;
    at = end + kLabelSeparator.size();
  }
}

bool Names(const std::map<std::string, std::vector<std::string>>& table, const std::string& row,
           const std::string& keyName) {
  const auto names = table.find(row);
  if (names == table.end()) return false;
  return std::any_of(names->second.begin(), names->second.end(),
                     [&](const std::string& name) { return CompareNoCase(name, keyName) == 0; });
}

}  // namespace

ReportPageStatus ReadReportPage(const std::string& path, const KeyTable& keys, ReportPage& page) {
  page = ReportPage();
  FormScan scan;
  switch (LoadScanDocument(path, scan.document)) {
    case DocumentLoadStatus::kLoaded: break;
    case DocumentLoadStatus::kCannotOpen: return ReportPageStatus::kUnreadable;
    case DocumentLoadStatus::kOutOfMemory: return ReportPageStatus::kOutOfMemory;
  }
  ParseFormPage(scan, kReportHost);
  if (scan.outOfMemory) return ReportPageStatus::kOutOfMemory;

  // The fields a scan fills, by the offset of their tags, with the names the parser read.
  std::unordered_map<ScanPosition, std::pair<int, std::string>> scanned;
  for (std::size_t f = 0; f < scan.forms.size(); ++f) {
    page.formActions.push_back(TextOf(scan.forms[f].action));
    for (const FormField& field : scan.forms[f].fields) {
      if (IsFillable(field.kind)) scanned[field.tagStart] = {static_cast<int>(f) + 1, TextOf(field.name)};
    }
  }

  const ScanDocument& document = scan.document;
  const char* bytes = document.data();
  WordBuffer tagName;
  for (ScanPosition at = 0; at < document.length(); ++at) {
    const void* open = std::memchr(bytes + at, '<', document.length() - at);
    if (!open) break;
    at = static_cast<const char*>(open) - bytes;
    ScanPosition pos = at + 1;
    ReadWord(document, tagName, pos);
    if (!EqualsNoCase(tagName, "input") && !EqualsNoCase(tagName, "select") &&
        !EqualsNoCase(tagName, "textarea")) {
      continue;
    }
    ReportField field = ReadFieldTag(document, at, tagName);
    if (std::any_of(std::begin(kNoAnswerTypes), std::end(kNoAnswerTypes),
                    [&](std::string_view type) { return EqualsNoCase(field.type, type); })) {
      continue;
    }
    const auto kept = scanned.find(at);
    if (kept != scanned.end()) {
      field.form = kept->second.first;
      field.name = kept->second.second;
    }
    field.writtenName = WrittenAttribute(document.bytes(), at, "name");
    field.label = WrittenAttribute(document.bytes(), at, kLabelAttribute);
    if (field.name.empty() && field.writtenName.empty()) continue;
    field.key = MatchKey(keys, field.name);
    field.writtenKey = MatchKey(keys, field.writtenName);
    page.fields.push_back(std::move(field));
  }
  return ReportPageStatus::kRead;
}

std::vector<std::string> ReportPageNames(const std::string& folder) {
  std::vector<std::string> names;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
    const std::string ending = entry.path().extension().string();
    if (entry.is_regular_file(error) && (EqualsNoCase(ending, ".htm") || EqualsNoCase(ending, ".html"))) {
      names.push_back(entry.path().filename().string());
    }
  }
  std::sort(names.begin(), names.end());
  return names;
}

bool ParseLabelKinds(std::string_view text, LabelKinds& kinds, std::string& error) {
  kinds = LabelKinds();
  std::istringstream lines{std::string(text)};
  std::string line;
  for (int number = 1; std::getline(lines, line); ++number) {
    line.erase(std::find(line.begin(), line.end(), '#'), line.end());
    std::istringstream words(line);
    std::string rule, label, keyName;
    if (!(words >> rule)) continue;
    words >> label >> std::ws;
    std::getline(words, keyName);
    while (!keyName.empty() && (keyName.back() == ' ' || keyName.back() == '\r')) keyName.pop_back();
    // relabel and allow name a page's field: LABEL is the page, the rest the field and more.
    std::istringstream rest(keyName);
    std::string field, more;
    const bool fieldRule = rest >> field >> std::ws && std::getline(rest, more);
    if (rule == "relabel" && fieldRule && more.find(' ') == std::string::npos) {
      kinds.relabelled[label + '\n' + field] = more;
    } else if (rule == "allow" && fieldRule) {
      kinds.allowed[label + '\n' + field].push_back(more);
    } else if (rule == "guard" && !label.empty() && keyName.empty()) {
      kinds.guarded.push_back(label);
    } else if (rule == "want" && !keyName.empty()) {
      kinds.wanted[label].push_back(keyName);
    } else {
      error = "line " + std::to_string(number) +
              ": expected want LABEL KEY, guard PREFIX, relabel PAGE FIELD LABEL or allow PAGE FIELD KEY";
      return false;
    }
  }
  return true;
}

std::string KeyName(const KeyTable& keys, std::uint32_t key) {
  return KeyInTable(keys, key) ? KeyFieldText(keys, static_cast<int>(key), kName) : std::string();
}

void TallyLabels(const LabelKinds& kinds, const KeyTable& keys, const std::string& pageName,
                 const ReportPage& page, LabelTally& tally) {
  for (ReportField field : page.fields) {
    const std::string pageField = pageName + '\n' + field.writtenName;
    const auto relabel = kinds.relabelled.find(pageField);
    if (relabel != kinds.relabelled.end()) field.label = relabel->second;
    if (field.label.empty()) continue;
    const std::vector<std::string> parts = LabelParts(field.label);
    const auto right = [&](std::uint32_t key) {
      const std::string keyName = KeyName(keys, key);
      return key != kNoMatch && (Names(kinds.allowed, pageField, keyName) ||
                                 std::any_of(parts.begin(), parts.end(), [&](const std::string& p) {
                                   return Names(kinds.wanted, p, keyName);
                                 }));
    };
    const bool guarded = std::any_of(parts.begin(), parts.end(), [&](const std::string& p) {
      return std::any_of(kinds.guarded.begin(), kinds.guarded.end(),
                         [&](const std::string& prefix) { return p.rfind(prefix, 0) == 0; });
    });
    // The name a scan reads and the name the page writes: neither may get a wrong key.
    const bool wanted = kinds.wanted.count(field.label) != 0;
    std::vector<std::pair<std::string, std::uint32_t>> lookups{{field.name, field.key}};
    if (field.writtenName != field.name) lookups.emplace_back(field.writtenName, field.writtenKey);
    for (const auto& [name, key] : lookups) {
      if (key == kNoMatch) continue;
      const LabelledFill fill{pageName, field, name, KeyName(keys, key)};
      if (!right(key)) {
        tally.wrong.push_back(fill);
        tally.guardedFills += guarded;
      } else if (!wanted) {
        tally.acceptedFills.push_back(fill);
      }
    }
    if (!wanted || field.writtenName.empty()) continue;  // a field without a name is never sent
    const bool answered = right(field.writtenKey);
    for (KindCount* count : {&tally.kinds[field.label], &tally.total}) {
      ++count->wanted;
      count->answered += answered;
      count->misread += field.name != field.writtenName;
      count->scannedWanted += field.form > 0;
      count->scannedAnswered += field.form > 0 && right(field.key);
    }
    if (!answered) tally.unanswered.push_back({pageName, field, field.writtenName, ""});
  }
}

}  // namespace qb
