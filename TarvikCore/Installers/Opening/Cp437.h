#pragma once

#include <string>
#include <string_view>

/// The character set of the first PCs, which names in archives are in where nothing says that they are UTF-8.
namespace tarvik::Cp437 {

/// Every byte is a character. Pure.
std::string toUtf8(std::string_view bytes);

}  // namespace tarvik::Cp437
