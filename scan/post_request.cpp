#include "scan/post_request.h"

#include <algorithm>

#include "acquire/http_request.h"
#include "keys/key_table.h"

namespace qb {
namespace {

struct Escape {
  char byte;
  std::string_view text;
};

constexpr Escape kEscapes[] = {
    {' ', "+"}, {'\r', "%0D"}, {'\n', "%0D%0A"}, {'@', "%40"}, {'=', "%3D"}, {'"', "\\\""},
};

// Where the earlier pair for `name` starts in the query, or npos. A pair counts
// when it begins with the name, compared over the name's length only: "a" finds
// "abc=1" and "NEWS" finds "NEWSLETTER=YES", as the program always has.
std::size_t EarlierPair(const std::string& request, std::string_view name) {
  const std::size_t question = request.rfind('?');
  if (question == std::string::npos) return std::string::npos;
  for (std::size_t pos = question + 1; pos < request.size();) {
    if (request.size() - pos >= name.size() &&
        CompareNoCase(std::string_view(request).substr(pos, name.size()), name) == 0) {
      return pos;
    }
    const std::size_t end = request.find('&', pos);
    if (end == std::string::npos) break;
    pos = end + 1;
  }
  return std::string::npos;
}

}  // namespace

std::string StartPostRequest(std::string_view action) {
  std::string request = "POST ";
  request.append(action);
  const std::size_t question = request.find('?');
  if (question == std::string::npos) {
    request += '?';
  } else if (request.back() != '?' && request.back() != '&') {
    request += '&';
  }
  if (request.size() > kRequestTextMax) request.resize(kRequestTextMax);
  return request;
}

std::string EncodeRequestValue(std::string_view value) {
  while (!value.empty() && (value.back() == ' ' || value.back() == '\n')) value.remove_suffix(1);
  std::string encoded;
  encoded.reserve(value.size());
  for (char c : value) {
    const Escape* escape =
        std::find_if(std::begin(kEscapes), std::end(kEscapes), [c](const Escape& e) { return e.byte == c; });
    if (escape != std::end(kEscapes)) {
      encoded.append(escape->text);
    } else {
      encoded += c;
    }
  }
  while (!encoded.empty() && encoded.back() == '+') encoded.pop_back();
  return encoded;
}

bool AddRequestPair(std::string& request, std::string_view name, std::string_view value, PairRule rule) {
  const std::size_t earlier = EarlierPair(request, name);
  if (earlier != std::string::npos) {
    if (rule == PairRule::kKeepsFirst) return false;
    request.resize(earlier);
  }
  std::string pair(name);
  pair.append("=").append(EncodeRequestValue(value)).append("&");
  if (request.size() + pair.size() > kRequestTextMax) return false;
  request += pair;
  return true;
}

}  // namespace qb
