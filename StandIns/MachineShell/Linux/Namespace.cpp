#include "MachineShell/Linux/Namespace.h"

#include "Platform/Files/FileDescriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <linux/capability.h>
#include <sched.h>
#include <signal.h>
#include <sstream>
#include <string>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace tarvik::MachineShell::Namespace {

namespace {

bool writeTo(const std::string& file, const std::string& text) {
    const FileDescriptor handle(::open(file.c_str(), O_WRONLY | O_CLOEXEC));
    return handle && ::write(handle.get(), text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

/// The numbers that mean something to this process, each as itself: lines as in user_namespaces(7).
std::string identityOf(const std::string& file) {
    std::ifstream map(file);
    std::ostringstream identity;
    unsigned long inside = 0;
    unsigned long outside = 0;
    unsigned long count = 0;
    while (map >> inside >> outside >> count) identity << inside << ' ' << inside << ' ' << count << '\n';
    return identity.str();
}

/// What a program needs to act as root on files and on its own processes, and nothing that reaches further.
constexpr std::array keptRights = {CAP_CHOWN, CAP_DAC_OVERRIDE, CAP_FOWNER, CAP_FSETID,
                                   CAP_KILL,  CAP_SETGID,       CAP_SETUID};

}  // namespace

pid_t fork() {
    // The plain call: libraries that have threads of their own would start them again in the child, which could then
    // not have namespaces. The flags are unsigned long to the kernel.
    constexpr unsigned long flags =
        CLONE_NEWUSER | CLONE_NEWNS | CLONE_NEWPID | CLONE_NEWNET | CLONE_NEWIPC | CLONE_NEWUTS | SIGCHLD;
    const auto child = static_cast<pid_t>(::syscall(SYS_clone, flags, nullptr, nullptr, nullptr, nullptr));
    if (child == 0) ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    return child;
}

bool mapUsers(pid_t child, bool asRoot) {
    const std::string folder = "/proc/" + std::to_string(child);
    if (::geteuid() == 0)
        return writeTo(folder + "/uid_map", identityOf("/proc/self/uid_map")) &&
               writeTo(folder + "/gid_map", identityOf("/proc/self/gid_map"));
    const auto line = [&](unsigned id) { return std::to_string(asRoot ? 0 : id) + " " + std::to_string(id) + " 1\n"; };
    return writeTo(folder + "/setgroups", "deny") && writeTo(folder + "/uid_map", line(::geteuid())) &&
           writeTo(folder + "/gid_map", line(::getegid()));
}

bool dropRights() {
    for (int right = 0; ::prctl(PR_CAPBSET_READ, right, 0, 0, 0) >= 0; ++right)
        if (std::find(keptRights.begin(), keptRights.end(), right) == keptRights.end() &&
            ::prctl(PR_CAPBSET_DROP, right, 0, 0, 0) != 0)
            return false;
    ::prctl(PR_CAP_AMBIENT, PR_CAP_AMBIENT_CLEAR_ALL, 0, 0, 0);
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0;
}

}  // namespace tarvik::MachineShell::Namespace
