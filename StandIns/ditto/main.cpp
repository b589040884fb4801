#include "ditto/MessageText.h"
#include "ditto/TreeCopier.h"

#include <cstdio>
#include <exception>
#include <string_view>
#include <vector>

namespace {

constexpr int failed = 1;
constexpr int wrongUsage = 2;

int copy(const std::vector<std::string_view>& paths) {
    try {
        tarvik::ditto::TreeCopier::copy(paths[0], paths[1]);
        return 0;
    } catch (const std::exception& failure) {
        const auto text = tarvik::ditto::MessageText::readable(failure.what());
        std::fprintf(stderr, "%s\n", text.c_str());
        return failed;
    }
}

}  // namespace

/// Copies a tree: `ditto [--rsrc] SOURCE DESTINATION`. Everything that belongs to a file is copied with or without
/// --rsrc.
int main(int argc, char** argv) {
    std::vector<std::string_view> arguments(argv + 1, argv + argc);
    if (!arguments.empty() && arguments.front() == "--rsrc") arguments.erase(arguments.begin());
    const bool isUnderstood = arguments.size() == 2 && !arguments[0].empty() && !arguments[1].empty() &&
                              !arguments[0].starts_with('-') && !arguments[1].starts_with('-');
    if (isUnderstood) return copy(arguments);
    std::fputs("Usage: ditto [--rsrc] SOURCE DESTINATION\n", stderr);
    return wrongUsage;
}
