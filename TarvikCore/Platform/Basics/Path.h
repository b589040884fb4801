#pragma once

#include <filesystem>

namespace tarvik {

/// Paths are bytes, not text: a name that is no valid UTF-8 survives a move.
namespace fs = std::filesystem;

}  // namespace tarvik
