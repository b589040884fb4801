#include "AppData/DataName.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace tarvik {

namespace {

/// In bytes: systems take no longer path. A list of some MB could name one of a million components.
constexpr std::size_t longestPath = 4096;

/// The line breaks of Unicode that are no control characters of ASCII: U+0085, U+2028, U+2029.
constexpr std::array<std::string_view, 3> lineBreaks = {"\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9"};

bool isControl(char byte) {
    return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F;
}

}  // namespace

bool DataName::isUsable(std::string_view name) {
    if (name.size() > longestPath || name.find('\0') != name.npos) return false;
    for (;;) {
        const std::string_view component = name.substr(0, name.find('/'));
        if (component.empty() || component == "." || component == "..") return false;
        if (component.size() == name.size()) return true;
        name.remove_prefix(component.size() + 1);
    }
}

bool DataName::isOneComponent(std::string_view name) {
    return isUsable(name) && name.find('/') == name.npos && std::none_of(name.begin(), name.end(), isControl) &&
           std::none_of(lineBreaks.begin(), lineBreaks.end(),
                        [&](std::string_view lineBreak) { return name.find(lineBreak) != name.npos; });
}

}  // namespace tarvik
