#include "CommandLine/Grammar/CompletionPlace.h"
#include "CommandLine/Grammar/Options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

namespace tarvik::CommandLine {

namespace {

using Words = std::vector<std::string>;
using Kind = CompletionPlace::Kind;
using testing::Contains;
using testing::ElementsAre;
using testing::IsSupersetOf;
using testing::Not;

CompletionPlace place(const Words& words) {
    return placeIn(describe(), words);
}

Words offered(const Words& words) {
    Words found;
    for (const auto& candidate : place(words).candidates) found.push_back(candidate.word);
    return found;
}

void forEachVerb(const CommandDescription& command, const std::function<void(const CommandDescription&)>& visit) {
    visit(command);
    for (const auto& verb : command.verbs) forEachVerb(verb, visit);
}

}  // namespace

TEST(CompletionPlace, OffersTheVerbs) {
    EXPECT_THAT(offered({}), IsSupersetOf({"drives", "apps", "move", "backup", "completion"}));
    EXPECT_EQ(offered({""}), offered({"mo"}));
    EXPECT_THAT(offered({"move", ""}), ElementsAre("app", "folder", "restore"));
    EXPECT_THAT(offered({"--yes", "--root", "/r", "backup", "l"}), ElementsAre("create", "list"));
    EXPECT_THAT(offered({"--root=/r", ""}), Contains("drives"));
    EXPECT_THAT(offered({"drives", ""}), ElementsAre());
}

TEST(CompletionPlace, OffersTheOptionsOfTheVerbAndOfAll) {
    EXPECT_THAT(offered({"move", "app", "-"}), IsSupersetOf({"--drive", "--dry-run", "--no-data", "--yes", "--help"}));
    EXPECT_THAT(offered({"move", "folder", "-"}), Not(Contains("--dry-run")));
    EXPECT_THAT(offered({"--"}), IsSupersetOf({"--root", "--home", "--format", "--version"}));
    EXPECT_THAT(offered({"apps", "--", "-"}), ElementsAre());
}

TEST(CompletionPlace, OffersNoOptionTwice) {
    EXPECT_THAT(offered({"move", "app", "--drive", "D", "--dry-run", "--"}),
                testing::AllOf(Not(Contains("--drive")), Not(Contains("--dry-run")), Contains("--no-data")));
}

TEST(CompletionPlace, OffersOptionsWhenNoArgumentIsLeft) {
    EXPECT_THAT(offered({"move", "folder", "/f", ""}), ElementsAre("--drive"));
    EXPECT_THAT(offered({"move", "folder", "/f", "--drive", "D", ""}), ElementsAre());
    EXPECT_THAT(offered({"launchers", ""}), ElementsAre("--repair"));
}

TEST(CompletionPlace, KnowsWhatAnArgumentIs) {
    EXPECT_EQ(place({"apps", ""}).kind, Kind::application);
    EXPECT_EQ(place({"apps", "A", ""}).kind, Kind::words);
    EXPECT_EQ(place({"move", "app", "A", "B", ""}).kind, Kind::application);
    EXPECT_EQ(place({"move", "app", "A", "B", ""}).arguments, (Words{"A", "B"}));
    EXPECT_EQ(place({"move", "folder", ""}).kind, Kind::folder);
    EXPECT_EQ(place({"move", "restore", "A", ""}).kind, Kind::applicationOrPath);
    EXPECT_EQ(place({"backup", "create", "a", "b"}).kind, Kind::path);
    EXPECT_EQ(place({"apps", "--", "-A"}).kind, Kind::application);
    // What bears the name of a verb, where none can stand.
    EXPECT_EQ(place({"move", "app", "drives", ""}).arguments, Words{"drives"});
}

TEST(CompletionPlace, KnowsWhatTheValueOfAnOptionIs) {
    EXPECT_EQ(place({"move", "app", "A", "--drive", ""}).kind, Kind::drive);
    EXPECT_EQ(place({"backup", "list", "--drive", "S"}).kind, Kind::drive);
    EXPECT_EQ(place({"--root", ""}).kind, Kind::folder);
    EXPECT_THAT(offered({"drives", "--format", ""}), ElementsAre("human", "tsv", "toml"));
    EXPECT_EQ(place({"move", "app", "--drive=S"}).kind, Kind::drive);
    EXPECT_EQ(place({"move", "app", "--drive=S"}).prefix, "--drive=");
    EXPECT_EQ(place({"move", "app", "--nothing=S"}).kind, Kind::words);
    EXPECT_THAT(offered({"completion", ""}), ElementsAre("bash", "zsh", "fish"));
}

TEST(CompletionPlace, KnowsTheMachineThatIsMeant) {
    EXPECT_EQ(place({"--root", "/r", "apps", "--home=/h", ""}).root, "/r");
    EXPECT_EQ(place({"--root", "/r", "apps", "--home=/h", ""}).home, "/h");
    EXPECT_EQ(place({"apps", ""}).root, std::nullopt);
    EXPECT_EQ(place({"--root", "/r"}).root, std::nullopt);
}

TEST(CompletionPlace, HasSomethingForEachValueAndEachArgumentThatHelpNames) {
    forEachVerb(describe(), [](const CommandDescription& verb) {
        Words before;
        for (std::size_t at = 0; at < verb.words.size();) {
            const auto end = std::min(verb.words.find(' ', at), verb.words.size());
            before.push_back(verb.words.substr(at, end - at));
            at = end + 1;
        }
        const auto knows = [&](const Words& more) {
            Words words = before;
            words.insert(words.end(), more.begin(), more.end());
            const auto found = place(words);
            return found.kind != Kind::words || !found.candidates.empty();
        };
        if (!verb.arguments.empty()) {
            EXPECT_TRUE(knows({""})) << verb.words;
        }
        for (const auto& option : verb.options)
            if (!option.value.empty()) {
                EXPECT_TRUE(knows({option.names.back(), ""})) << option.names.back();
            }
    });
}

TEST(CompletionPlace, OffersOnlyFormatsAndShellsThatAreUnderstood) {
    for (const auto& format : offered({"--format", ""})) EXPECT_NO_THROW(parse({"drives", "--format", format}));
    for (const auto& shell : offered({"completion", ""})) EXPECT_NO_THROW(parse({"completion", shell}));
}

}  // namespace tarvik::CommandLine
