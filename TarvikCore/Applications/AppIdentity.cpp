#include "Applications/AppIdentity.h"

#include "Applications/AppRecord.h"
#include "Platform/Basics/FieldHash.h"

namespace tarvik {

AppIdentity AppIdentity::of(const AppRecord& record) {
    return {.bundlePath = record.bundlePath,
            .displayName = record.displayName,
            .bundleIdentifier = record.bundleIdentifier,
            .executableName = record.executableName};
}

}  // namespace tarvik

std::size_t std::hash<tarvik::AppIdentity>::operator()(const tarvik::AppIdentity& identity) const noexcept {
    return tarvik::FieldHash::of(identity.bundlePath, identity.displayName, identity.bundleIdentifier,
                                 identity.executableName);
}
