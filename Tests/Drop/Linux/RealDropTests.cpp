// Something that another program drags to the window, over a real display.
#include "Drop/Linux/DragSource.h"
#include "Platform/Processes/CommandRunner.h"
#include "State/Uninstall/UninstallState.h"
#include "Support/Bundles.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"
#include "Support/World.h"
#include "Window/WindowUnderTest.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QProcess>
#include <QTest>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarvik::test {

namespace {

constexpr QSize windowSize{900, 600};
/// Right of the window that is dragged out of.
constexpr QPoint windowPlace{200, 0};

class RealDrop : public testing::Test {
protected:
    void SetUp() override {
        if (QGuiApplication::platformName() != "xcb") TARVIK_SKIP_BECAUSE("There is no Xvfb.");
        if (CommandRunner::run("/usr/bin/xdotool", {"version"}).status != 0)
            TARVIK_SKIP_BECAUSE("There is no xdotool.");
        makeBundle(atlas, {{"CFBundleIdentifier", "org.atlas.viewer"}});
        window = std::make_unique<WindowUnderTest>(world.host, windowSize);
        window->window().setPosition(windowPlace);
        window->openTab("uninstall");
        ASSERT_TRUE(window->waitUntilShown("uninstallDropZone"));
        ASSERT_TRUE(window->waitUntil([&] { return window->state().isIdle(); }));
    }

    static void pointer(const std::vector<std::string>& words) {
        EXPECT_EQ(CommandRunner::run("/usr/bin/xdotool", words).status, 0);
    }
    static void movePointer(QPoint place) {
        pointer({"mousemove", std::to_string(place.x()), std::to_string(place.y())});
    }
    QQuickItem& dropArea() const { return window->item("uninstallDropArea"); }
    bool isOverIt() const { return dropArea().property("containsDrag").toBool(); }

    /// Lets another program drag something to the window, as a user does. @returns how that program sees the end.
    std::string drag(const QStringList& what) {
        QProcess source;
        source.start(QCoreApplication::applicationFilePath(), QStringList(DragSource::option) + what);
        const auto said = [&](const char* word) {
            return window->waitUntil([&] {
                output += source.readAllStandardOutput();
                return output.contains(word);
            });
        };
        EXPECT_TRUE(said("ready\n"));
        output.clear();
        movePointer({DragSource::place, DragSource::place});
        pointer({"mousedown", "1"});
        int step = 0;
        const QPoint goal = windowPlace + QPoint(650, 300);
        // It is over the window once the pointer has moved there; a drag may begin a moment after the press.
        EXPECT_TRUE(window->waitUntil([&] {
            movePointer(goal + QPoint(++step % 5, 0));
            return isOverIt();
        }));
        pointer({"mouseup", "1"});
        EXPECT_TRUE(said("\n"));
        EXPECT_TRUE(window->waitUntil([&] { return !isOverIt(); }));
        source.kill();
        source.waitForFinished();
        return output.trimmed().toStdString();
    }
    QString urlTo(const fs::path& path) const { return "file://" + QString::fromStdString(path.native()); }

    World world;
    fs::path atlas = world.folder / "Applications/Atlas Viewer.app";
    std::unique_ptr<WindowUnderTest> window;
    QByteArray output;
};

TEST_F(RealDrop, PlansAnApplicationThatAFileManagerDrops) {
    EXPECT_EQ(drag({"urls", urlTo(atlas), urlTo(world.home / "other")}), "copy") << "never as a move";
    EXPECT_TRUE(window->waitForText("planName", "Atlas Viewer"));
}

TEST_F(RealDrop, PlansAnApplicationWhosePathIsDroppedAsText) {
    EXPECT_EQ(drag({"text", QString::fromStdString(atlas.native()) + "\n"}), "copy");
    EXPECT_TRUE(window->waitForText("planName", "Atlas Viewer"));
}

TEST_F(RealDrop, SaysThatAWebAddressIsNoApplication) {
    EXPECT_EQ(drag({"urls", "https://example.org/Atlas.app"}), "copy");
    EXPECT_TRUE(window->waitForText("errorToast/toastText", "Not an app bundle: Atlas.app"));
    EXPECT_TRUE(window->isShown("heroTitle"));
}

}  // namespace

}  // namespace tarvik::test
