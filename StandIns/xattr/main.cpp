#include "xattr/Removal.h"

#include <cstddef>
#include <cstdio>
#include <exception>
#include <string>
#include <string_view>
#include <vector>

// Takes extended attributes away, as the Mac's tool does: see xattr(1) of macOS.
//
//     xattr -c [-rsv] FILE...
//     xattr -d [-rsv] NAME FILE...
//
// What differs, and why nothing may count on it:
// - It neither lists, nor shows, nor writes: those forms are not understood.
// - A Mac's attributes are those that Linux calls "user."; what belongs to the system stays, as access lists do.
// - With -r, links below a folder are not followed: what they have themselves goes, which on Linux is nothing. The page
//   says of -r only that all that is in a folder is acted on, and of links that they are followed unless -s is given.
//   So what a link of a tree leads to, outside of it, may well lose its attributes on a Mac.

namespace {

constexpr int wrongUsage = 64;  // EX_USAGE of sysexits(3).

int explainUsage() {
    std::fputs("usage: xattr -c [-rsv] file [file ...]\n       xattr -d [-rsv] attr_name file [file ...]\n", stderr);
    return wrongUsage;
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string_view> words(argv + 1, argv + argc);
    tarvik::xattr::Removal::What what;
    bool clears = false;
    bool deletes = false;
    std::size_t next = 0;
    for (; next < words.size() && words[next].size() > 1 && words[next].front() == '-'; ++next) {
        for (const char option : words[next].substr(1)) {
            if (option == 'c') {
                clears = true;
            } else if (option == 'd') {
                deletes = true;
            } else if (option == 'r') {
                what.isRecursive = true;
            } else if (option == 's') {
                what.isOfLinks = true;
            } else if (option != 'v') {
                return explainUsage();
            }
        }
    }
    if (clears == deletes) return explainUsage();
    if (deletes && next < words.size()) what.name = std::string(words[next++]);
    if (next == words.size()) return explainUsage();
    try {
        bool isDone = true;
        for (; next < words.size(); ++next) isDone = tarvik::xattr::Removal::remove(words[next], what) && isDone;
        return isDone ? 0 : 1;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "xattr: %s\n", failure.what());
        return 1;
    }
}
