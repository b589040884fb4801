#include "Applications/AppChoice.h"
#include "Platform/Basics/Failure.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

namespace tarvik {

namespace {

AppEntry app(const std::string& name, const fs::path& bundle, const std::optional<std::string>& identifier = {}) {
    return {
        .id = identifier.value_or(bundle.native()), .name = name, .bundlePath = bundle, .bundleIdentifier = identifier};
}

const std::vector<AppEntry> apps = {
    app("Editor", "/Applications/Editor.app", "org.acme.editor"),
    app("editor", "/Applications/Old/editor.app", "org.acme.oldeditor"),
    app("Music", "/Applications/Music.app", "com.acme.music"),
    app("Music", "/Applications/Archive/Music.app", "com.acme.music"),
    app("Digital Audio Workstation", "/Applications/DAW.app", "org.example.daw"),
    app("E\u0301diteur", "/Applications/E\u0301diteur.app"),
    app("写真館", "/Applications/写真館.app"),
    app("Web/Mail", "/Applications/Web:Mail.app"),
    app("Odd\xFF", "/Applications/Odd\xFF.app"),
};

/// The path of the one that is found, or else the sentence.
std::string answer(std::string_view wanted, const std::vector<AppEntry>& list = apps) {
    try {
        return AppChoice::named(list, wanted).bundlePath.native();
    } catch (const Failure& failure) {
        return failure.description();
    }
}

}  // namespace

TEST(AppChoice, FindsAnApplicationByWhatItGoesBy) {
    const std::pair<std::string_view, std::string_view> table[] = {
        {"Editor", "/Applications/Editor.app"},
        {"editor", "/Applications/Old/editor.app"},
        {"Editor.app", "/Applications/Editor.app"},
        {"org.acme.editor", "/Applications/Editor.app"},
        {"ORG.Acme.Editor", "/Applications/Editor.app"},
        {"digital audio workstation", "/Applications/DAW.app"},
        {"DAW", "/Applications/DAW.app"},
        {"DAW.app", "/Applications/DAW.app"},
        {"daw.APP", "/Applications/DAW.app"},
        {"Digital Audio Workstation.app", "/Applications/DAW.app"},
        {"\u00C9diteur", "/Applications/E\u0301diteur.app"},
        {"\u00E9diteur.app", "/Applications/E\u0301diteur.app"},
        {"写真館", "/Applications/写真館.app"},
        {"Web/Mail", "/Applications/Web:Mail.app"},
        {"Odd\xFF", "/Applications/Odd\xFF.app"},
    };
    for (const auto& [wanted, path] : table) EXPECT_EQ(answer(wanted), path) << wanted;
}

TEST(AppChoice, FindsAnApplicationByItsPathHoweverItIsSpelled) {
    for (const auto* path : {"/Applications/Archive/Music.app", "/Applications/Archive/Music.app/",
                             "//Applications/./Archive/Music.app", "/Applications/Old/../Archive/Music.app"})
        EXPECT_EQ(answer(path), "/Applications/Archive/Music.app") << path;
}

TEST(AppChoice, TellsTwoNamesApartThatOnlyAFoldingVolumeTakesForOne) {
    const std::vector<AppEntry> list = {app("e\u0301diteur", "/Applications/a.app"),
                                        app("E\u0301diteur", "/Applications/b.app")};
    EXPECT_EQ(answer("\u00C9diteur", list), "/Applications/b.app");
    EXPECT_EQ(answer("\u00E9diteur", list), "/Applications/a.app");
}

TEST(AppChoice, FollowsLinksInAPath) {
    const test::TemporaryFolder folder;
    test::makeFolder(folder / "Drive/Far.app");
    test::makeFolder(folder / "Applications");
    test::makeLink(folder / "Applications/Far.app", folder / "Drive/Far.app");
    test::makeLink(folder / "Applications/Gone.app", folder / "Drive/Gone.app");
    test::makeLink(folder / "shortcut", folder / "Applications");
    const std::vector<AppEntry> list = {app("Far", folder / "Applications/Far.app"),
                                        app("Gone", folder / "Applications/Gone.app")};
    EXPECT_EQ(answer((folder / "shortcut/Far.app").native(), list), list[0].bundlePath);
    EXPECT_EQ(answer((folder / "shortcut/Gone.app").native(), list), list[1].bundlePath);
    EXPECT_EQ(answer((folder / "Drive/Far.app").native(), list), list[0].bundlePath);
}

TEST(AppChoice, TakesAPathInTheWorkingDirectory) {
    const fs::path here = fs::current_path();
    EXPECT_EQ(answer("Far.app", {app("Something else", here / "Far.app")}), here / "Far.app");
    EXPECT_EQ(answer("./Far.app", {app("Something else", here / "Far.app")}), here / "Far.app");
}

TEST(AppChoice, ShowsAllThatFitWhenOneIsNotEnough) {
    EXPECT_EQ(answer("Music"),
              "More than one application is called \"Music\": Music (/Applications/Music.app), Music "
              "(/Applications/Archive/Music.app). Name one by its path.");
    EXPECT_EQ(answer("com.acme.music").substr(0, 48), "More than one application is called \"com.acme.mu");
    EXPECT_EQ(answer("EDITOR").substr(0, 44), "More than one application is called \"EDITOR\"");
}

TEST(AppChoice, NamesThoseThatAreCloseWhenNoneFits) {
    EXPECT_EQ(answer("audio"),
              "There is no application \"audio\". Close to it: Digital Audio Workstation (/Applications/DAW.app).");
    EXPECT_EQ(answer("usic.app"),
              "There is no application \"usic.app\". Close to it: Music (/Applications/Music.app), Music "
              "(/Applications/Archive/Music.app).");
    EXPECT_EQ(answer("xyz"), "There is no application \"xyz\".");
    for (const auto* empty : {"", " ", ".app"})
        EXPECT_EQ(answer(empty), "There is no application \"" + std::string(empty) + "\".");
    EXPECT_EQ(answer("Editor", {}), "There is no application \"Editor\".");
}

TEST(AppChoice, ShowsOnlySomeOfManyThatAreClose) {
    std::vector<AppEntry> many;
    for (const auto* name : {"Pad 1", "Pad 2", "Pad 3", "Pad 4", "Pad 5", "Pad 6", "Pad 7"})
        many.push_back(app(name, name));
    EXPECT_EQ(
        answer("pad", many),
        "There is no application \"pad\". Close to it: Pad 1 (Pad 1), Pad 2 (Pad 2), Pad 3 (Pad 3), Pad 4 (Pad 4), "
        "Pad 5 (Pad 5) and 2 more.");
}

TEST(AppChoice, SaysWhenNoApplicationStandsAtAPath) {
    EXPECT_EQ(answer("/Applications/Nothing.app"),
              "\"/Applications/Nothing.app\" is not the path of an application that can be moved.");
    EXPECT_EQ(answer("/tmp"), "\"/tmp\" is not the path of an application that can be moved.");
}

TEST(AppChoice, DoesNotTakeBytesThatAreNoTextForEachOther) {
    EXPECT_EQ(answer("Odd\xFE").find("There is no application"), 0U);
}

}  // namespace tarvik
