#include "Installers/Inspection/InstallerInspector.h"
#include "Installers/Inspection/ScriptTrustInspector.h"
#include "Platform/Storage/SizingService.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

/// A machine on which sources lie in `downloads`.
struct SourceWorld : World {
    fs::path downloads = home / "Downloads";

    InstallerInspection inspect(const std::string& name) const {
        return InstallerInspector::inspect(host, downloads / name);
    }
    InstallableItem itemAt(const fs::path& path, InstallerKind kind) const {
        return {path.native(), kind, path, path.filename(), SizingService::size(host, path)};
    }
    /// An image tool that shows these folders as volumes and notes what it is asked.
    void attachAs(const std::vector<fs::path>& shown) {
        std::string list;
        for (const fs::path& volume : shown)
            list += fmt::format(
                "<dict><key>dev-entry</key><string>/dev/disk9</string>"
                "<key>mount-point</key><string>{}</string></dict>",
                volume.native());
        makeFile(folder / "answer",
                 fmt::format("<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>system-entities</key>"
                             "<array>{}</array></dict></plist>",
                             list));
        host.tools.hdiutil = tool(
            "hdiutil",
            fmt::format("echo \"$@\" >> '{0}/asked'\n[ $1 = detach ] || cat '{0}/answer'", folder.path().native()));
    }
    std::string asked() const { return contentOf(folder / "asked"); }
};

TrustSummary onlyStatus(std::string_view status) {
    TrustSummary trust;
    trust.status = status;
    return trust;
}

TEST(InstallerInspector, HasNothingToSayOfAnUnknownSource) {
    SourceWorld world;
    makeFile(world.downloads / "notes.txt", "hello");
    makeFolder(world.downloads / "folder");
    for (const char* name : {"notes.txt", "folder", "missing"})
        EXPECT_EQ(world.inspect(name), (InstallerInspection{.sourcePath = world.downloads / name,
                                                            .kind = InstallerKind::unknown,
                                                            .warnings = {"Unsupported source type."},
                                                            .trust = onlyStatus("unsupported")}))
            << name;
}

TEST(InstallerInspector, TellsOfAnApplication) {
    SourceWorld world;
    const fs::path bundle = world.downloads / "Editor.app";
    makeBundle(bundle);
    EXPECT_EQ(world.inspect("Editor.app"), (InstallerInspection{.sourcePath = bundle,
                                                                .kind = InstallerKind::app,
                                                                .items = {world.itemAt(bundle, InstallerKind::app)},
                                                                .trust = onlyStatus("app-bundle")}));
    makeFile(bundle / "Contents" / "Library" / "SystemExtensions" / "a.systemextension" / "x");
    EXPECT_THAT(world.inspect("Editor.app").warnings,
                ElementsAre("App has system extensions; externalizing may break it."));
}

TEST(InstallerInspector, GoesByTheNameOfAnApplicationThatIsNotThere) {
    const SourceWorld world;
    const InstallerInspection inspection = world.inspect("Gone.app");
    EXPECT_EQ(inspection.items, std::vector{world.itemAt(world.downloads / "Gone.app", InstallerKind::app)});
    EXPECT_EQ(inspection.items.front().sizeBytes, 0);
    EXPECT_THAT(inspection.warnings, IsEmpty());
}

TEST(InstallerInspector, ShowsWhatIsOnTheVolumesOfAnImage) {
    SourceWorld world;
    const fs::path second = world.folder / "Attached" / "B";
    const fs::path first = world.folder / "Attached" / "A";
    makeBundle(second / "Editor.app");
    makeFile(first / "Tool.pkg");
    makeFile(first / "Extras" / "More.app" / "x");
    world.attachAs({second, first});
    EXPECT_EQ(world.inspect("Editor.dmg"),
              (InstallerInspection{.sourcePath = world.downloads / "Editor.dmg",
                                   .kind = InstallerKind::dmg,
                                   .items = {world.itemAt(second / "Editor.app", InstallerKind::app),
                                             world.itemAt(first / "Extras" / "More.app", InstallerKind::app),
                                             world.itemAt(first / "Tool.pkg", InstallerKind::pkg)},
                                   .trust = onlyStatus("disk-image")}));
    EXPECT_EQ(world.asked(), fmt::format("attach {} -plist -nobrowse -readonly\ndetach {} -quiet\n",
                                         (world.downloads / "Editor.dmg").native(), second.native()));
}

TEST(InstallerInspector, FindsNothingInAnImageOfAScript) {
    SourceWorld world;
    const fs::path volume = world.folder / "Attached" / "A";
    makeFile(volume / "install.sh", "#!/bin/sh\n");
    world.attachAs({volume});
    const InstallerInspection inspection = world.inspect("Editor.dmg");
    EXPECT_THAT(inspection.items, IsEmpty());
    EXPECT_THAT(inspection.warnings, ElementsAre("No .app or .pkg found."));
    EXPECT_EQ(inspection.trust, onlyStatus("disk-image"));
    EXPECT_THAT(world.asked(), testing::HasSubstr("detach " + volume.native()));
}

TEST(InstallerInspector, SaysWhyAnImageCannotBeOpened) {
    SourceWorld world;
    world.host.tools.hdiutil = world.tool("hdiutil", "echo 'hdiutil: attach failed' >&2; exit 1");
    const InstallerInspection inspection = world.inspect("Editor.dmg");
    EXPECT_EQ(inspection, (InstallerInspection{.sourcePath = world.downloads / "Editor.dmg",
                                               .kind = InstallerKind::dmg,
                                               .warnings = {inspection.warnings.at(0)},
                                               .trust = onlyStatus("inspect-failed")}));
    EXPECT_THAT(inspection.warnings, ElementsAre(testing::HasSubstr("hdiutil: attach failed")));
}

