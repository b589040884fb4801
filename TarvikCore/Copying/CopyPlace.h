#pragma once

#include "Copying/HiddenPlace.h"
#include "Platform/Basics/Path.h"

namespace tarvik {

/// The hidden place beside its goal where a copy grows, marked as in use for as long as this lives.
///
/// A folder grows in the place that is claimed for it. The copy tool makes a single file anew, which would then no
/// longer be marked as in use: so it gets a folder of its own.
class CopyPlace {
public:
    /// Takes a place for a copy of `source`. @throws FileError, which tells of `goal`.
    CopyPlace(const fs::path& source, fs::path goal);
    CopyPlace(const CopyPlace&) = delete;
    CopyPlace& operator=(const CopyPlace&) = delete;

    /// Where the copy is to stand.
    const fs::path& path() const { return m_path; }
    /// Lets a complete file leave its folder for a hidden place beside the goal, which is marked as in use too.
    /// @throws FileError, which tells of the goal.
    void leaveFolder();
    /// Removes the folder around a single file, when that has left it.
    void clearFolder() noexcept;

private:
    bool hasFolder() const { return m_path != m_claim.path; }

    fs::path m_goal;
    HiddenPlace::Claim m_claim;
    fs::path m_path;
};

}  // namespace tarvik
