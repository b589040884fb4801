#pragma once

#include "Platform/Basics/Path.h"

/// Whether a bundle is still as it was signed.
namespace tarvik::codesign::Verification {

struct Depth {
    /// Code inside of the bundle is verified as the bundle is. Without, only its own record is compared.
    bool isDeep = false;
    /// What no seal covers is refused: Finder information, links that lead out of the bundle.
    bool isStrict = false;
};

/// Reads every byte that the seal covers. @throws SignatureFailure with the first thing that is wrong; of resources,
/// with each of them
void verify(const fs::path& bundle, Depth depth);

}  // namespace tarvik::codesign::Verification
