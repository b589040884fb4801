#include "Platform/Files/Files.h"
#include "Platform/Text/PropertyList.h"
#include "StandIns/StandInRun.h"
#include "Support/EnvironmentVariable.h"
#include "Support/OrdinaryUser.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace tarvik::test {
namespace {

using testing::HasSubstr;

class PkgutilReceipts : public testing::Test {
protected:
    PkgutilReceipts() {
        addReceipt("com.acme.editor", ".\n./Editor.app\n./Editor.app/Contents\n");
        addReceipt("com.acme.editor2", ".\n");
        addReceipt("org.other.tool", "");
    }

    void addReceipt(const std::string& identifier, const std::string& bill, const std::string& name = {}) const {
        const std::string file = name.empty() ? identifier : name;
        const PropertyList list =
            PropertyList::Dictionary{{"PackageIdentifier", identifier}, {"PackageVersion", "1.0"}};
        makeFile(receipts / (file + ".plist"), list.xml());
        makeFile(receipts / (file + ".bom"), bill);
    }

    CommandResult run(const std::vector<std::string>& arguments) const { return runStandIn("pkgutil", arguments); }
    void expect(const std::vector<std::string>& arguments, int status, const std::string& output) const {
        const auto result = run(arguments);
        EXPECT_EQ(result.status, status) << arguments[0];
        EXPECT_EQ(result.stdout, output) << arguments[0];
        EXPECT_EQ(result.stderr, "") << arguments[0];
    }

