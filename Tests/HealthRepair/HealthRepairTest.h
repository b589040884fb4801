#pragma once

#include "Health/HealthCheck.h"
#include "Health/HealthWorld.h"
#include "HealthRepair/HealthRepair.h"
#include "Support/Bundles.h"
#include "Support/FailureOf.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace tarvik::test {

/// A test on a machine on which one thing has drifted.
class HealthRepairTest : public testing::Test {
protected:
    HealthRepairTest() {
        world.withRealDitto();
        world.signAll();
        world.host.tools.externalAppLauncher = world.folder / "external-app-launcher";
        makeFile(world.host.tools.externalAppLauncher, "the program");
    }

    HealthReport checked() const { return HealthCheck::run(world.host, HealthCheck::applicationRoots(world.host)); }
    /// The only problem of the machine.
    HealthIssue problem() const {
        const auto problems = checked().problems();
        if (problems.size() != 1)
            throw std::runtime_error(testing::PrintToString(kindsAndNames(problems)) + " was found");
        return problems.front();
    }
    std::string perform(const HealthIssue& issue, HealthRepairStrategy strategy) const {
        return HealthRepair::perform(world.host, issue, strategy);
    }
    std::string refusal(const HealthIssue& issue, HealthRepairStrategy strategy) const {
        return failureOf([&] { perform(issue, strategy); });
    }
    /// What is refused when what was found has changed since; the whole machine stays as it is.
    void expectStale(const HealthIssue& issue, HealthRepairStrategy strategy) const {
        const auto before = pictureOf(world.folder.path());
        EXPECT_EQ(refusal(issue, strategy),
                  issue.location.filename().native() + " is not what it was when it was checked. Nothing was changed.");
        EXPECT_EQ(pictureOf(world.folder.path()), before);
    }
    /// A bundle on the internal disk where a link should be, and its copy on the drive.
    HealthIssue revertedApp() const {
        makeBundle(world.appsOnDrive / "Foo.app");
        makeBundle(world.applications / "Foo.app");
        return problem();
    }

    HealthWorld world;
};

}  // namespace tarvik::test
