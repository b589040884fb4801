#include "Applications/ExternalTarget.h"
#include "Discovery/InstalledAppsScanner.h"
#include "Platform/Files/Files.h"
#include "Support/Bundles.h"
#include "Support/Mutator.h"
#include "Support/Tree.h"
#include "Uninstall/RelatedFileScanner.h"
#include "Uninstall/ScanWorld.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>
#include <vector>

namespace tarvik {
namespace {

using namespace std::string_literals;

constexpr int recordRounds = 4000;
constexpr int listRounds = 300;

/// A machine where something stands at each place of the application, and beside it much that is none of its business.
class RelatedFileFuzz : public testing::Test {
protected:
    RelatedFileFuzz() {
        for (const char* place :
             {"Application Support", "Caches", "Logs", "Preferences", "Preferences/ByHost", "Containers",
              "Group Containers", "HTTPStorages", "WebKit", "Saved Application State", "LaunchAgents"})
            fill(world.library / place);
        for (const char* place :
             {"LaunchDaemons", "LaunchAgents", "Application Support", "PrivilegedHelperTools", "Caches"})
            fill(world.systemLibrary / place);
        for (const char* decoy :
             {"Documents/letter", "Library/Keychains/login.keychain-db", ".ssh/id", ".config/file", ".Trash/file",
              ".zshrc", ".editor", ".editorrc", "Editor/file", "com.acme.editor/file", "*", "Library/Mail/box"})
            test::makeFile(world.home / decoy);
    }

    /// Things of the application, of its neighbours, and some that only a pattern would find.
    void fill(const fs::path& place) {
        m_places.insert(place.native());
        for (const char* name : {"Editor", "com.acme.editor", "com.acme.editor2", "com.acme", "Other", "*", "?", "..x",
                                 " ", "editor-cli", "editor-nodejs"})
            test::makeFile(place / name / "data");
        for (const char* name : {"com.acme.editor.plist", ".plist", "..plist", "Editor.savedState", ".savedState"})
            test::makeFile(place / name);
    }

    /// Looks at all that is offered for the application.
    void check(const AppRecord& app, const std::string& round) {
        ++m_tried;
        for (const auto& candidate : RelatedFileScanner::onDisk(world.host, app, RelatedFileScanner::Sizes::leftOut)) {
            const fs::path& path = candidate.path;
            if (path == app.bundlePath) continue;
            ++m_offered;
            EXPECT_EQ(Files::standardized(path), path) << round;
            EXPECT_TRUE(Files::itemExists(path)) << round;
            EXPECT_TRUE(isOwnThing(path, app)) << round << ": " << path;
        }
    }

    bool isOwnThing(const fs::path& path, const AppRecord& app) const {
        const std::string name = path.filename();
        if (name.empty() || name == "." || name == "..") return false;
        if (path.extension() == ".app") return path == ExternalTarget::of(app);
        const std::string identifier = app.bundleIdentifier.value_or("");
        const auto isNamed = [&](const std::string& own) {
            return !own.empty() && (name == own || name == own + ".plist" || name == own + ".savedState");
        };
        if (path.parent_path() == world.home)
            return name == ".zshrc" ? app.executableName == "zsh" : name == ".editor" || name == ".editorrc";
        if (!m_places.contains(path.parent_path().native())) return false;
        if (path.parent_path().filename() == "ByHost") return !identifier.empty() && name.starts_with(identifier);
        return isNamed(identifier) || isNamed(app.displayName) || name == "editor-cli" || name == "editor-nodejs";
    }

    test::ScanWorld world;
    int m_tried = 0;
    int m_offered = 0;

private:
    std::set<std::string> m_places;
};

TEST_F(RelatedFileFuzz, NamesOfEveryKindLeadToNothingElse) {
    const std::vector<std::string> pieces = {"Editor",
                                             "com.acme.editor",
                                             "editor",
                                             "com.acme",
                                             ".",
                                             "..",
                                             "/",
                                             "../",
                                             "../Documents",
                                             "../../",
                                             "Documents",
                                             "\n",
                                             "\r",
                                             "\t",
                                             "\0"s,
                                             "*",
                                             "?",
                                             "[a-z]",
                                             "~",
                                             "$HOME",
                                             "`id`",
                                             "\\",
                                             "%2e%2e",
                                             "ssh",
                                             "config",
                                             "Trash",
                                             std::string(255, 'a'),
                                             std::string(5000, 'b'),
                                             "\xFF\xFE",
                                             "\u2028",
                                             " ",
                                             "ByHost",
                                             "data",
                                             "/data",
                                             "Keychains",
                                             ".plist",
                                             "login.keychain-db",
                                             "zsh",
                                             ".app",
                                             "/Documents/a.app"};
    std::mt19937 random(47);
    const auto name = [&] {
        std::string made;
        for (auto count = random() % 4; count > 0; --count) made += pieces[random() % pieces.size()];
        return made;
    };
    for (int round = 0; round < recordRounds; ++round) {
        AppRecord app = world.app;
        app.displayName = name();
        app.bundleIdentifier = name();
        app.executableName = name();
        if (random() % 4 == 0) app.bundleIdentifier.reset();
        if (random() % 4 == 0) app.isSymlink = true;
        if (random() % 4 == 0) app.externalTargetPath = name();
        if (random() % 4 == 0) app.externalTargetPath = world.home / name();
        check(app, std::to_string(round));
    }
    EXPECT_GT(m_offered, 100) << "some names are good";
    RecordProperty("tried", m_tried);
    RecordProperty("offered", m_offered);
}

TEST_F(RelatedFileFuzz, BrokenListsOfPropertiesLeadToNothingElse) {
    const std::string good = PropertyList(PropertyList::Dictionary{{"CFBundleIdentifier", "com.acme.editor"},
                                                                   {"CFBundleDisplayName", "Editor"},
                                                                   {"CFBundleName", "Editor"},
                                                                   {"CFBundleExecutable", "editor"}})
                                 .xml();
    test::Mutator mutator(53, {"..", "/", "../", "../../Documents", "&#10;", "&#0;", "\n", "*", "<string/>",
                               "<string>..</string>", "<string>.</string>", "<string></string>", "\xFF", "ssh"});
    for (int round = 0; round < listRounds; ++round) {
        test::makeFile(world.app.bundlePath / "Contents/Info.plist", mutator.mutated(good));
        for (const AppRecord& app : InstalledAppsScanner::discover(world.host)) check(app, std::to_string(round));
    }
    EXPECT_GT(m_offered, 100) << "some lists stay good";
    RecordProperty("tried", m_tried);
    RecordProperty("offered", m_offered);
}

}  // namespace
}  // namespace tarvik
