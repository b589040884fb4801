#include "UninstallRun/UninstallSessionStore.h"

#include "Platform/Basics/Failure.h"
#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/SystemCalls.h"
#include "Platform/Text/Json.h"

#include <algorithm>
#include <fcntl.h>

namespace tarvik::UninstallSessionStore {

namespace {

constexpr const char* recordName = "session.json";
/// Far more than the longest of lists takes, in bytes.
constexpr std::int64_t largestRecord = std::int64_t{64} * 1024 * 1024;

/// Not every file system can flush a folder; the file itself is safe by then.
void flushFolder(const fs::path& path) {
    const FileDescriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder) SystemCalls::flushFile(folder.get());
}

}  // namespace

void save(const AppUninstallSession& session, const fs::path& root) {
    const fs::path folder = root / session.id;
    const fs::path file = folder / recordName;
    Files::createFolder(folder);
    ignoringFailure([&] { Files::removeItem(file); });
    Files::createFile(file, Json::pretty(Json::encoded(session)));
    flushFolder(folder);
    flushFolder(root);
}

std::vector<AppUninstallSession> list(const fs::path& root) {
    std::vector<AppUninstallSession> sessions;
    for (const auto& name : Files::names(root)) {
        if (name.starts_with('.')) continue;
        if (auto session = load(root / name)) sessions.push_back(std::move(*session));
    }
    std::stable_sort(sessions.begin(), sessions.end(),
                     [](const AppUninstallSession& one, const AppUninstallSession& other) {
                         return one.createdAt > other.createdAt;
                     });
    return sessions;
}

std::optional<AppUninstallSession> load(const fs::path& folder) {
    try {
        return Json::parsedAs<AppUninstallSession>(Files::read(folder / recordName, largestRecord));
    } catch (const FileError&) {
        return std::nullopt;
    }
}

std::optional<AppUninstallSession> find(const std::string& id, const fs::path& root) {
    // A path would lead to another folder than one of the root's own.
    if (id.empty() || id.starts_with('.') || id.find('/') != std::string::npos) return std::nullopt;
    return load(root / id);
}

}  // namespace tarvik::UninstallSessionStore
