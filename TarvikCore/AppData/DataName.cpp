#include "AppData/DataName.h"

#include <cstddef>

namespace tarvik {

namespace {

/// In bytes: systems take no longer path. A list of some MB could name one of a million components.
constexpr std::size_t longestPath = 4096;

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

}  // namespace tarvik
