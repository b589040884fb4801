#pragma once

#include "Applications/AppEntry.h"
#include "Platform/Machine/Host.h"
#include "Practice/PracticeMachine.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"

#include <string>
#include <vector>

namespace tarvik {

/// A practice machine of 500 applications with some 200,000 files, on a volume of its own.
class ManyApps {
public:
    ManyApps();

    const Host& host() const { return m_host; }
    const Practice::Machine& machine() const { return m_machine; }
    /// What the scan finds, not measured.
    const std::vector<AppEntry>& entries() const { return m_entries; }
    /// `du -s` over all that the sizes of the applications count.
    std::vector<std::string> du() const;
    std::string heading(int rounds) const;
    /// Gives every application an icon of usual sizes.
    void makeIcons() const;

    /// A command with the paths that exist, links resolved as the scans resolve them.
    static std::vector<std::string> command(std::vector<std::string> words, const std::vector<fs::path>& paths);

private:
    test::TemporaryFolder m_folder;
    test::RealVolume m_volume;
    Practice::Machine m_machine;
    Host m_host;
    std::vector<AppEntry> m_entries;
};

}  // namespace tarvik