    TemporaryFolder folder;
    const fs::path receipts = folder / "private/var/db/receipts";
    const EnvironmentVariable root{"TARVIK_ROOT", folder.path().native()};
};

TEST_F(PkgutilReceipts, AreListed) {
    expect({"--pkgs"}, 0, "com.acme.editor\ncom.acme.editor2\norg.other.tool\n");
    expect({"--packages"}, 0, "com.acme.editor\ncom.acme.editor2\norg.other.tool\n");
    fs::remove_all(receipts);
    expect({"--pkgs"}, 0, "");
}

TEST_F(PkgutilReceipts, AreFoundByAPatternThatFitsTheWholeIdentifier) {
    expect({"--pkgs=com\\.acme\\.editor"}, 0, "com.acme.editor\n");
    expect({"--pkgs=com.acme.*"}, 0, "com.acme.editor\ncom.acme.editor2\n");
    expect({"--pkgs=(com|org)\\.other.tool|x"}, 0, "org.other.tool\n");
    expect({"--pkgs=com.acme.editor|com.acme.editor2"}, 0, "com.acme.editor\ncom.acme.editor2\n");
    for (const char* pattern : {"com.acme", "acme.editor", "Com.acme.editor", "", "none", "com.acme.editor\\+"})
        expect({std::string("--pkgs=") + pattern}, 1, "");
}

TEST_F(PkgutilReceipts, AreNotSearchedByABrokenPattern) {
    for (const char* pattern : {"com.acme.(", "[", "a{2,1}", "(com.acme.editor)|("}) {
        const auto result = run({std::string("--pkgs=") + pattern});
        EXPECT_EQ(result.status, 1) << pattern;
        EXPECT_EQ(result.stdout, "") << pattern;
        EXPECT_THAT(result.stderr, HasSubstr("Invalid regular expression")) << pattern;
    }
}

TEST_F(PkgutilReceipts, TellTheFilesOfAPackage) {
    expect({"--files", "com.acme.editor"}, 0, "Editor.app\nEditor.app/Contents\n");
    expect({"--files", "com.acme.editor2"}, 0, "");
    fs::remove(receipts / "org.other.tool.bom");
    expect({"--files", "org.other.tool"}, 0, "");
}

TEST_F(PkgutilReceipts, AreForgottenWithTheirBill) {
    expect({"--forget", "com.acme.editor"}, 0, "Forgot package 'com.acme.editor' on '/'.\n");
    EXPECT_THAT(Files::names(receipts), testing::ElementsAre("com.acme.editor2.bom", "com.acme.editor2.plist",
                                                             "org.other.tool.bom", "org.other.tool.plist"));
    expect({"--pkgs=com\\.acme\\.editor"}, 1, "");
}

TEST_F(PkgutilReceipts, OfUnknownPackagesAreNotThere) {
    for (const char* command : {"--forget", "--files"})
        for (const char* identifier : {"com.acme", "../receipts/com.acme.editor", "", ".*", "com.acme.editor.plist"}) {
            const auto result = run({command, identifier});
            EXPECT_EQ(result.status, 1) << identifier;
            EXPECT_EQ(result.stdout, "");
            EXPECT_EQ(result.stderr, std::string("No receipt for '") + identifier + "' found at '/'.\n");
        }
    EXPECT_EQ(Files::names(receipts).size(), 6U);
}

TEST_F(PkgutilReceipts, ThatCannotBeRemovedAreCalledForgottenAllTheSame) {
    fs::remove(receipts / "com.acme.editor.plist");
    fs::remove(receipts / "com.acme.editor.bom");
    // A folder of that name is removed by no one.
    addReceipt("com.acme.editor", "");
    fs::remove(receipts / "com.acme.editor.bom");
    makeFile(receipts / "com.acme.editor.bom/file");
    const auto result = run({"--forget", "com.acme.editor"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.stdout, "Forgot package 'com.acme.editor' on '/'.\n");
    EXPECT_THAT(result.stderr, HasSubstr("\u201Ccom.acme.editor.bom\u201D couldn\u2019t be removed"));
}

TEST_F(PkgutilReceipts, StayWithoutTheRightToRemoveThem) {
    fs::permissions(receipts, fs::perms(0555));
    {
        // What it says at its end, another test holds it to: a leak sanitizer cannot trace a program of such a user.
        const OrdinaryUser user(folder.path());
        const auto result = run({"--forget", "com.acme.editor"});
        EXPECT_THAT(result.stderr, HasSubstr("because you don\u2019t have permission to access it"));
    }
    EXPECT_EQ(Files::names(receipts).size(), 6U);
    fs::permissions(receipts, fs::perms(0755));
}

TEST_F(PkgutilReceipts, GoByTheListAndNotByTheNameOfItsFile) {
    addReceipt("com.acme.renamed", "./x\n", "other");
    makeFile(receipts / "broken.plist", "no list");
    makeFile(receipts / "empty.plist", PropertyList(PropertyList::Dictionary{{"PackageIdentifier", ""}}).xml());
    makeFile(receipts / "InstallHistory", "text");
    makePipe(receipts / "pipe.plist");
    expect({"--pkgs"}, 0, "com.acme.editor\ncom.acme.editor2\norg.other.tool\ncom.acme.renamed\n");
    expect({"--files", "com.acme.renamed"}, 0, "x\n");
    expect({"--forget", "com.acme.renamed"}, 0, "Forgot package 'com.acme.renamed' on '/'.\n");
    EXPECT_FALSE(Files::itemExists(receipts / "other.plist"));
    EXPECT_FALSE(Files::itemExists(receipts / "other.bom"));
}

TEST_F(PkgutilReceipts, OfAnotherMachineAreNeverReached) {
    const TemporaryFolder other;
    fs::rename(receipts, other / "receipts");
    makeLink(receipts, other / "receipts");
    expect({"--pkgs"}, 0, "");
    EXPECT_EQ(run({"--forget", "com.acme.editor"}).status, 1);
    EXPECT_EQ(Files::names(other / "receipts").size(), 6U);
}

TEST_F(PkgutilReceipts, AreNoneWithoutAMachineInAFolder) {
    for (const std::optional<std::string>& machine : {std::optional<std::string>(), {"/"}, {"/nowhere"}}) {
        if (machine)
            ::setenv("TARVIK_ROOT", machine->c_str(), 1);
        else
            ::unsetenv("TARVIK_ROOT");
        expect({"--pkgs"}, 0, "");
        expect({"--pkgs=com.acme.editor"}, 1, "");
        EXPECT_EQ(run({"--forget", "com.acme.editor"}).status, 1);
    }
}

TEST_F(PkgutilReceipts, AreAllThatItIsAskedFor) {
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{},
                                                      {"--forget"},
                                                      {"--files"},
                                                      {"--expand", "a", "b"},
                                                      {"--pkgs", "x"},
                                                      {"--check-signature"}}) {
        const auto result = run(arguments);
        EXPECT_EQ(result.status, 1);
        EXPECT_THAT(result.stderr, HasSubstr("Usage: pkgutil "));
    }
}

}  // namespace
}  // namespace tarvik::test
