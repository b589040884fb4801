#include "MachineShell/MachineShell.h"

#include "MachineShell/Linux/Namespace.h"
#include "MachineShell/Linux/RootView.h"
#include "MachineShell/MachineRoot.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"
#include "Platform/Processes/ProgramLocation.h"

#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace tarvik::MachineShell {

namespace {

constexpr int notStarted = 126;

struct PipeEnds {
    FileDescriptor reading;
    FileDescriptor writing;

    PipeEnds() {
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw FileError("make", "a pipe", errno);
        reading = FileDescriptor(ends[0]);
        writing = FileDescriptor(ends[1]);
    }
};

std::string allOf(int pipe) {
    std::string text;
    std::array<char, 512> block{};
    for (;;) {
        const ssize_t got = ::read(pipe, block.data(), block.size());
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return text;
        text.append(block.data(), static_cast<std::size_t>(got));
    }
}

/// The folders that a Mac always has, for as long as a program runs; those that stay empty go again.
class StandardFolders {
public:
    explicit StandardFolders(const fs::path& root) {
        for (const fs::path& folder : RootView::standardFolders())
            if (::mkdir((root / folder).c_str(), 0755) == 0) m_made.push_back(root / folder);
    }
    ~StandardFolders() {
        for (auto folder = m_made.rbegin(); folder != m_made.rend(); ++folder) ::rmdir(folder->c_str());
    }
    StandardFolders(const StandardFolders&) = delete;
    StandardFolders& operator=(const StandardFolders&) = delete;

private:
    std::vector<fs::path> m_made;
};

/// The texts of a program's start, and pointers to them as execve(2) wants them.
class Texts {
public:
    explicit Texts(std::vector<std::string> texts) : m_texts(std::move(texts)) {
        for (std::string& text : m_texts) m_pointers.push_back(text.data());
        m_pointers.push_back(nullptr);
    }
    char* const* get() const { return m_pointers.data(); }

private:
    std::vector<std::string> m_texts;
    std::vector<char*> m_pointers;
};

std::vector<std::string> environmentOf(const fs::path& root, const Command& command) {
    auto all = command.environment;
    all.emplace("HOME", MachineRoot::home(root).native());
    const std::string standIns = RootView::standInsPlace;
    const std::string programs = RootView::programsPlace;
    all["PATH"] = "/usr/local/bin:/usr/bin:/bin:/usr/sbin:/sbin:" + standIns + ":" + programs;
    std::vector<std::string> lines;
    lines.reserve(all.size());
    for (const auto& [name, value] : all) lines.push_back(fmt::format("{}={}", name, value));
    return lines;
}

[[noreturn]] void becomeProgram(const Command& command, const Texts& environment) {
    // Without a terminal of its own it cannot type into anybody's.
    ::setsid();
    ::signal(SIGPIPE, SIG_DFL);
    const int nothing = ::open("/dev/null", O_RDONLY);
    ::dup2(nothing, STDIN_FILENO);
    if (command.output) {
        ::dup2(*command.output, STDOUT_FILENO);
        ::dup2(*command.output, STDERR_FILENO);
    }
    // Whatever was open outside stays outside.
    ::close_range(STDERR_FILENO + 1, ~0U, 0);
    if (::chdir(command.folder.c_str()) != 0) ::chdir("/");
    const Texts arguments(command.arguments);
    ::setenv("PATH", "/", 1);
    for (char* const* line = environment.get(); *line; ++line)
        if (std::strncmp(*line, "PATH=", 5) == 0) ::setenv("PATH", *line + 5, 1);
    ::execvpe(arguments.get()[0], arguments.get(), environment.get());
    const int error = errno;
    std::fprintf(stderr, "%s: %s\n", arguments.get()[0],
                 error == ENOENT ? "command not found" : systemErrorText(error).c_str());
    std::fflush(stderr);
    ::_exit(error == ENOENT ? notFound : notStarted);
}

int statusOf(int status) {
    constexpr int ofSignal = 128;
    return WIFEXITED(status) ? WEXITSTATUS(status) : ofSignal + WTERMSIG(status);
}

/// The first process of the namespaces: it starts the program, and ends with it, which ends all that it has left.
[[noreturn]] void beFirst(const Command& command, const Texts& environment) {
    const pid_t program = ::fork();
    if (program < 0) ::_exit(notStarted);
    if (program == 0) becomeProgram(command, environment);
    ::close_range(STDERR_FILENO + 1, ~0U, 0);
    for (;;) {
        int status = 0;
        const pid_t ended = ::waitpid(-1, &status, 0);
        if (ended == program) ::_exit(statusOf(status));
        if (ended < 0 && errno != EINTR) ::_exit(notStarted);
    }
}

/// The life of the child. It says through the pipe what has gone wrong, and nothing when the program starts.
[[noreturn]] void beChild(const fs::path& root, const Command& command, PipeEnds& start, PipeEnds& complaint) {
    start.writing.close();
    complaint.reading.close();
    char go = 0;
    if (::read(start.reading.get(), &go, 1) != 1) ::_exit(notStarted);
    try {
        const Texts environment(environmentOf(root, command));
        RootView::enter(root, ProgramLocation::folder(), command.shown);
        if (!Namespace::dropRights()) throw FileError("give up the rights over", "the system", errno);
        complaint.writing.close();
        beFirst(command, environment);
    } catch (const std::exception& failure) {
        const std::string words = failure.what();
        if (::write(complaint.writing.get(), words.data(), words.size()) < 0) ::_exit(notStarted);
    }
    ::_exit(notStarted);
}

[[noreturn]] void refuse(const std::string& reason) {
    throw Failure(
        "MachineShell", 1,
        "A program of a machine in a folder runs only where it can be kept in it, and this system refuses that: " +
            reason + ".");
}

int waitFor(pid_t child) {
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) continue;
    return statusOf(status);
}

}  // namespace

int run(const fs::path& root, const Command& command) {
    const StandardFolders folders(root);
    PipeEnds start;
    PipeEnds complaint;
    const pid_t child = Namespace::fork();
    if (child < 0) refuse(systemErrorText(errno));
    if (child == 0) beChild(root, command, start, complaint);
    start.reading.close();
    complaint.writing.close();
    if (!Namespace::mapUsers(child, command.asRoot)) {
        const int error = errno;
        start.writing.close();
        waitFor(child);
        refuse(systemErrorText(error));
    }
    const char go = 1;
    const bool isToldToGo = ::write(start.writing.get(), &go, 1) == 1;
    start.writing.close();
    const std::string words = allOf(complaint.reading.get());
    const int status = waitFor(child);
    if (!isToldToGo || !words.empty()) refuse(words.empty() ? "its process has ended" : words);
    return status;
}

}  // namespace tarvik::MachineShell
