#pragma once

#include "Packages/ByteSource.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarvik::packages {

enum class Packing {
    zlib,   ///< what zlib makes, with its own head or gzip's
    bzip2,  ///< what bzip2 makes
    lzma,   ///< what xz makes, or lzma before it
};

/// Unpacks a source as it is read; what it needs of memory does not grow with it.
ByteSource unpackedSource(Packing packing, ByteSource packed);
/// All of it. @throws PackageFailure when it is damaged, or more than `limit`.
std::string unpackedBytes(Packing packing, std::string_view packed, std::uint64_t limit);
/// The same by what the first bytes tell: gzip, bzip2, xz, pbzx (a Mac's, of many pieces of xz), or bytes as they are.
ByteSource recognizedSource(ByteSource packed);

}  // namespace tarvik::packages
