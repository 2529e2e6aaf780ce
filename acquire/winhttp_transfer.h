// A page download through the system's own HTTP stack (winhttp.dll): HTTPS with
// the system's certificate store and proxy settings, chunked answers, and the
// redirects the page's server answers with, followed here one hop at a time so
// that each can be counted and checked. Run it on a worker thread: every wait is
// bounded so that a cancel or a stalled server is noticed within a fraction of a
// second.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "acquire/transport.h"
#include "acquire/web_address.h"

namespace qb {

enum class WebEnd {
  kCompleted,
  kFailed,            // the connection or the server failed
  kCancelled,
  kStalled,
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

// Downloads `start`, reporting to `link` as a transport does; a redirect followed
// is reported by Redirected. `hopsBefore` counts redirects already followed on the
// way to it (a plain HTTP answer's); at most kMaxRedirectHops are followed in all.
// A hop that goes without progress for `stallMilliseconds` ends as kStalled.
WebOutcome FetchWithWinHttp(const WebAddress& start, int hopsBefore, TransferLink& link,
                            std::uint32_t stallMilliseconds);

// The transport of a page download. An "https://" `address` goes through WinHTTP
// from the start. Any other goes through the Winsock client with its exact
// `request` to `host`; when the answer is a redirect, its body is dropped and the
// redirect is followed through WinHTTP. A stop the user must read about reaches
// the link's Refused.
std::unique_ptr<Transport> MakePageTransport(std::string address, std::string host, std::string request);

}  // namespace qb
