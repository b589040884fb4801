#include "Packages/SafeName.h"

#include <algorithm>
#include <cstddef>

namespace tarvik::packages::SafeName {

namespace {

constexpr std::size_t longestPath = 1023;
constexpr std::size_t longestName = 255;

}  // namespace

std::optional<Components> components(std::string_view name) {
    if (name.starts_with('/') || name.size() > longestPath || name.find('\0') != std::string_view::npos)
        return std::nullopt;
    Components result;
    while (!name.empty()) {
        const std::string_view component = name.substr(0, name.find('/'));
        name.remove_prefix(std::min(name.size(), component.size() + 1));
        if (component.empty() || component == ".") continue;
        if (component == ".." || component.size() > longestName) return std::nullopt;
        result.emplace_back(component);
    }
    return result;
}

std::string joined(const Components& components) {
    std::string text;
    for (const std::string& each : components) {
        if (!text.empty()) text += '/';
        text += each;
    }
    return text;
}

}  // namespace tarvik::packages::SafeName
