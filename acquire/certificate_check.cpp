#include "acquire/certificate_check.h"

#include <winsock.h>
#include <windows.h>
#define SECURITY_WIN32
#include <schannel.h>
#include <security.h>
#include <wincrypt.h>

#include <array>
#include <cstring>
#include <string_view>
#include <vector>

namespace qb {
namespace {

constexpr WORD kWinsockVersion = 0x0101;
// A server's first flight (certificates included) fits well within this.
constexpr std::size_t kHandshakeMax = 64 * 1024;
constexpr std::size_t kReadChunk = 4096;

class Connection {
 public:
  Connection() { started_ = WSAStartup(kWinsockVersion, &data_) == 0; }
  ~Connection() {
    if (socket_ != INVALID_SOCKET) closesocket(socket_);
    if (started_) WSACleanup();
  }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  bool Open(const std::string& host, std::uint16_t port, std::uint32_t timeout) {
    if (!started_) return false;
    const hostent* entry = gethostbyname(host.c_str());
    if (!entry || entry->h_addrtype != AF_INET || !entry->h_addr_list || !entry->h_addr_list[0]) return false;
    socket_ = socket(AF_INET, SOCK_STREAM, 0);
    if (socket_ == INVALID_SOCKET) return false;
    const DWORD wait = timeout;
    setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, reinterpret_cast<const char*>(&wait), sizeof(wait));
    setsockopt(socket_, SOL_SOCKET, SO_SNDTIMEO, reinterpret_cast<const char*>(&wait), sizeof(wait));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    std::memcpy(&address.sin_addr, entry->h_addr_list[0], sizeof(address.sin_addr));
    return connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
  }

  bool Send(const void* data, std::size_t size) {
    const char* bytes = static_cast<const char*>(data);
    while (size > 0) {
      const int sent = send(socket_, bytes, static_cast<int>(size), 0);
      if (sent <= 0) return false;
      bytes += sent;
      size -= static_cast<std::size_t>(sent);
    }
    return true;
  }

  bool ReadMore(std::vector<char>& into) {
    if (into.size() >= kHandshakeMax) return false;
    std::array<char, kReadChunk> chunk;
    const int got = recv(socket_, chunk.data(), static_cast<int>(chunk.size()), 0);
    if (got <= 0) return false;
    into.insert(into.end(), chunk.data(), chunk.data() + got);
    return true;
  }

 private:
  WSADATA data_{};
  bool started_ = false;
  SOCKET socket_ = INVALID_SOCKET;
};

// Client handshake without certificate validation, so that the certificate can
// be looked at whatever it is. Nothing but handshake records is sent.
class Handshake {
 public:
  ~Handshake() {
    if (haveContext_) DeleteSecurityContext(&context_);
    if (haveCredentials_) FreeCredentialsHandle(&credentials_);
  }

  PCCERT_CONTEXT Run(Connection& connection, const std::string& host) {
    SCHANNEL_CRED settings{};
    settings.dwVersion = SCHANNEL_CRED_VERSION;
    settings.dwFlags = SCH_CRED_MANUAL_CRED_VALIDATION | SCH_CRED_NO_DEFAULT_CREDS;
    char package[] = UNISP_NAME_A;
    haveCredentials_ = AcquireCredentialsHandleA(nullptr, package, SECPKG_CRED_OUTBOUND, nullptr, &settings, nullptr,
                                                 nullptr, &credentials_, nullptr) == SEC_E_OK;
    if (!haveCredentials_) return nullptr;
    std::vector<char> received;
    SECURITY_STATUS status = Step(connection, host, received);
    while (status == SEC_I_CONTINUE_NEEDED || status == SEC_E_INCOMPLETE_MESSAGE) {
      if ((status == SEC_E_INCOMPLETE_MESSAGE || received.empty()) && !connection.ReadMore(received)) return nullptr;
      status = Step(connection, host, received);
    }
    if (status != SEC_E_OK) return nullptr;
    PCCERT_CONTEXT certificate = nullptr;
    if (QueryContextAttributesA(&context_, SECPKG_ATTR_REMOTE_CERT_CONTEXT, &certificate) != SEC_E_OK) return nullptr;
    return certificate;
  }

