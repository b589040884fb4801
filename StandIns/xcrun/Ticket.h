#pragma once

#include "Platform/Basics/Path.h"

/// The notary's ticket that is stapled to a bundle.
namespace tarvik::xcrun::Ticket {

enum class State {
    none,
    fits,       ///< It names the bundle as it was signed.
    doesNotFit  ///< It names other code, or the bundle has no signature to compare it with, or it is no ticket.
};

/// Looks at `Contents/CodeResources` of a bundle, where it is stapled. Whether the notary still stands by it is not
/// asked.
/// @throws SignatureFailure when there is no bundle at `path`
State stateOf(const fs::path& path);

}  // namespace tarvik::xcrun::Ticket
