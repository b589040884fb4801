#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Files/FileDescriptor.h"

#include <string>
#include <vector>

namespace tarvik {

/// Keeps two acts from uninstalling one application, or from taking its uninstall back, at one time, by whichever
/// program. It is a file beside the records of uninstalls, since the application itself moves; it goes with the process
/// that has made it. Where the file system knows no locks, it keeps nobody from anything.
class UninstallLock {
public:
    /// @throws AppUninstallError with the sentence for the user when another act has it; FileError when no file can be
    /// made.
    static UninstallLock take(const fs::path& root, const fs::path& appPath, const std::string& appName);
    /// One for each of the paths at which the application stands, or none at all; a path may be named twice.
    static std::vector<UninstallLock> takeAll(const fs::path& root, const std::vector<fs::path>& appPaths,
                                              const std::string& appName);

    UninstallLock(UninstallLock&&) noexcept = default;
    UninstallLock& operator=(UninstallLock&&) = delete;
    ~UninstallLock();

private:
    UninstallLock(fs::path file, FileDescriptor held);
    static UninstallLock takeFile(const fs::path& file, const std::string& appName);

    fs::path m_file;
    FileDescriptor m_held;
};

}  // namespace tarvik
