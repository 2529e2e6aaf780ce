// The options dialog "IDD_OPTIONS" (command 50008) and the one option it edits that
// lives only for the run.
#pragma once

#include <windows.h>

#include <cstdint>

#include "acquire/browser.h"

namespace qb {

constexpr DWORD kOptionsHelpContext = 1208;

}  // namespace qb
