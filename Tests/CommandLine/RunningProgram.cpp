#include "CommandLine/RunningProgram.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace tarvik::test {

namespace {

constexpr int minute = 60000;

struct Pipe {
    FileDescriptor reading, writing;
};

Pipe makePipe() {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) throw std::runtime_error("no pipe");
    for (const int end : ends) ::fcntl(end, F_SETFD, FD_CLOEXEC);
    return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

FileDescriptor opened(const char* path, int flags) {
    FileDescriptor file(::open(path, flags | O_CLOEXEC | O_NOCTTY));
    if (!file) throw std::runtime_error(std::string("cannot open ") + path);
    return file;
}

/// Both ends of a new terminal of 80 columns.
Pipe makeTerminal() {
    FileDescriptor master(::posix_openpt(O_RDWR | O_NOCTTY));
    if (!master || ::grantpt(master.get()) != 0 || ::unlockpt(master.get()) != 0)
        throw std::runtime_error("no terminal");
    ::fcntl(master.get(), F_SETFD, FD_CLOEXEC);
    FileDescriptor terminal = opened(::ptsname(master.get()), O_RDWR);
    struct winsize size {};
    size.ws_row = 24;
    size.ws_col = 80;
    ::ioctl(terminal.get(), TIOCSWINSZ, &size);
    return {std::move(master), std::move(terminal)};
}

/// In the child: becomes the program. Only calls that are safe after a fork.
[[noreturn]] void become(char* const* arguments, int input, int output, int errors, bool onTerminal) {
    if (onTerminal) {
        ::setsid();
        ::ioctl(input, TIOCSCTTY, 0);
    } else {
        ::setpgid(0, 0);
    }
    ::dup2(input, STDIN_FILENO);
    ::dup2(output, STDOUT_FILENO);
    ::dup2(errors, STDERR_FILENO);
    if (input < 0)
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) ::close(stream);
    ::execv(arguments[0], arguments);
    ::_exit(127);
}

}  // namespace

RunningProgram::RunningProgram(const fs::path& program, const std::vector<std::string>& arguments, Streams streams) {
    FileDescriptor input;
    Pipe output, errors;
    if (streams == Streams::terminal) {
        output = makeTerminal();
    } else if (streams != Streams::none) {
        input = opened("/dev/null", O_RDONLY);
        output = makePipe();
        errors = makePipe();
        if (streams == Streams::fullDisk) output.writing = opened("/dev/full", O_WRONLY);
        if (streams == Streams::closedPipes) {
            output.reading.close();
            errors.reading.close();
        }
    }
    const bool onTerminal = streams == Streams::terminal;
    const int inputEnd = onTerminal ? output.writing.get() : input.get();
    const int errorsEnd = onTerminal ? output.writing.get() : errors.writing.get();
    std::vector<std::string> words = {program.native()};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (auto& word : words) pointers.push_back(word.data());
    pointers.push_back(nullptr);

    m_process = ::fork();
    if (m_process < 0) throw std::runtime_error("no process");
    if (m_process == 0) become(pointers.data(), inputEnd, output.writing.get(), errorsEnd, onTerminal);
    // Set on both sides, so that the group is there whoever comes first.
    if (!onTerminal) ::setpgid(m_process, m_process);
    m_output = std::move(output.reading);
    m_errors = std::move(errors.reading);
}

RunningProgram::~RunningProgram() {
    if (m_finished.status >= 0) return;
    ::kill(-m_process, SIGKILL);
    ::waitpid(m_process, nullptr, 0);
}

void RunningProgram::type(const std::string& text) const {
    if (::write(m_output.get(), text.data(), text.size()) < 0) throw std::runtime_error("cannot type");
}

bool RunningProgram::waitForOutput(const std::string& text) {
    while (m_finished.output.find(text) == std::string::npos && m_finished.errors.find(text) == std::string::npos)
        if (!gather()) return false;
    return true;
}

void RunningProgram::signalGroup(int signal) const {
    ::kill(-m_process, signal);
}

Finished RunningProgram::finish() {
    while (gather()) continue;
    int status = 0;
    ::waitpid(m_process, &status, 0);
    m_finished.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return m_finished;
}

bool RunningProgram::gather() {
    std::array<struct pollfd, 2> polled = {{{m_output.get(), POLLIN, 0}, {m_errors.get(), POLLIN, 0}}};
    if (!m_output && !m_errors) return false;
    if (::poll(polled.data(), polled.size(), minute) <= 0) {
        m_finished.errors += "(the test gave up waiting)";
        ::kill(-m_process, SIGKILL);
        return false;
    }
    const auto take = [](const struct pollfd& entry, FileDescriptor& stream, std::string& text) {
        if (!stream || entry.revents == 0) return;
        std::array<char, 4096> bytes{};
        const auto count = ::read(stream.get(), bytes.data(), bytes.size());
        // A terminal that its last user has closed gives an error and no end.
        if (count > 0)
            text.append(bytes.data(), static_cast<std::size_t>(count));
        else if (count == 0 || errno != EINTR)
            stream.close();
    };
    take(polled[0], m_output, m_finished.output);
    take(polled[1], m_errors, m_finished.errors);
    return true;
}

Finished runProgram(const fs::path& program, const std::vector<std::string>& arguments,
                    RunningProgram::Streams streams) {
    return RunningProgram(program, arguments, streams).finish();
}

}  // namespace tarvik::test
