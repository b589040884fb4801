#include "Applications/AppFlags.h"

#include "Platform/Files/Files.h"

namespace tarvik {

namespace {

bool hasContents(const fs::path& folder) {
    return !Files::names(folder).empty();
}

}  // namespace

bool AppFlags::isMacAppStore(const fs::path& bundle) {
    return Files::exists(bundle / "Contents/_MASReceipt/receipt");
}

bool AppFlags::hasLoginItems(const fs::path& bundle) {
    return hasContents(bundle / "Contents/Library/LoginItems");
}

bool AppFlags::hasSystemExtension(const fs::path& bundle) {
    return hasContents(bundle / "Contents/Library/SystemExtensions") ||
           hasContents(bundle / "Contents/Library/Extensions");
}

}  // namespace tarvik
