#include "Platform/Processes/Utf8Locale.h"

#include <algorithm>
#include <locale>
#include <stdexcept>

namespace tarvik::Utf8Locale {

namespace {

bool isKnown(const std::string& name) {
    try {
        return !std::locale(name).name().empty();
    } catch (const std::runtime_error&) {
        return false;
    }
}

}  // namespace

std::string name() {
    return firstKnown({"C.UTF-8", "en_US.UTF-8"});
}

std::string firstKnown(const std::vector<std::string>& names) {
    const auto known = std::find_if(names.begin(), names.end(), isKnown);
    if (known != names.end()) return *known;
    return names.empty() ? std::string() : names.back();
}

}  // namespace tarvik::Utf8Locale
