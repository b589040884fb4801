#pragma once

#include "Platform/Basics/Path.h"
#include "Support/MacAttributes.h"
#include "Support/RealVolume.h"

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tarvik::test {

/// A folder that is shown as a Mac's file systems would show it, on a system that has none of them. It is served by the
/// program `mac-volume` of this build, seen by this process and its children alone, and gone at the end of the object's
/// life; the folder stays with what it holds then.
class MacVolume {
public:
    /// What it does that a file system of Linux does not. Each can be switched while the volume is mounted.
    enum class Habit {
        foldsNames,           ///< names that differ in case or normal form alone are one; the first spelling stays
        decomposesNames,      ///< lists names decomposed, as HFS+ keeps them
        exchangesNoNames,     ///< no two items take each other's name in one step, as on HFS+
        isExFat,              ///< no links, no permissions, no exchange of names, times of two seconds, "._" files
        guardsSignedBundles,  ///< EPERM for changes in the signed bundles that stood there when it was switched on
        hasNoRoom,            ///< tells that no byte is available
        tellsOneCapacity,     ///< tells 0 for the capacity for important usage, as exFAT and network volumes do
        hangs,                ///< no call returns until this is switched off
    };

    /// Shows `folder` at its own place.
    explicit MacVolume(const fs::path& folder, std::initializer_list<Habit> habits = {});
    /// Shows `folder` at `mountPath`, which is made if it is missing, and stays. @throws std::runtime_error as the
    /// other one does when it cannot be mounted.
    MacVolume(const fs::path& folder, const fs::path& mountPath, std::initializer_list<Habit> habits = {});
    ~MacVolume();
    MacVolume(const MacVolume&) = delete;
    MacVolume& operator=(const MacVolume&) = delete;

    const fs::path& path() const { return m_path; }
    fs::path operator/(const fs::path& name) const { return m_path / name; }
    void set(Habit habit, bool isOn);
    /// What has been written, renamed, removed and flushed since it was mounted, in order, a line each: "write PATH",
    /// "rename PATH", "remove PATH", "sync PATH" for what only the drive's cache has for sure, "flush PATH" and
    /// "flush everything" for what the drive has. Paths are those on the volume, a renamed item's its new one.
    std::vector<std::string> journal() const;

    /// Why there can be none here; nothing when there can.
    static std::optional<std::string> unavailableReason();

private:
    struct Program;

    fs::path m_path;
    std::unique_ptr<Program> m_program;
};

// What an item of such a volume bears, and keeps wherever it goes on it. The marks of items that stand on another kind
// of volume cannot be set: std::system_error.

/// Flags as chflags(2) of a Mac sets them: see `MacFlag`.
void setMacFlags(const fs::path& item, std::uint32_t flags);
/// An entry "everyone deny delete" in the item's access control list.
void denyDelete(const fs::path& item, bool isDenied = true);
/// An entry "everyone deny delete_child" in the folder's.
void denyDeleteInside(const fs::path& folder, bool isDenied = true);
/// EPERM for whoever looks into the folder, or changes it or what is in it. Status calls are answered.
void keepPrivate(const fs::path& folder, bool isPrivate = true);
/// EIO for whoever lists the folder, after half of its names.
void breakListing(const fs::path& folder, bool isBroken = true);

}  // namespace tarvik::test

/// First line of a test that makes such volumes. Where the system has no place for them, nothing that a set-up could do
/// would change that: such a skip is never forbidden.
#define TARVIK_NEEDS_MAC_VOLUMES()                                                                  \
    do {                                                                                            \
        if (const auto reason = ::tarvik::test::MacVolume::unavailableReason(); reason.has_value()) \
            GTEST_SKIP() << *reason;                                                                \
    } while (false)
