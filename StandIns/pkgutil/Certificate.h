#pragma once

#include <string>

namespace tarvik::pkgutil {

/// What a user is told of a certificate.
struct Certificate {
    /// Whose it is.
    std::string name;
    /// "2030-01-31 12:00:00 +0000".
    std::string expires;
    /// The SHA-256 digest of it, raw.
    std::string fingerprint;
};

}  // namespace tarvik::pkgutil
