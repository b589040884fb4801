#pragma once

#include "Platform/Basics/Path.h"

/// Signs a bundle ad hoc: its files are sealed, and nobody vouches for them.
namespace tarvik::codesign::Signing {

struct Manner {
    /// A signature that is there is replaced; without, it is a failure.
    bool isForced = false;
    /// Code inside of the bundle is signed first. Without, it must have a signature.
    bool isDeep = false;
};

/// True when a signature was replaced. Nothing is written before all has been looked at.
/// @throws SignatureFailure; FileError
bool sign(const fs::path& bundle, Manner manner);

}  // namespace tarvik::codesign::Signing
