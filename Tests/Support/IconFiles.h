#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Icon files of a Mac, made for tests.
namespace tarvik::test {

/// An icon file of the entries, each a type of four letters and its bytes.
std::string iconFile(const std::vector<std::pair<std::string, std::string>>& entries);
/// The beginning of a PNG picture of that size, and nothing more of it.
std::string pngBeginning(std::uint32_t width, std::uint32_t height);
/// A number as it stands in such files.
std::string fourBytes(std::uint32_t number);

}  // namespace tarvik::test
