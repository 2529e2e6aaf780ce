#include "scan/scan_options.h"

namespace qb {

ScanOptions ScanOptionsOf(const AppSettings& settings) {
  return ScanOptions{settings.askForSelect, settings.addKeys};
}

void StoreScanOptions(const ScanOptions& options, AppSettings& settings) {
  settings.askForSelect = options.askForSelect;
  settings.addKeys = options.addKeys;
}

AskChoice AskFor(const ScanOptions& options, PromptKind kind) {
  const std::uint32_t value = options.askForSelect.at(kind);
  return value <= kAskUnMatched ? static_cast<AskChoice>(value) : kAskUnMatched;
}

bool AddKeysFor(const ScanOptions& options, PromptKind kind) {
  return options.addKeys.at(kind) != kAddKeysNever;
}

bool PromptsTextField(const ScanOptions& options, PromptKind kind, bool promptAll, bool keyMatched) {
  const AskChoice ask = AskFor(options, kind);
  return promptAll || ask == kAskAllways || (ask == kAskUnMatched && !keyMatched);
}

bool PromptsSelect(const ScanOptions& options, bool promptAll, bool keyMatched,
                   const std::function<bool()>& optionListed) {
  const AskChoice ask = AskFor(options, kPromptSelect);
  if (ask == kAskNever) return false;
  if (!keyMatched || promptAll || ask == kAskAllways) return true;
  return !optionListed();
}

bool ChecksRadioGroups(const ScanOptions& options, bool promptAll) {
  return promptAll || AskFor(options, kPromptRadio) != kAskNever;
}

bool PromptsCheckboxes(const ScanOptions& options, bool promptAll) {
  return promptAll || AskFor(options, kPromptCheckbox) != kAskNever;
}

}  // namespace qb
