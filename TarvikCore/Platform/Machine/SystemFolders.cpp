#include "Platform/Machine/SystemFolders.h"

#include "Platform/Files/Files.h"
#include "Platform/Files/Firmlinks.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace tarvik::SystemFolders {

namespace {

/// A folder that stays, and how far down what is in it stays too.
struct Rule {
    std::string_view folder;
    int levels;
};

constexpr int itself = 0;
constexpr int andItsEntries = 1;
constexpr int andTwoLevels = 2;
constexpr int andEverything = 1 << 20;

// The deepest rule at or above a folder decides, so that an inner line makes an exception of an outer one.
constexpr Rule rules[] = {
    {"/", itself},

    // What both systems have.
    {"/bin", andEverything},
    {"/sbin", andEverything},
    {"/usr", andEverything},
    {"/usr/local", itself},
    {"/dev", andEverything},
    {"/etc", andEverything},
    {"/opt", itself},
    {"/tmp", itself},
    {"/var", itself},
    {"/var/cache", itself},
    {"/var/db", andEverything},
    {"/var/lib", andEverything},
    {"/var/lock", andEverything},
    {"/var/log", itself},
    {"/var/mail", andEverything},
    {"/var/root", itself},
    {"/var/run", andEverything},
    {"/var/spool", andEverything},
    {"/var/tmp", itself},

    // macOS.
    {"/.vol", andEverything},
    {"/Applications", itself},
    {"/Applications/Utilities", itself},
    {"/Library", itself},
    {"/Library/Apple", andEverything},
    {"/Library/Application Support", itself},
    {"/Library/Audio", itself},
    {"/Library/Audio/Plug-Ins", andItsEntries},
    {"/Library/Extensions", andEverything},
    {"/Library/Frameworks", itself},
    {"/Library/Keychains", andEverything},
    {"/Library/LaunchAgents", itself},
    {"/Library/LaunchDaemons", itself},
    {"/Library/Preferences", andEverything},
    {"/Library/PrivilegedHelperTools", andEverything},
    {"/Library/Security", andEverything},
    {"/Library/SystemExtensions", andEverything},
    {"/Network", andEverything},
    {"/System", andEverything},
    {"/Users", andItsEntries},
    {"/Volumes", andItsEntries},
    {"/cores", itself},
    {"/private", itself},
    {"/private/etc", andEverything},
    {"/private/tmp", itself},
    {"/private/var", itself},
    {"/private/var/db", andEverything},
    {"/private/var/folders", andEverything},
    {"/private/var/log", itself},
    {"/private/var/root", itself},
    {"/private/var/run", andEverything},
    {"/private/var/tmp", itself},
    {"/private/var/vm", andEverything},
    {"/var/folders", andEverything},
    {"/var/vm", andEverything},

    // Linux.
    {"/boot", andEverything},
    {"/efi", andEverything},
    {"/gnu", andEverything},
    {"/home", andItsEntries},
    {"/lib", andEverything},
    {"/lib32", andEverything},
    {"/lib64", andEverything},
    {"/libx32", andEverything},
    {"/lost+found", andEverything},
    {"/media", andTwoLevels},
    {"/mnt", itself},
    {"/nix", andEverything},
    {"/proc", andEverything},
    {"/root", itself},
    {"/run", andEverything},
    {"/run/media", andTwoLevels},
    {"/snap", andEverything},
    {"/srv", itself},
    {"/sys", andEverything},
    {"/var/snap", andEverything},
};

/// How far `path` lies below `ancestor`; 0 for itself.
int levelsBelow(const fs::path& path, const fs::path& ancestor) {
    return static_cast<int>(std::distance(path.begin(), path.end()) - std::distance(ancestor.begin(), ancestor.end()));
}

bool staysByTable(const fs::path& path) {
    const Rule* decisive = nullptr;
    for (const Rule& rule : rules) {
        if (decisive && rule.folder.size() <= decisive->folder.size()) continue;
        if (Files::isAtOrBelow(path, rule.folder)) decisive = &rule;
    }
    return levelsBelow(path, decisive->folder) <= decisive->levels;
}

bool isStrictlyBelow(const fs::path& path, const fs::path& ancestor) {
    return path != ancestor && Files::isAtOrBelow(path, ancestor);
}

}  // namespace

fs::path below(const Host& host, const fs::path& absolute) {
    const fs::path relative = absolute.relative_path();
    return relative.empty() ? host.root : host.root / relative;
}

fs::path applications(const Host& host) {
    return below(host, "/Applications");
}
fs::path library(const Host& host) {
    return below(host, "/Library");
}
fs::path system(const Host& host) {
    return below(host, "/System");
}
fs::path users(const Host& host) {
    return below(host, "/Users");
}
fs::path volumes(const Host& host) {
    return below(host, "/Volumes");
}

bool isImmovable(const Host& host, const fs::path& resolvedFolder) {
    if (Files::isAtOrBelow(host.home, resolvedFolder) || Files::isAtOrBelow(host.root, resolvedFolder)) return true;
    if (host.home != host.root && isStrictlyBelow(resolvedFolder, host.home))
        return resolvedFolder == host.home / "Library" || resolvedFolder == host.home / "Applications";
    if (Files::isAtOrBelow(resolvedFolder, host.root))
        return staysByTable(Firmlinks::shortForm("/" / resolvedFolder.lexically_relative(host.root)));
    return staysByTable(Firmlinks::shortForm(resolvedFolder));
}

}  // namespace tarvik::SystemFolders
