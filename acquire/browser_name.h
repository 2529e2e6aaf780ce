// Finding the user's browser by its windows' captions and its address bar by the
// look of its text. Platform-free: the captions and texts belong to other programs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qb {

constexpr char kExplorerCaption[] = "Microsoft Internet Explorer";
constexpr char kNetscapeCaption[] = "Netscape";
// A caption is read up to this many characters; an edit control's text and a class
// name up to kEditTextMax.
constexpr std::size_t kCaptionTextMax = 260;
constexpr std::size_t kEditTextMax = 256;
constexpr std::size_t kClassNameMax = 256;
// Windows listed; the last slot is overwritten by every later match and never used.
constexpr std::size_t kBrowserSlots = 20;
constexpr std::size_t kBrowserListMax = kBrowserSlots - 1;

// What a browser window's caption holds: a fixed name for Internet Explorer (500)
// and Netscape (501), the user's caption text for any other kind. Empty when there
// is nothing to look for (another browser without a caption text).
std::string_view BrowserCaptionName(std::uint32_t kind, std::string_view otherCaption);

// How many positions of `caption` start `name`, compared without regard to case.
// A caption holding the name twice counts twice: its window is listed twice.
std::size_t CaptionNameCount(std::string_view caption, std::string_view name);

// The address bar's text: it begins with "http", "www." or "file:///" (any case);
// the last is a saved page the browser shows.
bool LooksLikeUrl(std::string_view text);

// The text the registry is asked with: without a leading "http://".
std::string_view WithoutHttp(std::string_view url);

// A page's path or address as the parameters of the browser's start, so that it
// arrives as one argument: quoted when it holds a blank or tab (backslashes before
// the closing quote doubled, as the run-time library reads them), and a double
// quote, which only an address can hold, written as "%22".
std::string BrowserArgument(std::string_view text);

}  // namespace qb
