#include "Move/DriveCopy.h"

#include "Copying/HiddenName.h"
#include "Copying/HiddenPlace.h"
#include "Copying/MoverError.h"
#include "Copying/MoverStasher.h"
#include "Platform/Files/Files.h"

#include <cerrno>
#include <utility>

namespace tarvik {

DriveCopy::DriveCopy(const Host& host, const fs::path& source, fs::path goal) try
    : m_host(host), m_goal(std::move(goal)), m_hidden(source, m_goal), m_place(m_hidden.path()) {
} catch (const FileError& error) {
    throw MoverError::copyFailed(error.description());
}

void DriveCopy::arrive() {
    try {
        Files::rename(m_place, m_goal);
    } catch (const FileError& error) {
        if (error.code() == EEXIST) throw MoverError::destinationExists();
        throw MoverError::copyFailed(FileError("create", m_goal, error.code()).description());
    }
    m_place = m_goal;
    m_hidden.clearFolder();
    try {
        Files::flushVolume(m_goal.parent_path());
    } catch (const FileError& error) {
        throw MoverError::verifyFailed(error.description());
    }
}

Disposal::Outcome DriveCopy::stash() {
    if (m_place == m_goal) return MoverStasher::stash(m_host, m_goal);
    auto outcome = HiddenPlace::stash(m_host, m_place, m_goal);
    m_hidden.clearFolder();
    return outcome;
}

void DriveCopy::remove() noexcept {
    ignoringFailure([&] { Files::removeItem(m_place); });
    m_hidden.clearFolder();
}

std::string DriveCopy::inOwnName(std::string text) const {
    return HiddenName::inOwnName(std::move(text), m_hidden.path(), m_goal);
}

}  // namespace tarvik
