#pragma once

#include "Faults/FaultPoints.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"
#include "Platform/Processes/CommandResult.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"

#include <optional>
#include <string>
#include <vector>

namespace tarvik::test {

/// What is moved: a folder, an application with its data, one without that a launcher stands for, a folder of the
/// applications that holds two of them.
enum class Subject { folder, application, launcher, suite };
enum class Act { move, restore };
/// Whose system calls are made to fail: those of the program that moves, or of the tool that copies the first item, on
/// one thread or on the several that it takes for many items.
enum class Victim { engine, copier, copierThreads };

/// What stands at one place. A launcher counts as a link.
enum class Stand { nothing, link, part, whole };

/// One of the items that an act takes.
struct FaultItem {
    /// What the program calls it when it moves it, and when it brings it back.
    std::string movedAs, restoredAs;
    /// Its place at home, and the one on the drive.
    fs::path home, drive;
    /// A third copy of it.
    fs::path reference;
    /// A copy of the launcher that stands for it at home; empty when a link does.
    fs::path launcher;

    const std::string& calledIn(Act act) const { return act == Act::move ? movedAs : restoredAs; }
    /// At its place in the home folder. A link is one to the item's place on the drive, as is a launcher.
    Stand atHome() const { return standAt(home); }
    Stand onDrive() const { return standAt(drive); }
    /// Among what was disposed of beside its place on the drive.
    Stand inStash() const;
    /// Whether a link at its place at home, if there is one, leads to all of it.
    bool hasNoBadLink() const;

private:
    Stand standAt(const fs::path& place) const;
};

/// A small machine with a real second volume, on which one act is run over and over with another fault each time.
/// Every run starts from the same state; a third copy of each tree stands aside for comparison.
class FaultWorld {
public:
    FaultWorld(Subject subject, Act act, Victim victim);

    /// Why such a world cannot be made here; nothing when it can.
    static std::optional<std::string> unavailableReason(Subject subject);

    const std::vector<FaultItem>& items() const { return m_items; }

    /// Brings home and drive into the state before the act.
    void prepare() const;
    /// Runs the act with all of its changing calls listed. `points` gets them in order, without an effect. Threads
    /// share the work anew in each run: of theirs, a point is the n-th call of any thread, and only some are given.
    CommandResult list(std::vector<Fault>& points) const;
    /// Runs the act with one fault. One of any thread meets each of them at its n-th call.
    CommandResult run(const Fault& fault) const;
    /// An act on what the last run has left, without a fault.
    CommandResult runUnharmed(Act act) const;
    /// The command that mends launchers, on what the last run has left.
    CommandResult repairLaunchers() const;

    /// Whether the fault of the last run met its call.
    bool hasStruck() const;
    /// Whether the last run's fault met a call that writes the program's memory or the tracking database.
    bool hasStruckRecords() const;
    /// Whether the program's memory of what it moved holds the item.
    bool isRemembered(const FaultItem& item) const;
    /// Whether the tracking database has an open row for it.
    bool isTracked(const FaultItem& item) const;
    /// Whether that memory still holds what it held of other items.
    bool isMemorySound() const;
    /// The item stands whole in its place at home, as what it is, or somewhere on the drive, be it disposed of.
    bool isWholeSomewhere(const FaultItem& item) const;
    /// What a run left in the folders around the items, by name.
    std::vector<std::string> leftovers() const;

    /// The places of the launchers that belong to the moved folder.
    std::vector<fs::path> launchers() const;
    /// Whether a launcher is all that it should be, but for its icon, without which it works. What it opens need not be
    /// there.
    bool isLauncherWhole(const fs::path& launcher) const;
    /// Whether the launchers that a run without a fault leaves are what they should be.
    bool areReferenceLaunchersGood() const;

    /// What stands where, for a failure's message.
    std::string picture() const;

private:
    void addFolder(bool isCrowded);
    void addApplication();
    void addApplicationBehindLauncher();
    void addSuite();
    void addItem(const fs::path& home, const fs::path& onDrive, const std::string& label);
    std::vector<std::string> command(Act act) const;
    bool hasStruckIn(const fs::path& folder) const;
    CommandResult runTraced(Act act, const std::vector<std::string>& tracing) const;
    fs::path programs() const { return m_folder / "bin"; }
    fs::path applications() const { return m_root / "Applications"; }
    Host host() const { return Host::rootedAt(m_root, m_home); }

    Subject m_subject;
    Act m_act;
    Victim m_victim;
    TemporaryFolder m_folder;
    fs::path m_root;
    RealVolume m_drive;
    fs::path m_home;
    std::vector<FaultItem> m_items;
    /// The program's memory and the tracking database before the act.
    std::string m_memory, m_database;
};

}  // namespace tarvik::test
