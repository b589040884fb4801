#include "codesign/Detritus.h"

#include "codesign/AttributeNames.h"

#include <string>
#include <string_view>

namespace tarvik::codesign::Detritus {

namespace {

bool isForbidden(std::string_view name) {
    for (const std::string_view forbidden : {"com.apple.FinderInfo", "com.apple.ResourceFork"})
        if (name == forbidden || name.ends_with("." + std::string(forbidden))) return true;
    return false;
}

}  // namespace

bool isOn(int item) {
    const std::string names = attributeNamesOf(item);
    for (std::size_t at = 0; at < names.size();) {
        const std::string_view name(names.c_str() + at);
        if (isForbidden(name)) return true;
        at += name.size() + 1;
    }
    return false;
}

}  // namespace tarvik::codesign::Detritus
