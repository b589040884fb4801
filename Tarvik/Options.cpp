#include "Options.h"

#include "Platform/Basics/Failure.h"

#include <charconv>
#include <string_view>

namespace tarvik {

namespace {

[[noreturn]] void fail(const std::string& sentence) {
    throw Failure("Options", 2, sentence);
}

std::pair<int, int> sizeFrom(std::string_view text) {
    int width = 0;
    int height = 0;
    const char* const end = text.data() + text.size();
    const auto afterWidth = std::from_chars(text.data(), end, width);
    if (afterWidth.ptr != end && *afterWidth.ptr == 'x') {
        const auto afterHeight = std::from_chars(afterWidth.ptr + 1, end, height);
        if (afterHeight.ptr == end && width > 0 && height > 0 && width <= 16384 && height <= 16384)
            return {width, height};
    }
    fail("--size takes a width and a height, such as 1400x900.");
}

}  // namespace

Options Options::parse(const std::vector<std::string>& arguments) {
    Options options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string_view argument = arguments[i];
        const auto equals = argument.find('=');
        const std::string name(argument.substr(0, equals));
        const auto value = [&]() -> std::string {
            if (equals != std::string_view::npos) return std::string(argument.substr(equals + 1));
            if (i + 1 == arguments.size()) fail(name + " needs a value.");
            return arguments[++i];
        };
        if (name == "--root") {
            options.root = value();
        } else if (name == "--home") {
            options.home = value();
        } else if (name == "--picture") {
            options.picture = value();
        } else if (name == "--size") {
            options.size = sizeFrom(value());
        } else if (argument == "--time-to-first-frame") {
            options.wantsTimeToFirstFrame = true;
        } else if (argument == "--measure-refresh") {
            options.measuresRefresh = true;
        } else if (argument == "--measure-scrolling") {
            options.measuresRefresh = options.measuresScrolling = true;
        } else if (argument == "--measure-health") {
            options.measuresHealth = true;
        } else if (argument == "--measure-uninstall") {
            options.measuresUninstall = true;
        } else if (argument == "--version") {
            options.wantsVersion = true;
        } else if (argument == "--help" || argument == "-h") {
            options.wantsHelp = true;
        } else {
            fail("Unknown argument " + arguments[i] + ". See --help.");
        }
    }
    return options;
}

std::string Options::help() {
    return "Moves folders to an external drive and leaves links behind.\n"
           "\n"
           "  --root DIR             work on the disk under DIR instead of this machine\n"
           "  --home DIR             the user's home folder; with --root, the only one under its Users\n"
           "  --picture FILE         save a picture of the window as PNG and quit\n"
           "  --size WxH             the size of the window\n"
           "  --time-to-first-frame  print the milliseconds from the start to the first frame and quit\n"
           "  --measure-refresh      print what the first refresh takes and quit\n"
           "  --measure-scrolling    the same while the list is scrolled\n"
           "  --measure-health       print what the check of everything that was moved takes and quit\n"
           "  --measure-uninstall    print what the list of applications to uninstall takes and quit\n"
           "  --version, --help\n";
}

}  // namespace tarvik
