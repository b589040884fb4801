#include "Installers/Options/InstallerOptionCheck.h"
#include "Installers/Options/InstallerOptionLoader.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Support/FailureOf.h"
#include "Support/TemporaryFolder.h"
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
using testing::IsSupersetOf;

std::string optionText(const std::string& id, const std::string& label, const std::string& more = "") {
    return fmt::format(
        "id = \"{}\"\nlabel = \"{}\"\nstrategy = \"s\"\nsourceKinds = [\"app\"]\n"
        "allowUntrustedPackages = false\nexternalRootName = \"ExternalTarvik\"\n"
        "applicationLinkRoot = \"/Applications\"\ntrack = true\nrelocateSafeApps = false\n{}",
        id, label, more);
}

/// Two folders of options: the built-in ones and the user's.
struct OptionFolders {
    TemporaryFolder folder;
    fs::path builtIn = folder / "built-in";
    fs::path user = folder / "user";

    std::vector<InstallerOption> all() const { return InstallerOptionLoader::loadAll(builtIn, user); }
    std::vector<std::string> labels() const {
        std::vector<std::string> labels;
        for (const InstallerOption& option : all()) labels.push_back(option.label);
        return labels;
    }
};

TEST(InstallerOptionLoader, HasNothingWithoutFolders) {
    const OptionFolders folders;
    EXPECT_THAT(folders.labels(), IsEmpty());
    makeFile(folders.user, "a file");
    EXPECT_THAT(folders.labels(), IsEmpty());
}

TEST(InstallerOptionLoader, SortsByLabelAsBytes) {
    const OptionFolders folders;
    makeFile(folders.builtIn / "1.toml", optionText("a", "b"));
    makeFile(folders.builtIn / "2.toml", optionText("b", "Z"));
    makeFile(folders.user / "3.toml", optionText("c", "\xC3\x84"));
    makeFile(folders.user / "4.toml", optionText("d", "a"));
    EXPECT_THAT(folders.labels(), ElementsAre("Z", "a", "b", "\xC3\x84"));
}

TEST(InstallerOptionLoader, LetsTheUsersOptionTakeThePlaceOfABuiltInOneAsAWhole) {
    const OptionFolders folders;
    makeFile(folders.builtIn / "z.toml", optionText("same", "built in", "allowUntrustedScripts = true\n"));
    makeFile(folders.user / "a.toml", optionText("same", "mine"));
    EXPECT_THAT(folders.labels(), ElementsAre("mine"));
    EXPECT_FALSE(folders.all().front().allowUntrustedScripts);
}

TEST(InstallerOptionLoader, LetsTheLastPathOfOneFolderWin) {
    const OptionFolders folders;
    // As whole paths: "-" stands before "/".
    makeFile(folders.user / "a" / "1.toml", optionText("same", "in the folder"));
    makeFile(folders.user / "a-b.toml", optionText("same", "beside it"));
    EXPECT_THAT(folders.labels(), ElementsAre("in the folder"));
    makeFile(folders.user / "a0.toml", optionText("same", "the last"));
    EXPECT_THAT(folders.labels(), ElementsAre("the last"));
}

TEST(InstallerOptionLoader, TakesWhatBearsTheExtensionAndIsNotHidden) {
    const OptionFolders folders;
    makeFile(folders.user / "A.TOML", optionText("1", "upper case"));
    makeFile(folders.user / "deep" / "er" / "b.toml", optionText("2", "deep"));
    makeFile(folders.user / ".hidden.toml", optionText("3", "hidden"));
    makeFile(folders.user / ".folder" / "c.toml", optionText("4", "in a hidden folder"));
    makeFile(folders.user / "d.toml.bak", optionText("5", "no option"));
    makeFile(folders.user / "toml", optionText("6", "no extension"));
    EXPECT_THAT(folders.labels(), ElementsAre("deep", "upper case"));
}

