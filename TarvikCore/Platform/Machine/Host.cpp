#include "Platform/Machine/Host.h"

#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/FileEvents.h"
#include "Platform/Machine/RunningApplications.h"
#include "Platform/Machine/SleepBlocker.h"
#include "Platform/Machine/ToolRules.h"
#include "Platform/Machine/TrashCan.h"
#include "Platform/Machine/VolumeList.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cerrno>
#include <cstdlib>
#include <pwd.h>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace tarvik {

namespace {

constexpr std::string_view domain = "Host";

/// `folder` with its links resolved. `role` says what it was to be: "root", "home folder".
fs::path realFolder(const fs::path& folder, std::string_view role) {
    const auto real = Files::resolved(folder);
    if (!real)
        throw Failure(std::string(domain), ENOENT, fmt::format("The {} {} does not exist.", role, folder.native()));
    if (!Files::isFolder(*real))
        throw Failure(std::string(domain), ENOTDIR, fmt::format("The {} {} is not a folder.", role, folder.native()));
    return *real;
}

fs::path homeOfAccount() {
    const long suggested = ::sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> buffer(suggested > 0 ? static_cast<std::size_t>(suggested) : 1024);
    passwd entry{};
    passwd* found = nullptr;
    while (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) == ERANGE)
        buffer.resize(buffer.size() * 2);
    return found ? fs::path(entry.pw_dir) : fs::path("/");
}

fs::path homeOfUser() {
    const char* named = std::getenv("HOME");
    const fs::path home = named ? fs::path(named) : fs::path{};
    return home.is_absolute() ? home : homeOfAccount();
}

fs::path temporaryOfUser() {
    std::error_code failed;
    const fs::path named = fs::temp_directory_path(failed);
    return Files::resolved(failed ? fs::path("/tmp") : named).value_or("/tmp");
}

/// The only user of a disk that does not run.
fs::path onlyHomeOf(const fs::path& root) {
    const fs::path users = root / "Users";
    if (!Files::isFolder(users))
        throw Failure(
            std::string(domain), ENOENT,
            fmt::format("There is no folder Users in {}: say with --home which home folder to use.", root.native()));

    std::vector<std::string> names;
    for (const std::string& name : Files::names(users))
        if (!name.starts_with('.') && name != "Shared" && Files::isFolder(users / name)) names.push_back(name);
    if (names.empty())
        throw Failure(std::string(domain), ENOENT,
                      fmt::format("There is no user in {}: say with --home which home folder to use.", users.native()));
    if (names.size() > 1)
        throw Failure(std::string(domain), EINVAL,
                      fmt::format("There are several users in {} ({}): say with --home whose home folder to use.",
                                  users.native(), fmt::join(names, ", ")));
    return users / names.front();
}

}  // namespace

Host Host::thisMachine(const std::optional<fs::path>& home) {
    const fs::path named = home.value_or(homeOfUser());
    const fs::path real = Files::resolved(named).value_or(Files::standardized(named));
    return {.root = "/",
            .home = real,
            .temporary = temporaryOfUser(),
            .tools = systemTools(),
            .volumes = makeSystemVolumeList(real),
            .trash = makeSystemTrashCan(real),
            .runningApplications = makeSystemRunningApplications(),
            .sleepBlocker = makeSystemSleepBlocker(),
            .fileEvents = makeSystemFileEvents(),
            .now = std::chrono::system_clock::now};
}

Host Host::rootedAt(const fs::path& root, const fs::path& home) {
    return {.root = root,
            .home = home,
            .temporary = root / "tmp",
            .tools = ToolRules::inFolder(systemTools(), ToolRules::standIns()),
            .volumes = makeRootedVolumeList(root),
            .trash = makeRootedTrashCan(home),
            .runningApplications = makeProcessTableApplications({root, home}),
            .sleepBlocker = nullptr,
            .fileEvents = makeSystemFileEvents(),
            .now = std::chrono::system_clock::now};
}

Host Host::fromOptions(const std::optional<fs::path>& root, const std::optional<fs::path>& home) {
    const fs::path realRoot = root ? realFolder(*root, "root") : fs::path("/");
    // A home folder that is not there would come into being with the first record that is written.
    if (realRoot == "/") return thisMachine(realFolder(home.value_or(homeOfUser()), "home folder"));
    return rootedAt(realRoot, home ? realFolder(*home, "home folder") : onlyHomeOf(realRoot));
}

void Host::guideTools() const {
    if (root == "/") {
        ::unsetenv("TARVIK_ROOT");  // Whatever the program was started with: the machine is this one.
    } else {
        ::setenv("TARVIK_ROOT", root.c_str(), 1);
    }
}

}  // namespace tarvik
