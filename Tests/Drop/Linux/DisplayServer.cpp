#include "Drop/Linux/DisplayServer.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace tarvik::test {

namespace {

/// What comes until a line ends.
std::string lineFrom(int file) {
    std::string line;
    for (char character = 0; ::read(file, &character, 1) == 1 && character != '\n';) line.push_back(character);
    return line;
}

}  // namespace

DisplayServer::DisplayServer() {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) return;
    const std::string number = std::to_string(ends[1]);
    const char* arguments[] = {"Xvfb",        "-displayfd", number.c_str(), "-screen",    "0",
                               "1400x900x24", "-nolisten",  "tcp",          "-terminate", nullptr};
    const int error =
        ::posix_spawnp(&m_process, arguments[0], nullptr, nullptr, const_cast<char**>(arguments), environ);
    ::close(ends[1]);
    if (error == 0) m_display = lineFrom(ends[0]);
    ::close(ends[0]);
    if (isRunning()) ::setenv("DISPLAY", (":" + m_display).c_str(), 1);
}

DisplayServer::~DisplayServer() {
    if (m_process == 0) return;
    ::kill(m_process, SIGTERM);
    ::waitpid(m_process, nullptr, 0);
}

}  // namespace tarvik::test
