#pragma once

#include "Faults/FaultPoints.h"
#include "Health/HealthIssue.h"
#include "HealthRepair/HealthRepairStrategy.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"
#include "Platform/Processes/CommandResult.h"
#include "Support/TemporaryFolder.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tarvik::test {

class RepairFaultWorld;

/// What has drifted, and what the disk must hold after its repair.
struct RepairCase {
    HealthRepairStrategy strategy;
    std::function<void(const RepairFaultWorld&)> drift;
    /// Where the finding is.
    fs::path location;
    /// The trees of which none may be lost, each with a folder of its own.
    std::vector<fs::path> trees;
    std::function<bool(const RepairFaultWorld&)> isDone;
    /// What stands there when the repair fails: as it was, or as its sentence tells.
    std::function<bool(const RepairFaultWorld&)> isKnown;
};

/// A small machine in a folder with one thing that has drifted. Its repair is run over and over, with another fault
/// each time, and from the same state. The drive is a folder: the Trash of such a machine takes nothing from another
/// volume.
class RepairFaultWorld {
public:
    explicit RepairFaultWorld(HealthRepairStrategy strategy);

    static std::optional<std::string> unavailableReason();

    const RepairCase& repair() const { return m_repair; }

    /// Lets it drift anew.
    void prepare() const;
    /// The changing calls of a repair without a fault.
    std::vector<Fault> points() const;
    /// One repair by the command, with a fault.
    CommandResult run(const Fault& fault) const;
    /// What a user does then: checks, and mends what is found, until nothing is. @returns what is left.
    std::vector<std::string> mended() const;

    bool hasStruck() const;
    bool hasStruckRecords() const;
    /// Each of the trees stands whole somewhere on the machine.
    bool isNothingLost() const;
    /// Whether nothing is remembered to be on the drive that stands in its own place.
    bool isMemoryTrue() const;
    /// What acts leave under hidden names beside the finding.
    bool hasLeftovers() const;
    bool isInTrash(const fs::path& reference) const;
    std::string picture() const;

    Host host() const { return Host::rootedAt(root, home); }
    /// A third copy of the n-th tree.
    fs::path reference(std::size_t number) const;

    const TemporaryFolder folder;
    const fs::path root = folder / "root";
    const fs::path home = root / "Users/ada";
    const fs::path applications = root / "Applications";
    const fs::path appsOnDrive = root / "Volumes/Drive/ExternalTarvik/Apps";

private:
    CommandResult runTraced(const std::vector<std::string>& tracing) const;
    void makeReferences() const;

    RepairCase m_repair;
};

/// The case for a strategy.
RepairCase repairCase(const RepairFaultWorld& world, HealthRepairStrategy strategy);

}  // namespace tarvik::test
