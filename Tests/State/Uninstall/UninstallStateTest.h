#pragma once

#include "Platform/Files/Files.h"
#include "State/EventLoop.h"
#include "State/StateWorld.h"
#include "State/Uninstall/UninstallState.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

namespace tarvik::test {

/// The Uninstall tab over a small machine with applications.
class UninstallStateTest : public StateWorld {
protected:
    UninstallStateTest() { makeFolder(applications); }

    UninstallState& tab() const { return state->tab<UninstallState>(); }
    /// An application with a cache.
    fs::path makeApp(const std::string& name) {
        const fs::path bundle = applications / (name + ".app");
        makeBundle(bundle, {{"CFBundleIdentifier", "org." + name + ".app"}});
        makeFile(cacheOf(name) / "cached", "cached");
        return bundle;
    }
    fs::path cacheOf(const std::string& name) const { return world.home / "Library/Caches" / name; }
    void refresh() {
        tab().refreshUninstall();
        settle();
    }
    const AppRecord* appNamed(const std::string& name) const {
        const auto& apps = tab().uninstallApps();
        const auto found =
            std::find_if(apps.begin(), apps.end(), [&](const AppRecord& record) { return record.displayName == name; });
        return found == apps.end() ? nullptr : &*found;
    }
    /// Refreshes, chooses the application and waits for its plan.
    void choose(const std::string& name) {
        refresh();
        ASSERT_TRUE(appNamed(name));
        tab().selectUninstallApp(*appNamed(name));
        settle();
        ASSERT_TRUE(tab().uninstallPlan());
    }
    void remove() {
        tab().runUninstall(false);
        settle();
    }
    QStringList log() const { return tab().uninstallLogLines(); }
    std::string info() const { return state->lastInfo().toStdString(); }
    std::string error() const { return state->lastError().toStdString(); }
    /// The names of the list's rows.
    std::vector<std::string> listed() const {
        std::vector<std::string> names;
        for (const UninstallListRow& row : tab().list()->rows())
            if (row.app()) names.push_back(row.app()->displayName);
        return names;
    }
    /// Makes `pkgutil` wait when it is asked for the application, until `letReceiptsGo`; a plan waits with it.
    void holdReceiptsOf(const std::string& name) {
        world.host.tools.pkgutil =
            world.tool("pkgutil", "case \"$*\" in *" + name + "*) : > '" + (world.folder / "asked").native() + "'; " +
                                      waitFor(world.folder / "go on") + ";; esac");
        state = std::make_unique<AppState>(world.host, dialogs);
    }
    void waitForHeldReceipts() {
        spinUntil([this] { return Files::exists(world.folder / "asked"); });
    }
    void letReceiptsGo() { makeFile(world.folder / "go on"); }

    const fs::path applications = world.folder / "Applications";
};

}  // namespace tarvik::test
