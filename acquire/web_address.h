// Web addresses as the system's HTTP stack needs them: scheme, host, port and
// request target, redirects resolved against the address that gave them, and the
// texts that tell the user why a secure download stopped. Platform-free: addresses
// and answer heads come from other programs and from servers.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qb {

// Redirects followed for one page before the download gives up.
constexpr int kMaxRedirectHops = 5;
// Longest answer head searched for a redirect in a plain HTTP answer.
constexpr std::size_t kAnswerHeadMax = 16 * 1024;
constexpr std::uint16_t kHttpsPort = 443;

struct WebAddress {
  bool secure = false;
  std::string host;
  std::uint16_t port = 0;
  std::string target = "/";  // path and query, fragment dropped
};

// An "http://" or "https://" address (any case), or one that starts with "www."
// (plain HTTP). Nothing for anything else, a missing host or a bad port.
std::optional<WebAddress> ParseWebAddress(std::string_view text);

// The address written out again; the port only when it is not the scheme's own.
std::string FormatWebAddress(const WebAddress& address);

// "https://host:port": what a relative form action of a page from `address` is
// resolved against. The port only when it is not the scheme's own.
std::string WebOrigin(const WebAddress& address);

// Where a Location header sends a request made to `from`: an absolute address, one
// without a scheme ("//host/x"), a path from the root, or a path or query relative
// to the current one.
std::optional<WebAddress> ResolveLocation(const WebAddress& from, std::string_view location);

// The Location of a plain HTTP answer head that redirects (301, 302, 303, 307, 308);
// nothing for any other answer. `head` may hold CR CR LF line ends (text mode).
std::optional<std::string> RedirectLocation(std::string_view head);

enum class CertificateProblem { kUnknownAuthority, kNameMismatch, kExpired, kRevoked, kOther };

// The stop messages of a secure download.
std::string CertificateFailureText(std::string_view host, CertificateProblem problem);
std::string TooManyRedirectsText(std::string_view address);
std::string InsecureRedirectText(std::string_view from, std::string_view to);

}  // namespace qb
