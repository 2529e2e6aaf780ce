// A scripted HTTP peer on 127.0.0.1 for tests of the program's client, run on a
// thread of the test process with Winsock (the client only speaks port 80).
//
// Each accepted connection is read up to the end of its request head, answered
// with the reply's chunks in order (or with silence, or without end) and closed. Other test programs may hold the
// port for a while, so binding is retried for up to 30 seconds.
#pragma once

#include <winsock.h>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace qb::test {

struct LoopbackReply {
  std::vector<std::string> chunks;  // sent in order after the request head
  // Each step after the first chunk (the next chunk, then the close) waits for a
  // Continue(), so every chunk reaches the client in a recv of its own.
  bool paced = false;
  // Ends the connection with a reset instead of an orderly close, so the
  // client's pending recv fails.
  bool reset = false;
  // Reads the request and then answers nothing until the client or the server goes.
  bool silent = false;
  // After the chunks, streams filler until this many bytes went out or the client
  // hung up: an answer without end, as far as any sane client can tell.
  std::size_t streamBytes = 0;
};

class LoopbackServer {
 public:
  explicit LoopbackServer(LoopbackReply reply, std::uint16_t port = 80);
  ~LoopbackServer();
  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;

  // False when the port stayed taken; the reason is in error().
  bool listening() const { return listening_; }
  const std::string& error() const { return error_; }

  // Lets the next paced step go.
  void Continue();
  // The request heads received so far, one per connection, in order.
  std::vector<std::string> Requests() const;

 private:
  void Serve();
  void Answer(SOCKET client);
  bool WaitForContinue(std::size_t step);

  LoopbackReply reply_;
  SOCKET listener_ = INVALID_SOCKET;
  bool listening_ = false;
  std::string error_;
  std::atomic<bool> stop_{false};
  mutable std::mutex mutex_;
  std::condition_variable continued_;
  std::size_t continues_ = 0;
  std::vector<std::string> requests_;
  std::thread thread_;
};

}  // namespace qb::test
