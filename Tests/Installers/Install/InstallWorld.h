#pragma once

#include "Installers/Install/InstallTerms.h"
#include "Support/World.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tarvik::test {

/// A small machine with a drive, and an install on it whose lines are kept.
struct InstallWorld : World {
    InstallWorld();
    explicit InstallWorld(const fs::path& drivePath);

    /// The terms of a run that begins now.
    InstallTerms terms() const;
    /// Where an application of that name comes to stand on the drive, and its launcher.
    fs::path onDrive(const std::string& name) const { return drive / "ExternalTarvik/Apps" / name; }
    fs::path launcher(const std::string& name) const { return folder / "Applications" / name; }
    /// Makes an application with a few files, of which one holds `content`.
    fs::path makeApp(const fs::path& app, const std::string& content = "content") const;
    /// Whether a launcher of that name opens the application on the drive.
    bool isLauncherGood(const std::string& name) const;

    /// Runs an act from an empty list of lines. "done", or the domain, the code and the description of its failure.
    std::string outcomeOf(const std::function<void()>& act);

    InstallerOption option;
    bool useRootferry = false;
    Cancellation cancellation;
    std::shared_ptr<std::vector<std::string>> lines = std::make_shared<std::vector<std::string>>();

private:
    void setUp();
};

}  // namespace tarvik::test
