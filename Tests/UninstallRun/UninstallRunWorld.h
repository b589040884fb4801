#pragma once

#include "Applications/AppRecord.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Support/World.h"
#include "Uninstall/AppUninstallPlan.h"
#include "UninstallRun/AppUninstallReporter.h"
#include "UninstallRun/AppUninstallSession.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tarvik::test {

/// A machine with the application Foo and data of it, and a plan that takes them all. Its Trash is the one of a machine
/// in a folder. The clock goes on by a second at each look at a second that has a record already.
class UninstallRunWorld : public World {
public:
    UninstallRunWorld();
    explicit UninstallRunWorld(const fs::path& drivePath);

    /// What stands at the path as a candidate that goes by default, of the category that its folder has in plans.
    UninstallCandidate candidate(const fs::path& path) const;
    UninstallCandidate candidate(const fs::path& path, UninstallCategory category) const;
    /// A plan of the bundle and these, all as they stand now.
    AppUninstallPlan planWith(const std::vector<fs::path>& data) const;
    /// Makes a file of that text and adds it to the plan.
    void addData(const fs::path& path, const std::string& text = "data");

    /// The plan carried out; its lines are kept in `lines`.
    AppUninstallSession run(bool dryRun = false,
                            const std::optional<std::set<std::string>>& selectedPaths = std::nullopt);
    AppUninstallReporter reporter();

    fs::path library(const fs::path& below) const { return home / "Library" / below; }
    fs::path sessions() const { return AppStorageNames::uninstallSessionRoot(host); }
    /// The journals that runs have left.
    std::vector<std::string> journals() const;
    void refuseAllTrash();

    fs::path bundle = folder / "Applications/Foo.app";
    AppUninstallPlan plan;
    std::vector<std::string> lines;
};

}  // namespace tarvik::test
