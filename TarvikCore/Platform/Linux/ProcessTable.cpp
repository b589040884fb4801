#include "Platform/Processes/ProcessTable.h"

#include "Platform/Basics/Failure.h"
#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/Files.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <optional>
#include <string_view>
#include <sys/syscall.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace tarvik::ProcessTable {

namespace {

constexpr std::string_view table = "/proc";

/// The places of two fields in a process's status line, counted behind its name.
constexpr int parentField = 1;
constexpr int startTimeField = 19;

template <typename Number>
std::optional<Number> numberOf(std::string_view text) {
    Number number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

fs::path folderOf(pid_t identifier) {
    return fs::path(table) / std::to_string(identifier);
}

/// A process may end at any moment: what cannot be read is empty.
std::string contentOf(const fs::path& file) {
    std::string content;
    ignoringFailure([&] { content = Files::read(file); });
    return content;
}

/// A field of the status line. The name in it stands in parentheses, and may hold spaces and parentheses of its own.
template <typename Number>
std::optional<Number> statusField(pid_t identifier, int place) {
    const std::string content = contentOf(folderOf(identifier) / "stat");
    const std::size_t nameEnd = content.rfind(')');
    if (nameEnd == std::string::npos) return std::nullopt;
    std::string_view rest = std::string_view(content).substr(nameEnd + 1);
    std::string_view field;
    for (int index = 0; index <= place; ++index) {
        if (rest.empty()) return std::nullopt;
        rest.remove_prefix(1);
        field = rest.substr(0, rest.find(' '));
        rest.remove_prefix(field.size());
    }
    return numberOf<Number>(field);
}

/// In clock ticks since the system began.
std::optional<std::uint64_t> startTimeOf(pid_t identifier) {
    return statusField<std::uint64_t>(identifier, startTimeField);
}

/// The arguments, each ended by a NUL.
std::vector<std::string> argumentsOf(pid_t identifier) {
    std::vector<std::string> arguments;
    const std::string content = contentOf(folderOf(identifier) / "cmdline");
    for (std::size_t start = 0; start < content.size();) {
        const std::size_t end = std::min(content.find('\0', start), content.size());
        arguments.push_back(content.substr(start, end - start));
        start = end + 1;
    }
    return arguments;
}

/// The path of a running program. One that was removed or replaced meanwhile still runs from where it was.
std::optional<fs::path> executableOf(pid_t identifier) {
    constexpr std::string_view removed = " (deleted)";
    const auto path = Files::linkText(folderOf(identifier) / "exe");
    if (!path || !path->is_absolute()) return std::nullopt;
    const std::string& text = path->native();
    return text.ends_with(removed) ? fs::path(text.substr(0, text.size() - removed.size())) : *path;
}

std::vector<pid_t> identifiers() {
    std::vector<pid_t> result;
    for (const std::string& name : Files::names(table))
        if (const auto identifier = numberOf<pid_t>(name)) result.push_back(*identifier);
    return result;
}

/// The two calls by their numbers: the header that declares them lacks what C++ needs in some versions of the library.
int openHandle(pid_t identifier) {
    return static_cast<int>(::syscall(SYS_pidfd_open, identifier, 0U));
}

bool sendThrough(const FileDescriptor& handle, int signal) {
    return ::syscall(SYS_pidfd_send_signal, handle.get(), signal, nullptr, 0U) == 0;
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
        result.push_back({identifier, *startTime, *executable, argumentsOf(identifier),
                          Files::linkText(folderOf(identifier) / "cwd").value_or(fs::path())});
    }
    return result;
}

std::vector<fs::path> programs() {
    std::vector<fs::path> result;
    for (const pid_t identifier : identifiers())
        if (auto program = programOf(identifier); !program.empty()) result.push_back(std::move(program));
    return result;
}

pid_t parentOf(pid_t identifier) {
    return statusField<pid_t>(identifier, parentField).value_or(0);
}

fs::path programOf(pid_t identifier) {
    // Where another user's program is hidden, its arguments are not.
    if (auto executable = executableOf(identifier)) return std::move(*executable);
    const auto arguments = argumentsOf(identifier);
    return arguments.empty() ? fs::path() : fs::path(arguments.front());
}

void send(int signal, pid_t identifier, std::uint64_t startTime) {
    if (!mayBeTold(identifier)) return;
    // The handle stays with the process that has the identifier now; then it is told whether that is the one.
    const FileDescriptor handle(openHandle(identifier));
    if (startTimeOf(identifier) != startTime) return;
    if (handle && sendThrough(handle, signal)) return;
    // An old system has no handles, and some containers forbid them.
    if (!handle || errno == ENOSYS || errno == EPERM) ::kill(identifier, signal);
}

}  // namespace tarvik::ProcessTable
