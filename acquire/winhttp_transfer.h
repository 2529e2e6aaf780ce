// A page download through the system's own HTTP stack (winhttp.dll): HTTPS with
// the system's certificate store and proxy settings, chunked answers, and the
// redirects the page's server answers with, followed here one hop at a time so
// that each can be counted and checked. Run it on a worker thread: every wait is
// bounded so that a cancel or a stalled server is noticed within a fraction of a
// second.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "acquire/web_address.h"

namespace qb {

// How long one wait lasts before the transfer looks at its cancel flag again.
constexpr std::uint32_t kWebPollMilliseconds = 100;

// The steps of one hop, reported in this order.
enum class WebStep { kResolved, kConnected, kSent };

// The owner's side, called on the thread that runs the transfer.
class WebLink {
 public:
  virtual bool Cancelled() const = 0;
  virtual void Reached(WebStep step) = 0;
  // A redirect is followed to `address`; the next hop's steps come after it.
  virtual void Redirected(const std::string& address) = 0;
  // The final answer as it arrives: first its status line and headers (CR LF
  // ended, with the blank line), then the body. False stops the transfer.
  virtual bool Received(std::string_view bytes) = 0;

 protected:
  ~WebLink() = default;
};

struct WebLimits {
  std::uint32_t stallMilliseconds = 0;  // without any progress
  std::uint32_t maxBytes = 0;           // head and body together
};

enum class WebEnd {
  kCompleted,
  kFailed,            // the connection or the server failed
  kCancelled,
  kStalled,
  kTooLarge,          // nothing past maxBytes was handed on
  kStopped,           // Received returned false
  kTooManyRedirects,
  kInsecureRedirect,  // a secure page sent the download to plain HTTP
  kCertificate,       // nothing was sent
};

struct WebOutcome {
  WebEnd end = WebEnd::kFailed;
  // What to tell the user for the three last ends.
  std::string message;
  // The address the answer finally came from.
  WebAddress address;
};

// Downloads `start`. `hopsBefore` counts redirects already followed on the way to
// it (a plain HTTP answer's); at most kMaxRedirectHops are followed in all.
WebOutcome FetchWithWinHttp(const WebAddress& start, int hopsBefore, WebLink& link, const WebLimits& limits);

}  // namespace qb
