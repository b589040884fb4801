#include "Platform/Machine/FullDiskAccess.h"

#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/SystemFolders.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>

namespace tarvik::FullDiskAccess {

namespace {

int errorOfOpening(const fs::path& folder) {
    const FileDescriptor handle(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK));
    return handle ? 0 : errno;
}

/// Removable volumes are kept by consent too.
bool isKept(const Host& host, const fs::path& place) {
    const auto holdsIt = [&](const KeptFolder& kept) { return Files::isAtOrBelow(place, host.home / kept.path); };
    return std::any_of(keptFolders().begin(), keptFolders().end(), holdsIt) ||
           Files::isAtOrBelow(place, SystemFolders::volumes(host));
}

}  // namespace

const std::vector<KeptFolder>& keptFolders() {
    static const std::vector<KeptFolder> folders = {
        // What the settings name under "Full Disk Access", and where the system itself notes who is allowed what.
        {"Library/Application Support/com.apple.TCC", Keeping::always},
        {"Library/Mail", Keeping::always},
        {"Library/Messages", Keeping::always},
        {"Library/Safari", Keeping::always},
        // What they name under "Files & Folders".
        {"Desktop", Keeping::byConsent},
        {"Documents", Keeping::byConsent},
        {"Downloads", Keeping::byConsent},
        // The data of sandboxed applications, since macOS 14.
        {"Library/Containers", Keeping::byConsent},
        {"Library/Group Containers", Keeping::byConsent},
    };
    return folders;
}

bool isMissingAfter(const std::vector<Attempt>& attempts) {
    return std::any_of(attempts.begin(), attempts.end(), [](const Attempt& attempt) { return attempt.error == EPERM; });
}

bool isMissing(const Host& host) {
    std::vector<Attempt> attempts;
    for (const KeptFolder& kept : keptFolders()) {
        if (kept.keeping != Keeping::always) continue;
        const fs::path folder = host.home / kept.path;
        attempts.push_back({folder, errorOfOpening(folder)});
    }
    return isMissingAfter(attempts);
}

std::string loss() {
    return "Full Disk Access is missing: Mail, Messages, Safari and the data of many applications can be neither seen "
           "nor moved.";
}

std::string remedy() {
    return "Allow it for Tarvik, or for the terminal it runs in, under System Settings > Privacy & Security > Full "
           "Disk "
           "Access.";
}

std::optional<std::string> refusalOf(const Host& host, const fs::path& item, const fs::path& place, int error,
                                     std::string_view done) {
    if (error != EPERM || !isKept(host, place)) return std::nullopt;
    return fmt::format(
        "{} can't be {}: macOS keeps {} from Tarvik until it is allowed under System Settings > Privacy & Security "
        "> "
        "Full Disk Access.",
        item.filename().native(), done, place.native());
}

}  // namespace tarvik::FullDiskAccess
