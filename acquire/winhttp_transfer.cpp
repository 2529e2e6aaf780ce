// WinHTTP in asynchronous mode: its callbacks only record what happened and set
// an event; the transfer's thread waits on the event in short slices, passes the
// steps on and checks the cancel flag and the stall limit between slices.
#include "acquire/winhttp_transfer.h"

#include <winsock.h>
#include <windows.h>
#include <winhttp.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <memory>
#include <optional>

#include "acquire/certificate_check.h"
#include "acquire/http_request.h"
#include "acquire/no_case.h"

namespace qb {
namespace {

constexpr wchar_t kAgent[] = L"Quellbarrow";
// How long a closed request may take to tell it is gone before its state (a few
// kilobytes) is left to it instead of being freed under it: a request cancelled
// while it waits for the server goes only when that wait ends.
constexpr DWORD kCloseWaitMilliseconds = 250;
// The steps' bits, in TransferStep's order.
constexpr DWORD kStepBit[] = {1u << 0, 1u << 1, 1u << 2};
constexpr int kStepCount = 3;
static_assert(static_cast<int>(TransferStep::kSent) == kStepCount - 1, "one bit per step");

// Shared with WinHTTP's callback threads for one request; the read buffer lives
// here because a pending read may still fill it while the request closes.
struct Completion {
  Completion()
      : done(CreateEventW(nullptr, FALSE, FALSE, nullptr)), closed(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}
  ~Completion() {
    CloseHandle(done);
    CloseHandle(closed);
  }
  Completion(const Completion&) = delete;
  Completion& operator=(const Completion&) = delete;

  void Finish(DWORD error, DWORD bytes) {
    this->error = error;
    this->bytes = bytes;
    SetEvent(done);
  }

  HANDLE done;
  HANDLE closed;
  std::atomic<DWORD> steps{0};
  std::atomic<DWORD> secureFlags{0};
  std::atomic<DWORD> error{0};
  std::atomic<DWORD> bytes{0};
  std::array<char, kReceiveChunkSize> buffer{};
};

void CALLBACK OnStatus(HINTERNET, DWORD_PTR context, DWORD status, LPVOID info, DWORD length) {
  auto* c = reinterpret_cast<Completion*>(context);
  if (!c) return;  // the session's and the connection's own notices
  switch (status) {
    case WINHTTP_CALLBACK_STATUS_NAME_RESOLVED: c->steps |= kStepBit[0]; break;
    case WINHTTP_CALLBACK_STATUS_CONNECTED_TO_SERVER: c->steps |= kStepBit[1]; break;
    case WINHTTP_CALLBACK_STATUS_REQUEST_SENT: c->steps |= kStepBit[2]; break;
    case WINHTTP_CALLBACK_STATUS_SECURE_FAILURE:
      if (info && length >= sizeof(DWORD)) c->secureFlags |= *static_cast<const DWORD*>(info);
      break;
    case WINHTTP_CALLBACK_STATUS_SENDREQUEST_COMPLETE:
    case WINHTTP_CALLBACK_STATUS_HEADERS_AVAILABLE: c->Finish(ERROR_SUCCESS, 0); break;
    case WINHTTP_CALLBACK_STATUS_DATA_AVAILABLE:
      c->Finish(ERROR_SUCCESS, info && length >= sizeof(DWORD) ? *static_cast<const DWORD*>(info) : 0);
      break;
    case WINHTTP_CALLBACK_STATUS_READ_COMPLETE: c->Finish(ERROR_SUCCESS, length); break;
    case WINHTTP_CALLBACK_STATUS_REQUEST_ERROR: {
      const auto* result = static_cast<const WINHTTP_ASYNC_RESULT*>(info);
      c->Finish(result && result->dwError ? result->dwError : ERROR_WINHTTP_INTERNAL_ERROR, 0);
      break;
    }
    case WINHTTP_CALLBACK_STATUS_HANDLE_CLOSING: SetEvent(c->closed); break;
    default: break;
  }
}

struct HandleCloser {
  void operator()(HINTERNET handle) const { WinHttpCloseHandle(handle); }
};
using Handle = std::unique_ptr<void, HandleCloser>;

std::wstring Wide(std::string_view text) {
  if (text.empty()) return std::wstring();
  const int size = MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(size), L'\0');
  MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), wide.data(), size);
  return wide;
}

