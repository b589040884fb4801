#include "Platform/Linux/PatientStatus.h"

#include "Platform/Files/FileDescriptor.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <type_traits>
#include <unistd.h>

namespace tarvik::PatientStatus {

namespace {

using Clock = std::chrono::steady_clock;
using Answer = std::optional<FileSystemStatus>;
static_assert(std::is_trivially_copyable_v<Answer>);  // It goes through a pipe as it is.

/// In a process of its own, where only calls that are safe after `fork` may be made.
[[noreturn]] void answer(const char* path, int output, std::chrono::milliseconds patience) {
    ::signal(SIGALRM, SIG_DFL);
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    itimerval alarm{};
    alarm.it_value.tv_sec = patience.count() / 1000;
    alarm.it_value.tv_usec = patience.count() % 1000 * 1000;
    ::setitimer(ITIMER_REAL, &alarm, nullptr);

    struct stat status {};
    Answer result;
    if (::stat(path, &status) == 0 && S_ISDIR(status.st_mode)) result = fileSystemStatus(path);
    static_cast<void>(!::write(output, &result, sizeof result));
    ::_exit(0);
}

/// The reading end of a pipe from a process that asks. It is nobody's child, so that nobody has to wait for its end.
FileDescriptor ask(const fs::path& path, std::chrono::milliseconds patience) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) return FileDescriptor{};
    FileDescriptor input(ends[0]);
    const FileDescriptor output(ends[1]);

    const pid_t child = ::fork();
    if (child == 0) {
        if (::fork() == 0) answer(path.c_str(), output.get(), patience);
        ::_exit(0);
    }
    if (child < 0) return FileDescriptor{};
    while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) continue;
    return input;
}

Answer receive(int input, Clock::time_point deadline) {
    while (true) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
        pollfd waiting{.fd = input, .events = POLLIN, .revents = 0};
        const int ready = ::poll(&waiting, 1, left > 0 ? static_cast<int>(left) : 0);
        if (ready < 0 && errno == EINTR) continue;
        if (ready <= 0) return std::nullopt;
        Answer result;
        // The answer is shorter than what a pipe takes in one piece.
        return ::read(input, &result, sizeof result) == sizeof result ? result : std::nullopt;
    }
}

}  // namespace

std::vector<Answer> read(const std::vector<fs::path>& paths, std::chrono::milliseconds patience) {
    const auto deadline = Clock::now() + patience;
    std::vector<FileDescriptor> inputs;
    inputs.reserve(paths.size());
    for (const fs::path& path : paths) inputs.push_back(ask(path, patience));

    std::vector<Answer> answers;
    answers.reserve(inputs.size());
    for (const FileDescriptor& input : inputs) answers.push_back(input ? receive(input.get(), deadline) : std::nullopt);
    return answers;
}

}  // namespace tarvik::PatientStatus
