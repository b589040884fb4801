#include "ditto/Diagnostics.h"
#include "ditto/TreeCopier.h"
#include "ditto/ZipExtraction.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <string_view>
#include <vector>

// Copies trees as the Mac's tool does: see ditto(1) of macOS, which the tests follow line by line.
//
//     ditto [OPTION]... SOURCE... DESTINATION
//     ditto -x -k [OPTION]... ARCHIVE... FOLDER
//
// What differs, and why nothing may count on it:
// - It copies, and expands zip archives. Other archives (-c, -x without -k), an archive at standard input, -v, -V, -X,
//   --bom, --arch, --password and the options that leave something out (--norsrc and the like) are not understood.
//   Those that ask for what is done anyway are.
// - What is in an archive goes wherever its name leads, by ".." and through links too, and into a file that is there,
//   as the page does not say what keeps it from that. A name that begins with "/" is one below the goal.
// - The first thing that goes wrong with an archive is the last: an entry that is encrypted, whose data are broken, or
//   that cannot be written. What is there by then stays. The page does not say whether the rest would follow.
// - A name in an archive that is no UTF-8 is one of CP437.
// - A folder that cannot be made is told of once, and what is in it not at all; the Mac's tool goes on into it.
// - A folder is never copied into itself. What the Mac's tool does there, its page does not say.
// - An existing file is replaced by a new one, and never written into, so that its other names keep what they have. The
//   page says only that it is overwritten. That is done to another item of the source too, where the destination takes
//   both names for one, as nothing in the page keeps the tool from it.
// - Holes in files stay holes, and files share their blocks with their copies where the file system can do that. The
//   page promises neither.
// - Where the destination knows no extended attributes, those of the user fail, item by item; a Mac keeps them in files
//   beside. The Mac's flags, creation times and resource forks are nothing that Linux has.
// - Bytes in names that are no UTF-8 are shown as "\xNN", where the Mac's tool prints what is there.
// - The words of a message are those of this system for the same errno value.

namespace {

/// The status for everything that went wrong, wrong usage too.
constexpr int failed = 1;

/// What is done without them too.
constexpr std::array<std::string_view, 4> defaults = {"--rsrc", "--extattr", "--qtn", "--acl"};

int copy(const std::vector<std::string_view>& sources, std::string_view destination) {
    tarvik::ditto::Diagnostics diagnostics;
    try {
        tarvik::ditto::TreeCopier::copy({sources.begin(), sources.end()}, destination, diagnostics);
    } catch (const std::exception& failure) {
        diagnostics.say(failure.what());
    }
    return diagnostics.areNone() ? 0 : failed;
}

int expand(const std::vector<std::string_view>& archives, std::string_view destination) {
    tarvik::ditto::Diagnostics diagnostics;
    try {
        for (const std::string_view archive : archives)
            tarvik::ditto::ZipExtraction::extract(archive, destination, diagnostics);
    } catch (const std::exception& failure) {
        diagnostics.say(failure.what());
    }
    return diagnostics.areNone() ? 0 : failed;
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string_view> arguments(argv + 1, argv + argc);
    const auto isDefault = [](std::string_view argument) {
        return std::find(defaults.begin(), defaults.end(), argument) != defaults.end();
    };
    const bool expands = arguments.size() > 2 && arguments[0] == "-x" && arguments[1] == "-k";
    if (expands) arguments.erase(arguments.begin(), arguments.begin() + 2);
    arguments.erase(arguments.begin(), std::find_if_not(arguments.begin(), arguments.end(), isDefault));
    const bool isUnderstood =
        arguments.size() >= 2 && std::none_of(arguments.begin(), arguments.end(), [](std::string_view argument) {
            return argument.empty() || argument.starts_with('-');
        });
    if (isUnderstood && expands) return expand({arguments.begin(), arguments.end() - 1}, arguments.back());
    if (isUnderstood) return copy({arguments.begin(), arguments.end() - 1}, arguments.back());
    std::fputs("Usage: ditto [ <options> ] src [ ... src ] dst\n", stderr);
    return failed;
}
