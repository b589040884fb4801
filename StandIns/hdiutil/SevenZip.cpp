#include "hdiutil/SevenZip.h"

#include "Platform/Basics/Failure.h"
#include "hdiutil/Tool.h"

#include <cstdlib>
#include <unistd.h>

namespace tarvik::hdiutil::SevenZip {

namespace {

/// Its own status for "warning": all was read, and something lies around it.
constexpr int worstGoodStatus = 1;

fs::path program() {
    const char* path = std::getenv("PATH");
    std::string folders = (path ? std::string(path) : std::string()) + ":/usr/bin:/opt/homebrew/bin:/usr/local/bin:";
    for (std::size_t colon = 0; (colon = folders.find(':')) != std::string::npos; folders.erase(0, colon + 1)) {
        fs::path found = fs::path(folders.substr(0, colon)) / "7zz";
        if (found.is_absolute() && ::access(found.c_str(), X_OK) == 0) return found;
    }
    throw Failure("hdiutil", 1, "7-Zip's program 7zz is not installed");
}

bool run(const Source& source, std::vector<std::string> arguments, const std::string& item, const Sink& sink) {
    // No question is asked and no name has wildcards; a password that is wrong is better than one that is waited for.
    for (const char* option : {"-y", "-pnone", "-spd", "-sns", "-sccUTF-8", "-bd"}) arguments.emplace_back(option);
    if (!source.type.empty()) arguments.push_back("-t" + source.type);
    arguments.insert(arguments.end(), {"--", source.file.native()});
    if (!item.empty()) arguments.push_back(item);
    return Tool::run(program(), arguments, sink) <= worstGoodStatus;
}

}  // namespace

bool list(const Source& source, const Sink& sink) {
    return run(source, {"l", "-slt"}, {}, sink);
}

bool read(const Source& source, const std::string& item, const Sink& sink) {
    return run(source, {"x", "-so"}, item, sink);
}

}  // namespace tarvik::hdiutil::SevenZip
