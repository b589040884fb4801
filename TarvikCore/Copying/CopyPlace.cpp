#include "Copying/CopyPlace.h"

#include "Copying/HiddenName.h"
#include "Copying/ItemLock.h"
#include "Platform/Files/Files.h"

#include <utility>

namespace tarvik {

CopyPlace::CopyPlace(const fs::path& source, fs::path goal)
    : m_goal(std::move(goal)),
      m_claim(HiddenPlace::claimForCopyTo(m_goal)),
      m_path(Files::isFolder(source) ? m_claim.path : m_claim.path / m_goal.filename()) {}

void CopyPlace::leaveFolder() {
    if (!hasFolder()) return;
    HiddenPlace::Claim own{HiddenName::forCopyTo(m_goal), ItemLock::hold(m_path)};
    try {
        Files::rename(m_path, own.path);
    } catch (const FileError& error) {
        throw FileError("create", m_goal, error.code());
    }
    m_path = own.path;
    clearFolder();
    m_claim = std::move(own);
}

void CopyPlace::clearFolder() noexcept {
    if (hasFolder()) ignoringFailure([&] { Files::removeEmptyFolder(m_claim.path); });
}

}  // namespace tarvik
