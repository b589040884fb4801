#pragma once

#include <optional>
#include <string>
#include <string_view>

/// The digests that a signature is made of, as raw bytes.
namespace tarvik::signatures::Digest {

enum class Kind {
    sha1,    ///< 20 bytes, for readers of old
    sha256,  ///< 32 bytes
};

std::string of(std::string_view bytes, Kind kind);
/// Of all that an open file holds from where it is, read in pieces. Nothing when it cannot be read to its end; errno
/// tells.
std::optional<std::string> ofOpenFile(int file, Kind kind);
/// `bytes` in hexadecimal digits.
std::string hexadecimal(std::string_view bytes);

}  // namespace tarvik::signatures::Digest
