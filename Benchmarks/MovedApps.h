#pragma once

#include "Platform/Machine/Host.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"

#include <string>
#include <vector>

namespace tarvik {

/// A machine of which 500 applications with 200,000 files have been moved to a drive, and 2,000 folders of their data:
/// nothing is wrong with it. On a volume of its own.
class MovedApps {
public:
    MovedApps();

    /// Its tools for signatures are not there, and so answer at once.
    const Host& host() const { return m_host; }
    /// `du -s` over the bundles.
    std::vector<std::string> du() const;
    std::string heading(int rounds) const;

private:
    void makeApp(const std::string& name);
    void makeData(int number);

    test::TemporaryFolder m_folder;
    test::RealVolume m_volume;
    fs::path m_root;
    fs::path m_home;
    fs::path m_drive;
    std::vector<fs::path> m_bundles;
    Host m_host;
};

}  // namespace tarvik
