#include "Move/DriveCopy.h"

#include "Copying/HiddenPlace.h"
#include "Copying/MoverError.h"
#include "Copying/MoverStasher.h"
#include "Platform/Files/Files.h"

#include <cerrno>

namespace tarvik {

DriveCopy::DriveCopy(const Host& host, const fs::path& goal) try : m_host(host), m_copy(goal) {
} catch (const FileError& error) {
    throw MoverError::copyFailed(error.description());
}

void DriveCopy::arrive() {
    try {
        m_copy.arrive();
    } catch (const FileError& error) {
        if (error.code() == EEXIST) throw MoverError::destinationExists();
        throw MoverError::copyFailed(FileError("create", goal(), error.code()).description());
    }
    try {
        Files::flushVolume(goal().parent_path());
    } catch (const FileError& error) {
        throw MoverError::verifyFailed(error.description());
    }
}

Disposal::Outcome DriveCopy::stash() {
    if (place() == goal()) return MoverStasher::stash(m_host, goal());
    auto outcome = HiddenPlace::stash(m_host, place(), goal());
    m_copy.clearFolder();
    return outcome;
}

void DriveCopy::remove() noexcept {
    ignoringFailure([&] { Files::removeItem(place()); });
    m_copy.clearFolder();
}

}  // namespace tarvik