TEST(InstallerOptionLoader, PassesOverWhatCannotBeReadAndReadsOn) {
    const OptionFolders folders;
    makeFile(folders.user / "a.toml", "broken = [");
    makeFile(folders.user / "b.toml", optionText("same", "twice", "id = \"again\"\n"));
    makeFile(folders.user / "c.toml", optionText("huge", "huge", "# " + std::string(100'000, 'x')));
    makePipe(folders.user / "d.toml");
    makeSocket(folders.user / "e.toml");
    makeLink(folders.user / "f.toml", "/dev/zero");
    makeLink(folders.user / "g.toml", "g.toml");
    makeLink(folders.user / "h.toml", "gone");
    makeLink(folders.user / "loop", ".");
    makeFolder(folders.user / "i.toml");
    makeFile(folders.user / "i.toml" / "inner.toml", optionText("inner", "inner"));
    makeFile(folders.user / "j.toml", optionText("good", "good"));
    makeLink(folders.user / "k.toml", folders.folder / "elsewhere");
    makeFile(folders.folder / "elsewhere", optionText("linked", "linked"));
    EXPECT_THAT(folders.labels(), ElementsAre("good", "inner", "linked"));
}

TEST(InstallerOptionLoader, ReadsAThousandFiles) {
    const OptionFolders folders;
    for (int each = 0; each < 1000; ++each)
        makeFile(folders.user / std::to_string(each % 30) / fmt::format("{}.toml", each),
                 optionText(std::to_string(each), fmt::format("{:04}", 999 - each)));
    const auto labels = folders.labels();
    ASSERT_EQ(labels.size(), 1000U);
    EXPECT_TRUE(std::is_sorted(labels.begin(), labels.end()));
}

TEST(InstallerOptionLoader, FindsAnOptionOfTheUserByItsExactId) {
    World world;
    const fs::path root = AppStorageNames::userInstallerOptionsRoot(world.host);
    EXPECT_EQ(InstallerOptionLoader::find(world.host, "mine"), std::nullopt);
    makeFile(root / "mine.toml", optionText("mine", "Mine"));
    ASSERT_TRUE(InstallerOptionLoader::find(world.host, "mine"));
    EXPECT_EQ(InstallerOptionLoader::find(world.host, "mine")->label, "Mine");
    EXPECT_EQ(InstallerOptionLoader::find(world.host, "Mine"), std::nullopt);
    EXPECT_EQ(InstallerOptionLoader::find(world.host, ""), std::nullopt);
}

TEST(BuiltInInstallerOptions, ComeWithTheProgramAndAreSafe) {
    const TemporaryFolder none;
    const auto options = InstallerOptionLoader::loadAll(none / "no user");
    ASSERT_GE(options.size(), 4U);
    std::vector<std::string> ids;
    for (const InstallerOption& option : options) {
        ids.push_back(option.id);
        EXPECT_EQ(failureOf([&] { InstallerOptionCheck::requireSafe(option); }), "done");
        EXPECT_EQ(option.externalRootName, AppStorageNames::externalRoot);
        EXPECT_EQ(option.applicationLinkRoot, "/Applications");
    }
    EXPECT_THAT(ids, IsSupersetOf({"standard-external", "tracked-script-external"}));
    // The one that is taken when none is named.
    EXPECT_FALSE(options.front().allowUntrustedPackages || options.front().allowUntrustedScripts);
    EXPECT_TRUE(InstallerOptionLoader::find(World().host, "tracked-script-external")->allowUntrustedScripts);
}

TEST(BuiltInInstallerOptions, AreOneAFileWithAComment) {
    const fs::path root = InstallerOptionLoader::builtInRoot();
    std::size_t files = 0;
    for (const auto& entry : fs::directory_iterator(root)) {
        ++files;
        EXPECT_TRUE(contentOf(entry.path()).starts_with("# For ")) << entry.path();
    }
    EXPECT_EQ(files, InstallerOptionLoader::loadAll(root, "").size());
}

}  // namespace
}  // namespace tarvik
