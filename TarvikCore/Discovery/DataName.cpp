#include "Discovery/DataName.h"

namespace tarvik {

bool DataName::isUsable(std::string_view name) {
    if (name.find('\0') != name.npos) return false;
    for (;;) {
        const std::string_view component = name.substr(0, name.find('/'));
        if (component.empty() || component == "." || component == "..") return false;
        if (component.size() == name.size()) return true;
        name.remove_prefix(component.size() + 1);
    }
}

}  // namespace tarvik
