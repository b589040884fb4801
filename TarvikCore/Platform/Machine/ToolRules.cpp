#include "Platform/Machine/ToolRules.h"

#include "Platform/Processes/ProgramLocation.h"

#include <array>
#include <cstddef>

namespace tarvik::ToolRules {

namespace {

using enum ToolRule::InFolder;

constexpr std::string_view lsregisterOnMac =
    "/System/Library/Frameworks/CoreServices.framework/Frameworks/LaunchServices.framework/Support/lsregister";

constexpr std::array rules = {
    ToolRule{&ToolTable::ditto, "ditto", "/usr/bin/ditto", itself, "it writes below the goal that it is given"},
    ToolRule{&ToolTable::find, "find", "/usr/bin/find", itself, "it is only asked to list"},
    ToolRule{&ToolTable::codesign, "codesign", "/usr/bin/codesign", standIn,
             "what it trusts are the keys and the settings of the machine that runs"},
    ToolRule{
        &ToolTable::xcrun, "xcrun", "/usr/bin/xcrun", standIn,
        "it offers to install the developer's tools on the machine that runs, and asks the notary about its bundles"},
    ToolRule{&ToolTable::spctl, "spctl", "/usr/sbin/spctl", standIn,
             "it judges by the policy of the machine that runs, and remembers what it has judged"},
    ToolRule{&ToolTable::lsregister, "lsregister", lsregisterOnMac, none,
             "what it is told of, the system that runs would open and search"},
    ToolRule{&ToolTable::tmutil, "tmutil", "/usr/bin/tmutil", none, "it works on the disk of the machine that runs"},
    ToolRule{&ToolTable::mdutil, "mdutil", "/usr/bin/mdutil", standIn, "it asks the indexer of the machine that runs"},
    ToolRule{&ToolTable::ps, "ps", "/bin/ps", itself,
             "it only reads, and a process that names a bundle in the folder is using it"},
    ToolRule{&ToolTable::pkgutil, "pkgutil", "/usr/sbin/pkgutil", standIn,
             "it reads and forgets the receipts of the machine that runs"},
    ToolRule{&ToolTable::hdiutil, "hdiutil", "/usr/bin/hdiutil", standIn, "it mounts among the real volumes"},
    ToolRule{&ToolTable::xar, "xar", "/usr/bin/xar", itself, "it unpacks into the folder that it is given"},
    ToolRule{&ToolTable::installer, "installer", "/usr/sbin/installer", standIn,
             "a package installs wherever it likes, as root"},
    ToolRule{&ToolTable::bash, "bash", "/bin/bash", standIn, "a script does whatever it likes"},
    ToolRule{&ToolTable::xattr, "xattr", "/usr/bin/xattr", itself, "it changes the items that it is given"},
    ToolRule{&ToolTable::rootferry, "rootferry", "/usr/local/bin/rootferry", standIn,
             "the rights of root reach the machine that runs"},
    ToolRule{&ToolTable::externalAppLauncher, "external-app-launcher", "", itself, "it is copied, not run"},
};

constexpr bool nameDifferentTools() {
    for (std::size_t at = 0; at < rules.size(); ++at)
        for (std::size_t before = 0; before < at; ++before)
            if (rules[at].tool == rules[before].tool) return false;
    return true;
}

static_assert(sizeof(ToolTable) == rules.size() * sizeof(fs::path) && nameDifferentTools(),
              "Decide for each tool what a machine in a folder gets.");

}  // namespace

std::span<const ToolRule> all() {
    return rules;
}

ToolTable ofMac() {
    ToolTable tools;
    for (const ToolRule& rule : rules)
        tools.*rule.tool = rule.pathOnMac.empty() ? ProgramLocation::folder() / rule.name : fs::path(rule.pathOnMac);
    return tools;
}

ToolTable inFolder(const ToolTable& ofSystem, const fs::path& standIns) {
    ToolTable tools;
    for (const ToolRule& rule : rules) {
        if (rule.inFolder == itself) tools.*rule.tool = ofSystem.*rule.tool;
        if (rule.inFolder == standIn) tools.*rule.tool = standIns / rule.name;
    }
    return tools;
}

fs::path standIns() {
    return ProgramLocation::folder() / "stand-ins";
}

}  // namespace tarvik::ToolRules
