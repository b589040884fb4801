#include "Packages/XarArchive.h"
#include "Platform/Basics/Failure.h"
#include "xar/Extraction.h"

#include <cstdio>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Lists and unpacks archives, as a Mac's xar(1) does:
//
//     xar -tf ARCHIVE
//     xar -xf ARCHIVE [-C FOLDER] [NAME...]
//
// The manual page tells what these do. What differs:
// - A NAME is the path of an entry, with all that is in it; patterns are not understood. As on a Mac, it is no failure
//   when there is no such entry.
// - An archive with an entry that would come to lie outside of the folder, or that is a device, is not unpacked at all,
//   nor one with more bytes than there is space for. Owners, times and the rights of set-id bits are not restored.

namespace {

using namespace tarvik;

constexpr int failed = 1;

struct Arguments {
    bool extracts = false;
    fs::path archive;
    fs::path folder = ".";
    std::vector<std::string> names;
};

std::optional<Arguments> parsed(const std::vector<std::string_view>& words) {
    if (words.size() < 2 || (words[0] != "-tf" && words[0] != "-xf")) return std::nullopt;
    Arguments arguments;
    arguments.extracts = words[0] == "-xf";
    arguments.archive = words[1];
    for (std::size_t index = 2; index < words.size(); ++index) {
        if (words[index] == "-C" && index + 1 < words.size())
            arguments.folder = words[++index];
        else if (words[index].starts_with('-'))
            return std::nullopt;
        else
            arguments.names.emplace_back(words[index]);
    }
    return arguments;
}

std::optional<packages::XarArchive> opened(const fs::path& file) {
    try {
        return packages::XarArchive::open(file);
    } catch (const Failure& failure) {
        std::fprintf(stderr, "Error opening xar archive: %s\nxar: %s\n", file.c_str(), failure.what());
        return std::nullopt;
    }
}

}  // namespace

int main(int argc, char** argv) {
    const auto arguments = parsed({argv + 1, argv + argc});
    if (!arguments) {
        std::fputs("Usage: xar -tf ARCHIVE | xar -xf ARCHIVE [-C FOLDER] [NAME...]\n", stderr);
        return failed;
    }
    try {
        const auto archive = opened(arguments->archive);
        if (!archive) return failed;
        if (arguments->extracts)
            xar::Extraction::extract(*archive, arguments->names, arguments->folder);
        else
            for (const auto& entry : archive->contents().entries) std::puts(entry.path.c_str());
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "xar: %s\n", failure.what());
        return failed;
    }
}
