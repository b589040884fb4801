#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What a Mac keeps from a program, whatever the permissions say, until the user lets the program in.
///
/// The rules are those of "Controlling app access to files in macOS" in Apple's Platform Security guide. They answer
/// with EPERM where permissions answer with EACCES. Scans show what they can reach all the same: this tells the user
/// that it is not all. Other systems have no such rules, and here nothing is missing there.
namespace tarvik::FullDiskAccess {

/// How a Mac keeps a folder from programs.
enum class Keeping {
    always,     ///< without a question: only Full Disk Access opens it
    byConsent,  ///< the first look into it makes the system ask the user, and a no closes it to the program
};

struct KeptFolder {
    /// Relative to the home folder.
    fs::path path;
    Keeping keeping;
};

const std::vector<KeptFolder>& keptFolders();

/// What came of an attempt to open a folder.
struct Attempt {
    fs::path folder;
    /// 0 when it opened, else errno.
    int error = 0;
};

/// Whether the attempts show that Full Disk Access is missing. A folder that is not there, or that permissions close,
/// tells nothing. Pure.
bool isMissingAfter(const std::vector<Attempt>& attempts);

/// Tries to open those folders of the home that only Full Disk Access opens; the others are left alone, so that the
/// system asks the user nothing. Blocks; any thread; never fails.
bool isMissing(const Host& host);

/// What the user is told: what is missing and what that means, in one sentence, and where it is changed, in another.
std::string loss();
std::string remedy();

/// Why `item` can't be `done` when an attempt to read `place` in it gave `error`, if it is these rules that forbid it.
/// Pure.
std::optional<std::string> refusalOf(const Host& host, const fs::path& item, const fs::path& place, int error,
                                     std::string_view done = "moved");

/// The page of the system's settings where it is changed.
inline constexpr const char* settingsPage = "x-apple.systempreferences:com.apple.preference.security?Privacy_AllFiles";

}  // namespace tarvik::FullDiskAccess
