#pragma once

#include "Packages/Component.h"
#include "Platform/Basics/Path.h"
#include "Platform/Files/FileDescriptor.h"
#include "installer/ScriptFailure.h"

#include <map>
#include <string>
#include <vector>

namespace tarvik::installer {

/// The scripts of one package, and the folder on the machine where they lie as long as it is installed.
class Scripts {
public:
    Scripts(const fs::path& root, const fs::path& package, const packages::Component& component);
    ~Scripts();
    Scripts(const Scripts&) = delete;
    Scripts& operator=(const Scripts&) = delete;

    /// Runs them one after the other, with the arguments and the environment that a Mac gives, in their folder. What
    /// they print goes to private/var/log/install.log. @throws ScriptFailure when one fails, or is not there.
    void run(const std::vector<std::string>& names);

private:
    void unpack();
    void runOne(const std::string& name);
    std::map<std::string, std::string> environmentOf(const std::string& name) const;

    fs::path m_root;
    fs::path m_package;
    const packages::Component& m_component;
    /// Below the root, "private/tmp/PKInstallSandbox...", and as this system sees it; and what keeps others from taking
    /// it for left behind.
    fs::path m_sandbox;
    fs::path m_place;
    FileDescriptor m_lock;
    bool m_isUnpacked = false;
};

}  // namespace tarvik::installer
