#include "Platform/Files/Files.h"
#include "Platform/Text/PropertyList.h"
#include "StandIns/MadePackages.h"
#include "StandIns/StandInRun.h"
#include "Support/EnvironmentVariable.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace tarvik::test {
namespace {

using Practice::Compression;
using Practice::CpioWriter;
using Practice::XarWriter;
using testing::HasSubstr;
namespace PackageWriter = Practice::PackageWriter;

class Installer : public testing::Test {
protected:
    Installer() { makeFolder(machine); }

    CommandResult install(const fs::path& package) const {
        return runStandIn("installer", {"-pkg", package, "-target", "/"});
    }
    fs::path made(const PackageWriter::Component& component) const {
        return makePackage(folder / "Editor.pkg", PackageWriter::component(component));
    }
    /// Installs nothing and writes nothing, on the machine and beside it.
    void expectRefused(const fs::path& package, const std::string& words) const {
        const std::string before = pictureOf(folder.path());
        const auto result = install(package);
        EXPECT_EQ(result.status, 1);
        EXPECT_THAT(result.stderr, HasSubstr(words));
        EXPECT_EQ(pictureOf(folder.path()), before);
    }
    void expectPayloadRefused(const CpioWriter& payload, const std::string& words) const {
        PackageWriter::Component component;
        component.payload = payload;
        expectRefused(made(component), words);
    }
    std::string receipts() const { return runStandIn("pkgutil", {"--pkgs"}).stdout; }

