// The program in every launcher: opens the application that the target file of its own bundle names.
#include "Files.h"
#include "System.h"

#include <cerrno>
#include <cstring>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace {

using namespace launcher;

constexpr const char* programFolder = "/Contents/MacOS";
constexpr const char* targetFile = "/Contents/Resources/ExternalAppTarget.txt";
/// A launcher may open another one. More than this in a row go in a circle.
constexpr int mostLaunchers = 8;

/// Where the search for the application ended: it has a target, or a reason why there is none.
struct Search {
    std::string target;
    std::string reason;
};

std::string trimmed(const std::string& text) {
    constexpr const char* space = " \t\n\v\f\r";
    const std::size_t first = text.find_first_not_of(space);
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(space) + 1 - first);
}

bool isAbsent(int error) {
    return error == ENOENT || error == ENOTDIR;
}

bool exists(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0;
}

/// Follows one launcher to another until there is something that is none.
Search searchFrom(const std::string& bundle) {
    std::string target = bundle;
    for (int launchers = 0; launchers <= mostLaunchers; ++launchers) {
        if (!exists(target)) return {target, {}};
        const std::string file = target + targetFile;
        std::string text;
        if (!readFile(file, text)) {
            if (launchers > 0 && isAbsent(errno)) return {target, {}};
            return {{}, file + " cannot be read: " + std::strerror(errno)};
        }
        target = trimmed(text);
        if (!target.starts_with('/') || target.find('\0') != std::string::npos)
            return {{}, file + " names no application"};
    }
    return {{}, "its launchers lead in a circle"};
}

/// Why the application that the bundle stands for cannot be opened; nothing when it is open.
std::string openFrom(const std::string& bundle, const std::vector<std::string>& arguments) {
    const Search search = searchFrom(bundle);
    if (search.target.empty()) return search.reason;
    if (exists(search.target)) return System::open(search.target, arguments);
    if (isAbsent(errno)) return search.target + " is not there; connect the drive that it is on";
    return search.target + " cannot be reached: " + std::strerror(errno);
}

/// Names of files may hold what would steer a terminal or break the sentence in two.
std::string onOneLine(std::string sentence) {
    for (char& byte : sentence)
        if (static_cast<unsigned char>(byte) < ' ' || byte == '\x7F') byte = '?';
    return sentence;
}

}  // namespace

int main(int argc, char** argv) {
    const std::string folder = parentOf(System::executable());
    if (!folder.ends_with(programFolder)) {
        System::tell("external-app-launcher works only inside of a launcher's bundle.");
        return 1;
    }
    const std::string bundle = parentOf(parentOf(folder));
    const std::string reason = openFrom(bundle, {argv + 1, argv + argc});
    if (reason.empty()) return 0;
    System::tell(onOneLine(withoutExtension(nameOf(bundle), ".app") + " cannot be opened because " + reason + "."));
    return 1;
}
