#pragma once

#include "CommandLine/RunningProgram.h"
#include "Platform/Machine/Host.h"
#include "Platform/Storage/DriveInfo.h"
#include "Practice/PracticeMachine.h"
#include "Support/MacVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/World.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tarvik::test {

/// A practice machine as a Mac would show it: its disk folds names and lists them decomposed, its Applications folder
/// bears the flag that a Mac's does. It has two more drives, one like its disk and one with exFAT's habits. The host
/// tells their formats, and notes how long it is kept awake: every move and way back below expects that of it.
struct MacMachine {
    explicit MacMachine(const Practice::Options& options);

    fs::path at(const fs::path& path) const { return machine.root / path; }
    fs::path atHome(const fs::path& path) const { return machine.home / path; }
    DriveInfo driveInfo(const MacVolume& drive) const;
    /// Makes the disk a case-sensitive one, such as a Mac can be set up with, for the test's life.
    void letDiskTellNamesApart();

    /// Moves a folder as both fronts do. @returns why it did not go; "moved" when it did.
    std::string moveFolder(const fs::path& source, const MacVolume& drive) const;
    /// The same for an application with its data.
    std::string moveApp(const fs::path& bundle, const MacVolume& drive) const;
    /// Brings back what the link leads to. @returns why it did not come; "back" when it did.
    std::string moveBack(const fs::path& link) const;
    /// Runs the command.
    Finished run(std::vector<std::string> arguments) const;

    TemporaryFolder folder;
    Practice::Machine machine;
    MacVolume disk;
    MacVolume extended;
    MacVolume exFat;
    std::shared_ptr<MadeSleepBlocker> sleepBlocker;
    Host host;
};

/// A test on such a machine, without applications unless it wants some.
class OnMacVolumes : public testing::Test {
protected:
    OnMacVolumes() : OnMacVolumes({.apps = 0, .specialApps = false, .files = 8}) {}
    explicit OnMacVolumes(const Practice::Options& machine) : m_options(machine) {}

    void SetUp() override {
        TARVIK_NEEDS_MAC_VOLUMES();
        mac.emplace(m_options);
    }

    std::optional<MacMachine> mac;

private:
    Practice::Options m_options;
};

/// The same with applications of every kind.
class WithMacApplications : public OnMacVolumes {
protected:
    WithMacApplications() : OnMacVolumes({.apps = 1, .files = 8}) {}
};

/// Sets the times of all that is in a tree back: on exFAT, what has changed within the last seconds changes still.
void makeOld(const fs::path& root);

/// Whether there is a link that leads to the item, however its path is written.
bool leadsTo(const fs::path& link, const fs::path& item);

/// What a tree holds, without what exFAT cannot keep: the path of each item, with a digest of a file's content.
std::string contentsOf(const fs::path& root);

}  // namespace tarvik::test
