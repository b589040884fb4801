#pragma once

#include "Platform/Basics/Path.h"
#include "pkgutil/Certificate.h"

#include <memory>
#include <openssl/x509.h>
#include <optional>
#include <string>
#include <vector>

namespace tarvik::pkgutil {

/// The certificates that come with a signature.
class Chain {
public:
    /// As DER, the signer's first. What cannot be read is left out, and without the first there is no signer.
    explicit Chain(const std::vector<std::string>& certificates);

    /// Null where it cannot be read; belongs to the chain.
    X509* signer() const;
    std::vector<Certificate> described() const;
    /// Whether the signer bears the mark of a developer's certificate for packages: the
    /// extension 1.2.840.113635.100.6.1.14.
    bool isDeveloper() const;

    enum class Verdict { trusted, expired, untrusted };
    /// Whether a certificate in the folder vouches for the signer, today or, when it has expired, in its days. There
    /// may be no folder, and in it what is no certificate: neither vouches for anybody.
    Verdict judged(const std::optional<fs::path>& trusted) const;

private:
    struct End {
        void operator()(X509* certificate) const { X509_free(certificate); }
    };
    std::vector<std::unique_ptr<X509, End>> m_certificates;
    bool m_hasSigner = false;
};

}  // namespace tarvik::pkgutil
