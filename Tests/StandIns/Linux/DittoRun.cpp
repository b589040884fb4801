#include "StandIns/Linux/DittoRun.h"

#include "Platform/Files/FileDescriptor.h"
#include "Support/ReadToEnd.h"

#include <array>
#include <fcntl.h>
#include <grp.h>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tarvik::test {

DittoRun runDitto(const std::vector<std::string>& arguments, const std::function<void()>& prepare) {
    const fs::path program = fs::canonical("/proc/self/exe").parent_path() / "stand-ins" / "ditto";
    // By handle, so that a user who may not enter the build's folder can run it too.
    const FileDescriptor executable(::open(program.c_str(), O_RDONLY | O_CLOEXEC));
    if (!executable) throw std::runtime_error("not built: " + program.native());

    std::string name = "ditto";
    std::vector<std::string> copies = arguments;
    std::vector<char*> pointers{name.data()};
    for (std::string& argument : copies) pointers.push_back(argument.data());
    pointers.push_back(nullptr);

    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    FileDescriptor readEnd(ends[0]);
    FileDescriptor writeEnd(ends[1]);
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(writeEnd.get(), STDERR_FILENO);
        prepare();
        ::fexecve(executable.get(), pointers.data(), environ);
        ::_exit(127);
    }
    writeEnd.close();
    DittoRun run;
    run.message = readToEnd(readEnd.get());
    int status = 0;
    struct rusage usage {};
    if (::wait4(child, &status, 0, &usage) != child) throw std::runtime_error("no child");
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    run.peakMemoryKilobytes = usage.ru_maxrss;
    return run;
}

DittoRun ditto(const fs::path& source, const fs::path& destination, const std::function<void()>& prepare) {
    return runDitto({"--rsrc", source, destination}, prepare);
}

void becomeNobody() {
    if (::setgroups(0, nullptr) != 0 || ::setgid(nobody) != 0 || ::setuid(nobody) != 0) ::_exit(126);
}

bool isSuperuser() {
    return ::geteuid() == 0;
}

}  // namespace tarvik::test
