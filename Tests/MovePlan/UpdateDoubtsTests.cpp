#include "MovePlan/UpdateDoubts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

AppEntry named(const std::string& name) {
    return {.id = name, .name = name, .bundlePath = "/Applications/" + name + ".app"};
}

TEST(UpdateDoubts, AreNoneAboutAnOrdinaryApplication) {
    auto editor = named("Editor");
    editor.dataPaths = {"/Users/ada/Library/Caches/Editor", "/Users/ada/LaunchAgents of Editor"};
    EXPECT_THAT(UpdateDoubts::about({}), IsEmpty());
    EXPECT_THAT(UpdateDoubts::about({editor}), IsEmpty());
}

TEST(UpdateDoubts, TellWhatEachKindLoses) {
    auto store = named("Store");
    store.isMacAppStore = true;
    EXPECT_THAT(UpdateDoubts::about({store}),
                ElementsAre("The App Store may not update Store on a drive: move back before an update."));
    auto driver = named("Driver");
    driver.hasSystemExtension = true;
    EXPECT_THAT(UpdateDoubts::about({driver}),
                ElementsAre("macOS activates the system extension of Driver only from /Applications."));
    auto helper = named("Helper");
    helper.hasLoginItems = true;
    EXPECT_THAT(UpdateDoubts::about({helper}),
                ElementsAre("A helper of Helper starts at login, when the drive may not be there yet."));
}

TEST(UpdateDoubts, KnowWhatIsStartedByItsAbsolutePath) {
    for (const char* list :
         {"/Users/ada/Library/LaunchAgents/org.acme.plist", "/Library/LaunchDaemons/org.acme.plist"}) {
        auto agent = named("Agent");
        EXPECT_FALSE(UpdateDoubts::startsAtLogin(agent));
        agent.dataPaths = {list};
        EXPECT_TRUE(UpdateDoubts::startsAtLogin(agent)) << list;
    }
}

TEST(UpdateDoubts, NameAllThatTheyConcernInOneSentence) {
    std::vector<AppEntry> moving;
    for (const char* name : {"A", "B", "C", "D", "E", "F"}) {
        moving.push_back(named(name));
        moving.back().isMacAppStore = true;
    }
    moving.push_back(named("Plain"));
    EXPECT_THAT(UpdateDoubts::about(moving),
                ElementsAre("The App Store may not update A, B, C, D, E and 1 more on a drive: move back before an "
                            "update."));
}

}  // namespace
}  // namespace tarvik
