#include "Launchers/LauncherAppBuilder.h"
#include "Support/Bundles.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gtest/gtest.h>

#include <sys/xattr.h>

namespace tarvik::test {

// A launcher with the mark of a download would not start without a question.
TEST(LauncherAttributes, AreNotThoseOfADownloadedApplication) {
    World world;
    const fs::path app = world.drive / "Editor.app";
    const fs::path launcher = world.folder / "Applications/Editor.app";
    makeBundle(app, {{"CFBundleName", "Editor"}, {"CFBundleIconFile", "Icon"}});
    makeFile(app / "Contents/Resources/Icon.icns", "picture");
    world.host.tools.externalAppLauncher = world.folder / "external-app-launcher";
    makeFile(world.host.tools.externalAppLauncher, "the program");
    for (const fs::path& item :
         {app, app / "Contents", app / "Contents/Resources/Icon.icns", world.host.tools.externalAppLauncher})
        if (::setxattr(item.c_str(), "user.com.apple.quarantine", "0083", 4, 0) != 0)
            TARVIK_SKIP_BECAUSE("needs extended attributes");
    LauncherAppBuilder::install(world.host, app, launcher, app, {});
    int items = 0;
    for (const auto& entry : fs::recursive_directory_iterator(launcher)) {
        EXPECT_EQ(::listxattr(entry.path().c_str(), nullptr, 0), 0) << entry.path();
        ++items;
    }
    EXPECT_EQ(::listxattr(launcher.c_str(), nullptr, 0), 0);
    EXPECT_GE(items, 7);
}

}  // namespace tarvik::test
