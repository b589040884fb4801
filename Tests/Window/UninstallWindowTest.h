#pragma once

#include "State/Uninstall/UninstallState.h"
#include "Support/Bundles.h"
#include "Window/AppsWindowTest.h"

#include <algorithm>
#include <string>

namespace tarvik::test {

/// The Uninstall tab over a machine with applications.
class UninstallWindowTest : public AppsWindowTest {
protected:
    UninstallWindowTest() { makeFolder(applications); }

    /// An application of a vendor of its own, of about that many bytes.
    fs::path app(const std::string& name, std::size_t bytes = 4096) {
        const fs::path bundle = AppsWindowTest::app(name, bytes);
        makeBundle(bundle, {{"CFBundleIdentifier", identifierOf(name)}, {"CFBundleShortVersionString", "1.2"}});
        return bundle;
    }
    static std::string identifierOf(const std::string& name) { return "org." + name + ".app"; }

    UninstallState& tab() { return opened->state().tab<UninstallState>(); }
    /// What belongs to an application of `app` beside its bundle, in most categories.
    void makeServiceFiles(const std::string& name) {
        const std::string id = identifierOf(name);
        const fs::path library = world.home / "Library";
        makeFileOfSize(library / "Application Support" / name / "documents", 2'000'000);
        makeFileOfSize(library / "Application Support" / id / "state", 40'000);
        makeFileOfSize(library / "Caches" / id / "cache", 1'500'000);
        makeFileOfSize(library / "Logs" / name / "today.log", 30'000);
        makeFile(library / "Preferences" / (id + ".plist"), "<plist/>");
        makeFile(library / "LaunchAgents" / (id + ".plist"), "<plist/>");
        makeFile(world.folder / "Library/LaunchDaemons" / (id + ".plist"), "<plist/>");
    }
    WindowUnderTest& openTab(QSize size = large) {
        open(size).openTab("uninstall");
        settle();
        return *opened;
    }
    /// Lets everything that is under way come to its end, and what it has changed be laid out.
    void settle() {
        EXPECT_TRUE(opened->waitUntil([&] { return opened->state().isIdle(); }));
        for (const char* list : {"uninstallList", "planList", "uninstallHero"})
            if (QQuickItem* shown = opened->find(list)) QMetaObject::invokeMethod(shown, "forceLayout");
    }
    /// Presses the row of the application, wherever in the list that is.
    void press(const std::string& name) {
        const auto& rows = tab().list()->rows();
        const auto row = std::find_if(rows.begin(), rows.end(), [&](const UninstallListRow& each) {
            return each.app() && each.app()->displayName == name;
        });
        QMetaObject::invokeMethod(&opened->item("uninstallList"), "positionViewAtIndex",
                                  Q_ARG(int, static_cast<int>(row - rows.begin())), Q_ARG(int, 4));
        opened->click(QString::fromStdString("app-" + name));
    }
    WindowUnderTest& choose(const std::string& name) {
        press(name);
        EXPECT_TRUE(opened->waitUntilShown("uninstallPlan"));
        settle();
        return *opened;
    }
};

}  // namespace tarvik::test
