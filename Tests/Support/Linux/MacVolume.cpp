#include "Support/MacVolume.h"

#include "Platform/Files/FileDescriptor.h"
#include "Support/World.h"

#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <memory>
#include <spawn.h>
#include <stdexcept>
#include <string_view>
#include <sys/mount.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <system_error>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace tarvik::test {

namespace {

using Habit = MacVolume::Habit;

/// As the program calls them, in the order of the habits.
constexpr std::array<std::string_view, 8> habitNames = {
    "folds-names",           "decomposes-names", "exchanges-no-names", "exfat",
    "guards-signed-bundles", "has-no-room",      "tells-one-capacity", "hangs"};

std::string nameOf(Habit habit) {
    return std::string(habitNames[static_cast<std::size_t>(habit)]);
}

/// The ends of a pipe, for reading and for writing.
std::array<FileDescriptor, 2> makePipe() {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) throw std::system_error(errno, std::generic_category(), "no pipe");
    return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

pid_t start(std::vector<std::string> words, const FileDescriptor& input, const FileDescriptor& output) {
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, input.get(), STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, output.get(), STDOUT_FILENO);
    pid_t program = -1;
    const int error = ::posix_spawn(&program, words.front().c_str(), &actions, nullptr, arguments.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    if (error != 0) throw std::system_error(error, std::generic_category(), words.front());
    return program;
}

/// A line without its end; what there is of one when the input ends.
std::string lineFrom(const FileDescriptor& input) {
    std::string line;
    char next = 0;
    while (::read(input.get(), &next, 1) == 1 && next != '\n') line += next;
    return line;
}

void setAttribute(const fs::path& item, const char* name, const std::string& text) {
    if (::lsetxattr(item.c_str(), name, text.data(), text.size(), 0) != 0)
        throw std::system_error(errno, std::generic_category(), fmt::format("{} of {}", name, item.native()));
}

void setSwitch(const fs::path& item, const char* name, bool isOn) {
    setAttribute(item, name, isOn ? "1" : "0");
}

}  // namespace

/// The running program that serves the volume. What still waits for its answer when it is ended gets an error.
struct MacVolume::Program {
    explicit Program(std::vector<std::string> words) {
        auto [ordersRead, ordersWritten] = makePipe();
        auto [answersRead, answersWritten] = makePipe();
        process = start(std::move(words), ordersRead, answersWritten);
        orders = std::move(ordersWritten);
        answers = std::move(answersRead);
    }
    ~Program() {
        ::kill(process, SIGKILL);
        while (::waitpid(process, nullptr, 0) < 0 && errno == EINTR) continue;
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    pid_t process = -1;
    FileDescriptor orders;
    FileDescriptor answers;
};

MacVolume::MacVolume(const fs::path& folder, std::initializer_list<Habit> habits) : MacVolume(folder, folder, habits) {}

MacVolume::MacVolume(const fs::path& folder, const fs::path& mountPath, std::initializer_list<Habit> habits) {
    fs::create_directories(mountPath);
    m_path = fs::canonical(mountPath);
    std::vector<std::string> words = {programOfThisBuild("mac-volume"), fs::canonical(folder), m_path};
    for (const Habit habit : habits) words.push_back(nameOf(habit));
    m_program = std::make_unique<Program>(std::move(words));
    if (lineFrom(m_program->answers) != "ready") throw std::runtime_error("no volume on " + m_path.native());
}

MacVolume::~MacVolume() {
    ::umount2(m_path.c_str(), MNT_DETACH);
}

void MacVolume::set(Habit habit, bool isOn) {
    const std::string order = fmt::format("{} {}\n", nameOf(habit), isOn ? "on" : "off");
    if (::write(m_program->orders.get(), order.data(), order.size()) != static_cast<ssize_t>(order.size()) ||
        lineFrom(m_program->answers) != "ok")
        throw std::runtime_error("the volume does not obey");
}

std::vector<std::string> MacVolume::journal() const {
    constexpr std::string_view order = "journal\n";
    if (::write(m_program->orders.get(), order.data(), order.size()) != static_cast<ssize_t>(order.size()))
        throw std::runtime_error("the volume does not obey");
    std::vector<std::string> lines;
    for (std::string line = lineFrom(m_program->answers); line != "ok"; line = lineFrom(m_program->answers)) {
        if (line.empty()) throw std::runtime_error("the volume has ended");
        lines.push_back(std::move(line));
    }
    return lines;
}

std::optional<std::string> MacVolume::unavailableReason() {
    if (auto reason = RealVolume::unavailableReason(RealVolume::Kind::memory)) return reason;
    if (::access("/dev/fuse", R_OK | W_OK) != 0)
        return fmt::format("This system does not let the tests serve a file system: /dev/fuse: {}",
                           std::generic_category().message(errno));
    return std::nullopt;
}

void setMacFlags(const fs::path& item, std::uint32_t flags) {
    setAttribute(item, MacAttribute::flags, fmt::format("{:x}", flags));
}

void denyDelete(const fs::path& item, bool isDenied) {
    setSwitch(item, MacAttribute::denyDelete, isDenied);
}

void denyDeleteInside(const fs::path& folder, bool isDenied) {
    setSwitch(folder, MacAttribute::denyDeleteInside, isDenied);
}

void keepPrivate(const fs::path& folder, bool isPrivate) {
    setSwitch(folder, MacAttribute::isPrivate, isPrivate);
}

void breakListing(const fs::path& folder, bool isBroken) {
    setSwitch(folder, MacAttribute::breaksListing, isBroken);
}

}  // namespace tarvik::test
