#include "Launchers/LauncherDocumentTypes.h"

#include <array>
#include <string>
#include <string_view>
#include <utility>

namespace tarvik {

namespace {

/// What a document type is recognised and called by.
constexpr std::array<std::string_view, 6> passedOn = {"CFBundleTypeExtensions", "CFBundleTypeMIMETypes",
                                                      "CFBundleTypeName",       "CFBundleTypeOSTypes",
                                                      "CFBundleTypeRole",       "LSItemContentTypes"};

PropertyList::Dictionary launcherTypeOf(const PropertyList& type) {
    PropertyList::Dictionary told;
    for (const std::string_view key : passedOn)
        if (const PropertyList* value = type.find(key)) told.emplace(key, *value);
    if (!told.empty()) told.emplace("LSHandlerRank", "Alternate");
    return told;
}

}  // namespace

PropertyList::List LauncherDocumentTypes::of(const PropertyList& metadata) {
    PropertyList::List types;
    const PropertyList* const named = metadata.find("CFBundleDocumentTypes");
    const auto* const list = named ? named->as<PropertyList::List>() : nullptr;
    if (!list) return types;
    for (const PropertyList& type : *list)
        if (auto told = launcherTypeOf(type); !told.empty()) types.emplace_back(std::move(told));
    return types;
}

}  // namespace tarvik
