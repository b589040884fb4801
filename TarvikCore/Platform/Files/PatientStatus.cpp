#include "Platform/Files/PatientStatus.h"

#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/Pipe.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <type_traits>
#include <unistd.h>
#include <utility>

namespace tarvik::PatientStatus {

namespace {

using Clock = std::chrono::steady_clock;
using Answer = std::optional<FileSystemStatus>;
static_assert(std::is_trivially_copyable_v<Answer>);  // It goes through a pipe as it is.

/// Whether it is an open file: to close one can take a call into its file system, which may be the dead one.
bool isFile(int descriptor) {
    const int flags = ::fcntl(descriptor, F_GETFL);
    return flags >= 0 && (flags & O_DIRECTORY) == 0 && ::lseek(descriptor, 0, SEEK_CUR) >= 0;
}

/// A process that a dead file system holds for ever must hold nothing that others wait for: no pipe, and no folder with
/// a lock.
void closeAllBut(int kept) {
    constexpr rlim_t most = 65536;
    rlimit limit{};
    const rlim_t count = ::getrlimit(RLIMIT_NOFILE, &limit) == 0 ? std::min(limit.rlim_cur, most) : most;
    for (int descriptor = 0; static_cast<rlim_t>(descriptor) < count; ++descriptor)
        if (descriptor != kept && !isFile(descriptor)) ::close(descriptor);
}

/// In a process of its own, where only calls that are safe after `fork` may be made: no memory is asked for, since
/// another thread may have held its lock.
[[noreturn]] void answer(const fs::path& path, int output, std::chrono::milliseconds patience) {
    closeAllBut(output);
    ::signal(SIGALRM, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    itimerval alarm{};
    alarm.it_value.tv_sec = patience.count() / 1000;
    alarm.it_value.tv_usec = patience.count() % 1000 * 1000;
    ::setitimer(ITIMER_REAL, &alarm, nullptr);

    struct stat status {};
    Answer result;
    if (::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode)) result = fileSystemStatus(path);
    static_cast<void>(!::write(output, &result, sizeof result));
    ::_exit(0);
}

/// The reading end of a pipe from a process that asks. It is nobody's child, so that nobody has to wait for its end.
FileDescriptor ask(const fs::path& path, std::chrono::milliseconds patience) {
    Pipe pipe = Pipe::make();
    if (!pipe.readEnd) return FileDescriptor{};
    const pid_t child = ::fork();
    if (child == 0) {
        if (::fork() == 0) answer(path, pipe.writeEnd.get(), patience);
        ::_exit(0);
    }
    if (child < 0) return FileDescriptor{};
    while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) continue;
    return std::move(pipe.readEnd);
}

/// Waits until there is something to read, or the other end is closed. @returns whether that was in time.
bool waitFor(int input, Clock::time_point deadline) {
    while (true) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
        pollfd waiting{.fd = input, .events = POLLIN, .revents = 0};
        const int ready = ::poll(&waiting, 1, left > 0 ? static_cast<int>(left) : 0);
        if (ready >= 0 || errno != EINTR) return ready > 0;
    }
}

/// What comes through the pipe; nothing when that is no answer, and no value at all when it does not end in time.
std::optional<Answer> receive(int input, Clock::time_point deadline) {
    if (!waitFor(input, deadline)) return std::nullopt;
    Answer result;
    // The answer is shorter than what a pipe takes in one piece. Without one, who asked has been ended by its alarm,
    // which rings after the deadline and may be noticed first where this thread is woken late, or could not ask.
    if (::read(input, &result, sizeof result) != sizeof result)
        return Clock::now() < deadline ? std::optional<Answer>(Answer()) : std::nullopt;
    // Who asked bears this program's arguments as long as it lives, and a list of processes would show them.
    waitFor(input, deadline);
    return result;
}

/// Asks all at once. Who cannot be asked has not been silent.
std::vector<std::optional<Answer>> askAll(const std::vector<fs::path>& paths, std::chrono::milliseconds patience) {
    const auto deadline = Clock::now() + patience;
    std::vector<FileDescriptor> inputs;
    inputs.reserve(paths.size());
    for (const fs::path& path : paths) inputs.push_back(ask(path, patience));

    std::vector<std::optional<Answer>> answers;
    answers.reserve(inputs.size());
    for (const FileDescriptor& input : inputs) answers.push_back(input ? receive(input.get(), deadline) : Answer());
    return answers;
}

}  // namespace

std::vector<Answer> read(const std::vector<fs::path>& paths, std::chrono::milliseconds patience) {
    std::vector<Answer> answers;
    answers.reserve(paths.size());
    for (const auto& answer : askAll(paths, patience)) answers.push_back(answer.value_or(Answer()));
    return answers;
}

std::vector<fs::path> silent(const std::vector<fs::path>& paths, std::chrono::milliseconds patience) {
    const auto answers = askAll(paths, patience);
    std::vector<fs::path> found;
    for (std::size_t index = 0; index < paths.size(); ++index)
        if (!answers[index]) found.push_back(paths[index]);
    return found;
}

}  // namespace tarvik::PatientStatus
