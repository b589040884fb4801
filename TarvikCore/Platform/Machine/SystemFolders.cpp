#include "Platform/Machine/SystemFolders.h"

#include "Platform/Files/Files.h"
#include "Platform/Files/Firmlinks.h"

#include <algorithm>
#include <cstddef>
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

// The same below a home, by the names there. All else in it is its user's own.
constexpr Rule homeRules[] = {
    // macOS. What is in a sandbox is not followed out of it by a link, preferences are replaced by new files, and what
    // a cloud keeps in a folder is not all there.
    {".Trash", itself},
    {"Applications", itself},
    {"Library", itself},
    {"Library/Application Scripts", andEverything},
    {"Library/Application Support", itself},
    {"Library/Application Support/Tarvik", andEverything},
    {"Library/CloudStorage", andEverything},
    {"Library/Containers", andEverything},
    {"Library/Group Containers", andEverything},
    {"Library/Keychains", andEverything},
    {"Library/LaunchAgents", itself},
    {"Library/Mobile Documents", andEverything},
    {"Library/Preferences", itself},
    {"Library/Preferences/ByHost", itself},

    // Linux: the XDG base directories, and what opens the session.
    {".config", itself},
    {".local", itself},
    {".local/share", itself},
    {".local/state", itself},
    {".ssh", itself},
};

/// How far `path` lies below `ancestor`; 0 for itself.
int levelsBelow(const fs::path& path, const fs::path& ancestor) {
    return static_cast<int>(std::distance(path.begin(), path.end()) - std::distance(ancestor.begin(), ancestor.end()));
}

/// `path` is absolute, or relative to what the table's folders are relative to.
template <std::size_t count>
bool staysByTable(const fs::path& path, const Rule (&table)[count]) {
    const Rule* decisive = nullptr;
    for (const Rule& rule : table) {
        if (decisive && rule.folder.size() <= decisive->folder.size()) continue;
        if (Files::isAtOrBelow(path, rule.folder)) decisive = &rule;
    }
    return decisive && levelsBelow(path, decisive->folder) <= decisive->levels;
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
        return staysByTable(resolvedFolder.lexically_relative(host.home), homeRules);
    if (Files::isAtOrBelow(resolvedFolder, host.root))
        return staysByTable(Firmlinks::shortForm("/" / resolvedFolder.lexically_relative(host.root)), rules);
    return staysByTable(Firmlinks::shortForm(resolvedFolder), rules);
}

}  // namespace tarvik::SystemFolders