 private:
  SECURITY_STATUS Step(Connection& connection, const std::string& host, std::vector<char>& received) {
    SecBuffer in[2] = {{static_cast<unsigned long>(received.size()), SECBUFFER_TOKEN, received.data()},
                       {0, SECBUFFER_EMPTY, nullptr}};
    SecBufferDesc inDesc{SECBUFFER_VERSION, 2, in};
    SecBuffer out{0, SECBUFFER_TOKEN, nullptr};
    SecBufferDesc outDesc{SECBUFFER_VERSION, 1, &out};
    const unsigned long wanted = ISC_REQ_SEQUENCE_DETECT | ISC_REQ_REPLAY_DETECT | ISC_REQ_CONFIDENTIALITY |
                                 ISC_REQ_ALLOCATE_MEMORY | ISC_REQ_STREAM | ISC_REQ_MANUAL_CRED_VALIDATION;
    unsigned long granted = 0;
    std::string target = host;
    const SECURITY_STATUS status =
        InitializeSecurityContextA(&credentials_, haveContext_ ? &context_ : nullptr, target.data(), wanted, 0, 0,
                                   haveContext_ ? &inDesc : nullptr, 0, &context_, &outDesc, &granted, nullptr);
    haveContext_ = true;
    if (out.pvBuffer) {
      const bool sent = out.cbBuffer == 0 || connection.Send(out.pvBuffer, out.cbBuffer);
      FreeContextBuffer(out.pvBuffer);
      if (!sent) return SEC_E_INTERNAL_ERROR;
    }
    if (status == SEC_E_INCOMPLETE_MESSAGE) return status;
    // What the step did not use stays for the next one.
    if (in[1].BufferType == SECBUFFER_EXTRA && in[1].cbBuffer <= received.size())
      received.erase(received.begin(), received.end() - in[1].cbBuffer);
    else
      received.clear();
    return status;
  }

  CredHandle credentials_{};
  CtxtHandle context_{};
  bool haveCredentials_ = false;
  bool haveContext_ = false;
};

CertificateProblem Judge(PCCERT_CONTEXT certificate, const std::string& host) {
  CERT_CHAIN_PARA parameters{};
  parameters.cbSize = sizeof(parameters);
  PCCERT_CHAIN_CONTEXT chain = nullptr;
  if (!CertGetCertificateChain(nullptr, certificate, nullptr, certificate->hCertStore, &parameters, 0, nullptr,
                               &chain))
    return CertificateProblem::kOther;
  const DWORD trust = chain->TrustStatus.dwErrorStatus;
  CertificateProblem problem = CertificateProblem::kOther;
  if (trust & (CERT_TRUST_IS_UNTRUSTED_ROOT | CERT_TRUST_IS_PARTIAL_CHAIN)) {
    problem = CertificateProblem::kUnknownAuthority;
  } else if (trust & CERT_TRUST_IS_NOT_TIME_VALID) {
    problem = CertificateProblem::kExpired;
  } else if (trust & CERT_TRUST_IS_REVOKED) {
    problem = CertificateProblem::kRevoked;
  } else {
    std::wstring name(host.begin(), host.end());
    SSL_EXTRA_CERT_CHAIN_POLICY_PARA ssl{};
    ssl.cbSize = sizeof(ssl);
    ssl.dwAuthType = AUTHTYPE_SERVER;
    ssl.pwszServerName = name.data();
    CERT_CHAIN_POLICY_PARA policy{};
    policy.cbSize = sizeof(policy);
    policy.pvExtraPolicyPara = &ssl;
    CERT_CHAIN_POLICY_STATUS result{};
    result.cbSize = sizeof(result);
    if (CertVerifyCertificateChainPolicy(CERT_CHAIN_POLICY_SSL, chain, &policy, &result)) {
      if (result.dwError == static_cast<DWORD>(CERT_E_CN_NO_MATCH)) problem = CertificateProblem::kNameMismatch;
      if (result.dwError == static_cast<DWORD>(CERT_E_UNTRUSTEDROOT)) problem = CertificateProblem::kUnknownAuthority;
      if (result.dwError == static_cast<DWORD>(CERT_E_EXPIRED)) problem = CertificateProblem::kExpired;
    }
  }
  CertFreeCertificateChain(chain);
  return problem;
}

}  // namespace

CertificateProblem DiagnoseCertificate(const std::string& host, std::uint16_t port, std::uint32_t timeoutMilliseconds) {
  Connection connection;
  if (!connection.Open(host, port, timeoutMilliseconds)) return CertificateProblem::kOther;
  Handshake handshake;
  PCCERT_CONTEXT certificate = handshake.Run(connection, host);
  if (!certificate) return CertificateProblem::kOther;
  const CertificateProblem problem = Judge(certificate, host);
  CertFreeCertificateContext(certificate);
  return problem;
}

}  // namespace qb
