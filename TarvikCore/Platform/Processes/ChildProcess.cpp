#include "Platform/Processes/ChildProcess.h"

#include "Platform/Files/FileError.h"
#include "Platform/Files/Pipe.h"
#include "Platform/Processes/DescriptorInheritance.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

extern char** environ;  // NOLINT(readability-redundant-declaration): POSIX leaves it to the program to declare it.

namespace tarvik {

namespace {

/// The status of a child whose end was never told, because the process ignores SIGCHLD or someone else waited for it.
/// It must not look like success.
constexpr int unknownStatus = -1;

/// Throws what a call of the posix_spawn family returned, unless that is 0.
class Check {
public:
    explicit Check(const fs::path& program) : m_program(program) {}
    void operator()(int errorNumber) const {
        if (errorNumber != 0) throw FileError("start", m_program, errorNumber);
    }

private:
    const fs::path& m_program;
};

/// A second descriptor for the same, above the standard streams. Where this process has none of its own, a pipe would
/// take their place, and the child would find its own output at its standard input.
FileDescriptor aboveStandardStreams(const FileDescriptor& descriptor, const Check& check) {
    FileDescriptor moved(::fcntl(descriptor.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
    if (!moved) check(errno);
    return moved;
}

Pipe makePipe(const Check& check) {
    Pipe pipe = Pipe::make();
    if (!pipe.readEnd) check(errno);
    return {aboveStandardStreams(pipe.readEnd, check), aboveStandardStreams(pipe.writeEnd, check)};
}

class FileActions {
public:
    explicit FileActions(const Check& check) { check(::posix_spawn_file_actions_init(&value)); }
    ~FileActions() { ::posix_spawn_file_actions_destroy(&value); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    posix_spawn_file_actions_t value;
};

class Attributes {
public:
    explicit Attributes(const Check& check) { check(::posix_spawnattr_init(&value)); }
    ~Attributes() { ::posix_spawnattr_destroy(&value); }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;

    posix_spawnattr_t value;
};

/// A tool must not inherit that this process ignores broken pipes or blocks a signal: it would not end when asked to.
void setOrdinarySignals(Attributes& attributes, const Check& check) {
    sigset_t blocked;
    sigemptyset(&blocked);
    check(::posix_spawnattr_setsigmask(&attributes.value, &blocked));
    sigset_t restored;
    sigemptyset(&restored);
    sigaddset(&restored, SIGPIPE);
    check(::posix_spawnattr_setsigdefault(&attributes.value, &restored));
}

/// Texts as the system wants them, ended by a null. A text with a NUL inside would arrive cut off, so it is refused.
std::vector<char*> listOf(const std::vector<std::string>& texts, const Check& check) {
    std::vector<char*> list;
    list.reserve(texts.size() + 1);
    for (const std::string& text : texts) {
        if (text.find('\0') != std::string::npos) check(EINVAL);
        list.push_back(const_cast<char*>(text.c_str()));
    }
    list.push_back(nullptr);
    return list;
}

std::vector<std::string> commandLine(const fs::path& program, const std::vector<std::string>& arguments) {
    std::vector<std::string> texts{program.native()};
    texts.insert(texts.end(), arguments.begin(), arguments.end());
    return texts;
}

std::vector<std::string> changedEnvironment(const EnvironmentChange& change) {
    std::vector<std::string> variables;
    for (char** variable = environ; variable && *variable; ++variable) {
        const std::string_view text = *variable;
        if (!change.contains(std::string(text.substr(0, text.find('='))))) variables.emplace_back(text);
    }
    for (const auto& [name, value] : change)
        if (value) variables.push_back(name + '=' + *value);
    return variables;
}

int statusOf(int waitStatus) {
    return WIFSIGNALED(waitStatus) ? WTERMSIG(waitStatus) : WEXITSTATUS(waitStatus);
}

}  // namespace

ChildProcess ChildProcess::start(const fs::path& program, const std::vector<std::string>& arguments,
                                 const EnvironmentChange& change) {
    Pipe output = makePipe(Check(program));
    return spawn(program, arguments, change, std::move(output.writeEnd), std::move(output.readEnd));
}

ChildProcess ChildProcess::startWritingTo(const FileDescriptor& output, const fs::path& program,
                                          const std::vector<std::string>& arguments) {
    return spawn(program, arguments, {}, aboveStandardStreams(output, Check(program)), FileDescriptor());
}

ChildProcess ChildProcess::spawn(const fs::path& program, const std::vector<std::string>& arguments,
                                 const EnvironmentChange& change, FileDescriptor output, FileDescriptor readEnd) {
    const Check check(program);
    const auto texts = commandLine(program, arguments);
    const auto list = listOf(texts, check);
    const auto variables = changedEnvironment(change);
    const auto environment = listOf(variables, check);
    Pipe error = makePipe(check);

    FileActions actions(check);
    check(::posix_spawn_file_actions_adddup2(&actions.value, output.get(), STDOUT_FILENO));
    check(::posix_spawn_file_actions_adddup2(&actions.value, error.writeEnd.get(), STDERR_FILENO));
    Attributes attributes(check);
    setOrdinarySignals(attributes, check);
    short flags = POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF;
    check(DescriptorInheritance::limitToStandardStreams(actions.value, flags));
    check(::posix_spawnattr_setflags(&attributes.value, flags));

    pid_t process = -1;
    check(::posix_spawn(&process, program.c_str(), &actions.value, &attributes.value, list.data(), environment.data()));
    return {process, std::move(readEnd), std::move(error.readEnd)};
}

ChildProcess::ChildProcess(pid_t process, FileDescriptor standardOutput, FileDescriptor standardError)
    : m_process(process), m_standardOutput(std::move(standardOutput)), m_standardError(std::move(standardError)) {}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept
    : m_process(std::exchange(other.m_process, -1)),
      m_status(std::exchange(other.m_status, std::nullopt)),
      m_standardOutput(std::move(other.m_standardOutput)),
      m_standardError(std::move(other.m_standardError)) {}

ChildProcess& ChildProcess::operator=(ChildProcess&& other) noexcept {
    if (this != &other) {
        end();
        m_process = std::exchange(other.m_process, -1);
        m_status = std::exchange(other.m_status, std::nullopt);
        m_standardOutput = std::move(other.m_standardOutput);
        m_standardError = std::move(other.m_standardError);
    }
    return *this;
}

ChildProcess::~ChildProcess() {
    end();
}

int ChildProcess::wait() {
    if (m_status) return *m_status;
    int waitStatus = 0;
    pid_t ended = 0;
    do {
        ended = ::waitpid(m_process, &waitStatus, 0);
    } while (ended < 0 && errno == EINTR);
    m_status = ended == m_process ? statusOf(waitStatus) : unknownStatus;
    return *m_status;
}

std::optional<int> ChildProcess::poll() {
    if (m_status) return m_status;
    int waitStatus = 0;
    pid_t ended = 0;
    do {
        ended = ::waitpid(m_process, &waitStatus, WNOHANG);
    } while (ended < 0 && errno == EINTR);
    if (ended != 0) m_status = ended == m_process ? statusOf(waitStatus) : unknownStatus;
    return m_status;
}

// Once the child has been waited for, its number may belong to another process.
void ChildProcess::terminate() {
    if (!m_status) ::kill(m_process, SIGTERM);
}

void ChildProcess::kill() {
    if (!m_status) ::kill(m_process, SIGKILL);
}

void ChildProcess::end() noexcept {
    if (m_process < 0) return;
    kill();
    wait();
}

}  // namespace tarvik
