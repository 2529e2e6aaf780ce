// Shared by the transfer tests: what the download dialog's status shows, and what
// a text written in text mode becomes.
#pragma once

#include <string>

namespace qb::test {

// The status lines once the request went out, and after a whole answer.
inline const std::string kSent = "Connecting........OK\r\nReciving........\r\n";
inline const std::string kDone = "Downloaded OK\nClosing connection.....";

// Each line feed written through a text-mode stream becomes CR LF.
inline std::string TextMode(const std::string& bytes) {
  std::string out;
  for (char c : bytes) out += c == '\n' ? std::string("\r\n") : std::string(1, c);
  return out;
}

}  // namespace qb::test
