#include "AppData/SlugDataEligibility.h"

#include "AppData/CuratedDomains.h"
#include "Platform/Text/Text.h"

#include <string>

namespace tarvik {

bool SlugDataEligibility::includesDotfileAndNodeCaches(const AppIdentity& identity) {
    if (!identity.bundleIdentifier) return true;
    const OwnedPaths* const known = CuratedDomains::entry(identity.bundleIdentifier);
    if (known && known->excludesDotfileAndNodeCaches) return false;
    const std::string identifier = Text::lowerCased(*identity.bundleIdentifier);
    return identifier.find("url-handler") == identifier.npos && identifier.find("urlhandler") == identifier.npos;
}

}  // namespace tarvik
