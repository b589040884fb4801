#pragma once

#include "Platform/Machine/Host.h"

#include <optional>
#include <string>

/// The identifier by which a bundle is known to the system, such as "org.example.Editor".
namespace tarvik::BundleIdentifierReader {

/// Nothing when the bundle names none. Blocks; never throws.
std::optional<std::string> read(const Host& host, const fs::path& bundle);

}  // namespace tarvik::BundleIdentifierReader
