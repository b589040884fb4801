#pragma once

#include <optional>
#include <string>
#include <string_view>

/// The icon files of a Mac: a picture in several sizes. Pure.
namespace tarvik::IconFile {

/// The PNG picture in the bytes of an icon file that suits a square of `side` points best: the smallest that is at
/// least as large, else the largest. Nothing when the bytes are no icon file, or hold no PNG picture, or only such that
/// claim to be larger than any icon is. Whatever the bytes are, nothing outside of them is read.
std::optional<std::string> png(std::string_view bytes, int side);

}  // namespace tarvik::IconFile
