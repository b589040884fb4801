#include "Uninstall.h"

#include "Discovery/InstalledAppsScanner.h"
#include "ManyApps.h"
#include "Measure.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Machine/Host.h"
#include "Support/Bundles.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"
#include "Table.h"
#include "Uninstall/AppUninstallPlanner.h"
#include "UninstallRun/AppUninstallRunner.h"

#include <fmt/format.h>

#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace tarvik::UninstallSpeed {

namespace {

constexpr std::int64_t volumeBytes = 4'000'000'000;
constexpr int folders = 600;
constexpr int filesInFolder = 100;
constexpr int trashedItems = 5'000;

/// A machine with one application that has much.
class LargeApp {
public:
    LargeApp()
        : m_volume(test::RealVolume::ext4(m_folder.path(), volumeBytes)),
          m_host(Host::rootedAt(makeFolder("machine"), makeFolder("machine/Users/me"))),
          m_bundle(m_host.root / "Applications/Large.app") {
        test::makeBundle(m_bundle, {{"CFBundleIdentifier", "org.example.large"}, {"CFBundleName", "Large"}});
        const fs::path library = m_host.home / "Library";
        const std::vector<fs::path> places = {m_bundle / "Contents/Resources", library / "Application Support/Large",
                                              library / "Caches/org.example.large",
                                              library / "Containers/org.example.large"};
        for (int folder = 0; folder < folders; ++folder)
            for (int file = 0; file < filesInFolder; ++file)
                test::makeFile(places[folder % places.size()] / std::to_string(folder) / std::to_string(file));
    }

    const Host& host() const { return m_host; }
    AppRecord record() const { return InstalledAppsScanner::inspect(m_host, m_bundle).value(); }

private:
    fs::path makeFolder(const std::string& name) const {
        test::makeFolder(m_volume / name);
        return m_volume / name;
    }

    test::TemporaryFolder m_folder;
    test::RealVolume m_volume;
    Host m_host;
    fs::path m_bundle;
};

void plan(const LargeApp& app, RelatedFileScanner::Sizes sizes) {
    const auto plan = AppUninstallPlanner::plan(app.host(), app.record(), UninstallSelection::everything, sizes);
    if (plan.candidates.size() < 4) throw std::runtime_error("The plan lacks candidates.");
}

std::vector<std::string> duOf(const LargeApp& app) {
    std::vector<fs::path> paths;
    const auto plan = AppUninstallPlanner::plan(app.host(), app.record(), UninstallSelection::everything);
    for (const UninstallCandidate& candidate : plan.candidates) paths.push_back(candidate.path);
    return ManyApps::command({"du", "-s"}, paths);
}

/// Many files in one folder, each a candidate of its own.
AppUninstallPlan planOfMany(const LargeApp& app, const fs::path& folder) {
    AppUninstallPlan plan;
    plan.app = app.record();
    for (int item = 0; item < trashedItems; ++item) {
        UninstallCandidate candidate;
        candidate.path = folder / fmt::format("item-{}", item);
        candidate.category = UninstallCategory::caches;
        test::makeFile(candidate.path);
        candidate.seen = Files::info(candidate.path);
        plan.candidates.push_back(std::move(candidate));
    }
    return plan;
}

double secondsToTrash(const LargeApp& app, const fs::path& folder) {
    const AppUninstallPlan plan = planOfMany(app, folder);
    std::set<std::string> paths;
    for (const UninstallCandidate& candidate : plan.candidates) paths.insert(candidate.path.native());
    AppUninstallSession session;
    const double seconds = Measure::seconds([&] {
        session = AppUninstallRunner::run(app.host(), plan, UninstallSelection::everything, false, paths,
                                          AppUninstallReporter::silent);
    });
    for (const auto& item : session.movedItems)
        if (!item.trashedTo) throw std::runtime_error("An item did not go to the Trash.");
    Files::removeItem(app.host().home / ".Trash");
    // The next run would wait for a second of its own.
    Files::removeItem(AppStorageNames::uninstallSessionRoot(app.host()));
    return seconds;
}

double secondsToRename(const LargeApp& app, const fs::path& folder) {
    const AppUninstallPlan plan = planOfMany(app, folder);
    const fs::path goal = app.host().home / "renamed";
    Files::createFolder(goal);
    const double seconds = Measure::seconds([&] {
        for (const UninstallCandidate& candidate : plan.candidates)
            Files::rename(candidate.path, goal / candidate.path.filename());
    });
    Files::removeItem(goal);
    return seconds;
}

void measureTrash(const LargeApp& app, int rounds) {
    const fs::path folder = app.host().home / "Library/Caches/Many";
    std::vector<double> ours;
    std::vector<double> theirs;
    for (int round = 0; round <= rounds; ++round) {
        const double our = secondsToTrash(app, folder);
        const double their = secondsToRename(app, folder);
        if (round == 0) continue;
        ours.push_back(our);
        theirs.push_back(their);
    }
    Table::ratio(fmt::format("{} items to the Trash", trashedItems), ours, "as many renames", theirs, "<= 1.50");
}

}  // namespace

void measure(int rounds) {
    const LargeApp app;
    Table::heading(fmt::format("One application with {} files, medians of {} rounds, caches warm",
                               folders * filesInFolder, rounds));
    const auto du = duOf(app);
    Table::compare(
        "plan of one application", [&] { plan(app, RelatedFileScanner::Sizes::measured); }, "du -s of its candidates",
        [&] { Measure::program(du); }, rounds, "<= 1.10");
    Table::milliseconds(
        "the same without sizes", [&] { plan(app, RelatedFileScanner::Sizes::leftOut); }, rounds, "20 ms");
    measureTrash(app, rounds);
}

}  // namespace tarvik::UninstallSpeed
