// What can have drifted, one case for each repair that moves, removes or rewrites something.
#include "Applications/LauncherLayout.h"
#include "Faults/FaultTrees.h"
#include "Faults/RepairFaultWorld.h"
#include "Platform/Files/Files.h"
#include "Records/HealthManifest.h"
#include "Records/InstallsDB.h"
#include "Support/Bundles.h"
#include "Support/TrackingDatabase.h"
#include "Support/Tree.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace tarvik::test {

namespace {

using World = RepairFaultWorld;
using FaultTrees::isSame;
using enum HealthRepairStrategy;

void makeApp(const fs::path& bundle, const std::string& version) {
    makeBundle(bundle, {{"CFBundleIdentifier", "org.example.Foo"}, {"CFBundleVersion", version}});
    makeFileOfSize(bundle / "Contents/Resources/data", 3'000, static_cast<unsigned>(version.size()));
    makeLink(bundle / "Contents/Resources/link", "data");
}

void rememberMove(const World& world, const fs::path& source, const fs::path& destination) {
    const Host host = world.host();
    HealthManifest::record(host, {source, destination, std::nullopt, 1, host.now()});
}

/// Those of a suite.
constexpr std::array suiteApps = {"Mixer.app", "Player.app"};

/// Whether a link stands at the finding and leads to `target`.
bool isLinkTo(const World& world, const fs::path& target) {
    return Files::linkText(world.repair().location) == target;
}

RepairCase danglingCase(const World& world) {
    const fs::path link = world.applications / "Foo.app";
    const fs::path target = world.appsOnDrive / "Foo.app";
    return {.strategy = removeDangling,
            .drift = [=](const World&) { makeLink(link, target); },
            .location = link,
            .trees = {},
            .isDone = [=](const World&) { return !Files::itemExists(link); },
            .isKnown = [=](const World& here) { return isLinkTo(here, target); }};
}

RepairCase emptyCase(const World& world) {
    const fs::path link = world.applications / "Foo.app";
    const fs::path target = world.appsOnDrive / "Foo.app";
    const auto isSomewhere = [=](const World& here) {
        return here.isInTrash(here.reference(0)) != isSame(target, here.reference(0));
    };
    return {.strategy = removeEmpty,
            .drift =
                [=](const World& here) {
                    makeFile(target / "Contents/Resources/rest", "what is left");
                    makeLink(link, target);
                    rememberMove(here, link, target);
                },
            .location = link,
            .trees = {target},
            .isDone =
                [=](const World& here) {
                    return isSomewhere(here) && !Files::itemExists(target) && !Files::itemExists(link);
                },
            .isKnown = isSomewhere};
}

/// An updater's bundle where a link stood, and the older copy on the drive.
RepairCase revertedCase(const World& world, HealthRepairStrategy strategy) {
    const fs::path local = world.applications / "Foo.app";
    const fs::path copy = world.appsOnDrive / "Foo.app";
    const bool movesAgain = strategy == reSymlinkReverted;
    return {.strategy = strategy,
            .drift =
                [=](const World& here) {
                    makeApp(local, "2.0.1");
                    makeApp(copy, "1");
                    rememberMove(here, local, copy);
                    makeLauncher(here.home / "Applications/Open Foo.app", movesAgain ? "/elsewhere" : copy.native());
                    if (movesAgain) fs::remove_all(here.home / "Applications/Open Foo.app");
                },
            .location = local,
            .trees = {local, copy},
            .isDone =
                [=](const World& here) {
                    if (!here.isInTrash(here.reference(1))) return false;
                    return movesAgain ? isLinkTo(here, copy) && isSame(copy, here.reference(0))
                                      : isSame(local, here.reference(0)) && !Files::itemExists(copy);
                },
            .isKnown =
                [=](const World& here) {
                    // A removal that stops half-way has put the complete copy there.
                    return (isSame(local, here.reference(0)) || (movesAgain && here.isInTrash(here.reference(0)))) &&
                           here.isInTrash(here.reference(1)) != isSame(copy, here.reference(1));
                }};
}

RepairCase orphanCase(const World& world) {
    const fs::path bundle = world.appsOnDrive / "Foo.app";
    return {
        .strategy = removeOrphan,
        .drift =
            [=](const World& here) {
                makeApp(bundle, "1");
                makeLauncher(here.home / "Applications/Open Foo.app", bundle);
            },
        .location = bundle,
        .trees = {bundle},
        .isDone = [=](const World& here) { return here.isInTrash(here.reference(0)) && !Files::itemExists(bundle); },
        .isKnown = [=](const World& here) { return isSame(bundle, here.reference(0)); }};
}

std::string trackedFiles(const World& world) {
    const fs::path database = InstallsDB::defaultPath(world.host());
    return askDatabase(database, "SELECT install_id, file_path FROM tracked_files ORDER BY 1, 2;");
}

RepairCase trackedFilesCase(const World& world) {
    const fs::path link = world.applications / "Foo.app";
    const fs::path target = world.appsOnDrive / "Foo.app";
    const std::string there = (world.home / "there").native();
    const std::string kept = "one|" + there + "\ntwo|/nowhere/other\n";
    const std::string first = "one|/nowhere/a\n";
    const std::string second = "one|/nowhere/b\n";
    // Each row goes on its own, and those that went are counted.
    const auto isKnown = [=](const World& here) {
        const std::string rows = trackedFiles(here);
        return isSame(target, here.reference(0)) && isLinkTo(here, target) &&
               (rows == kept || rows == first + kept || rows == second + kept || rows == first + second + kept);
    };
    return {.strategy = forgetMissingTrackedFiles,
            .drift =
                [=](const World& here) {
                    makeApp(target, "1");
                    makeLink(link, target);
                    makeFile(there);
                    const fs::path database = InstallsDB::defaultPath(here.host());
                    makeTrackingDatabase(database);
                    askDatabase(database,
                                "INSERT INTO installs (install_id, app_name) VALUES ('one', 'Foo.app'), ('two', 'B');"
                                "INSERT INTO tracked_files (install_id, file_path) VALUES ('one', '/nowhere/a'),"
                                "('one', '/nowhere/b'), ('one', '" +
                                    there + "'), ('two', '/nowhere/other');");
                },
            .location = link,
            .trees = {target},
            .isDone = [=](const World& here) { return isKnown(here) && trackedFiles(here) == kept; },
            .isKnown = isKnown};
}

RepairCase launcherCase(const World& world) {
    const fs::path launcher = world.applications / "Foo.app";
    const fs::path copy = world.home / "Applications/Foo.app";
    const auto opens = [=](const fs::path& target) {
        const std::string text = contentOf(launcher / "Contents/Resources/ExternalAppTarget.txt");
        return text == target.native() || text == target.native() + "\n";
    };
    return {.strategy = repairBrokenLauncher,
            .drift =
                [=](const World&) {
                    makeLauncher(launcher, "/nowhere/Foo.app",
                                 {{"CFBundleIdentifier", "org.example.Foo.externallauncher"}});
                    makeApp(copy, "1");
                },
            .location = launcher,
            .trees = {copy},
            .isDone = [=](const World&) { return opens(copy); },
            .isKnown = [=](const World&) { return opens("/nowhere/Foo.app"); }};
}

RepairCase missingLaunchersCase(const World& world) {
    const fs::path link = world.applications / "Suite";
    const fs::path suite = world.root / "Volumes/Drive/Suite";
    // None is there, or a whole one.
    const fs::path program = world.folder / "bin/external-app-launcher";
    const auto opens = [program, suite, applications = world.applications](const std::string& app) {
        const fs::path launcher = applications / app;
        return contentOf(launcher / "Contents/Resources/ExternalAppTarget.txt") == (suite / app).native() &&
               Files::exists(launcher / "Contents/Info.plist") &&
               contentOf(launcher / LauncherLayout::executableFile) == contentOf(program);
    };
    const auto isKnown = [=](const World& here) {
        return isLinkTo(here, suite) && isSame(suite, here.reference(0)) &&
               std::all_of(suiteApps.begin(), suiteApps.end(),
                           [&](const char* app) { return !Files::itemExists(here.applications / app) || opens(app); });
    };
    return {
        .strategy = repairSpotlightLaunchers,
        .drift =
            [=](const World&) {
                for (const char* app : suiteApps) makeApp(suite / app, "1");
                makeLink(link, suite);
            },
        .location = link,
        .trees = {suite},
        .isDone =
            [=](const World& here) { return isKnown(here) && std::all_of(suiteApps.begin(), suiteApps.end(), opens); },
        .isKnown = isKnown};
}

RepairCase preferencesCase(const World& world) {
    const fs::path link = world.home / "Library/Preferences/x.plist";
    const fs::path target = world.root / "Volumes/Drive/Preferences/x.plist";
    const auto holds = [](const fs::path& file) {
        return Files::exists(file) && !Files::isSymbolicLink(file) && contentOf(file) == "preferences";
    };
    return {.strategy = restoreUnsafePrefs,
            .drift =
                [=](const World& here) {
                    makeFile(target, "preferences");
                    makeLink(link, target);
                    rememberMove(here, link, target);
                },
            .location = link,
            .trees = {},
            .isDone = [=](const World&) { return holds(link) && !Files::itemExists(target); },
            .isKnown = [=](const World& here) { return isLinkTo(here, target) && holds(target); }};
}

RepairCase sandboxCase(const World& world) {
    const fs::path link = world.home / "Library/Containers/org.example.Foo";
    const fs::path target = world.root / "Volumes/Drive/Data/org.example.Foo";
    const auto isDone = [=](const World& here) {
        return isSame(target, here.reference(0)) && isSame(link, here.reference(0));
    };
    return {.strategy = restoreSandboxExternal,
            .drift =
                [=](const World& here) {
                    FaultTrees::makeData(target, 1);
                    makeLink(link, target);
                    rememberMove(here, link, target);
                },
            .location = link,
            .trees = {target},
            .isDone = isDone,
            // Where neither name can be given back, the data has come.
            .isKnown =
                [=](const World& here) {
                    return isDone(here) || (isSame(target, here.reference(0)) && isLinkTo(here, target));
                }};
}

RepairCase repointCase(const World& world) {
    const fs::path link = world.home / "Library/Logs/data";
    const fs::path former = world.root / "Volumes/Drive/Tarvik/Data/data";
    const fs::path present = world.root / "Volumes/Drive/ExternalTarvik/Data/data";
    return {.strategy = repointDangling,
            .drift =
                [=](const World&) {
                    FaultTrees::makeData(present, 1);
                    makeLink(link, former);
                },
            .location = link,
            .trees = {present},
            .isDone = [=](const World& here) { return isLinkTo(here, present); },
            .isKnown = [=](const World& here) { return isLinkTo(here, former); }};
}

}  // namespace

RepairCase repairCase(const RepairFaultWorld& world, HealthRepairStrategy strategy) {
    switch (strategy) {
        case removeDangling:
            return danglingCase(world);
        case removeEmpty:
            return emptyCase(world);
        case reclaimReverted:
        case reSymlinkReverted:
            return revertedCase(world, strategy);
        case removeOrphan:
            return orphanCase(world);
        case forgetMissingTrackedFiles:
            return trackedFilesCase(world);
        case repairBrokenLauncher:
            return launcherCase(world);
        case restoreUnsafePrefs:
            return preferencesCase(world);
        case restoreSandboxExternal:
            return sandboxCase(world);
        case repointDangling:
            return repointCase(world);
        case repairSpotlightLaunchers:
            return missingLaunchersCase(world);
    }
    throw std::runtime_error("no such case");
}

}  // namespace tarvik::test