std::string Narrow(std::wstring_view text) {
  if (text.empty()) return std::string();
  const int size =
      WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()), nullptr, 0, nullptr, nullptr);
  std::string narrow(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()), narrow.data(), size, nullptr, nullptr);
  return narrow;
}

// A header as text; empty when the answer has none.
std::string QueryHeader(HINTERNET request, DWORD level) {
  DWORD size = 0;
  WinHttpQueryHeaders(request, level, WINHTTP_HEADER_NAME_BY_INDEX, nullptr, &size, WINHTTP_NO_HEADER_INDEX);
  if (GetLastError() != ERROR_INSUFFICIENT_BUFFER || size == 0) return std::string();
  std::wstring value(size / sizeof(wchar_t) + 1, L'\0');
  if (!WinHttpQueryHeaders(request, level, WINHTTP_HEADER_NAME_BY_INDEX, value.data(), &size,
                           WINHTTP_NO_HEADER_INDEX))
    return std::string();
  value.resize(size / sizeof(wchar_t));
  return Narrow(value);
}

DWORD StatusCode(HINTERNET request) {
  DWORD code = 0;
  DWORD size = sizeof(code);
  WinHttpQueryHeaders(request, WINHTTP_QUERY_STATUS_CODE | WINHTTP_QUERY_FLAG_NUMBER, WINHTTP_HEADER_NAME_BY_INDEX,
                      &code, &size, WINHTTP_NO_HEADER_INDEX);
  return code;
}

bool IsRedirect(DWORD code) { return code == 301 || code == 302 || code == 303 || code == 307 || code == 308; }

// The head as a server sends it: lines ended by CR LF and one blank line.
std::string AnswerHead(HINTERNET request) {
  std::string head = QueryHeader(request, WINHTTP_QUERY_RAW_HEADERS_CRLF);
  while (!head.empty() && (head.back() == '\r' || head.back() == '\n')) head.pop_back();
  head += "\r\n\r\n";
  return head;
}

CertificateProblem ProblemOf(DWORD flags, DWORD error) {
  if (flags & WINHTTP_CALLBACK_STATUS_FLAG_INVALID_CA || error == ERROR_WINHTTP_SECURE_INVALID_CA)
    return CertificateProblem::kUnknownAuthority;
  if (flags & WINHTTP_CALLBACK_STATUS_FLAG_CERT_CN_INVALID || error == ERROR_WINHTTP_SECURE_CERT_CN_INVALID)
    return CertificateProblem::kNameMismatch;
  if (flags & WINHTTP_CALLBACK_STATUS_FLAG_CERT_DATE_INVALID || error == ERROR_WINHTTP_SECURE_CERT_DATE_INVALID)
    return CertificateProblem::kExpired;
  if (flags & WINHTTP_CALLBACK_STATUS_FLAG_CERT_REVOKED || error == ERROR_WINHTTP_SECURE_CERT_REVOKED)
    return CertificateProblem::kRevoked;
  return CertificateProblem::kOther;
}

bool IsCertificateError(DWORD error) {
  switch (error) {
    case ERROR_WINHTTP_SECURE_FAILURE:
    case ERROR_WINHTTP_SECURE_INVALID_CA:
    case ERROR_WINHTTP_SECURE_CERT_CN_INVALID:
    case ERROR_WINHTTP_SECURE_CERT_DATE_INVALID:
    case ERROR_WINHTTP_SECURE_CERT_REVOKED:
    case ERROR_WINHTTP_SECURE_CERT_REV_FAILED:
    case ERROR_WINHTTP_SECURE_INVALID_CERT:
    case ERROR_WINHTTP_SECURE_CERT_WRONG_USAGE: return true;
    default: return false;
  }
}

