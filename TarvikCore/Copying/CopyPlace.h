#pragma once

#include "Copying/HiddenPlace.h"
#include "Platform/Basics/Path.h"

#include <string>

namespace tarvik {

/// The hidden place beside its goal where a copy grows, and the copy itself from then on, marked as in use for as long
/// as this lives.
///
/// The place is a folder of our own, in which the copy tool makes the copy under the goal's name. Into a folder that
/// stands there already the tool would only merge: that would keep our permissions, and get none of the original's
/// attributes and access lists (ditto(1)).
class CopyPlace {
public:
    /// Takes a place. @throws FileError, which tells of `goal`.
    explicit CopyPlace(fs::path goal);
    /// Removes the folder where that has failed before.
    ~CopyPlace() { clearFolder(); }
    CopyPlace(const CopyPlace&) = delete;
    CopyPlace& operator=(const CopyPlace&) = delete;

    const fs::path& goal() const { return m_goal; }
    /// Where the copy is to stand, or stands by now.
    const fs::path& path() const { return m_path; }

    /// Gives the complete copy its goal's name. @throws FileError, also when something stands there.
    void arrive() { leaveFor(m_goal); }
    /// Gives it a hidden name beside the goal, in no folder. @throws FileError, which tells of the goal.
    void leaveFolder();
    /// Removes the folder, when the copy has left it or has been removed.
    void clearFolder() noexcept;

    /// What is told of the hidden place, told of the goal.
    std::string inOwnName(std::string text) const;

private:
    void leaveFor(const fs::path& place);

    fs::path m_goal;
    HiddenPlace::Claim m_claim;
    fs::path m_path;
};

}  // namespace tarvik
