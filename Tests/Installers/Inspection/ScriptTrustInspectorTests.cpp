#include "Installers/Inspection/ScriptTrustInspector.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {
namespace {

using namespace test;
using testing::ElementsAre;

TrustSummary verdictOn(std::string_view text) {
    const TemporaryFolder folder;
    makeFile(folder / "install.sh", text);
    return ScriptTrustInspector::inspect(folder / "install.sh");
}

const TrustSummary nothingRead = {.status = "untrusted-script", .details = {"Lines: 0"}};

TEST(ScriptTrustInspector, TellsWhatAScriptNames) {
    EXPECT_EQ(verdictOn("#!/bin/sh\n\n  \tcp -R Tool.app /Applications/ \t\nrm -rf /Library/Tool\n"),
              (TrustSummary{.status = "untrusted-script",
                            .details = {"#!/bin/sh", "Lines: 3", "References: cp -R Tool.app /Applications/"},
                            .hasScripts = true,
                            .hasPrivilegedPayload = true}));
}

TEST(ScriptTrustInspector, KnowsTheSignsOfPrivilege) {
    for (const char* sign : {"/Applications/", "/Library/", "/usr/local/", "/private/", "sudo ", "$HOME/.", "~/."}) {
        EXPECT_TRUE(verdictOn(fmt::format("#!/bin/sh\necho {}x\n", sign)).hasPrivilegedPayload) << sign;
        const std::string_view cut = std::string_view(sign).substr(0, std::string_view(sign).size() - 1);
        EXPECT_FALSE(verdictOn(fmt::format("#!/bin/sh\necho {}\n", cut)).hasPrivilegedPayload) << cut;
    }
    EXPECT_FALSE(verdictOn("#!/bin/sh\necho /applications/ SUDO \n").hasPrivilegedPayload);
}

TEST(ScriptTrustInspector, ShowsAReferenceWithoutASignOfPrivilege) {
    const TrustSummary trust = verdictOn("ls /Library\n");
    EXPECT_FALSE(trust.hasPrivilegedPayload);
    EXPECT_THAT(trust.details, ElementsAre("ls /Library", "Lines: 1", "References: ls /Library"));
}

TEST(ScriptTrustInspector, LooksForReferencesInTheFirst40LinesThatHoldSomething) {
    std::string text = "#!/bin/sh\n\n";
    for (int line = 2; line <= 39; ++line) text += "true\n\n";
    EXPECT_THAT(verdictOn(text + "ls /Library/\n").details,
                ElementsAre("#!/bin/sh", "Lines: 40", "References: ls /Library/"));
    const TrustSummary later = verdictOn(text + "true\nls /Library/\n");
    EXPECT_THAT(later.details, ElementsAre("#!/bin/sh", "Lines: 41"));
    EXPECT_TRUE(later.hasPrivilegedPayload);
}

TEST(ScriptTrustInspector, EndsLinesAtEveryLineBreak) {
    EXPECT_THAT(verdictOn("\r\none\rtwo\x0Bthree\x0C"
                          "four\xC2\x85"
                          "five\xE2\x80\xA8six\xE2\x80\xA9seven")
                    .details,
                ElementsAre("one", "Lines: 7"));
}

TEST(ScriptTrustInspector, HasNothingToShowOfAnEmptyScript) {
    EXPECT_EQ(verdictOn(""), nothingRead);
    EXPECT_EQ(verdictOn("\n\n"),
              (TrustSummary{.status = "untrusted-script", .details = {"Lines: 0"}, .hasScripts = true}));
}

TEST(ScriptTrustInspector, TakesWhatCannotBeReadForEmpty) {
    const TemporaryFolder folder;
    makePipe(folder / "pipe.sh");
    makeFolder(folder / "folder.sh");
    for (const char* name : {"pipe.sh", "folder.sh", "missing.sh"})
        EXPECT_EQ(ScriptTrustInspector::inspect(folder / name), nothingRead) << name;
    EXPECT_EQ(verdictOn("#!/bin/sh\nsudo \xFF\n"), nothingRead);
    EXPECT_EQ(verdictOn("#!/bin/sh\nsudo \n" + std::string(16'000'000, '#')), nothingRead);
}

}  // namespace
}  // namespace tarvik
