#pragma once

#include <string>
#include <string_view>

/// The name that a link bears whose data has come back to its place: it still tells where the copy on the drive is, and
/// is no finding any more. Pure.
namespace tarvik::StashedLink {

inline constexpr std::string_view infix = ".tarvik-stashed-";

/// `moment` tells one from the next.
inline std::string nameFor(std::string_view link, std::string_view moment) {
    return std::string(link).append(infix).append(moment);
}
inline bool isOne(std::string_view name) {
    return name.find(infix) != std::string_view::npos;
}

}  // namespace tarvik::StashedLink
