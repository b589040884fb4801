#include "System.h"

#include "Files.h"

#include <cerrno>
#include <climits>
#include <cstring>
#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

namespace launcher {

namespace {

bool isRegularFile(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

std::string unescaped(std::string text) {
    constexpr const char* entities[][2] = {
        {"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&apos;", "'"}, {"&amp;", "&"}};
    for (const auto& [entity, character] : entities)
        for (std::size_t at = 0; (at = text.find(entity, at)) != std::string::npos; ++at)
            text.replace(at, std::strlen(entity), character);
    return text;
}

/// The name of the program in a property list that is XML; empty when it names none.
std::string programIn(const std::string& list) {
    constexpr const char* key = "<key>CFBundleExecutable</key>";
    constexpr const char* opening = "<string>";
    std::size_t at = list.find(key);
    if (at == std::string::npos) return {};
    at = list.find_first_not_of(" \t\r\n", at + std::strlen(key));
    if (at == std::string::npos || list.compare(at, std::strlen(opening), opening) != 0) return {};
    at += std::strlen(opening);
    const std::size_t end = list.find('<', at);
    if (end == std::string::npos) return {};
    const std::string name = unescaped(list.substr(at, end - at));
    return name.find('/') == std::string::npos ? name : std::string();
}

/// The only visible file in a folder; empty when there is none or more than one, or when that cannot be told.
std::string onlyFileIn(const std::string& folder) {
    std::string only;
    DIR* listing = ::opendir(folder.c_str());
    if (!listing) return only;
    // The end of the list and a failure look alike but for errno, which anything between may have set.
    const auto next = [listing] {
        errno = 0;
        return ::readdir(listing);
    };
    while (const dirent* entry = next()) {
        const std::string path = folder + "/" + entry->d_name;
        if (entry->d_name[0] == '.' || !isRegularFile(path)) continue;
        if (!only.empty()) {
            only.clear();
            break;
        }
        only = path;
    }
    if (errno != 0) only.clear();  // There may be another one that was not told.
    ::closedir(listing);
    return only;
}

/// What is run for a target: the program that a bundle's list names, or that bears the bundle's name, or that is the
/// only one in it; or the target itself. Empty when a bundle has no such thing.
std::string programOf(const std::string& target) {
    if (isRegularFile(target)) return target;
    const std::string folder = target + "/Contents/MacOS/";
    std::string list;
    if (readFile(target + "/Contents/Info.plist", list)) {
        const std::string named = programIn(list);
        if (!named.empty() && isRegularFile(folder + named)) return folder + named;
    }
    const std::string sameName = folder + withoutExtension(nameOf(target), ".app");
    return isRegularFile(sameName) ? sameName : onlyFileIn(folder);
}

}  // namespace

std::string System::executable() {
    char path[PATH_MAX];
    const ssize_t length = ::readlink("/proc/self/exe", path, sizeof path);
    return length < 0 ? std::string() : std::string(path, static_cast<std::size_t>(length));
}

std::string System::open(const std::string& target, const std::vector<std::string>& arguments) {
    std::string program = programOf(target);
    if (program.empty()) return target + " has no program that could be run";
    std::vector<char*> words = {program.data()};
    for (const std::string& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    ::execv(program.c_str(), words.data());
    return program + " cannot be run: " + std::strerror(errno);
}

void System::tell(const std::string& sentence) {
    const std::string line = sentence + "\n";
    // There is nobody else to tell when this fails.
    [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, line.data(), line.size());
}

}  // namespace launcher
