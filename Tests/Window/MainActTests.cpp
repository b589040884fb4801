// What the window does to applications, end to end on a practice machine with a real drive, and read back by tools that
// share nothing with it.
#include "Platform/Machine/SystemFolders.h"
#include "Practice/PracticeMachine.h"
#include "Records/HealthManifest.h"
#include "Records/InstallsDB.h"
#include "Support/Bundles.h"
#include "Support/OtherReaders.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/TrackingDatabase.h"
#include "Support/Tree.h"
#include "Window/WindowUnderTest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace tarvik::test {

namespace {

using namespace std::string_literals;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

/// The window over a practice machine with one more drive, which is a real file system. Two applications have their
/// data where applications usually have it, a third stands in a suite's folder.
class MainAct : public testing::TestWithParam<RealVolume::Kind> {
protected:
    void SetUp() override {
        TARVIK_NEEDS_VOLUMES_OF_KIND(GetParam());
        if (const auto reason = OtherReaders::missing()) TARVIK_SKIP_BECAUSE(*reason);
        const fs::path volumes = machine.root / "Volumes";
        volume.emplace(GetParam() == RealVolume::Kind::ext4 ? RealVolume::ext4(volumes, 64'000'000)
                                                            : RealVolume::memory(volumes, 64'000'000));
        addApp("Atelier/Brush", "org.example.brush");
        addApp("Atelier/Canvas", "org.example.canvas");
        makeFile(applications / "Atelier/Read me.txt", "A suite");
        makeFileOfSize(machine.home / "Library/Application Support/Brush/Strokes.db", 30'000, 7);
        makeTrackingDatabase(database);
        window = std::make_unique<WindowUnderTest>(host);
        chooseDrive();
    }

    void addApp(const std::string& name, const std::string& identifier) const {
        const fs::path bundle = applications / (name + ".app");
        makeBundle(bundle, {{"CFBundleIdentifier", identifier},
                            {"CFBundleName", bundle.stem().native()},
                            {"CFBundleShortVersionString", "2.1"}});
        makeFileOfSize(bundle / "Contents/Resources/Assets.car", 50'000, 3);
        makeLink(bundle / "Contents/Current", "Resources");
    }
    void chooseDrive() const {
        for (const DriveInfo& drive : window->state().drives())
            if (drive.mountPath == volume->path()) window->state().selectDrive(QString::fromStdString(drive.id));
        ASSERT_TRUE(window->state().selectedDrive());
        ASSERT_EQ(window->state().selectedDrive()->mountPath, volume->path());
    }

    /// Presses a button below the list and agrees to what is asked then.
    void pressAndAgree(const char* button) const {
        ASSERT_TRUE(window->waitUntil([&] { return window->isEnabled(button); }));
        window->click(button);
        window->click("alertButton-0");
    }
    void tick(const std::vector<std::string>& names) const {
        for (const std::string& name : names) window->click("app-" + QString::fromStdString(name) + "/appBox");
    }
    void waitForInfo(const QString& text) const {
        EXPECT_TRUE(window->waitForText("infoToast/toastText", text)) << window->state().lastError().toStdString();
        EXPECT_TRUE(window->waitUntil([&] { return window->state().isIdle(); }));
    }
    /// The names in the list, in any order.
    std::vector<std::string> listed() const {
        std::vector<std::string> names;
        QMetaObject::invokeMethod(&window->item("appList"), "forceLayout");
        const auto* content = window->item("appList").property("contentItem").value<QQuickItem*>();
        for (const QQuickItem* row : content->childItems())
            if (row->isVisible() && row->objectName().startsWith("app-"))
                names.push_back(row->objectName().mid(4).toStdString());
        return names;
    }

    /// What moves with the three applications, and where to.
    std::map<fs::path, fs::path> places() const {
        const fs::path library = machine.home / "Library";
        const fs::path apps = volume->path() / "ExternalTarvik/Apps";
        const fs::path data = volume->path() / "ExternalTarvik/Data/Library";
        return {{applications / "Sketchpad.app", apps / "Sketchpad.app"},
                {applications / "Tunesmith.app", apps / "Tunesmith.app"},
                {applications / "Atelier/Brush.app", apps / "Brush.app"},
                {library / "Application Support/Sketchpad", data / "Application Support/Sketchpad"},
                {library / "Application Support/Tunesmith", data / "Application Support/Tunesmith"},
                {library / "Application Support/Brush", data / "Application Support/Brush"},
                {library / "Caches/org.example.practice1", data / "Caches/org.example.practice1"},
                {library / "Caches/org.example.practice2", data / "Caches/org.example.practice2"}};
    }
    /// The links that stand at these places, and what Python finds them to lead to.
    static std::map<fs::path, fs::path> linksAt(const std::map<fs::path, fs::path>& places) {
        std::map<fs::path, fs::path> links;
        for (const auto& [place, goal] : places)
            if (fs::is_symlink(place))
                links[place] = OtherReaders::python("import os, sys; print(os.readlink(sys.argv[1]), end='')", place);
        return links;
    }
    /// What the manifest holds: where from and where to. The rest is looked at only for sense.
    std::map<fs::path, fs::path> manifest() const {
        const std::string lines = OtherReaders::python(
            "import datetime, json, os, plistlib, sys\n"
            "now = datetime.datetime.now(datetime.timezone.utc)\n"
            "for entry in json.load(open(sys.argv[1], encoding='utf-8')):\n"
            "  at = datetime.datetime.fromisoformat(entry.pop('movedAt').replace('Z', '+00:00'))\n"
            "  assert abs((now - at).total_seconds()) < 3600, at\n"
            "  size = entry.pop('sizeBytes')\n"
            "  assert isinstance(size, int) and size > 0, size\n"
            "  goal = entry.pop('destinationPath')\n"
            "  info = os.path.join(goal, 'Contents/Info.plist')\n"
            "  if os.path.exists(info):\n"
            "    assert entry.pop('bundleIdentifier') == plistlib.load(open(info, 'rb'))['CFBundleIdentifier']\n"
            "  print(entry.pop('sourcePath') + '|' + goal)\n"
            "  assert not entry, entry\n",
            HealthManifest::file(host));
        std::map<fs::path, fs::path> paths;
        std::istringstream stream(lines);
        for (std::string line; std::getline(stream, line);)
            paths[line.substr(0, line.find('|'))] = line.substr(line.find('|') + 1);
        return paths;
    }
    /// Where the database has what is moved, in order; and what it holds as having come back.
    std::string rows(const std::string& condition) const {
        return askDatabase(database, "SELECT source_file FROM installs WHERE install_type = 'app_move' AND " +
                                         condition + " ORDER BY source_file");
    }
    static std::string goalsOf(const std::map<fs::path, fs::path>& places) {
        std::set<std::string> goals;
        for (const auto& [place, goal] : places) goals.insert(goal);
        std::string lines;
        for (const std::string& goal : goals) lines += goal + "\n";
        return lines;
    }

    TemporaryFolder folder;
    Practice::Machine machine =
        Practice::build(folder / "machine", {.apps = 3, .specialApps = false, .files = 60, .appFiles = 90});
    Host host = Host::rootedAt(machine.root, machine.home);
    fs::path applications = SystemFolders::applications(host);
    fs::path database = InstallsDB::defaultPath(host);
    std::optional<RealVolume> volume;
    std::unique_ptr<WindowUnderTest> window;
};

INSTANTIATE_TEST_SUITE_P(Kinds, MainAct, testing::Values(RealVolume::Kind::ext4, RealVolume::Kind::memory),
                         [](const auto& kind) { return kind.param == RealVolume::Kind::ext4 ? "Ext4" : "Memory"; });

TEST_P(MainAct, MovesThreeApplicationsWithTheirDataAndBringsTwoBack) {
    std::map<fs::path, std::string> trees;
    for (const auto& [place, goal] : places()) trees[place] = OtherReaders::tree(place);
    window->click("refreshAllButton");
    ASSERT_TRUE(window->waitUntil([&] { return window->state().isIdle(); }));
    window->click("viewPicker-local");
    EXPECT_THAT(listed(), UnorderedElementsAre("Sketchpad", "Tunesmith", "Ledger", "Brush", "Canvas"));
    tick({"Sketchpad", "Tunesmith", "Brush"});
    pressAndAgree("moveAppsButton");
    waitForInfo("Moved 8 items.");
    EXPECT_THAT(listed(), UnorderedElementsAre("Ledger", "Canvas"));
    window->click("viewPicker-onDrive");
    EXPECT_THAT(listed(), UnorderedElementsAre("Sketchpad", "Tunesmith", "Brush"));

    auto moved = places();
    EXPECT_EQ(linksAt(places()), moved);
    for (const auto& [place, goal] : moved) {
        EXPECT_EQ(OtherReaders::tree(goal), trees[place]) << goal;
        EXPECT_EQ(OtherReaders::tree(place), trees[place]) << place;
    }
    EXPECT_EQ(manifest(), moved);
    EXPECT_EQ(rows("uninstalled_at IS NULL"), goalsOf(moved));
    EXPECT_EQ(rows("uninstalled_at IS NOT NULL"), "");

    ASSERT_TRUE(window->waitUntilHidden("infoToast"));
    window->click("clearSelectionButton");
    tick({"Tunesmith", "Brush"});
    pressAndAgree("restoreSelectedButton");
    waitForInfo("Moved 2 items back.");
    EXPECT_THAT(listed(), UnorderedElementsAre("Sketchpad"));

    std::map<fs::path, fs::path> back;
    for (const char* name : {"Tunesmith.app", "Atelier/Brush.app"}) back.insert(moved.extract(applications / name));
    EXPECT_EQ(linksAt(places()), moved);
    for (const auto& [place, goal] : back) EXPECT_FALSE(fs::exists(goal)) << goal;
    for (const auto& [place, tree] : trees) EXPECT_EQ(OtherReaders::tree(place), tree) << place;
    EXPECT_EQ(manifest(), moved);
    EXPECT_EQ(rows("uninstalled_at IS NULL"), goalsOf(moved));
    EXPECT_EQ(rows("uninstalled_at IS NOT NULL"), goalsOf(back));
}

TEST_P(MainAct, MovesASuiteWhoseApplicationsStayToBeFound) {
    const fs::path suite = applications / "Atelier";
    const fs::path goal = volume->path() / "ExternalTarvik/Folders/Atelier";
    const std::string tree = OtherReaders::tree(suite);
    window->chooseFolder(suite);
    pressAndAgree("moveButton");
    waitForInfo("Moved 1 item.");
    EXPECT_EQ(OtherReaders::tree(goal), tree);

    for (const std::string name : {"Brush", "Canvas"}) {
        const fs::path launcher = applications / (name + ".app");
        const fs::path info = launcher / "Contents/Info.plist";
        EXPECT_EQ(OtherReaders::propertyListText(info, "CFBundleName"), name);
        EXPECT_EQ(OtherReaders::propertyListText(info, "CFBundleExecutable"), "ExternalAppLauncher");
        EXPECT_THAT(OtherReaders::propertyList(info),
                    HasSubstr("'CFBundleIdentifier' 'org.example." + (name == "Brush" ? "brush" : "canvas"s) +
                              ".externallauncher'\n"));
        EXPECT_EQ(OtherReaders::python("import sys; print(open(sys.argv[1]).read(), end='')",
                                       launcher / "Contents/Resources/ExternalAppTarget.txt"),
                  goal / (name + ".app"));
        EXPECT_THAT(OtherReaders::tree(launcher),
                    ContainsRegex("./Contents/MacOS/ExternalAppLauncher [^\n]*mode=755 type=file"));
    }

    ASSERT_TRUE(window->waitUntilHidden("infoToast"));
    window->click("job-Atelier/moveBackButton");
    window->click("alertButton-0");
    waitForInfo("Restored Atelier");
    EXPECT_EQ(OtherReaders::tree(suite), tree);
    EXPECT_FALSE(fs::is_symlink(suite));
    for (const char* name : {"Brush.app", "Canvas.app"}) EXPECT_FALSE(fs::exists(applications / name)) << name;
    EXPECT_THAT(manifest(), IsEmpty());
}

}  // namespace

}  // namespace tarvik::test
