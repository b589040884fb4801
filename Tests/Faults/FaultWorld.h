#pragma once

#include "Platform/CommandResult.h"
#include "Platform/Path.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"

#include <compare>
#include <string>
#include <vector>

namespace tarvik::test {

enum class Act { move, restore };
/// Whose system calls are made to fail: those of the program that moves, or of the tool that copies, on one thread or
/// on the several that it takes for many items.
enum class Victim { engine, copier, copierThreads };

/// One way in which a system call goes wrong, in the words of the tracer: "error=EIO", "signal=KILL".
struct Fault {
    std::string call;
    int ordinal = 0;
    /// Meant for the call of whichever thread comes to it, and not for the first thread's alone.
    bool isOfAnyThread = false;
    std::string effect;
    /// Met by every call from that one on.
    bool isForGood = false;

    std::string text() const { return call + " " + std::to_string(ordinal) + " " + effect; }
    auto operator<=>(const Fault&) const = default;
};

/// What stands at one place.
enum class Stand { nothing, link, part, whole };

/// The places where the tree, or a part of it, may be after a run.
struct Places {
    /// At the item's place in the home folder. A link is one to the item's place on the drive.
    Stand home = Stand::nothing;
    /// At the item's place on the drive.
    Stand drive = Stand::nothing;
    /// Among what was disposed of beside that place.
    Stand stash = Stand::nothing;
    /// What else a run left in the folders, by name.
    std::vector<std::string> leftovers;
};

/// A small machine with a real second volume, on which one act is run over and over with another fault each time.
/// Every run starts from the same state; a third copy of the tree stands aside for comparison.
class FaultWorld {
public:
    FaultWorld(Act act, Victim victim);

    /// Brings home and drive into the state before the act.
    void prepare() const;
    /// Runs the act with all of its changing calls listed. `points` gets them in order, without an effect. Threads
    /// share the work anew in each run: of theirs, a point is the n-th call of any thread, and only some are given.
    CommandResult list(std::vector<Fault>& points) const;
    /// Runs the act with one fault. One of any thread meets each of them at its n-th call.
    CommandResult run(const Fault& fault) const;

    /// The act once more on what the last run has left, without a fault.
    CommandResult runAgain() const;
    /// The same of another act.
    CommandResult runOther(Act act) const;
    /// Whether the fault of the last run met its call.
    bool hasStruck() const;
    /// Whether the program's memory of what it moved holds the item.
    bool isRemembered() const;
    /// The tree stands whole at its place in the home folder, as a folder.
    bool isWholeAtHome() const;
    /// The tree stands whole somewhere on the drive, be it disposed of.
    bool isWholeOnDrive() const;
    /// Whether the place is taken, by the item, what is left of it, or its link.
    bool isSomethingAtHome() const;
    /// A link at the place in the home folder.
    bool isLinkAtHome() const;
    /// What the link leads to is the whole tree.
    bool isLinkGood() const;
    Places places() const;
    /// What stands where, for a failure's message.
    std::string picture() const;

private:
    CommandResult runTraced(Act act, const std::vector<std::string>& tracing) const;
    Stand standOf(const fs::path& item) const;

    Act m_act;
    Victim m_victim;
    TemporaryFolder m_folder;
    RealVolume m_drive;
    fs::path m_home;
    fs::path m_item;
    fs::path m_destination;
    fs::path m_reference;
};

}  // namespace tarvik::test
