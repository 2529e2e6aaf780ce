// Telling the user something from platform-free code (a bad database file, an
// exhausted heap). The product shows a message box owned by the dialog at work
// (else the main window); the native build and the tools keep the messages for
// whoever asks.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qb {

enum class MessageIcon { kNone, kInformation, kWarning, kError, kQuestion };

struct UserMessage {
  std::string text;
  std::string caption;  // empty: the system's default caption
  MessageIcon icon = MessageIcon::kNone;
};

using UserMessageSink = void (*)(const UserMessage& message);

// Shows (or records) `text`. `caption` null means no caption of the program's own.
void TellUser(std::string_view text, const char* caption = nullptr,
              MessageIcon icon = MessageIcon::kNone);

// Replaces where messages go; null restores the recording default.
void SetUserMessageSink(UserMessageSink sink);
// Product only: messages become message boxes, owned as ShowMessage's are.
void UseMessageBoxes();

// Messages recorded by the default sink since the last call, oldest first.
std::vector<UserMessage> TakeUserMessages();

}  // namespace qb
