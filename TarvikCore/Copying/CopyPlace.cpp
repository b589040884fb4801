#include "Copying/CopyPlace.h"

#include "Copying/HiddenName.h"
#include "Copying/ItemLock.h"
#include "Platform/Files/Files.h"

#include <cerrno>
#include <optional>
#include <system_error>
#include <utility>

namespace tarvik {

namespace {

void setPermissions(const fs::path& folder, fs::perms permissions) {
    std::error_code error;
    fs::permissions(folder, permissions, error);
    if (error) throw FileError("set the permissions of", folder, error.value());
}

fs::perms permissionsOf(const fs::path& folder) {
    std::error_code error;
    const auto permissions = fs::status(folder, error).permissions();
    if (error) throw FileError("read", folder, error.value());
    return permissions;
}

/// Lets the owner write to a folder as long as this lives. One that nobody may write to gets no other parent: its ".."
/// is an entry in it (rename(2)).
class Unsealing {
public:
    explicit Unsealing(const fs::path& folder) : m_permissions(permissionsOf(folder)), m_place(folder) {
        setPermissions(folder, m_permissions | fs::perms::owner_write);
    }
    ~Unsealing() {
        if (m_place) ignoringFailure([&] { setPermissions(*m_place, m_permissions); });
    }
    Unsealing(const Unsealing&) = delete;
    Unsealing& operator=(const Unsealing&) = delete;

    /// Ends it where the folder stands now. @throws FileError.
    void endAt(const fs::path& place) {
        m_place.reset();
        setPermissions(place, m_permissions);
    }

private:
    fs::perms m_permissions;
    std::optional<fs::path> m_place;
};

}  // namespace

CopyPlace::CopyPlace(fs::path goal)
    : m_goal(std::move(goal)), m_claim(HiddenPlace::claimForCopyTo(m_goal)), m_path(m_claim.path / m_goal.filename()) {}

void CopyPlace::leaveFor(const fs::path& place) {
    // The mark goes with the copy, under whatever name.
    FileDescriptor held = ItemLock::hold(m_path);
    std::optional<Unsealing> unsealing;
    try {
        Files::rename(m_path, place);
    } catch (const FileError& error) {
        if (error.code() != EACCES || !Files::isFolder(m_path)) throw;
        unsealing.emplace(m_path);
        Files::rename(m_path, place);
    }
    m_path = place;
    if (held) m_claim.held = std::move(held);
    clearFolder();
    if (unsealing) unsealing->endAt(place);
}

void CopyPlace::leaveFolder() {
    try {
        leaveFor(HiddenName::forCopyTo(m_goal));
    } catch (const FileError& error) {
        throw FileError("create", m_goal, error.code());
    }
}

void CopyPlace::clearFolder() noexcept {
    ignoringFailure([&] { Files::removeEmptyFolder(m_claim.path); });
}

std::string CopyPlace::inOwnName(std::string text) const {
    return HiddenName::inOwnName(std::move(text), m_claim.path / m_goal.filename(), m_goal);
}

}  // namespace tarvik
