#pragma once

#include <functional>
#include <string_view>

namespace tarvik::packages {

/// Gives bytes a block at a time; each block is valid until the next call, and an empty one is the end.
/// @throws PackageFailure when there is no such end.
using ByteSource = std::function<std::string_view()>;

}  // namespace tarvik::packages
