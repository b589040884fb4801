#pragma once

#include "Packages/BoundedTree.h"
#include "Packages/Payload.h"
#include "Packages/Product.h"
#include "Platform/Basics/Path.h"
#include "installer/ScriptFailure.h"

#include <vector>

namespace tarvik::installer {

/// One package on its way to a machine in a folder.
class Installation {
public:
    /// Looks through all that would be written, and writes nothing.
    /// @throws PackageFailure when the package must not be installed; FileError.
    Installation(const fs::path& root, const fs::path& package, const packages::Product& product);

    /// Whether any of it has a receipt on the machine.
    bool isUpgrade() const;

    /// Installs one component after the other: the scripts before, the payload, the scripts after, the receipt. What is
    /// installed by then stays when something fails.
    /// @throws ScriptFailure; PackageFailure; FileError; Failure where scripts cannot be kept in the machine.
    void run();

private:
    struct Part {
        const packages::Component* component;
        packages::Payload::Measure measure;
        bool isThereAlready;
    };

    fs::path m_root;
    fs::path m_package;
    packages::BoundedTree m_tree;
    std::vector<Part> m_parts;
};

}  // namespace tarvik::installer
