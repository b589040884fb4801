#include "AppData/Slug.h"

#include "Platform/Text/Text.h"

namespace tarvik {

std::string Slug::derive(const AppIdentity& identity) {
    if (identity.executableName && !identity.executableName->empty()) return Text::lowerCased(*identity.executableName);
    const fs::path fileName = identity.bundlePath.stem();
    return Text::lowerCased(fileName.empty() ? identity.displayName : fileName.native());
}

std::string Slug::supplementalDisplayName(const AppRecord& record) {
    return derive(AppIdentity::of(record));
}

}  // namespace tarvik
