// One HTTP exchange run on a worker thread while its dialog stays on the
// user-interface thread. The transport only moves bytes; the dialog shows the
// steps, writes the file, enforces the limits below and ends the transfer.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace qb {

// A server that sends nothing for this long ends the transfer as a failed one.
constexpr int kStallLimitSeconds = 30;
// Far above any real page: an endless answer stops here instead of filling the disk.
constexpr std::uint32_t kMaxDownloadBytes = 32u * 1024 * 1024;
// How long a transport's receive waits before it looks at Cancelled() again. The
// dialog never waits for the transport; this only lets a cancelled one end soon.
constexpr int kCancelPollMilliseconds = 100;

// The steps the dialog shows a line for, in this order.
enum class TransferStep { kResolved, kConnected, kSent };

// The dialog's side, called from the worker thread.
class TransferLink {
 public:
  // True once the user pressed Cancel or the dialog gave up; the transport returns soon after.
  virtual bool Cancelled() const = 0;
  virtual void Reached(TransferStep step) = 0;
  // Bytes of the answer as they arrive; false when the transfer must stop now.
  virtual bool Received(std::string_view bytes) = 0;
  // A redirect is followed to `address` (scheme included); that hop's steps follow.
  virtual void Redirected(const std::string& address) = 0;
  // The transfer stops for a reason the user must read; nothing of it is kept.
  virtual void Refused(const std::string& message) = 0;

 protected:
  ~TransferLink() = default;
};

class Transport {
 public:
  virtual ~Transport() = default;
  // Runs on the worker thread. True when the server ended its answer normally.
  virtual bool Run(TransferLink& link) = 0;
};

// HTTP/1.0 over Winsock 1.1 to port 80 of `host`: `request` sent as it stands.
std::unique_ptr<Transport> MakeWinsockTransport(std::string host, std::string request);

}  // namespace qb
