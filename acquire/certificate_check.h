// Why a server's certificate is not trusted. Some HTTP stacks (Wine's WinHTTP
// among them) report only that the secure channel failed; this check makes a TLS
// handshake of its own, sends no request, and asks the system's certificate
// chain engine what is wrong, as WinHTTP would have.
#pragma once

#include <cstdint>
#include <string>

#include "acquire/web_address.h"

namespace qb {

// kOther when the handshake itself fails or the certificate passes.
CertificateProblem DiagnoseCertificate(const std::string& host, std::uint16_t port, std::uint32_t timeoutMilliseconds);

}  // namespace qb
