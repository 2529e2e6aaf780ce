#include <windows.h>

#include "base/app_state.h"
#include "base/user_message.h"

namespace qb {
namespace {

UINT IconFlags(MessageIcon icon) {
  switch (icon) {
    case MessageIcon::kInformation: return MB_ICONINFORMATION;
    case MessageIcon::kWarning: return MB_ICONWARNING;
    case MessageIcon::kError: return MB_ICONERROR;
    case MessageIcon::kQuestion: return MB_ICONQUESTION;
    default: return 0;
  }
}

void ShowBox(const UserMessage& m) {
  MessageBoxA(MessageOwner(), m.text.c_str(), m.caption.empty() ? nullptr : m.caption.c_str(),
              MB_OK | IconFlags(m.icon));
}

}  // namespace

void UseMessageBoxes() { SetUserMessageSink(ShowBox); }

}  // namespace qb
