#include "UninstallRun/UninstallLock.h"

#include "Copying/ItemLock.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"
#include "Platform/Text/Text.h"
#include "UninstallRun/AppUninstallError.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <set>
#include <unistd.h>
#include <utility>

namespace tarvik {

namespace {

constexpr int mostLockTurns = 20;

/// FNV-1a: the same in every program, of whatever build.
std::uint64_t hashOf(std::string_view text) {
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (const char letter : text) hash = (hash ^ static_cast<unsigned char>(letter)) * 0x100000001B3U;
    return hash;
}

/// Paths that a volume may take for one have one file.
fs::path lockFileFor(const fs::path& root, const fs::path& appPath) {
    return root / ".locks" / fmt::format("{:016x}", hashOf(Text::nameKey(Files::standardized(appPath).native())));
}

void makeLockFile(const fs::path& file) {
    const FileDescriptor made(::open(file.c_str(), O_RDONLY | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!made) throw FileError("create", file, errno);
}

}  // namespace

UninstallLock::UninstallLock(fs::path file, FileDescriptor held) : m_file(std::move(file)), m_held(std::move(held)) {}

UninstallLock::~UninstallLock() {
    // Only the file that is held is taken away: nobody can come to hold one of that name and another one too.
    if (m_held) ::unlink(m_file.c_str());
}

UninstallLock UninstallLock::take(const fs::path& root, const fs::path& appPath, const std::string& appName) {
    return takeFile(lockFileFor(root, appPath), appName);
}

std::vector<UninstallLock> UninstallLock::takeAll(const fs::path& root, const std::vector<fs::path>& appPaths,
                                                  const std::string& appName) {
    std::set<fs::path> files;
    for (const fs::path& path : appPaths) files.insert(lockFileFor(root, path));
    std::vector<UninstallLock> locks;
    locks.reserve(files.size());
    for (const fs::path& file : files) locks.push_back(takeFile(file, appName));
    return locks;
}

UninstallLock UninstallLock::takeFile(const fs::path& file, const std::string& appName) {
    Files::createFolder(file.parent_path());
    for (int turn = 0; turn < mostLockTurns; ++turn) {
        makeLockFile(file);
        FileDescriptor held = ItemLock::holdAlone(file);
        // The act before may have taken the file away after it was opened here.
        if (held && ItemLock::isHeldAt(file, held)) return {file, std::move(held)};
        if (!held && ItemLock::isHeld(file)) break;
        if (!held && Files::itemExists(file)) return {file, FileDescriptor()};
    }
    throw AppUninstallError::refused(
        fmt::format("{} is being uninstalled or put back by another run. Wait until that has ended.", appName));
}

}  // namespace tarvik
