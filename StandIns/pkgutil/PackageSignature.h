#pragma once

#include "Platform/Basics/Path.h"
#include "pkgutil/Certificate.h"

#include <optional>
#include <string>
#include <vector>

/// Who vouches for a package. A signature counts when it is one over the digest of the archive's table of contents, as
/// the table is, by the key of the first certificate that comes with it; where there are two signatures, both must. The
/// digests of all files stand in the table.
namespace tarvik::pkgutil::PackageSignature {

enum class Status {
    none,       ///< nobody
    invalid,    ///< the signature or the table is not right
    untrusted,  ///< somebody whom nobody known vouches for
    expired,    ///< somebody who was vouched for
    developer,  ///< a developer with the mark of the system's maker, who is trusted
    trusted,    ///< somebody whom a trusted certificate vouches for
};

struct Judgement {
    Status status = Status::none;
    /// The signer's first, then who vouches for the one before.
    std::vector<Certificate> chain;
};

/// Judges a package by the certificates, PEM or DER, that lie as files in the folder `trusted`. A package that is a
/// folder, or no archive, has no signature. @throws FileError when it cannot be read.
Judgement judged(const fs::path& package, const std::optional<fs::path>& trusted);

/// What the tool prints.
std::string described(const fs::path& package, const Judgement& judgement);

}  // namespace tarvik::pkgutil::PackageSignature
