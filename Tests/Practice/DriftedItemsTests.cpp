#include "Health/HealthCheck.h"
#include "HealthRepair/BrokenLauncherRepairService.h"
#include "Platform/Bundles/CodesignVerifier.h"
#include "Platform/Files/Files.h"
#include "Practice/PracticeMachine.h"
#include "Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <stdexcept>
#include <string>

namespace tarvik {

namespace {

using testing::ElementsAre;
using testing::Pair;
using Kind = HealthIssue::Kind;

/// A machine, and what the health check finds on it.
struct CheckedMachine {
    explicit CheckedMachine(const Practice::Options& options)
        : machine(Practice::build(folder / "machine", options)),
          host(Host::rootedAt(machine.root, machine.home)),
          report(HealthCheck::run(host, HealthCheck::applicationRoots(host))) {}

    std::map<std::string, std::size_t> problemsByKind() const {
        std::map<std::string, std::size_t> counts;
        for (const HealthIssue& issue : report.problems()) ++counts[std::string(HealthIssueKind::rawValue(issue.kind))];
        return counts;
    }
    const HealthIssue& only(Kind kind) const {
        for (const HealthIssue& issue : report.issues)
            if (issue.kind == kind) return issue;
        throw std::out_of_range("no such finding");
    }

    test::TemporaryFolder folder;
    Practice::Machine machine;
    Host host;
    HealthReport report;
};

}  // namespace

TEST(DriftedItems, AreOneOfEachKindBesideHealthyOnes) {
    const CheckedMachine checked({.broken = true});
    std::map<std::string, std::size_t> oneOfEach;
    for (const Kind kind : HealthIssueKind::sections()) oneOfEach[std::string(HealthIssueKind::rawValue(kind))] = 1;
    EXPECT_EQ(checked.problemsByKind(), oneOfEach);
    EXPECT_EQ(checked.report.healthyCount, 5U);
    EXPECT_EQ(checked.report.scannedDrives.size(), 2U);
}

TEST(DriftedItems, AreTheKnownFewWhereNothingShallBeBroken) {
    const CheckedMachine checked({});
    EXPECT_THAT(checked.problemsByKind(), ElementsAre(Pair("brokenLauncher", 1), Pair("dangling", 1),
                                                      Pair("missingSpotlightLaunchers", 1), Pair("reverted", 1)));
    EXPECT_EQ(checked.report.healthyCount, 1U);
}

TEST(DriftedItems, BreakOneOfTwoSignaturesByOneByte) {
    const CheckedMachine checked({.broken = true});
    const HealthIssue& broken = checked.only(Kind::signatureBroken);
    EXPECT_THAT(broken.detail, testing::HasSubstr("a sealed resource is missing or invalid"));
    const fs::path whole = broken.target->parent_path() / "Orchestra.app";
    EXPECT_TRUE(CodesignVerifier::verify(checked.host, whole).isSigned);
    EXPECT_TRUE(CodesignVerifier::verify(checked.host, whole).passed());
}

TEST(DriftedItems, HaveWhatTheirRepairsBringBack) {
    const CheckedMachine checked({.broken = true});
    for (const Kind kind : {Kind::unsafePrefsPlist, Kind::sandboxExternalSymlink})
        EXPECT_TRUE(Files::exists(*checked.only(kind).target)) << HealthIssueKind::rawValue(kind);
    EXPECT_TRUE(
        BrokenLauncherRepairService::replacementTarget(checked.host, checked.only(Kind::brokenLauncher).location));
}

TEST(DriftedItems, AreThereWithoutTheOtherSpecialApplicationsBeingAskedFor) {
    EXPECT_EQ(CheckedMachine({.apps = 0, .specialApps = false, .broken = true, .files = 0}).problemsByKind().size(),
              HealthIssueKind::sections().size());
}

}  // namespace tarvik