// One request on its own connection, from opening to the end of its answer.
class Hop {
 public:
  Hop(HINTERNET session, const WebAddress& address, TransferLink& link, std::uint32_t stallMilliseconds)
      : address_(address), link_(link), stallMilliseconds_(stallMilliseconds), state_(std::make_unique<Completion>()) {
    connection_.reset(WinHttpConnect(session, Wide(address.host).c_str(), address.port, 0));
    if (!connection_) return;
    const wchar_t* accept[] = {L"text/plain", L"text/html", L"*/*", nullptr};
    request_.reset(WinHttpOpenRequest(connection_.get(), L"GET", Wide(address.target).c_str(), nullptr,
                                      WINHTTP_NO_REFERER, accept, address.secure ? WINHTTP_FLAG_SECURE : 0));
    if (!request_) return;
    // Redirects are followed by the caller, which counts and checks each one.
    DWORD disable = WINHTTP_DISABLE_REDIRECTS;
    WinHttpSetOption(request_.get(), WINHTTP_OPTION_DISABLE_FEATURE, &disable, sizeof(disable));
    DWORD_PTR context = reinterpret_cast<DWORD_PTR>(state_.get());
    WinHttpSetOption(request_.get(), WINHTTP_OPTION_CONTEXT_VALUE, &context, sizeof(context));
  }

  ~Hop() {
    if (!request_) return;
    request_.reset();
    // A request still busy in WinHTTP may call back after the close: its state
    // stays alive until the request says it is gone.
    if (WaitForSingleObject(state_->closed, kCloseWaitMilliseconds) != WAIT_OBJECT_0) state_.release();
  }
  Hop(const Hop&) = delete;
  Hop& operator=(const Hop&) = delete;

  // Sends the request and waits for the answer's head. kCompleted when it came.
  WebEnd Start(WebOutcome& outcome) {
    if (!request_) return WebEnd::kFailed;
    lastProgress_ = GetTickCount();
    const DWORD_PTR context = reinterpret_cast<DWORD_PTR>(state_.get());
    if (!WinHttpSendRequest(request_.get(), WINHTTP_NO_ADDITIONAL_HEADERS, 0, WINHTTP_NO_REQUEST_DATA, 0, 0, context))
      return WebEnd::kFailed;
    WebEnd end = Wait();
    if (end == WebEnd::kCompleted) {
      if (!WinHttpReceiveResponse(request_.get(), nullptr)) return WebEnd::kFailed;
      end = Wait();
    }
    if (end != WebEnd::kFailed || !address_.secure) return end;
    CertificateProblem problem = ProblemOf(state_->secureFlags, state_->error);
    // Told only that the channel failed: the certificate is looked at directly.
    if (problem == CertificateProblem::kOther && state_->error == ERROR_WINHTTP_SECURE_CHANNEL_ERROR)
      problem = DiagnoseCertificate(address_.host, address_.port, stallMilliseconds_);
    if (problem == CertificateProblem::kOther && !IsCertificateError(state_->error)) return end;
    outcome.message = CertificateFailureText(address_.host, problem);
    return WebEnd::kCertificate;
  }

  DWORD status() const { return StatusCode(request_.get()); }
  std::string location() const { return QueryHeader(request_.get(), WINHTTP_QUERY_LOCATION); }

