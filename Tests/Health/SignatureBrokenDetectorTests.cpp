#include "Health/HealthWorld.h"
#include "Health/SignatureBrokenDetector.h"
#include "Platform/Basics/Parallel.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace tarvik {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Links = std::vector<ApplicationsRootScan::Link>;

class BrokenSignatureDetection : public testing::Test {
protected:
    Links linkTo(const std::string& name) const { return {{world.moveApp(name), world.appsOnDrive / name}}; }
    std::vector<HealthIssue> found(const Links& links) const {
        return SignatureBrokenDetector::detect(world.host, links);
    }
    void answerTicket(const std::string& script) { world.host.tools.xcrun = world.tool("xcrun", script); }

    test::HealthWorld world;
};

}  // namespace

TEST_F(BrokenSignatureDetection, PassesWhatVerifies) {
    world.signAll();
    EXPECT_THAT(found(linkTo("Foo.app")), IsEmpty());
}

TEST_F(BrokenSignatureDetection, TellsTheFirstLineOfWhatTheToolSays) {
    world.signAll("\n\nFoo.app: a sealed resource is missing\nfile modified: x");
    EXPECT_THAT(found(linkTo("Foo.app")),
                ElementsAre(HealthIssue{.kind = HealthIssue::Kind::signatureBroken,
                                        .location = world.applications / "Foo.app",
                                        .target = world.appsOnDrive / "Foo.app",
                                        .detail = "codesign verify failed. Foo.app: a sealed resource is missing"}));
}

TEST_F(BrokenSignatureDetection, TellsOfATicketThatFails) {
    world.signAll();
    answerTicket("echo 'Processing: Foo.app'; echo 'The ticket is bad.'; exit 65");
    EXPECT_EQ(found(linkTo("Foo.app")).at(0).detail, "codesign verify failed. stapler: Processing: Foo.app");
    world.signAll("seal broken");
    answerTicket("echo 'Ticket bad.'; exit 65");
    EXPECT_EQ(found(linkTo("Bar.app")).at(0).detail, "codesign verify failed. seal broken stapler: Ticket bad.");
}

TEST_F(BrokenSignatureDetection, SaysNothingOfACheckThatPassed) {
    world.host.tools.codesign = world.tool("codesign", "echo 'valid on disk'");
    answerTicket("echo 'Ticket bad.'; exit 65");
    EXPECT_EQ(found(linkTo("Foo.app")).at(0).detail, "codesign verify failed. stapler: Ticket bad.");
    answerTicket("exit 65");
    EXPECT_EQ(found(linkTo("Bar.app")).at(0).detail, "codesign verify failed.");
}

TEST_F(BrokenSignatureDetection, SaysNoMoreThanTheToolDoes) {
    world.signAll();
    world.host.tools.codesign = world.tool("codesign", "case $1 in --verify) exit 1;; esac");
    EXPECT_EQ(found(linkTo("Foo.app")).at(0).detail, "codesign verify failed.");
}

TEST_F(BrokenSignatureDetection, PassesOverUnsignedAndMissingOnesAndFolders) {
    world.signAll("broken");
    EXPECT_THAT(found({{world.applications / "Gone.app", world.appsOnDrive / "Gone.app"}}), IsEmpty());
    EXPECT_THAT(found(linkTo("Folder")), IsEmpty());
    world.host.tools.codesign = world.tool("codesign", "echo 'code object is not signed at all' >&2; exit 1");
    EXPECT_THAT(found(linkTo("Foo.app")), IsEmpty());
}

TEST_F(BrokenSignatureDetection, KeepsTheOrderOfTheLinks) {
    world.signAll("broken");
    Links links;
    for (int number = 0; number < 12; ++number) links.push_back(linkTo(std::to_string(11 - number) + ".app").front());
    const auto issues = found(links);
    ASSERT_EQ(issues.size(), links.size());
    for (std::size_t index = 0; index < links.size(); ++index) EXPECT_EQ(issues[index].location, links[index].location);
}

TEST_F(BrokenSignatureDetection, BeginsNothingMoreOnceItIsCancelled) {
    world.signAll("broken");
    const Cancellation cancellation;
    cancellation.cancel();
    EXPECT_THAT(SignatureBrokenDetector::detect(world.host, linkTo("Foo.app"), cancellation), IsEmpty());
}

TEST_F(BrokenSignatureDetection, EndsTheToolThatRunsWhenItIsCancelled) {
    const fs::path asked = world.folder / "asked";
    world.host.tools.codesign = world.tool("codesign", "touch '" + asked.native() + "'; exec sleep 100");
    const Cancellation cancellation;
    std::thread user([&] {
        EXPECT_TRUE(test::comesToStand(asked));
        cancellation.cancel();
    });
    const auto start = std::chrono::steady_clock::now();
    EXPECT_THAT(SignatureBrokenDetector::detect(world.host, linkTo("Foo.app"), cancellation), IsEmpty());
    EXPECT_LT(std::chrono::steady_clock::now() - start, CodesignVerifier::toolTimeout);
    user.join();
}

TEST_F(BrokenSignatureDetection, GivesUpToolsThatHang) {
    const fs::path asked = world.folder / "asked";
    world.host.tools.codesign =
        world.tool("codesign", "[ $1 = --verify ] && echo x >> '" + asked.native() + "'; exec sleep 100");
    Links links;
    // Each thread has asked once before any of them knows.
    for (unsigned number = 0; number < 20 + 10 * processorCount(); ++number)
        links.push_back(linkTo(std::to_string(number) + ".app").front());
    // A tool that a slow machine has not started is not asked.
    for (std::chrono::milliseconds limit(50); !fs::exists(asked); limit *= 2)
        EXPECT_THAT(SignatureBrokenDetector::detect(world.host, links, {}, limit), IsEmpty());
    EXPECT_LT(test::contentOf(asked).size() / 2, links.size() / 2);
}

TEST_F(BrokenSignatureDetection, GivesNoToolUpThatIsSlowForSomeBundles) {
    world.signAll();
    world.host.tools.codesign = world.tool(
        "codesign", "case $1$4 in --verify*slow*) exec sleep 100;; --verify*) echo broken >&2; exit 1;; esac");
    Links links;
    for (int number = 0; number < 6; ++number)
        for (const char* name : {"slow.app", "quick.app"})
            links.push_back(linkTo(std::to_string(number) + " " + name).front());
    std::size_t count = 0;
    // A machine that is slow itself gets more time.
    for (std::chrono::milliseconds limit(400); count < 6 && limit < std::chrono::seconds(30); limit *= 2)
        count = SignatureBrokenDetector::detect(world.host, links, {}, limit).size();
    EXPECT_EQ(count, 6U);
}

TEST_F(BrokenSignatureDetection, FindsNothingWithoutItsTools) {
    world.host.tools.codesign = world.host.tools.xcrun = "/nowhere";
    EXPECT_THAT(found(linkTo("Foo.app")), IsEmpty());
}

TEST_F(BrokenSignatureDetection, IsNotImpressedByNonsense) {
    world.host.tools.codesign = world.tool("codesign", "head -c 100000 /dev/zero; printf '\\377\\376'");
    world.host.tools.xcrun = world.host.tools.codesign;
    EXPECT_THAT(found(linkTo("Foo.app")), IsEmpty());
    world.host.tools.codesign =
        world.tool("codesign", "case $1 in --verify) yes broken | head -c 100000000; exit 1;; esac");
    EXPECT_EQ(found(linkTo("Bar.app")).at(0).detail, "codesign verify failed. broken");
}

}  // namespace tarvik
