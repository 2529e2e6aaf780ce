// When a scan stops to ask about a field, per field kind: the two option arrays
// of the settings file (five ask values, then five add-keys values) and the rules
// by which a scan reads them. Platform-free: the scan gets a copy of the options.
#pragma once

#include <array>
#include <cstdint>
#include <functional>

#include "base/settings.h"

namespace qb {

// The index into both arrays, and the kind of prompt the no-match dialog shows.
enum PromptKind : int {
  kPromptRadio = 0,
  kPromptCheckbox = 1,
  kPromptSelect = 2,  // combo and select list boxes
  kPromptText = 3,    // one-line text fields
  kPromptTextarea = 4,
};
static_assert(kPromptTextarea + 1 == static_cast<int>(kScanKindCount), "one value per prompt kind");

enum AskChoice : std::uint32_t { kAskNever = 0, kAskAllways = 1, kAskUnMatched = 2 };
enum AddKeysChoice : std::uint32_t { kAddKeysNever = 0, kAddKeysUnMatched = 1 };

struct ScanOptions {
  std::array<std::uint32_t, kScanKindCount> askForSelect{};  // AskChoice
  std::array<std::uint32_t, kScanKindCount> addKeys{};       // AddKeysChoice
};

ScanOptions ScanOptionsOf(const AppSettings& settings);
void StoreScanOptions(const ScanOptions& options, AppSettings& settings);

// A value the dialog could not have stored (a damaged settings file) reads as
// the dialog would store it back: an ask value above 2 as UnMatched, any
// non-zero add-keys value as UnMatched.
AskChoice AskFor(const ScanOptions& options, PromptKind kind);
bool AddKeysFor(const ScanOptions& options, PromptKind kind);

// One-line text and text areas: a prompt-all scan, Allways, or UnMatched with no key.
bool PromptsTextField(const ScanOptions& options, PromptKind kind, bool promptAll, bool keyMatched);

// Selects: never with Never, not even in a prompt-all scan. Otherwise when no key
// matched, in a prompt-all scan, or with Allways; with UnMatched and a matched key
// only when none of the options is in the key's Selection. `optionListed` is asked
// only in that last case (the look-up upper-cases the option texts).
bool PromptsSelect(const ScanOptions& options, bool promptAll, bool keyMatched,
                   const std::function<bool()>& optionListed);

// Radio groups are checked (and an unmatched group prompted) unless the option is
// Never in an ordinary scan; Allways behaves like UnMatched.
bool ChecksRadioGroups(const ScanOptions& options, bool promptAll);

// Check boxes: with Never in an ordinary scan every box is written unchecked;
// otherwise every named box is prompted.
bool PromptsCheckboxes(const ScanOptions& options, bool promptAll);

}  // namespace qb
