#include "Platform/Processes/ProcessTable.h"

#include <libproc.h>

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <sys/proc_info.h>
#include <sys/sysctl.h>
#include <utility>
#include <vector>

namespace tarvik::ProcessTable {

namespace {

/// In microseconds since 1970.
std::optional<std::uint64_t> startTimeOf(pid_t identifier) {
    proc_bsdinfo info{};
    if (::proc_pidinfo(identifier, PROC_PIDTBSDINFO, 0, &info, sizeof info) != static_cast<int>(sizeof info))
        return std::nullopt;
    return info.pbi_start_tvsec * 1'000'000 + info.pbi_start_tvusec;
}

std::optional<fs::path> executableOf(pid_t identifier) {
    char path[PROC_PIDPATHINFO_MAXSIZE];
    const int length = ::proc_pidpath(identifier, path, sizeof path);
    if (length <= 0) return std::nullopt;
    return fs::path(std::string(path, static_cast<std::size_t>(length)));
}

/// The system gives a count, the program's path, NULs, and then the arguments, each ended by a NUL.
std::vector<std::string> argumentsOf(pid_t identifier) {
    std::vector<std::string> arguments;
    int name[] = {CTL_KERN, KERN_PROCARGS2, identifier};
    std::size_t size = 0;
    if (::sysctl(name, 3, nullptr, &size, nullptr, 0) != 0) return arguments;
    std::string content(size, '\0');
    if (::sysctl(name, 3, content.data(), &size, nullptr, 0) != 0) return arguments;
    content.resize(size);
    int count = 0;
    if (content.size() < sizeof count) return arguments;
    std::memcpy(&count, content.data(), sizeof count);
    std::size_t start = content.find('\0', sizeof count);
    start = start == std::string::npos ? start : content.find_first_not_of('\0', start);
    while (start < content.size() && static_cast<int>(arguments.size()) < count) {
        arguments.emplace_back(content.c_str() + start);
        start += arguments.back().size() + 1;
    }
    return arguments;
}

fs::path workingFolderOf(pid_t identifier) {
    proc_vnodepathinfo info{};
    if (::proc_pidinfo(identifier, PROC_PIDVNODEPATHINFO, 0, &info, sizeof info) != static_cast<int>(sizeof info))
        return {};
    return info.pvi_cdir.vip_path;
}

std::vector<pid_t> identifiers() {
    constexpr std::size_t room = 64;  // For processes that begin between the two calls.
    const int expected = ::proc_listallpids(nullptr, 0);
    if (expected <= 0) return {};
    std::vector<pid_t> result(static_cast<std::size_t>(expected) + room);
    const int count = ::proc_listallpids(result.data(), static_cast<int>(result.size() * sizeof(pid_t)));
    result.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return result;
}

}  // namespace

std::vector<Process> processes() {
    std::vector<Process> result;
    for (const pid_t identifier : identifiers()) {
        if (!mayBeTold(identifier)) continue;
        // The time comes first: were the identifier given to another process meanwhile, the time would not be its own.
        const auto startTime = startTimeOf(identifier);
        const auto executable = executableOf(identifier);
        if (!startTime || !executable) continue;
        result.push_back({identifier, *startTime, *executable, argumentsOf(identifier), workingFolderOf(identifier)});
    }
    return result;
}

std::vector<fs::path> programs() {
    std::vector<fs::path> result;
    for (const pid_t identifier : identifiers())
        if (auto executable = executableOf(identifier)) result.push_back(std::move(*executable));
    return result;
}

pid_t parentOf(pid_t identifier) {
    // Unlike the long form, this one is told of every user's processes.
    proc_bsdshortinfo info{};
    const int size = ::proc_pidinfo(identifier, PROC_PIDT_SHORTBSDINFO, 0, &info, sizeof info);
    return size == static_cast<int>(sizeof info) ? static_cast<pid_t>(info.pbsi_ppid) : 0;
}

fs::path programOf(pid_t identifier) {
    return executableOf(identifier).value_or(fs::path());
}

void send(int signal, pid_t identifier, std::uint64_t startTime) {
    if (mayBeTold(identifier) && startTimeOf(identifier) == startTime) ::kill(identifier, signal);
}

}  // namespace tarvik::ProcessTable
