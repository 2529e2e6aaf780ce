// The whole fill over any page and any key texts: matching, the radio-group
// check, the filled page and the request text end, and stay within their limits;
// the page's encoding is found, the filled page declares it, and matching leaves
// the page's names and values as they were.
// Input: the texts of three keys' Search Names, Selection and Description,
// separated by 0x01 bytes, then a 0x02 byte and the page.
#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "acquire/http_request.h"
#include "base/user_message.h"
#include "scan/page_writer.h"

namespace {

// Prompts with the first key and the first value, and learns the field name.
class LearningPrompt : public qb::NoMatchPrompt {
 public:
  qb::PromptAnswer Ask(const qb::FormScan& scan, const qb::PromptRequest& request) override {
    const std::string name = qb::TextOf(scan.forms.at(request.form).fields.at(request.slot).name);
    const std::string value = request.radioValues.empty() ? "" : request.radioValues.front();
    qb::LearnSearchName(qb::Keys(), name, 0, value, !value.empty());
    if (++asked_ % 3 == 0) qb::ForgetSearchName(qb::Keys(), name, 0, value, true);
    return {1, 0, 0, asked_ > 20};
  }

 private:
  int asked_ = 0;
};

void Fill(std::string_view page, bool directPost, bool prompt) {
  qb::FormScan scan;
  if (!scan.document.Assign(page)) return;
  qb::ScanOptions options;
  options.askForSelect.fill(prompt ? qb::kAskUnMatched : qb::kAskNever);
  qb::ScanSession session(qb::Keys(), options, prompt, directPost);
  LearningPrompt learning;
  if (prompt) session.prompt = &learning;
  session.currentKey = 0;
  session.host = "fuzz.example";
  qb::ParseFormPage(scan, session.host);
  std::vector<std::string> texts;
  for (const qb::HtmlForm& form : scan.forms) {
    for (const qb::FormField& field : form.fields) {
      texts.push_back(qb::TextOf(field.name) + '=' + qb::TextOf(field.value));
    }
  }
  qb::CheckRadioGroups(scan, session);
  const std::string filled = qb::FilledPage(scan, session);
  if (filled.size() < 14 || filled.compare(filled.size() - 14, 14, "</body></html>") != 0) std::abort();
  const std::size_t charset = filled.find("charset=");
  if (filled.compare(charset, 14, scan.utf8 ? "charset=utf-8\"" : "charset=iso-88") != 0) std::abort();
  if (session.requestText.size() > qb::kRequestTextMax) std::abort();
  // The scan's index answers as the walk over every key does.
  std::size_t text = 0;
  for (qb::HtmlForm& form : scan.forms) {
    for (qb::FormField& field : form.fields) {
      const std::string name = qb::TextOf(field.name);
      if (qb::FindKeyBySearchName(qb::Keys(), name) != session.FindKey(field.name)) std::abort();
      if (texts.at(text++) != name + '=' + qb::TextOf(field.value)) std::abort();
    }
  }
  if (directPost && !scan.forms.empty() && session.requestText.rfind("POST ", 0) != 0) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::size_t split = input.find('\x02');
  const std::string_view keyTexts = input.substr(0, split == std::string_view::npos ? 0 : split);
  const std::string_view page = split == std::string_view::npos ? input : input.substr(split + 1);

  qb::KeyTable& keys = qb::Keys();
  qb::ClearAllKeys(keys);
  keys.count = 3;
  std::size_t pos = 0;
  for (int i = 0; i < 3 * 3 && pos <= keyTexts.size(); ++i) {
    const std::size_t end = std::min(keyTexts.find('\x01', pos), keyTexts.size());
    const auto field = static_cast<qb::KeyField>(qb::kSearchNames + i % 3);
    keys.fields[field][i / 3] = qb::MakeTextBlock(keyTexts.substr(pos, end - pos));
    pos = end + 1;
  }
  Fill(page, true, false);
  Fill(page, false, true);
  qb::TakeUserMessages();
  return 0;
}
