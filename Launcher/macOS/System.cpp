#include "System.h"

#include "Documents.h"
#include "OpenCommand.h"

#include <CoreFoundation/CoreFoundation.h>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <mach-o/dyld.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace launcher {

namespace {

/// Nothing when the bytes are no UTF-8.
CFStringRef textOf(const std::string& bytes) {
    return ::CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(bytes.data()),
                                     static_cast<CFIndex>(bytes.size()), kCFStringEncodingUTF8, false);
}

}  // namespace

std::string System::executable() {
    std::uint32_t size = 0;
    ::_NSGetExecutablePath(nullptr, &size);
    std::string named(size, '\0');
    if (::_NSGetExecutablePath(named.data(), &size) != 0) return {};
    char* resolved = ::realpath(named.c_str(), nullptr);
    std::string path = resolved ? resolved : "";
    std::free(resolved);
    return path;
}

std::string System::open(const std::string& target, const std::vector<std::string>& arguments) {
    std::vector<std::string> words = OpenCommand::words(target, Documents::given(), arguments);
    std::vector<char*> pointers;
    for (std::string& word : words) pointers.push_back(word.data());
    pointers.push_back(nullptr);
    pid_t child = 0;
    if (const int error = ::posix_spawn(&child, pointers.front(), nullptr, nullptr, pointers.data(), environ))
        return target + " could not be passed to the system: " + std::strerror(error);
    int status = 0;
    while (::waitpid(child, &status, 0) < 0)
        if (errno != EINTR) return "the system does not answer: " + std::string(std::strerror(errno));
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? std::string() : "the system does not open " + target;
}

void System::tell(const std::string& sentence) {
    const std::string line = sentence + "\n";
    [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, line.data(), line.size());
    CFStringRef header = textOf(sentence);
    if (!header) return;
    CFOptionFlags response = 0;
    ::CFUserNotificationDisplayAlert(0, kCFUserNotificationStopAlertLevel, nullptr, nullptr, nullptr, header, nullptr,
                                     nullptr, nullptr, nullptr, &response);
    ::CFRelease(header);
}

}  // namespace launcher
