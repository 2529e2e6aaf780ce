#include "acquire/http_request.h"

#include <algorithm>

#include "acquire/no_case.h"
#include "base/file_name.h"

namespace qb {
namespace {

constexpr std::string_view kHttpScheme = "http://";
constexpr std::string_view kHttpsScheme = "https://";
constexpr std::string_view kWwwPrefix = "www.";
constexpr std::string_view kIndexPage = "index.htm";
constexpr std::string_view kSavedExtension = ".htm";
constexpr std::string_view kPostHeaderStart = " HTTP/1.0\r\nCONTENT-LENGTH: ";
constexpr std::string_view kHeaderEnd = "\r\n\r\n";
// What cannot stand in one file name besides control characters.
constexpr std::string_view kNotInFileName = "\\/:*?\"<>|";
constexpr char kFileNameStandIn = '_';

}  // namespace

std::optional<std::string_view> StripScheme(std::string_view url) {
  if (StartsWithNoCase(url, kHttpScheme)) return url.substr(kHttpScheme.size());
  // Still fetched by plain HTTP on port 80: there is no TLS in this client.
  if (StartsWithNoCase(url, kHttpsScheme)) return url.substr(kHttpsScheme.size());
  if (StartsWithNoCase(url, kWwwPrefix)) return url;
  return std::nullopt;
}

UrlSplit SplitUrl(std::string_view schemeless) {
  UrlSplit split;
  std::size_t pos = 0;
  while (pos < schemeless.size() && schemeless[pos] == ' ') ++pos;
  bool sawSlash = false;
  std::size_t segmentStart = 0;
  for (; pos < schemeless.size(); ++pos) {
    const char c = schemeless[pos];
    if (c == '?' || c == ' ') break;
    if (c == '/') {
      sawSlash = true;
      segmentStart = pos + 1;
    }
    (sawSlash ? split.path : split.host) += c;
  }
  // Measured against the whole text, query included: "example.com/?q=1" has an
  // empty last segment, not "index.htm". The saved name keeps that empty segment.
  split.indexPage = !sawSlash || schemeless.size() <= segmentStart;
  if (!split.indexPage) split.lastSegment = std::string(schemeless.substr(segmentStart, pos - segmentStart));
  return split;
}

std::string SavedFileName(const UrlSplit& split) {
  std::string name = split.host;
  if (StartsWithNoCase(name, kWwwPrefix)) name.erase(0, kWwwPrefix.size());
  if (!name.empty()) name[0] = AsciiLower(name[0]);
  name += '.';
  name += split.indexPage ? kIndexPage : std::string_view(split.lastSegment);
  name += kSavedExtension;
  for (char& c : name) {
    if (static_cast<unsigned char>(c) < 0x20 || kNotInFileName.find(c) != std::string_view::npos)
      c = kFileNameStandIn;
  }
  return name;
}

std::string_view ChooseDownloadFolder(std::string_view linksFolder, std::string_view dataHtmlRoot) {
  return linksFolder.size() >= kMinLinksFolderLength ? linksFolder : dataHtmlRoot;
}

PrepareStatus PrepareDownload(std::string_view url, std::string_view folder, DownloadRequest& out) {
  const std::optional<std::string_view> schemeless = StripScheme(url);
  if (!schemeless) return PrepareStatus::kNotWebAddress;
  if (url.size() > kUrlTextMax) return PrepareStatus::kUrlTooLong;
  UrlSplit split = SplitUrl(*schemeless);
  if (split.host.size() > kHostMax) return PrepareStatus::kHostTooLong;
  static_assert(kRequestPathMax >= kUrlTextMax, "a path cut from an address always fits");
  const std::string name = SavedFileName(split);
  if (IsDeviceName(name)) return PrepareStatus::kDeviceName;
  std::string localFile = std::string(folder) + name;
  if (localFile.size() > kLocalPathMax) return PrepareStatus::kFileNameTooLong;

  out.address = std::string(url);
  out.localFile = std::move(localFile);
  out.host = std::move(split.host);
  out.path = std::move(split.path);
  return PrepareStatus::kReady;
}

std::string DescribePrepareStatus(PrepareStatus status) {
  switch (status) {
    case PrepareStatus::kUrlTooLong:
      return "This HTTP link is too long.\nA link can have at most " + std::to_string(kUrlTextMax) +
             " characters.";
    case PrepareStatus::kHostTooLong:
      return "The host name of this HTTP link is too long.\nA host name can have at most " +
             std::to_string(kHostMax) + " characters.";
    case PrepareStatus::kFileNameTooLong:
      return "The file name for this HTML document would be too long.\nA file path can have at most " +
             std::to_string(kLocalPathMax) + " characters; select a shorter folder in the Links view.";
    case PrepareStatus::kDeviceName:
      return "This HTTP link would be saved under a name that Windows keeps for a device (CON, NUL, "
             "COM1 and the like).\nThe HTML document was not downloaded.";
    case PrepareStatus::kReady:
    case PrepareStatus::kNotWebAddress:
      break;
  }
  return std::string();
}

std::string BuildGetRequest(std::string_view host, std::string_view path) {
  std::string request = "GET http://";
  request += host;
  request += path;
  request += " HTTP/1.0\r\nAccept:text/plain\r\nAccept:text/html\r\nAccept:*/*\r\n\r\n";
  return request;
}

bool AppendPostHeader(std::string& requestText) {
  const std::size_t counted = requestText.size() + kPostHeaderStart.size();
  const std::string length = std::to_string(counted);
  if (counted + length.size() + kHeaderEnd.size() > kRequestTextMax) return false;
  requestText += kPostHeaderStart;
  requestText += length;
  requestText += kHeaderEnd;
  return true;
}

void TransferStatus::Clear() {
  text_.clear();
  mark_ = 0;
}

void TransferStatus::Append(std::string_view text) {
  text_ += text.substr(0, kStatusTextMax - text_.size());
}

void TransferStatus::AppendByteCount(std::uint32_t total) {
  Append(std::to_string(total));
  Append(" Bytes");
}

void TransferStatus::CutToMark() { text_.resize(std::min(mark_, text_.size())); }

}  // namespace qb
