#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarvik::packages {

/// The bytes that a text in base 64 stands for, white space passed over; nothing when it is none. Pure.
std::optional<std::string> bytesOfBase64(std::string_view text);

}  // namespace tarvik::packages
