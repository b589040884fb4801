#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tarvik::Practice {

/// How bytes in packages can be packed.
enum class Compression { none, zlib, gzip, bzip2, xz, pbzx };

/// The bytes, packed; the same on every run. `chunk` is for pbzx, in bytes.
/// @throws Failure when a library refuses.
std::string packed(std::string_view bytes, Compression compression, std::size_t chunk = 1 << 20);

}  // namespace tarvik::Practice
