#pragma once

#include "Platform/Basics/Path.h"

#include <optional>
#include <string>

/// The icon of an application bundle.
namespace tarvik::BundleIcon {

/// The icon's PNG picture that suits a square of `side` points best; see `IconFile`. Nothing when the bundle names no
/// icon, or it cannot be read. Blocks; any thread; never throws.
std::optional<std::string> png(const fs::path& bundle, int side);

}  // namespace tarvik::BundleIcon
