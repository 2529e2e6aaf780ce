// Addresses for the system's HTTP stack: what is fetched where, and where a
// redirect leads.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>

#include "acquire/web_address.h"

namespace qb {
namespace {

// The address as it will be requested; "-" when it is refused.
std::string Requested(const std::optional<WebAddress>& address) {
  if (!address) return "-";
  return (address->secure ? "tls " : "") + address->host + " " + std::to_string(address->port) + " " + address->target;
}

TEST(WebAddress, SchemeHostPortAndTarget) {
  const struct {
    const char *text, *requested, *origin;
  } cases[] = {
      {"https://Shop.example/pay?x=1#top", "tls Shop.example 443 /pay?x=1", "https://Shop.example"},
      {"HTTPS://localhost:8443", "tls localhost 8443 /", "https://localhost:8443"},
      {"http://localhost:443/a", "localhost 443 /a", "http://localhost:443"},
      {"www.example.com?q", "www.example.com 80 /?q", "http://www.example.com"},
      {"https://user:pw@[::1]:9/x", "tls [::1] 9 /x", "https://[::1]:9"},
      {"https://host:/x", "tls host 443 /x", "https://host"},
      {"https://host:0/", "-", ""},
      {"http://host:65535/", "host 65535 /", "http://host:65535"},
      {"https://host:65536/", "-", ""},
      {"https://host:8x/", "-", ""},
      {"https:///path", "-", ""},
      {"https://a b/", "-", ""},
      {"C:\\page.htm", "-", ""},
  };
  for (const auto& c : cases) {
    const std::optional<WebAddress> address = ParseWebAddress(c.text);
    EXPECT_EQ(Requested(address), c.requested) << c.text;
    EXPECT_EQ(address ? WebOrigin(*address) : "", c.origin) << c.text;
  }
}

TEST(WebAddress, LocationResolvedAgainstTheAnsweringAddress) {
  const WebAddress from = *ParseWebAddress("https://shop.example:8443/cart/view.asp?id=4");
  const std::pair<const char*, const char*> cases[] = {  // location, resolved
      {"http://other.example/x", "http://other.example/x"},
      {"//cdn.example/y", "https://cdn.example/y"},
      {"/login", "https://shop.example:8443/login"},
      {"pay.asp?step=2", "https://shop.example:8443/cart/pay.asp?step=2"},
      {"?id=5", "https://shop.example:8443/cart/view.asp?id=5"},
      {"  /spaced  ", "https://shop.example:8443/spaced"},
      {"#frag", "https://shop.example:8443/cart/view.asp?id=4"},
      {"   ", "-"},
  };
  for (const auto& [location, resolved] : cases) {
    const std::optional<WebAddress> to = ResolveLocation(from, location);
    EXPECT_EQ(to ? FormatWebAddress(*to) : "-", resolved) << location;
  }
}

TEST(WebAddress, RedirectOnlyForRedirectStatusesWithALocation) {
  const std::pair<const char*, const char*> cases[] = {  // answer head, location
      // Saved in text mode: CR CR LF line ends.
      {"HTTP/1.1 301 Moved Permanently\r\r\nServer: x\r\r\nlocation:  https://h/p \r\r\n\r\r\n<html>", "https://h/p"},
      {"HTTP/1.0 302\nLocation: /a\n\nLocation: /body", "/a"},
      {"HTTP/1.1 303 See Other\r\nLocation: b\r\n\r\n", "b"},
      {"HTTP/1.1 307 x\r\nLocation: c\r\n\r\n", "c"},
      {"HTTP/1.1 308 x\r\nLocation: d\r\n\r\n", "d"},
      {"HTTP/1.1 200 OK\r\nLocation: /no\r\n\r\n", "-"},
      {"HTTP/1.1 304 Not Modified\r\nLocation: /no\r\n\r\n", "-"},
      {"HTTP/1.1 3010 x\r\nLocation: /no\r\n\r\n", "-"},
      {"HTTP/1.1 301 x\r\n\r\nLocation: /body\r\n", "-"},
      {"HTTP/1.1 301 x\r\nLocation:\r\n\r\n", "-"},
      {"<html>301 Location: /no", "-"},
  };
  for (const auto& [head, location] : cases) EXPECT_EQ(RedirectLocation(head).value_or("-"), location) << head;
}

}  // namespace
}  // namespace qb