    TemporaryFolder folder;
    const fs::path machine = folder / "machine";
    const fs::path app = machine / "Applications/Editor.app/Contents";
    const EnvironmentVariable root{"TARVIK_ROOT", machine.native()};
};

TEST_F(Installer, InstallsAPackageAndRemembersIt) {
    const auto result = install(made(editorComponent()));
    EXPECT_EQ(result.status, 0) << result.stderr;
    EXPECT_EQ(result.stdout,
              "installer: Package name is Editor\ninstaller: Installing at base path /\n"
              "installer: The install was successful.\n");
    EXPECT_EQ(contentOf(app / "Current"), "#!/bin/sh\n");
    EXPECT_EQ(statusOf(app / "Editor").st_mode & 07777, 0755U);
    EXPECT_EQ(statusOf(app / "Info.plist").st_mode & 07777, 0644U);
    EXPECT_EQ(statusOf(app / "Info.plist").st_mtime, 1'700'000'000);
    EXPECT_EQ(receipts(), "com.acme.editor\n");
    EXPECT_EQ(runStandIn("pkgutil", {"--files", "com.acme.editor"}).stdout,
              "Applications\nApplications/Editor.app\nApplications/Editor.app/Contents\n"
              "Applications/Editor.app/Contents/Current\nApplications/Editor.app/Contents/Editor\n"
              "Applications/Editor.app/Contents/Info.plist\n");
    const auto list = PropertyList::dictionaryAt(machine / "private/var/db/receipts/com.acme.editor.plist");
    EXPECT_EQ(list.text("PackageVersion"), "1.0");
    EXPECT_EQ(list.text("PackageFileName"), "Editor.pkg");
    EXPECT_EQ(list.text("InstallPrefixPath"), "");
    EXPECT_EQ(install(folder / "Editor.pkg").stdout,
              "installer: Package name is Editor\ninstaller: Upgrading at base path /\n"
              "installer: The upgrade was successful.\n");
}

TEST_F(Installer, ReadsPayloadsPackedInEveryWay) {
    for (const Compression compression :
         {Compression::none, Compression::gzip, Compression::bzip2, Compression::xz, Compression::pbzx}) {
        auto component = editorComponent();
        component.compression = compression;
        std::string large;
        for (int line = 0; line < 300'000; ++line) large += std::to_string(line * 7919LL) + "\n";
        component.payload.addFile("./Library/large", large);
        const auto result = install(made(component));
        EXPECT_EQ(result.status, 0) << static_cast<int>(compression) << result.stderr;
        EXPECT_EQ(contentOf(machine / "Library/large"), large);
        fs::remove_all(machine);
        makeFolder(machine);
    }
}

TEST_F(Installer, InstallsAProductOfSeveralPackagesEachAtItsPlace) {
    PackageWriter::Component tool;
    tool.identifier = "com.acme.tool";
    tool.place = "/usr/local/bin";
    tool.payload.addFile("./tool", "tool", 0755);
    const auto package =
        makePackage(folder / "Suite.pkg", PackageWriter::product("Acme Suite", {editorComponent(), tool}));
    const auto result = install(package);
    EXPECT_EQ(result.status, 0) << result.stderr;
    EXPECT_THAT(result.stdout, HasSubstr("Package name is Acme Suite\n"));
    EXPECT_EQ(contentOf(machine / "usr/local/bin/tool"), "tool");
    EXPECT_TRUE(Files::exists(app / "Info.plist"));
    EXPECT_EQ(receipts(), "com.acme.editor\ncom.acme.tool\n");
    EXPECT_EQ(
        PropertyList::dictionaryAt(machine / "private/var/db/receipts/com.acme.tool.plist").text("InstallPrefixPath"),
        "usr/local/bin");
}

TEST_F(Installer, PassesOverChoicesThatAreNotSelected) {
    XarWriter archive;
    archive.addFile("Distribution",
                    "<installer-script><choices-outline><line choice=\"no\"/><line choice=\"yes\"/></choices-outline>"
                    "<choice id=\"no\" start_selected=\"false\"><pkg-ref id=\"a\"/></choice>"
                    "<choice id=\"yes\"><pkg-ref id=\"b\"/></choice>"
                    "<pkg-ref id=\"a\">#a.pkg</pkg-ref><pkg-ref id=\"b\">#b%20c.pkg</pkg-ref></installer-script>");
    PackageWriter::Component one{.identifier = "a"};
    PackageWriter::Component other{.identifier = "b"};
    for (auto* each : {&one, &other}) {
        each->payload.addFile("./from-" + each->identifier, "x");
        const std::string place = each == &one ? "a.pkg/" : "b c.pkg/";
        archive.addFile(place + "PackageInfo", PackageWriter::packageInfo(*each));
        archive.addFile(place + "Payload", each->payload.bytes());
    }
    EXPECT_EQ(install(makePackage(folder / "P.pkg", archive)).status, 0);
    EXPECT_FALSE(Files::exists(machine / "from-a"));
    EXPECT_TRUE(Files::exists(machine / "from-b"));
    EXPECT_EQ(receipts(), "b\n");
}

TEST_F(Installer, RefusesAProductThatDecidesByAScript) {
    for (const char* words :
         {"<installation-check script=\"check()\"/><pkg-ref id=\"a\">#a.pkg</pkg-ref>",
          "<choices-outline><line choice=\"a\"/></choices-outline><choice id=\"a\" start_selected=\"my.test()\"/>",
          "<pkg-ref id=\"a\">file:./a.pkg</pkg-ref>", "<pkg-ref id=\"a\">#a.pkg</pkg-ref>", ""}) {
        XarWriter archive;
        archive.addFile("Distribution", std::string("<installer-gui-script>") + words + "</installer-gui-script>");
        expectRefused(makePackage(folder / "P.pkg", archive), "installer: The install failed. (");
    }
}

TEST_F(Installer, InstallsPackagesThatAreFolders) {
    const fs::path meta = folder / "Suite.mpkg";
    const auto makeBundle = [](const fs::path& bundle, const std::string& identifier, const std::string& file) {
        makeFile(bundle / "Contents/Info.plist",
                 PropertyList(PropertyList::Dictionary{{"CFBundleIdentifier", identifier},
                                                       {"CFBundleShortVersionString", "2.1"},
                                                       {"IFPkgFlagDefaultLocation", "/Library"}})
                     .xml());
        CpioWriter payload;
        payload.addFile("./" + file, "x");
        makeFile(bundle / "Contents/Archive.pax.gz", Practice::packed(payload.bytes(), Compression::gzip));
    };
    makeBundle(meta / "Contents/Packages/One.pkg", "com.acme.one", "one");
    makeBundle(meta / "Contents/Packages/Two.pkg", "com.acme.two", "two");
    const auto entry = [](const char* name, const char* selection) {
        return PropertyList(
            PropertyList::Dictionary{{"IFPkgFlagPackageLocation", name}, {"IFPkgFlagPackageSelection", selection}});
    };
    makeFile(meta / "Contents/Info.plist",
             PropertyList(
                 PropertyList::Dictionary{{"IFPkgFlagPackageList", PropertyList::List{entry("One.pkg", "required"),
                                                                                      entry("Two.pkg", "unselected")}}})
                 .xml());
    const auto result = install(meta);
    EXPECT_EQ(result.status, 0) << result.stderr;
    EXPECT_TRUE(Files::exists(machine / "Library/one"));
    EXPECT_FALSE(Files::exists(machine / "Library/two"));
    EXPECT_EQ(receipts(), "com.acme.one\n");
    // One that reaches outside of itself.
    fs::remove_all(meta / "Contents/Packages/One.pkg");
    makeBundle(folder / "Outside.pkg", "com.acme.outside", "outside");
    makeLink(meta / "Contents/Packages/One.pkg", folder / "Outside.pkg");
    expectRefused(meta, "reaches outside of itself");
    makeFile(meta / "Contents/distribution.dist",
             "<installer-script><pkg-ref id=\"x\">file:./Contents/Packages/Two.pkg</pkg-ref></installer-script>");
    EXPECT_EQ(install(meta).status, 0);
    EXPECT_TRUE(Files::exists(machine / "Library/two"));
}

TEST_F(Installer, RefusesHostilePayloadsAsAWhole) {
    for (const char* path : {"../outside", "/outside", "./a/../../outside", ".."}) {
        CpioWriter payload;
        payload.addFile("./good", "x");
        payload.addFile(path, "x");
        expectPayloadRefused(payload, "would lie elsewhere");
    }
    CpioWriter device;
    device.addFile("./good", "x");
    device.add({.path = "./device", .mode = 0020666});
    expectPayloadRefused(device, "no file, folder or link");
    CpioWriter through;
    through.addLink("./a", folder.path());
    through.addFile("./a/outside", "x");
    expectPayloadRefused(through, "through a link of its own");
    CpioWriter longName;
    longName.addFile("./" + std::string(300, 'n'), "x");
    expectPayloadRefused(longName, "would lie elsewhere");
    CpioWriter huge;
    huge.addFile("./good", "x");
    std::string bytes = huge.bytes();
    // It says that its second file has 8 GB, and ends there.
    bytes.resize(bytes.size() - 87);
    PackageWriter::Component component;
    XarWriter archive;
    archive.addFile("PackageInfo", PackageWriter::packageInfo(component));
    archive.addFile("Payload", bytes);
    expectRefused(makePackage(folder / "T.pkg", archive), "The payload is damaged.");
}

TEST_F(Installer, RefusesWhatATreeHasNoSpaceFor) {
    // A million bytes of zeros pack to a thousand; a thousand files say that they are one file's size each.
    PackageWriter::Component component;
    XarWriter archive;
    archive.addFile("PackageInfo", PackageWriter::packageInfo(component));
    const std::string size = "77777777777";  // In octal: all that the form can say, 8 GB.
    CpioWriter payload;
    payload.addFile("./f", "");
    std::string bytes = payload.bytes();
    bytes.replace(65, 11, size);
    archive.addFile("Payload", bytes);
    expectRefused(makePackage(folder / "T.pkg", archive), "The install failed.");
}

TEST_F(Installer, RefusesPackageInfosThatReachElsewhere) {
    for (const char* identifier : {"../x", "a/b", "", ".x"}) {
        auto component = editorComponent();
        component.identifier = identifier;
        expectRefused(made(component), "identifier");
    }
    auto component = editorComponent();
    component.place = "/../../x";
    expectRefused(made(component), "would install elsewhere");
    XarWriter script;
    script.addFile("PackageInfo",
                   "<pkg-info identifier=\"a\"><scripts><preinstall file=\"../../x\"/></scripts></pkg-info>");
    expectRefused(makePackage(folder / "S.pkg", script), "script that lies elsewhere");
}

TEST_F(Installer, WritesThroughLinksOfTheMachineToPlacesOfTheMachine) {
    const fs::path onDrive = machine / "Volumes/Drive/Editor.app";
    makeFolder(onDrive);
    // As this system says it, as the machine's programs do, and from where it stands.
    for (const fs::path& target :
         {onDrive, fs::path("/Volumes/Drive/Editor.app"), fs::path("../Volumes/Drive/Editor.app")}) {
        fs::remove_all(machine / "Applications");
        fs::remove_all(onDrive);
        makeFolder(onDrive);
        makeLink(machine / "Applications/Editor.app", target);
        const auto result = install(made(editorComponent()));
        EXPECT_EQ(result.status, 0) << target << result.stderr;
        EXPECT_TRUE(Files::isSymbolicLink(machine / "Applications/Editor.app"));
        EXPECT_EQ(contentOf(onDrive / "Contents/Info.plist"), "<plist/>");
    }
}

TEST_F(Installer, RefusesLinksThatLeaveTheMachine) {
    makeFolder(folder / "outside");
    for (const fs::path& target : {folder / "outside", fs::path("../../outside"), fs::path("/Volumes/Gone/Editor.app"),
                                   fs::path("Editor.app")}) {
        fs::remove_all(machine / "Applications");
        makeLink(machine / "Applications/Editor.app", target);
        const auto result = install(made(editorComponent()));
        EXPECT_EQ(result.status, 1) << target;
        EXPECT_EQ(Files::names(folder / "outside").size(), 0U) << target;
        EXPECT_FALSE(Files::itemExists(machine / "Volumes/Gone"));
        EXPECT_EQ(receipts(), "");
    }
}

TEST_F(Installer, KeepsNamesOfOneFileTogether) {
    PackageWriter::Component component;
    component.payload.add({.path = "./one", .bytes = "same", .inode = 7, .names = 2});
    component.payload.add({.path = "./other", .bytes = "same", .inode = 7, .names = 2});
    EXPECT_EQ(install(made(component)).status, 0);
    EXPECT_EQ(contentOf(machine / "other"), "same");
    EXPECT_EQ(statusOf(machine / "one").st_ino, statusOf(machine / "other").st_ino);
}

TEST_F(Installer, NeverGivesTheRightsOfOthers) {
    PackageWriter::Component component;
    component.payload.addFile("./tool", "x", 06755);
    component.payload.addFolder("./folder", 03777);
    EXPECT_EQ(install(made(component)).status, 0);
    EXPECT_EQ(statusOf(machine / "tool").st_mode & 07777, 0755U);
    EXPECT_EQ(statusOf(machine / "folder").st_mode & 07777, 0777U);
}

TEST_F(Installer, FillsFoldersThatNobodyMayWriteIn) {
    PackageWriter::Component component;
    component.payload.addFolder("./closed", 0555);
    component.payload.addFile("./closed/file", "x");
    EXPECT_EQ(install(made(component)).status, 0);
    EXPECT_EQ(statusOf(machine / "closed").st_mode & 07777, 0555U);
    EXPECT_EQ(contentOf(machine / "closed/file"), "x");
    fs::permissions(machine / "closed", fs::perms(0755));
}

TEST_F(Installer, RefusesWhatIsNoPackage) {
    expectRefused(folder / "missing.pkg", "installer: Error - the package path specified was invalid: '");
    makeFile(folder / "text.pkg", "text");
    expectRefused(folder / "text.pkg", "The install failed. (");
    makeFolder(folder / "empty.pkg");
    expectRefused(folder / "empty.pkg", "The install failed. (");
    EXPECT_EQ(runStandIn("installer", {}).status, 1);
    EXPECT_EQ(runStandIn("installer", {"-pkg", "a", "-target", "/Volumes/Drive"}).status, 1);
}

TEST_F(Installer, InstallsNothingWithoutAMachineInAFolder) {
    const fs::path package = made(editorComponent());
    for (const std::optional<std::string>& place : {std::optional<std::string>(), {"/"}, {"/nowhere"}, {""}}) {
        const EnvironmentVariable other("TARVIK_ROOT", place);
        const auto result = install(package);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.stderr, "installer: Packages are installed only on a machine in a folder.\n");
    }
}

}  // namespace
}  // namespace tarvik::test
