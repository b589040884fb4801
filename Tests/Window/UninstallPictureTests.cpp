#include "Platform/Machine/TrashCan.h"
#include "State/Threads/BusyThreads.h"
#include "Window/UninstallWindowTest.h"

#include <QDragEnterEvent>
#include <QMimeData>

namespace tarvik::test {

namespace {

std::string nameOfUninstallPicture(QSize size, const char* more = "") {
    const std::string test = testing::UnitTest::GetInstance()->current_test_info()->name();
    return "Uninstall" + test.substr(0, test.find('/')) + more + "-" + std::to_string(size.width());
}

/// The Uninstall tab in each of its states, in the smallest and in a comfortable size, for people to look at.
class UninstallPicture : public UninstallWindowTest, public testing::WithParamInterface<QSize> {
protected:
    UninstallPicture() {
        addVolume("/", "Macintosh HD").isInternal = true;
        world.host.trash = makeRootedTrashCan(world.home);
    }
    void TearDown() override {
        if (opened) opened->savePicture(nameOfUninstallPicture(GetParam()));
        opened.reset();
    }
    void makeApps() {
        for (const char* name : {"Atlas", "Blender", "Cadence", "Darkroom", "Editor", "Figures"}) app(name, 900'000);
        for (const char* name : {"Draw", "Print", "Write"})
            makeBundle(applications / (std::string(name) + ".app"),
                       {{"CFBundleIdentifier", std::string("com.acme.") + name}});
        appOnDrive("Harbour", 7'000'000);
        makeFile(app("Store") / "Contents/_MASReceipt/receipt");
        makeFolder(app("Driver") / "Contents/Library/SystemExtensions/driver.systemextension");
        makeServiceFiles("Atlas");
    }
    WindowUnderTest& openHere() { return openTab(GetParam()); }
};

INSTANTIATE_TEST_SUITE_P(Sizes, UninstallPicture, testing::Values(small, large),
                         [](const auto& size) { return std::to_string(size.param.width()); });

TEST_P(UninstallPicture, Nothing) {
    auto& window = openHere();
    EXPECT_TRUE(window.isShown("noUninstallApps"));
    EXPECT_TRUE(window.isShown("noPastUninstalls"));
}

TEST_P(UninstallPicture, Hero) {
    makeApps();
    auto& window = openHere();
    EXPECT_TRUE(window.isShown("heroTitle"));
    window.click("group-Acme Group");
}

TEST_P(UninstallPicture, BySize) {
    makeApps();
    makeFileOfSize(applications / "Blender.app/large", 130'000'000);
    auto& window = openHere();
    window.click("uninstallSort");
    EXPECT_TRUE(window.waitUntilShown("choice-2"));
    window.savePicture(nameOfUninstallPicture(GetParam(), "-menu"));
    window.click("choice-2");
    EXPECT_TRUE(window.waitUntilShown("header-100 MB – 1 GB"));
}

TEST_P(UninstallPicture, Scanning) {
    makeApps();
    world.host.tools.pkgutil = world.tool("pkgutil", waitFor(world.folder / "go on"));
    auto& window = openHere();
    press("Atlas");
    EXPECT_TRUE(window.waitUntilShown("scanningServiceFiles"));
    window.savePicture(nameOfUninstallPicture(GetParam(), "-now"));
    makeFile(world.folder / "go on");
    EXPECT_TRUE(window.waitUntilShown("uninstallPlan"));
    settle();
}

TEST_P(UninstallPicture, Plan) {
    makeApps();
    world.host.tools.pkgutil = world.tool("pkgutil", "echo org.Atlas.app");
    world.host.tools.mdutil = world.tool("mdutil", "echo 'Indexing disabled.'");
    auto& window = openHere();
    choose("Atlas");
    for (const auto category :
         {UninstallCategory::applicationSupport, UninstallCategory::caches, UninstallCategory::launchDaemons})
        tab().toggleSection(category);
    tab().toggleCategoryChecked(UninstallCategory::launchAgents);
    settle();
    window.savePicture(nameOfUninstallPicture(GetParam(), "-open"));
    const auto& list = window.item("planList");
    EXPECT_EQ(list.property("contentY"), list.property("originY")) << "it begins at its top";
    window.click("planMoreInfoButton");
}

TEST_P(UninstallPicture, AfterARun) {
    makeApps();
    auto& window = openHere();
    choose("Atlas");
    window.click("dryRunButton");
    EXPECT_TRUE(window.waitUntilShown("infoToast"));
    settle();
    window.savePicture(nameOfUninstallPicture(GetParam(), "-dry"));
    fs::remove_all(world.home / "Library/Logs/Atlas");
    makeFile(world.home / "Library/Logs/Atlas", "another");
    window.click("removeButton");
    EXPECT_TRUE(window.waitUntilShown("alertDialog"));
    window.savePicture(nameOfUninstallPicture(GetParam(), "-question"));
    window.click("alertButton-0");
    EXPECT_TRUE(window.waitUntilShown("past-Atlas"));
    settle();
}

TEST_P(UninstallPicture, Interrupted) {
    makeApps();
    openHere();
    AppUninstallSession session;
    session.id = "interrupted-20261115_174540";
    session.appName = "Cadence";
    session.createdAt = world.host.now();
    std::vector<UninstallUndo::Item> items;
    for (const char* name : {"Cadence.app", "Cadence", "org.Cadence.app.plist"}) {
        session.movedItems.push_back({.originalPath = applications / name, .sizeBytes = 900'000});
        session.movedItems.back().succeeded = items.empty();
        if (!items.empty()) continue;
        items.push_back({.originalPath = applications / name, .sizeBytes = 900'000});
        items.back().state = UninstallUndo::Item::State::waiting;
    }
    tab().past()->setSessions({session});
    tab().past()->setItems({{session.id, items}});
    tab().past()->open(session.id);
    EXPECT_EQ(opened->text("past-Cadence/pastNote"), "2 items were not reached");
    EXPECT_TRUE(opened->isShown("past-Cadence/putBackButton"));
    settle();
    const auto& badge = opened->item("past-Cadence/pastState");
    EXPECT_EQ(badge.property("text").toString(), "interrupted");
    EXPECT_FALSE(opened->item("past-Cadence/pastName").property("truncated").toBool()) << "there is room for both";
}

TEST_P(UninstallPicture, HeldOverIt) {
    makeApps();
    auto& window = openHere();
    QMimeData data;
    data.setUrls({QUrl("file:///Applications/Atlas.app")});
    QDragEnterEvent enter(QPoint(GetParam().width() - 200, 300), Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&window.window(), &enter);
    EXPECT_TRUE(window.item("uninstallDropArea").property("containsDrag").toBool());
}

TEST_P(UninstallPicture, LongNames) {
    const std::string name =
        "An application whose name\nhas a line break and is far longer than any column is wide, whatever the size may "
        "be";
    app(name, 3'000'000);
    makeFileOfSize(world.home / "Library/Caches" / name / "cache", 20'000);
    makeFile(applications / (name + ".app") / "Contents/_MASReceipt/receipt");
    openHere();
    choose(name);
    for (int row = 8; row >= 0; --row) tab().setPlanRowOpen(row, true);
}

TEST_P(UninstallPicture, Hundreds) {
    for (int number = 100; number < 400; ++number) app("App " + std::to_string(number));
    const std::string id = identifierOf("App 100");
    for (int number = 0; number < 1000; ++number)
        makeFile(world.home / "Library/Preferences/ByHost" / (id + "." + std::to_string(number) + ".plist"),
                 "<plist/>");
    auto& window = openHere();
    window.item("uninstallSearch").forceActiveFocus();
    window.type("app 100");
    choose("App 100");
    for (int row = 3; row >= 0; --row) tab().setPlanRowOpen(row, true);
    EXPECT_EQ(window.text("planItems"), "1001 items");
    settle();
    const auto& remove = window.item("removeButton");
    EXPECT_LE(remove.mapToScene({remove.width(), 0}).x(), GetParam().width() - 8) << "all of it is to be seen";
}

}  // namespace

}  // namespace tarvik::test
