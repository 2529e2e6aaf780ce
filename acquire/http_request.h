// Preparing an HTTP/1.0 transfer: splitting a page address into host and path,
// naming the local file that receives the page, and the exact request bytes.
// Platform-free: the address comes from another program's window or from the user.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qb {

// Text limits, in characters (the buffers they stand for hold one more for the NUL).
constexpr std::size_t kUrlTextMax = 2047;        // an address as captured
constexpr std::size_t kHostMax = 259;            // host name
constexpr std::size_t kRequestPathMax = 2047;    // request path
constexpr std::size_t kLocalPathMax = 259;       // local file path
constexpr std::size_t kRequestTextMax = 29999;   // POST request text
constexpr std::size_t kReceiveChunkSize = 5000;  // one recv
constexpr std::size_t kStatusTextMax = 1999;     // progress lines of the dialog

// A Links folder shorter than this is not trusted; downloads go to the DataHtml root.
constexpr std::size_t kMinLinksFolderLength = 3;
constexpr std::uint16_t kHttpPort = 80;

// Filled by the caller before the download dialog runs; read by both of its procedures.
struct DownloadRequest {
  std::string localFile;  // receives the response (GET)
  std::string host;       // never with a port
  std::string path;       // "/..." or empty
  // The page's address, scheme included; after a download, the one its answer
  // finally came from.
  std::string address;
};

// The address without "http://" or "https://" (any case); a text starting with
// "www." is kept whole. Anything else is a local file path: nullopt.
std::optional<std::string_view> StripScheme(std::string_view url);

struct UrlSplit {
  std::string host;
  std::string path;
  // The text after the last "/", up to the "?" or blank that ended the address.
  std::string lastSegment;
  // No "/" was seen, or nothing at all followed the last one: the page is saved
  // under "index.htm".
  bool indexPage = true;
};

// Splits a scheme-less address: leading blanks skipped, a "?" or blank ends the
// address, the host runs to the first "/" and the path from there.
UrlSplit SplitUrl(std::string_view schemeless);

// "example.com.form.asp.htm": the host without a leading "www." and with its first
// character lower-cased, ".", the last segment (or "index.htm"), ".htm". Always one
// file name: every character that cannot stand in one (path separators, ":" of a
// stream, the wildcards and control characters) becomes "_".
std::string SavedFileName(const UrlSplit& split);

// The Links folder when it is long enough to be a real folder, else the root.
std::string_view ChooseDownloadFolder(std::string_view linksFolder, std::string_view dataHtmlRoot);

enum class PrepareStatus {
  kReady,
  kNotWebAddress,  // a local file path: the caller opens it instead
  kUrlTooLong,
  kHostTooLong,
  kFileNameTooLong,
  kDeviceName,  // the saved name would open a device, not a file
};

// Fills `out` for a page download of `url` into `folder` (which ends with a
// backslash). `out` is changed only when the result is kReady.
PrepareStatus PrepareDownload(std::string_view url, std::string_view folder, DownloadRequest& out);
// What to tell the user about a status other than kReady and kNotWebAddress.
std::string DescribePrepareStatus(PrepareStatus status);

// "GET http://host/path HTTP/1.0" and the three Accept lines: an absolute URL in
// the request line, no Host and no User-Agent header.
std::string BuildGetRequest(std::string_view host, std::string_view path);

// Completes a POST request text ("POST /target?a=b") with its header. The
// CONTENT-LENGTH value counts the text as it stands at that point, request line
// included: the form data travel in the query and no body follows. False, and the
// text unchanged, when the result would pass kRequestTextMax.
bool AppendPostHeader(std::string& requestText);

// The progress lines of a transfer. The running byte count is appended after a
// remembered point and cut back before the next one, so it replaces itself.
class TransferStatus {
 public:
  void Clear();
  // Appends as much of `text` as fits in kStatusTextMax.
  void Append(std::string_view text);
  void MarkCountLine() { mark_ = text_.size(); }
  // The running total in decimal and " Bytes".
  void AppendByteCount(std::uint32_t total);
  void CutToMark();
  const std::string& text() const { return text_; }

 private:
  std::string text_;
  std::size_t mark_ = 0;
};

}  // namespace qb
