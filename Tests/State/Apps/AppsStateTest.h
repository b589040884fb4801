#pragma once

#include "State/StateWorld.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

namespace tarvik::test {

/// A test on the applications of a machine.
class AppsStateTest : public StateWorld {
protected:
    /// An application of about that many bytes, with as many in its cache.
    fs::path app(const std::string& name, std::size_t bytes = 4096, std::size_t cacheBytes = 0) {
        const fs::path bundle = applications / (name + ".app");
        makeBundle(bundle, {{"CFBundleIdentifier", "org.example." + name}});
        makeFileOfSize(bundle / "Contents/Resources/filling", bytes);
        if (cacheBytes > 0) makeFileOfSize(world.home / "Library/Caches" / name / "cache", cacheBytes);
        return bundle;
    }
    void select(const std::vector<fs::path>& bundles) {
        for (const fs::path& bundle : bundles) appsTab().setAppSelected(FilePath(bundle), true);
    }
    void move(const std::vector<fs::path>& bundles) {
        select(bundles);
        appsTab().confirmAndMove();
        settle();
    }
    std::vector<std::string> names() const {
        std::vector<std::string> names;
        for (const AppRow& row : appsTab().apps()) names.push_back(row.entry.name);
        return names;
    }
    fs::path onDrive(const std::string& name) const { return world.drive / "ExternalTarvik/Apps" / (name + ".app"); }

    fs::path applications = world.folder / "Applications";
};

}  // namespace tarvik::test
