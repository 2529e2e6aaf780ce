#include "base/user_message.h"

namespace qb {
namespace {

std::vector<UserMessage>& Recorded() {
  static std::vector<UserMessage> recorded;
  return recorded;
}

// Keeps at most this many unread messages, so a tool that never reads them stays small.
constexpr std::size_t kMaxRecorded = 1000;

void Record(const UserMessage& m) {
  if (Recorded().size() < kMaxRecorded) Recorded().push_back(m);
}

UserMessageSink g_sink = Record;

}  // namespace

void TellUser(std::string_view text, const char* caption, MessageIcon icon) {
  g_sink(UserMessage{std::string(text), caption ? caption : "", icon});
}

void SetUserMessageSink(UserMessageSink sink) { g_sink = sink ? sink : Record; }

std::vector<UserMessage> TakeUserMessages() {
  std::vector<UserMessage> out;
  out.swap(Recorded());
  return out;
}

}  // namespace qb
