#include "scan/scan_session.h"

#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

#include "base/textblock.h"
#include "scan/html_scanner.h"
#include "scan/page_encoding.h"

namespace qb {
namespace {

bool AnyValueListed(const std::vector<std::string>& values, std::string_view selection) {
  for (const std::string& value : values) {
    if (SelectionContains(value, selection)) return true;
  }
  return false;
}

}  // namespace

bool ScanSession::CurrentKeyHasDescription() const {
  return currentKey >= 0 && currentKey < KeysInUse(keys) &&
         !LockKeyField(keys, currentKey, kDescription).text().empty();
}

std::uint32_t ScanSession::FindKey(TextBlock fieldName) {
  const TextLock name(fieldName);
  if (!searchNamesCurrent_) {
    searchNames_.Build(keys);
    searchNamesCurrent_ = true;
  }
  return searchNames_.Find(name.text());
}

std::string ScanSession::KeyTextForPage(const FormScan& scan, std::uint32_t key, KeyField field) const {
  const TextLock text = LockKeyField(keys, static_cast<int>(key), field);
  return scan.utf8 ? AnsiToUtf8(text.text()) : std::string(text.text());
}

PromptAnswer ScanSession::Ask(const FormScan& scan, const PromptRequest& request) {
  searchNamesCurrent_ = false;
  const PromptAnswer answer = prompt->Ask(scan, request);
  if (answer.cancelAll) promptsSuppressed = true;
  if (answer.result == 1 && KeyInTable(keys, answer.key)) {
    currentKey = static_cast<int>(answer.key);
  }
  return answer;
}

void CheckRadioGroups(FormScan& scan, ScanSession& session) {
  if (!ChecksRadioGroups(session.options, session.promptAll)) return;
  for (std::size_t f = 0; f < scan.forms.size(); ++f) {
    std::vector<FormField>& fields = scan.forms[f].fields;
    for (std::size_t s = 0; s < fields.size(); ++s) {
      if (!session.MayPrompt()) return;
      if (fields[s].kind != kFieldRadio) continue;
      const std::string name = TextOf(fields[s].name);
      if (name.empty()) continue;
      std::vector<std::string> values{TextOf(fields[s].value)};
      std::size_t last = s;
      while (last + 1 < fields.size() && fields[last + 1].kind == kFieldRadio &&
             EqualsNoCase(TextOf(fields[last + 1].name), name)) {
        values.push_back(TextOf(fields[++last].value));
      }
      const std::uint32_t key = session.FindKey(fields[s].name);
      if (key != kNoMatch && AnyValueListed(values, session.KeyTextForPage(scan, key, kSelection))) {
        continue;
      }
      PromptRequest request;
      request.kind = kPromptRadio;
      request.form = static_cast<int>(f);
      request.slot = static_cast<int>(s);
      request.matchedKey = key;
      request.radioValues = std::move(values);
      const PromptAnswer answer = session.Ask(scan, request);
      if (answer.result == 1 && answer.valueIndex >= 0 &&
          s + static_cast<std::size_t>(answer.valueIndex) <= last) {
        fields[s + answer.valueIndex].forcedChecked = true;
      }
    }
  }
}

}  // namespace qb