TEST(InstallerInspector, ShowsWhatIsInAnArchiveAndSetsItAside) {
    SourceWorld world;
    makeBundle(world.folder / "content" / "Editor.app");
    world.host.tools.ditto = world.tool(
        "unzip", fmt::format("[ \"$1 $2 $3\" = '-x -k {}' ] || exit 1\ncp -R '{}'/. \"$4\"",
                             (world.downloads / "Editor.zip").native(), (world.folder / "content").native()));
    const InstallerInspection inspection = world.inspect("Editor.zip");
    ASSERT_EQ(inspection.items.size(), 1U);
    const fs::path path = inspection.items.front().path;
    EXPECT_EQ(path.filename(), "Editor.app");
    EXPECT_TRUE(path.native().starts_with(world.host.temporary.native() + "/")) << path;
    EXPECT_GT(inspection.items.front().sizeBytes, 0);
    EXPECT_THAT(inspection.warnings, IsEmpty());
    EXPECT_EQ(inspection.trust, onlyStatus("zip-archive"));
    EXPECT_TRUE(fs::is_empty(world.host.temporary));
    EXPECT_TRUE(fs::exists(world.trash->folder / path.parent_path().filename() / "Editor.app"));
}

TEST(InstallerInspector, SaysWhyAnArchiveCannotBeOpened) {
    SourceWorld world;
    world.host.tools.ditto = world.tool("unzip", "echo 'no archive' >&2; exit 2");
    const InstallerInspection inspection = world.inspect("Editor.zip");
    EXPECT_EQ(inspection, (InstallerInspection{.sourcePath = world.downloads / "Editor.zip",
                                               .kind = InstallerKind::zip,
                                               .warnings = {inspection.warnings.at(0)},
                                               .trust = onlyStatus("inspect-failed")}));
    EXPECT_THAT(inspection.warnings, ElementsAre(testing::HasSubstr("no archive")));
    EXPECT_TRUE(fs::is_empty(world.host.temporary));
}

TEST(InstallerInspector, FindsNothingInAnEmptyArchive) {
    SourceWorld world;
    world.host.tools.ditto = world.tool("unzip", "true");
    EXPECT_THAT(world.inspect("Editor.zip").warnings, ElementsAre("No .app or .pkg found."));
}

TEST(InstallerInspector, TellsOfAPackageInWhatOrderItIsToBeFeared) {
    SourceWorld world;
    makeFile(world.downloads / "Tool.mpkg");
    world.host.tools.pkgutil = world.tool("pkgutil", "echo 'Status: no signature'; exit 1");
    world.host.tools.xar = world.tool("xar", "echo Scripts; echo Library/LaunchDaemons/a.plist");
    EXPECT_EQ(
        world.inspect("Tool.mpkg"),
        (InstallerInspection{.sourcePath = world.downloads / "Tool.mpkg",
                             .kind = InstallerKind::mpkg,
                             .items = {world.itemAt(world.downloads / "Tool.mpkg", InstallerKind::mpkg)},
                             .warnings = {"Package signature is not trusted.", "Package contains install scripts.",
                                          "Package may install privileged files."},
                             .trust = {.status = "untrusted",
                                       .details = {"Status: no signature"},
                                       .hasScripts = true,
                                       .hasPrivilegedPayload = true}}));
}

TEST(InstallerInspector, HasNoWarningForATrustedPackageOfPlainFiles) {
    SourceWorld world;
    makeFile(world.downloads / "Tool.pkg");
    world.host.tools.pkgutil = world.tool("pkgutil", "echo 'Status: signed by Acme'");
    world.host.tools.xar = world.tool("xar", "echo Payload");
    const InstallerInspection inspection = world.inspect("Tool.pkg");
    EXPECT_EQ(inspection.kind, InstallerKind::pkg);
    EXPECT_THAT(inspection.warnings, IsEmpty());
    EXPECT_EQ(inspection.trust.status, "trusted");
}

TEST(InstallerInspector, WarnsOfEveryScript) {
    SourceWorld world;
    makeFile(world.downloads / "plain", "#!/bin/sh\ntrue\n");
    makeFile(world.downloads / "bold.command", "sudo rm -rf /\n");
    const InstallerInspection plain = world.inspect("plain");
    EXPECT_EQ(plain, (InstallerInspection{.sourcePath = world.downloads / "plain",
                                          .kind = InstallerKind::script,
                                          .items = {world.itemAt(world.downloads / "plain", InstallerKind::script)},
                                          .warnings = {"Shell script — runs arbitrary code with sudo."},
                                          .trust = ScriptTrustInspector::inspect(world.downloads / "plain")}));
    EXPECT_THAT(world.inspect("bold.command").warnings,
                ElementsAre("Shell script — runs arbitrary code with sudo.",
                            "Script references system paths (/Applications, /Library, ~)."));
}

TEST(InstallerInspector, ChangesNoSource) {
    SourceWorld world;
    makeBundle(world.downloads / "Editor.app");
    makeFile(world.downloads / "run.sh", "#!/bin/sh\n");
    makeFile(world.downloads / "Tool.pkg");
    const std::string before = pictureOf(world.folder.path());
    for (const char* name : {"Editor.app", "run.sh", "Tool.pkg", "missing"}) world.inspect(name);
    EXPECT_EQ(pictureOf(world.folder.path()), before);
}

}  // namespace
}  // namespace tarvik
