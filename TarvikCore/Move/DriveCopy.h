#pragma once

#include "Copying/CopyPlace.h"
#include "Copying/Disposal.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <string>
#include <utility>

namespace tarvik {

/// The copy that a move makes. It grows under a hidden name beside its goal and gets the goal's name only when it is
/// complete: what a killed move leaves is never taken for the item, nor does it stand in the way of the next move.
///
/// One thread; `host` must outlive it.
class DriveCopy {
public:
    /// Takes a hidden place. @throws MoverError copyFailed.
    DriveCopy(const Host& host, const fs::path& goal);
    DriveCopy(const DriveCopy&) = delete;
    DriveCopy& operator=(const DriveCopy&) = delete;

    const fs::path& goal() const { return m_copy.goal(); }
    /// Where it stands now.
    const fs::path& place() const { return m_copy.path(); }

    /// Gives it the goal's name, and brings that to the drive. Blocks.
    /// @throws MoverError destinationExists when something has come to stand there, copyFailed or verifyFailed.
    void arrive();

    /// Disposes of it under its own name, as `MoverStasher` does.
    Disposal::Outcome stash();
    /// Removes it. Never fails: what could not be removed under the hidden name a later move clears away.
    void remove() noexcept;

    /// What is told of the place, told of the goal.
    std::string inOwnName(std::string text) const { return m_copy.inOwnName(std::move(text)); }

private:
    const Host& m_host;
    CopyPlace m_copy;
};

}  // namespace tarvik
