// Each kind of source on a machine in a folder, with the tools that such a machine has, and a drive of its own.
#include "Discovery/AppScanner.h"
#include "Installers/Install/SourceInstaller.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Processes/CommandRunner.h"
#include "Practice/DiskImages/DiskImage.h"
#include "Practice/Packages/PackageWriter.h"
#include "Support/Bundles.h"
#include "Support/EnvironmentVariable.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace tarvik::test {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class InstallOnMachineTest : public testing::Test {
protected:
    void SetUp() override {
        TARVIK_NEEDS_REAL_VOLUMES();
        for (const char* name : {"Applications", "Volumes", "Users/ada"}) makeFolder(root / name);
        drive.emplace(RealVolume::ext4(root / "Volumes", 30 * megabyte));
        host = Host::rootedAt(root, root / "Users/ada");
        host.tools.externalAppLauncher = folder / "external-app-launcher";
        makeFile(host.tools.externalAppLauncher, "the program");
        option.id = "test";
        option.allowUntrustedPackages = true;
        option.allowUntrustedScripts = true;
        option.externalRootName = "ExternalTarvik";
        option.applicationLinkRoot = "/Applications";
    }

    /// "done" or what is told.
    std::string install(const fs::path& source) {
        lines.clear();
        const InstallTerms terms{.option = option,
                                 .drive = TargetDrive(host, drive->path()),
                                 .reporter = {[this](const std::string& line) { lines.push_back(line); }}};
        try {
            SourceInstaller::install(host, source, terms);
            return "done";
        } catch (const Failure& failure) {
            return failure.domain() + ": " + failure.description();
        }
    }
    fs::path makeApp(const fs::path& app) const {
        makeBundle(app, {{"CFBundleIdentifier", "org.example.editor"}});
        makeFileOfSize(app / "Contents/Resources/data", 100'000);
        makeLink(app / "Contents/Resources/current", "data");
        return app;
    }
    fs::path onDrive(const std::string& name) const { return *drive / "ExternalTarvik/Apps" / name; }

    /// Installs it, again, and over a copy that is another one by now.
    void expectInstalledAgainAndAgain(const fs::path& source, const fs::path& app) {
        const fs::path goal = onDrive(app.filename());
        const fs::path launcher = root / "Applications" / app.filename();
        ASSERT_EQ(install(source), "done");
        expectSame(app, goal);
        EXPECT_EQ(AppScanner::launcherShimTarget(launcher), goal);
        expectNothingOpen();
        ASSERT_EQ(install(source), "done");
        EXPECT_THAT(lines, Contains("reuse-app\t" + goal.native()));
        EXPECT_THAT(lines, testing::Not(Contains(StartsWith("copy-app"))));
        makeFile(goal / "Contents/Resources/data", "another version");
        ASSERT_EQ(install(source), "done");
        EXPECT_THAT(lines, Contains(StartsWith("stash-existing-app\t" + goal.native() + "\t")));
        expectSame(app, goal);
        EXPECT_THAT(stashed(), Contains(HasSubstr(app.filename().native())));
        expectNothingOpen();
    }
    static void expectSame(const fs::path& app, const fs::path& copy) {
        const auto result =
            CommandRunner::run("/usr/bin/diff", {"-r", "--no-dereference", app.native(), copy.native()});
        EXPECT_EQ(result.status, 0) << result.stdout << result.stderr;
    }
    void expectNothingOpen() const {
        EXPECT_THAT(Files::names(root / "Volumes"), ElementsAre(drive->path().filename().native()));
        EXPECT_THAT(Files::names(root / "tmp"), IsEmpty());
    }
    std::vector<std::string> stashed() const {
        auto names = Files::names(onDrive(".TarvikTrash"));
        for (const auto& name : Files::names(host.home / ".Trash")) names.push_back(name);
        return names;
    }

    const TemporaryFolder folder;
    const fs::path root = folder / "machine";
    const fs::path downloads = folder / "downloads";
    const EnvironmentVariable toolsMachine{"TARVIK_ROOT", root.native()};
    std::optional<RealVolume> drive;
    Host host;
    InstallerOption option;
    std::vector<std::string> lines;
};

}  // namespace

TEST_F(InstallOnMachineTest, AnApplication) {
    const fs::path app = makeApp(downloads / "Editor.app");
    expectInstalledAgainAndAgain(app, app);
}

TEST_F(InstallOnMachineTest, AnImage) {
    const fs::path app = makeApp(downloads / "volume/Editor.app");
    Practice::DiskImage::create(downloads / "Editor.dmg", {{"Editor", app.parent_path()}});
    expectInstalledAgainAndAgain(downloads / "Editor.dmg", app);
}

TEST_F(InstallOnMachineTest, AnImageOfTwoVolumes) {
    const fs::path one = makeApp(downloads / "one/One.app");
    const fs::path two = makeApp(downloads / "two/Sub/Two.app");
    Practice::DiskImage::create(downloads / "Both.dmg", {{"One", downloads / "one"}, {"Two", downloads / "two"}});
    EXPECT_EQ(install(downloads / "Both.dmg"), "done");
    EXPECT_THAT(lines, Contains("dmg-mounted\t2"));
    expectSame(one, onDrive("One.app"));
    expectSame(two, onDrive("Two.app"));
    expectNothingOpen();
}

TEST_F(InstallOnMachineTest, AnArchive) {
    if (!Files::exists("/usr/bin/zip")) TARVIK_SKIP_BECAUSE("zip is not installed");
    const fs::path app = makeApp(downloads / "Editor.app");
    const auto made = CommandRunner::run(
        "/bin/sh", {"-c", fmt::format("cd '{}' && zip -qry Editor.zip Editor.app", downloads.native())});
    ASSERT_EQ(made.status, 0) << made.stderr;
    expectInstalledAgainAndAgain(downloads / "Editor.zip", app);
}

TEST_F(InstallOnMachineTest, APackageInThePlaceOfALink) {
    Practice::PackageWriter::Component component;
    component.place = "/Applications/Editor.app";
    component.payload.addFolder("./Contents");
    component.payload.addFile("./Contents/Info.plist", "new");
    const fs::path package = downloads / "Editor.pkg";
    makeFile(package, Practice::PackageWriter::component(component).bytes());
    const fs::path stale = makeApp(onDrive("Editor.app"));
    makeLink(root / "Applications/Editor.app", stale);

    option.allowUntrustedPackages = false;
    EXPECT_EQ(install(package), "pkg-install: Untrusted package blocked.");
    EXPECT_TRUE(Files::exists(stale));

    option.allowUntrustedPackages = true;
    EXPECT_EQ(install(package), "done");
    EXPECT_EQ(contentOf(root / "Applications/Editor.app/Contents/Info.plist"), "new");
    EXPECT_FALSE(Files::isSymbolicLink(root / "Applications/Editor.app"));
    EXPECT_FALSE(Files::itemExists(stale));
    expectNothingOpen();
}

TEST_F(InstallOnMachineTest, AScript) {
    if (!CommandRunner::run(host.tools.rootferry, {"true"}).succeeded())
        TARVIK_SKIP_BECAUSE("This system cannot keep a script in a folder.");
    const fs::path script = root / "Users/ada/setup.sh";
    makeFile(script, "echo made > /Applications/made\n");
    EXPECT_EQ(install(script), "done");
    EXPECT_EQ(contentOf(root / "Applications/made"), "made\n");
}

}  // namespace tarvik::test
