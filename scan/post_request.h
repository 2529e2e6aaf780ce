// The request text of a direct post: "POST " + the form's action, "?", and one
// name=value pair per written field, each followed by "&". The HTTP client later
// completes it with its header. Values get the program's own light encoding, not
// full percent-encoding: space "+", CR "%0D", LF "%0D%0A", "@" "%40", "=" "%3D",
// and a double quote a backslash before it; every other byte is sent as it is.
#pragma once

#include <string>
#include <string_view>

namespace qb {

// The request begins with the form's action; the pairs go after a "?", or after
// the query the action already has.
std::string StartPostRequest(std::string_view action);

enum class PairRule {
  kReplaces,   // checked buttons and text fields: an earlier pair of the name goes
  kKeepsFirst, // selects and submit buttons: an earlier pair of the name stays
};

// Appends `name`=`value`&. The query (after the last "?") is searched for an
// earlier pair that begins with the name, ignoring case (so "a" finds "abc=1"):
// kReplaces cuts the request there, dropping that pair and every pair after it,
// as the program always has; kKeepsFirst appends nothing. A pair that would
// take the text past kRequestTextMax is not appended. False when nothing was
// appended.
bool AddRequestPair(std::string& request, std::string_view name, std::string_view value, PairRule rule);

// Trailing spaces and LFs dropped, the bytes encoded, trailing "+" signs dropped.
std::string EncodeRequestValue(std::string_view value);

}  // namespace qb
