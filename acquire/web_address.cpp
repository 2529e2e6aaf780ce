#include "acquire/web_address.h"

#include "acquire/no_case.h"

namespace qb {
namespace {

constexpr std::string_view kHttpScheme = "http://";
constexpr std::string_view kHttpsScheme = "https://";
constexpr std::string_view kWwwPrefix = "www.";
constexpr std::uint16_t kPlainPort = 80;
constexpr std::uint32_t kPortMax = 65535;

std::uint16_t DefaultPort(bool secure) { return secure ? kHttpsPort : kPlainPort; }

bool IsControlOrBlank(char c) { return static_cast<unsigned char>(c) <= 0x20 || c == 0x7f; }

// A host name, an IPv4 address or an IPv6 address in brackets; nothing that could
// end the host early or smuggle a port or user name in when written out again.
bool IsHostName(std::string_view host) {
  if (host.empty()) return false;
  if (host.front() == '[') {
    if (host.size() < 3 || host.back() != ']') return false;
    return host.substr(1, host.size() - 2).find_first_not_of("0123456789abcdefABCDEF:.") == std::string_view::npos;
  }
  for (char c : host)
    if (IsControlOrBlank(c) || std::string_view("\\@:[]<>\"^`{|}/?#").find(c) != std::string_view::npos) return false;
  return true;
}

// Blanks and control characters cannot stand in a request line: they travel
// percent-encoded, as a browser sends them.
std::string CleanTarget(std::string_view target) {
  constexpr char kHex[] = "0123456789ABCDEF";
  std::string clean;
  for (char c : target) {
    if (IsControlOrBlank(c)) {
      const auto byte = static_cast<unsigned char>(c);
      clean += '%';
      clean += kHex[byte >> 4];
      clean += kHex[byte & 0xf];
    } else {
      clean += c;
    }
  }
  return clean;
}

// The part of an address after its scheme: authority and target, fragment dropped.
std::optional<WebAddress> ParseAfterScheme(std::string_view rest, bool secure) {
  rest = rest.substr(0, rest.find('#'));
  const std::size_t targetStart = rest.find_first_of("/?");
  std::string_view authority = rest.substr(0, targetStart);
  WebAddress address;
  address.secure = secure;
  address.port = DefaultPort(secure);
  // User names before "@" are not sent anywhere.
  if (const std::size_t at = authority.rfind('@'); at != std::string_view::npos)
    authority.remove_prefix(at + 1);
  // A colon inside "[...]" belongs to an IPv6 address, not to the port.
  const std::size_t colon = authority.rfind(':');
  const std::size_t bracket = authority.rfind(']');
  if (colon != std::string_view::npos && (bracket == std::string_view::npos || colon > bracket)) {
    const std::string_view digits = authority.substr(colon + 1);
    authority = authority.substr(0, colon);
    if (!digits.empty()) {
      std::uint32_t port = 0;
      for (char c : digits) {
        if (c < '0' || c > '9') return std::nullopt;
        port = port * 10 + static_cast<std::uint32_t>(c - '0');
        if (port > kPortMax) return std::nullopt;
      }
      if (port == 0) return std::nullopt;
      address.port = static_cast<std::uint16_t>(port);
    }
  }
  if (!IsHostName(authority)) return std::nullopt;
  address.host = std::string(authority);
  if (targetStart != std::string_view::npos) {
    address.target = CleanTarget(rest.substr(targetStart));
    if (address.target[0] == '?') address.target.insert(0, "/");
  }
  return address;
}

// The lines of an answer head, CR (one or more) LF ended.
std::string_view NextLine(std::string_view& head) {
  const std::size_t lf = head.find('\n');
  std::string_view line = head.substr(0, lf);
  head = lf == std::string_view::npos ? std::string_view() : head.substr(lf + 1);
  while (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  return line;
}

std::string_view Trim(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  return text;
}

bool IsRedirectStatus(std::string_view statusLine) {
  // "HTTP/1.x NNN reason"
  if (!StartsWithNoCase(statusLine, "HTTP/")) return false;
  const std::size_t blank = statusLine.find(' ');
  if (blank == std::string_view::npos) return false;
  const std::string_view code = statusLine.substr(blank + 1, 3);
  for (std::string_view redirect : {"301", "302", "303", "307", "308"})
    if (code == redirect && (statusLine.size() == blank + 4 || statusLine[blank + 4] == ' ')) return true;
  return false;
}

}  // namespace

std::optional<WebAddress> ParseWebAddress(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  if (StartsWithNoCase(text, kHttpScheme)) return ParseAfterScheme(text.substr(kHttpScheme.size()), false);
  if (StartsWithNoCase(text, kHttpsScheme)) return ParseAfterScheme(text.substr(kHttpsScheme.size()), true);
  if (StartsWithNoCase(text, kWwwPrefix)) return ParseAfterScheme(text, false);
  return std::nullopt;
}

std::string WebOrigin(const WebAddress& address) {
  std::string origin(address.secure ? kHttpsScheme : kHttpScheme);
  origin += address.host;
  if (address.port != DefaultPort(address.secure)) origin += ":" + std::to_string(address.port);
  return origin;
}

std::string FormatWebAddress(const WebAddress& address) { return WebOrigin(address) + address.target; }

std::optional<WebAddress> ResolveLocation(const WebAddress& from, std::string_view location) {
  location = Trim(location);
  if (location.empty()) return std::nullopt;
  if (StartsWithNoCase(location, kHttpScheme) || StartsWithNoCase(location, kHttpsScheme))
    return ParseWebAddress(location);
  if (location.substr(0, 2) == "//")
    return ParseAfterScheme(location.substr(2), from.secure);
  WebAddress to = from;
  location = location.substr(0, location.find('#'));
  if (location.empty()) return to;
  if (location[0] == '/') {
    to.target = CleanTarget(location);
  } else if (location[0] == '?') {
    to.target = from.target.substr(0, from.target.find('?')) + CleanTarget(location);
  } else {
    const std::string_view path = std::string_view(from.target).substr(0, from.target.find('?'));
    to.target = std::string(path.substr(0, path.rfind('/') + 1)) + CleanTarget(location);
  }
  return to;
}

std::optional<std::string> RedirectLocation(std::string_view head) {
  head = head.substr(0, kAnswerHeadMax);
  if (!IsRedirectStatus(NextLine(head))) return std::nullopt;
  while (!head.empty()) {
    const std::string_view line = NextLine(head);
    if (line.empty()) break;  // end of the head
    const std::size_t colon = line.find(':');
    if (colon != std::string_view::npos && EqualNoCase(Trim(line.substr(0, colon)), "Location")) {
      const std::string_view value = Trim(line.substr(colon + 1));
      if (!value.empty()) return std::string(value);
    }
  }
  return std::nullopt;
}

std::string CertificateFailureText(std::string_view host, CertificateProblem problem) {
  std::string_view reason = "it is not valid";
  switch (problem) {
    case CertificateProblem::kUnknownAuthority: reason = "it was issued by an unknown authority"; break;
    case CertificateProblem::kNameMismatch: reason = "it was issued for another host name"; break;
    case CertificateProblem::kExpired: reason = "it has expired or is not valid yet"; break;
    case CertificateProblem::kRevoked: reason = "it has been revoked"; break;
    case CertificateProblem::kOther: break;
  }
  std::string text = "The certificate of ";
  text.append(host).append(" can not be verified:\n").append(reason);
  text += ".\nThe page was not downloaded and nothing was sent to the server.";
  return text;
}

std::string TooManyRedirectsText(std::string_view address) {
  std::string text = "The page ";
  text.append(address).append(" was redirected more than ").append(std::to_string(kMaxRedirectHops));
  text += " times.\nThe download stopped; nothing was saved.";
  return text;
}

std::string InsecureRedirectText(std::string_view from, std::string_view to) {
  std::string text = "The secure page ";
  text.append(from).append(" redirected to a plain HTTP address:\n").append(to);
  text += "\nThe download stopped; nothing was sent over plain HTTP.";
  return text;
}

}  // namespace qb