  // Hands the head and then the body on.
  WebEnd Deliver() {
    const std::string head = AnswerHead(request_.get());
    for (std::string_view bytes = head;; bytes = std::string_view(state_->buffer.data(), state_->bytes)) {
      if (!bytes.empty() && !link_.Received(bytes)) return WebEnd::kStopped;
      // Only what is there is read: a read of more may wait for the rest
      // without a word, however long the server takes.
      if (!WinHttpQueryDataAvailable(request_.get(), nullptr)) return WebEnd::kFailed;
      if (const WebEnd end = Wait(); end != WebEnd::kCompleted) return end;
      if (state_->bytes == 0) return WebEnd::kCompleted;
      const DWORD wanted = std::min<DWORD>(state_->bytes, static_cast<DWORD>(state_->buffer.size()));
      if (!WinHttpReadData(request_.get(), state_->buffer.data(), wanted, nullptr)) return WebEnd::kFailed;
      if (const WebEnd end = Wait(); end != WebEnd::kCompleted) return end;
      if (state_->bytes == 0) return WebEnd::kCompleted;
    }
  }

 private:
  // Waits for the pending call in short slices. Every step and every completion
  // counts as progress for the stall limit.
  WebEnd Wait() {
    for (;;) {
      const DWORD waited = WaitForSingleObject(state_->done, kCancelPollMilliseconds);
      PassStepsOn();
      if (waited == WAIT_OBJECT_0) {
        lastProgress_ = GetTickCount();
        // The stack's own clock (set to the same limit) may be the first to see it.
        if (state_->error == ERROR_WINHTTP_TIMEOUT || state_->error == WSAETIMEDOUT) return WebEnd::kStalled;
        return state_->error == ERROR_SUCCESS ? WebEnd::kCompleted : WebEnd::kFailed;
      }
      if (link_.Cancelled()) return WebEnd::kCancelled;
      if (GetTickCount() - lastProgress_ >= stallMilliseconds_) return WebEnd::kStalled;
    }
  }

  // A kept connection is neither resolved nor connected again; every hop still
  // shows the three steps, in order.
  void PassStepsOn() {
    const DWORD steps = state_->steps;
    int reached = 0;
    for (int step = 0; step < kStepCount; ++step)
      if (steps & kStepBit[step]) reached = step + 1;
    for (; shown_ < reached; ++shown_) {
      lastProgress_ = GetTickCount();
      link_.Reached(static_cast<TransferStep>(shown_));
    }
  }

  WebAddress address_;
  TransferLink& link_;
  const std::uint32_t stallMilliseconds_;
  std::unique_ptr<Completion> state_;
  Handle connection_;
  Handle request_;
  int shown_ = 0;  // steps passed on
  DWORD lastProgress_ = 0;
};

// Passes a plain answer on, unless its head turns out to be a redirect: then
// nothing of it is passed on and the plain transfer stops there.
class RedirectWatch : public TransferLink {
 public:
  explicit RedirectWatch(TransferLink& link) : link_(link) {}

  bool Cancelled() const override { return link_.Cancelled(); }
  void Reached(TransferStep step) override { link_.Reached(step); }
  void Redirected(const std::string& address) override { link_.Redirected(address); }
  void Refused(const std::string& message) override { link_.Refused(message); }
  bool Received(std::string_view bytes) override {
    if (passing_) return link_.Received(bytes);
    head_.append(bytes);
    const bool headEnded = head_.find("\r\n\r\n") != std::string::npos || head_.find("\n\n") != std::string::npos;
    if (!headEnded && head_.size() < kAnswerHeadMax) return true;
    return Decide();
  }

  // Once the head is whole, or the answer ended before it was: false while the
  // answer is held back as a redirect, or when the link wants no more.
  bool Decide() {
    if (passing_ || location_) return !location_;
    location_ = RedirectLocation(head_);
    if (location_) return false;
    passing_ = true;
    return head_.empty() || link_.Received(head_);
  }
  const std::optional<std::string>& location() const { return location_; }

 private:
  TransferLink& link_;
  std::string head_;
  bool passing_ = false;
  std::optional<std::string> location_;
};

bool Finish(const WebOutcome& outcome, TransferLink& link) {
  switch (outcome.end) {
    case WebEnd::kCompleted: return true;
    case WebEnd::kTooManyRedirects:
    case WebEnd::kInsecureRedirect:
    case WebEnd::kCertificate: link.Refused(outcome.message); return false;
    case WebEnd::kFailed:
    case WebEnd::kCancelled:
    case WebEnd::kStalled:
    case WebEnd::kStopped: break;
  }
  return false;
}

