// Request preparation over any address and folder text: whatever is accepted
// splits cleanly, names a file inside the folder within the path limit, and gives
// a GET request that fits the receive buffer it is built in. The same bytes as a
// copied address: one trimmed line, kept within the address limit, and a local
// path never longer than what was copied and never holding a NUL. An address the
// system's HTTP stack accepts reads back as itself once written out, and so does
// any Location resolved against it; any text read as an answer head is safe.
#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>

#include "acquire/http_request.h"
#include "acquire/pasted_address.h"
#include "acquire/web_address.h"
#include "base/file_name.h"

namespace {

void Check(bool condition) {
  if (!condition) std::abort();
}

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

void CheckPasted(std::string_view clipboard) {
  const qb::PastedAddress pasted = qb::ParsePastedAddress(clipboard);
  const std::string& line = pasted.line;
  Check(line.find_first_of(std::string_view("\r\n\0", 3)) == std::string::npos);
  Check(line.empty() || (!IsBlank(line.front()) && !IsBlank(line.back())));
  switch (pasted.kind) {
    case qb::PastedKind::kNone:
      Check(pasted.text.empty());
      break;
    case qb::PastedKind::kTooLong:
      Check(line.size() > qb::kUrlTextMax && pasted.text.empty());
      break;
    case qb::PastedKind::kWeb:
      Check(pasted.text == line && line.size() <= qb::kUrlTextMax && qb::StripScheme(line));
      break;
    case qb::PastedKind::kLocalFile:
      Check(line.size() <= qb::kUrlTextMax && pasted.text.size() <= line.size());
      Check(pasted.text.find('\0') == std::string::npos);
      break;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view all(reinterpret_cast<const char*>(data) + 1, size - 1);
  CheckPasted(all);
  const std::size_t folderLength = std::min<std::size_t>(data[0], all.size());
  const std::string_view folder = all.substr(0, folderLength);
  const std::string_view url = all.substr(folderLength);

  qb::RedirectLocation(all);
  if (const std::optional<qb::WebAddress> address = qb::ParseWebAddress(url)) {
    const std::string written = qb::FormatWebAddress(*address);
    Check(qb::ParseWebAddress(written).has_value() && qb::FormatWebAddress(*qb::ParseWebAddress(written)) == written);
    if (const std::optional<qb::WebAddress> to = qb::ResolveLocation(*address, folder))
      Check(!to->host.empty() && !to->target.empty());
  }

  qb::DownloadRequest request;
  if (qb::PrepareDownload(url, folder, request) != qb::PrepareStatus::kReady) return 0;
  Check(request.host.size() <= qb::kHostMax);
  Check(request.host.find_first_of("/? ") == std::string::npos);
  Check(request.path.empty() || request.path[0] == '/');
  Check(request.path.find_first_of("? ") == std::string::npos);
  Check(request.localFile.size() <= qb::kLocalPathMax);
  Check(request.localFile.compare(0, folder.size(), folder) == 0);
  Check(request.localFile.size() >= folder.size() + 5);
  Check(request.localFile.compare(request.localFile.size() - 4, 4, ".htm") == 0);
  Check(request.address == url);
  // One file name inside the folder, never a device.
  const std::string_view name = std::string_view(request.localFile).substr(folder.size());
  Check(name.find_first_of("\\/:*?\"<>|") == std::string_view::npos);
  Check(!qb::IsDeviceName(name));
  Check(qb::BuildGetRequest(request.host, request.path).size() < qb::kReceiveChunkSize);
  return 0;
}
