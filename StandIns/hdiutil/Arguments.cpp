#include "hdiutil/Arguments.h"

#include <algorithm>
#include <array>

namespace tarvik::hdiutil {

namespace {

/// What is done anyway: a volume is read-only and shows in no window.
constexpr std::array<std::string_view, 2> doneAnyway = {"-nobrowse", "-readonly"};

}  // namespace

Arguments Arguments::of(const std::vector<std::string_view>& words) {
    Arguments arguments;
    if (words.empty()) return arguments;
    arguments.asked = words.front();
    const bool attaches = words.front() == "attach" || words.front() == "mount";
    if (!attaches && words.front() != "detach" && words.front() != "eject") return arguments;
    for (std::size_t at = 1; at < words.size(); ++at) {
        const std::string_view word = words[at];
        if (word == "-quiet")
            arguments.isQuiet = true;
        else if (attaches && word == "-plist")
            arguments.wantsList = true;
        else if (attaches && std::find(doneAnyway.begin(), doneAnyway.end(), word) != doneAnyway.end())
            continue;
        else if (word.starts_with('-') || !arguments.target.empty() || word.empty())
            return arguments;
        else
            arguments.target = word;
    }
    if (!arguments.target.empty()) arguments.verb = attaches ? Verb::attach : Verb::detach;
    return arguments;
}

std::string Arguments::usage() const {
    if (asked == "attach" || asked == "mount") return "Usage:\thdiutil attach [options] <image>\n";
    if (asked == "detach" || asked == "eject") return "Usage:\thdiutil detach [options] <devname>\n";
    return "Usage: hdiutil <verb> <options>\n<verb> is one of the following:\nattach\ndetach\n";
}

}  // namespace tarvik::hdiutil