class PageTransport : public Transport {
 public:
  PageTransport(std::string address, std::string host, std::string request)
      : address_(std::move(address)), host_(std::move(host)), request_(std::move(request)) {}

  bool Run(TransferLink& link) override {
    const std::optional<WebAddress> start = ParseWebAddress(address_);
    if (StartsWithNoCase(address_, kSecureScheme)) {
      // Never fetched over plain HTTP instead, whatever is wrong with the address.
      return start && Finish(FetchWithWinHttp(*start, 0, link, kStallMilliseconds), link);
    }
    RedirectWatch watch(link);
    const bool ended = MakeWinsockTransport(host_, request_)->Run(watch);
    const bool passed = watch.Decide();
    const std::optional<WebAddress> next =
        start && watch.location() ? ResolveLocation(*start, *watch.location()) : std::nullopt;
    if (!next || link.Cancelled()) return ended && passed;
    link.Redirected(FormatWebAddress(*next));
    WebOutcome outcome = FetchWithWinHttp(*next, 1, link, kStallMilliseconds);
    // Named by the address the user scanned, not by the first redirect's.
    if (outcome.end == WebEnd::kTooManyRedirects) outcome.message = TooManyRedirectsText(address_);
    return Finish(outcome, link);
  }

 private:
  static constexpr std::string_view kSecureScheme = "https://";
  static constexpr std::uint32_t kStallMilliseconds = kStallLimitSeconds * 1000;
  std::string address_;
  std::string host_;
  std::string request_;
};

}  // namespace

std::unique_ptr<Transport> MakePageTransport(std::string address, std::string host, std::string request) {
  return std::make_unique<PageTransport>(std::move(address), std::move(host), std::move(request));
}

WebOutcome FetchWithWinHttp(const WebAddress& start, int hopsBefore, TransferLink& link,
                            std::uint32_t stallMilliseconds) {
  WebOutcome outcome;
  outcome.address = start;
  Handle session(WinHttpOpen(kAgent, WINHTTP_ACCESS_TYPE_DEFAULT_PROXY, WINHTTP_NO_PROXY_NAME,
                             WINHTTP_NO_PROXY_BYPASS, WINHTTP_FLAG_ASYNC));
  if (!session) return outcome;
  const int timeout = static_cast<int>(stallMilliseconds);
  WinHttpSetTimeouts(session.get(), timeout, timeout, timeout, timeout);
  if (WinHttpSetStatusCallback(session.get(), OnStatus, WINHTTP_CALLBACK_FLAG_ALL_NOTIFICATIONS, 0) ==
      WINHTTP_INVALID_STATUS_CALLBACK)
    return outcome;

  for (int hops = hopsBefore;; ++hops) {
    Hop hop(session.get(), outcome.address, link, stallMilliseconds);
    outcome.end = hop.Start(outcome);
    if (outcome.end != WebEnd::kCompleted) return outcome;
    const std::string location = IsRedirect(hop.status()) ? hop.location() : std::string();
    const std::optional<WebAddress> next = location.empty() ? std::nullopt : ResolveLocation(outcome.address, location);
    // A redirect without a usable Location is an answer like any other.
    if (!next) {
      outcome.end = hop.Deliver();
      return outcome;
    }
    if (hops >= kMaxRedirectHops) {
      outcome.end = WebEnd::kTooManyRedirects;
      outcome.message = TooManyRedirectsText(FormatWebAddress(start));
      return outcome;
    }
    if (outcome.address.secure && !next->secure) {
      outcome.end = WebEnd::kInsecureRedirect;
      outcome.message = InsecureRedirectText(FormatWebAddress(outcome.address), FormatWebAddress(*next));
      return outcome;
    }
    outcome.address = *next;
    link.Redirected(FormatWebAddress(outcome.address));
  }
}

}  // namespace qb
