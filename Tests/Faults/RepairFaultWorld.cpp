#include "Faults/RepairFaultWorld.h"

#include "Copying/HiddenName.h"
#include "Faults/AloneOnTheMachine.h"
#include "Faults/FaultTrees.h"
#include "Health/HealthCheck.h"
#include "HealthRepair/HealthRepair.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Processes/CommandRunner.h"
#include "Records/HealthManifest.h"
#include "Records/InstallsDB.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>

namespace tarvik::test {

namespace {

/// A repair that was killed can leave another finding, which has a repair of its own.
constexpr int mostRounds = 3;

void clearFolder(const fs::path& folder) {
    for (const auto& name : Files::names(folder)) fs::remove_all(folder / name);
}

/// The repair that was tried before, or else the one that there is. What came back without being forgotten is
/// reclaimed.
std::optional<HealthRepairStrategy> strategyFor(const Host& host, const HealthIssue& issue,
                                                HealthRepairStrategy tried) {
    if (HealthRepairStrategies::isFor(issue.kind, tried)) return tried;
    if (issue.kind == HealthIssue::Kind::reverted) return HealthRepairStrategy::reclaimReverted;
    return HealthRepair::onlyRepair(host, issue);
}

}  // namespace

RepairFaultWorld::RepairFaultWorld(HealthRepairStrategy strategy) : m_repair(repairCase(*this, strategy)) {
    makeFolder(folder / "bin/stand-ins");
    for (const char* name : {"tarvik", "external-app-launcher"})
        fs::copy_file(programOfThisBuild(name), folder / "bin" / name);
    fs::create_symlink(programOfThisBuild("stand-ins/ditto"), folder / "bin/stand-ins/ditto");
    // A path on the tracer's own command line would pass for that of an application that runs.
    makeFile(folder / "bin/repair", "exec '" + (folder / "bin/tarvik").native() + "' --root '" + root.native() +
                                        "' --home '" + home.native() + "' --yes health repair '" +
                                        m_repair.location.native() + "' --strategy " +
                                        std::string(HealthRepairStrategies::name(strategy)) + "\n");
    prepare();
    makeReferences();
}

std::optional<std::string> RepairFaultWorld::unavailableReason() {
    if (!Files::exists("/usr/bin/strace")) return "strace is not installed";
    if (!AloneOnTheMachine::words()) return "a process table of one's own is not allowed here";
    return std::nullopt;
}

void RepairFaultWorld::makeReferences() const {
    for (std::size_t number = 0; number < m_repair.trees.size(); ++number)
        FaultTrees::copy(m_repair.trees[number], reference(number));
}

fs::path RepairFaultWorld::reference(std::size_t number) const {
    return folder / "reference" / std::to_string(number) / m_repair.trees.at(number).filename();
}

void RepairFaultWorld::prepare() const {
    clearFolder(root);
    for (const fs::path& each : {home, applications, appsOnDrive}) makeFolder(each);
    m_repair.drift(*this);
}

CommandResult RepairFaultWorld::runTraced(const std::vector<std::string>& tracing) const {
    std::vector<std::string> words = *AloneOnTheMachine::words();
    words.insert(words.end(), {"/usr/bin/strace", "-qqq", "-y", "-o", (folder / "log").native()});
    words.insert(words.end(), tracing.begin(), tracing.end());
    words.insert(words.end(), {"/bin/sh", (folder / "bin/repair").native()});
    const fs::path program = words.front();
    words.erase(words.begin());
    return CommandRunner::run(program, words);
}

std::vector<Fault> RepairFaultWorld::points() const {
    prepare();
    const auto result = runTraced({"-e", "trace=" + std::string(FaultPoints::calls)});
    if (!result.succeeded()) throw std::runtime_error(result.stderr);
    std::istringstream log(contentOf(folder / "log"));
    auto points = FaultPoints::in(root, log);
    // Calls to close are no other ones than those of moves.
    std::erase_if(points, [](const Fault& point) { return point.call == "close"; });
    return points;
}

CommandResult RepairFaultWorld::run(const Fault& fault) const {
    prepare();
    return runTraced({"-e", "trace=" + fault.call, "-e",
                      "inject=" + fault.call + ":" + fault.effect + ":when=" + std::to_string(fault.ordinal) +
                          (fault.isForGood ? "+" : "")});
}

std::vector<std::string> RepairFaultWorld::mended() const {
    const Host machine = host();
    std::vector<std::string> left;
    for (int round = 0; round < mostRounds; ++round) {
        left.clear();
        const auto report = HealthCheck::run(machine, HealthCheck::applicationRoots(machine));
        for (const HealthIssue& issue : report.problems()) {
            left.push_back(std::string(HealthIssueKind::rawValue(issue.kind)) + " " + issue.location.native());
            const auto strategy = strategyFor(machine, issue, m_repair.strategy);
            if (!strategy) continue;
            try {
                HealthRepair::perform(machine, issue, *strategy);
            } catch (const Failure& failure) {
                left.back() += ": " + failure.description();
            }
        }
        if (left.empty()) break;
    }
    return left;
}

bool RepairFaultWorld::hasStruck() const {
    std::istringstream log(contentOf(folder / "log"));
    return FaultPoints::hasStruckIn("", log);
}

bool RepairFaultWorld::hasStruckRecords() const {
    const Host machine = host();
    for (const fs::path& file : {HealthManifest::file(machine), InstallsDB::defaultPath(machine)}) {
        std::istringstream log(contentOf(folder / "log"));
        if (FaultPoints::hasStruckIn(file.parent_path(), log)) return true;
    }
    return false;
}

bool RepairFaultWorld::isNothingLost() const {
    for (std::size_t number = 0; number < m_repair.trees.size(); ++number)
        if (!FaultTrees::isSameIn(root, reference(number))) return false;
    return true;
}

bool RepairFaultWorld::isMemoryTrue() const {
    const auto entries = HealthManifest::load(host());
    return std::none_of(entries.begin(), entries.end(), [](const HealthManifestEntry& entry) {
        return Files::itemExists(entry.sourcePath) && Files::linkText(entry.sourcePath) != entry.destinationPath;
    });
}

bool RepairFaultWorld::hasLeftovers() const {
    for (const fs::path& place : {m_repair.location.parent_path(), appsOnDrive})
        for (const auto& name : Files::names(place))
            if (HiddenName::read(name)) return true;
    return false;
}

bool RepairFaultWorld::isInTrash(const fs::path& tree) const {
    return FaultTrees::isSameIn(home / ".Trash", tree);
}

std::string RepairFaultWorld::picture() const {
    return pictureOf(root);
}

}  // namespace tarvik::test
