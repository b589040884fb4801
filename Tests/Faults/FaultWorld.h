#pragma once

#include "Platform/CommandResult.h"
#include "Platform/Path.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"

#include <string>
#include <vector>

namespace tarvik::test {

enum class Act { move, restore };
/// Whose system calls are made to fail: those of the program that moves, or of the tool that copies.
enum class Victim { engine, copier };

/// One way in which a system call goes wrong, in the words of the tracer: "error=EIO", "signal=KILL".
struct Fault {
    std::string call;
    int ordinal = 0;
    std::string effect;

    std::string text() const { return call + " " + std::to_string(ordinal) + " " + effect; }
};

/// A small machine with a real second volume, on which one act is run over and over with another fault each time.
/// Every run starts from the same state; a third copy of the tree stands aside for comparison.
class FaultWorld {
public:
    FaultWorld(Act act, Victim victim);

    /// Brings home and drive into the state before the act.
    void prepare() const;
    /// Runs the act with all of its changing calls listed. @returns them in order, without an effect.
    std::vector<Fault> points() const;
    /// Runs the act with one fault.
    CommandResult run(const Fault& fault) const;

    /// Whether the fault of the last run met its call.
    bool hasStruck() const;
    /// The tree stands whole at its place in the home folder, as a folder.
    bool isWholeAtHome() const;
    /// The tree stands whole somewhere on the drive, be it disposed of.
    bool isWholeOnDrive() const;
    /// A link at the place in the home folder.
    bool isLinkAtHome() const;
    /// What the link leads to is the whole tree.
    bool isLinkGood() const;
    /// What stands where, for a failure's message.
    std::string picture() const;

private:
    CommandResult runTraced(const std::vector<std::string>& tracing) const;

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
