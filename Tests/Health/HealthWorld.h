#pragma once

#include "Health/HealthIssue.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Support/World.h"

#include <string>
#include <vector>

namespace tarvik::test {

/// A machine with applications that were moved to its drive.
class HealthWorld : public World {
public:
    HealthWorld();

    /// A whole bundle on the drive and the link to it among the applications. @returns the link.
    fs::path moveApp(const std::string& name, const std::string& identifier = {}) const;
    /// A line in the manifest, as a move writes it.
    void remember(const fs::path& source, const fs::path& destination) const;
    /// Tools that take every bundle for signed and whole, but for the words that `verify` says, after which it fails.
    void signAll(const std::string& verify = {});

    const fs::path applications = folder / "Applications";
    const fs::path appsOnDrive = AppStorageNames::appsRootOn(drive);
    const fs::path library = home / "Library";
};

/// "kind name" of each finding, for a test that looks at which ones there are.
std::vector<std::string> kindsAndNames(const std::vector<HealthIssue>& issues);

}  // namespace tarvik::test
