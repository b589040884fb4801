#include "Support/Bundles.h"

#include "Support/Tree.h"

namespace tarvik::test {

void makeBundle(const fs::path& bundle, const PropertyList::Dictionary& info) {
    makeFile(bundle / "Contents/MacOS/program");
    makeFile(bundle / "Contents/Info.plist", PropertyList(info).xml());
}

void makeLauncher(const fs::path& bundle, const fs::path& target, const PropertyList::Dictionary& info) {
    makeBundle(bundle, info);
    makeFile(bundle / "Contents/Resources/ExternalAppTarget.txt", target.native() + "\n");
}

}  // namespace tarvik::test
