#pragma once

#include "Platform/Basics/Failure.h"
#include "Platform/Basics/Path.h"
#include "ditto/Diagnostics.h"

#include <cerrno>
#include <string_view>

namespace tarvik::ditto {

/// Why one item could not be copied, in the words of the Mac's tool: "/Volumes/T/song: No space left on device".
/// Its code is the errno value. The tool says so and goes on with the next item.
class ItemError : public Failure {
public:
    ItemError(const fs::path& path, int errorNumber);
    ItemError(const fs::path& path, int errorNumber, std::string_view reason);
};

/// An item of the source has gone since it was listed. The Mac's tool says nothing of it, and ends well.
struct Vanished {};

/// @throws Vanished or ItemError, as `errorNumber` tells. `path` gives the path of the source for a message: it is long
/// where many folders lie above, so it is made only then.
template <typename Path>
[[noreturn]] void failToRead(const Path& path, int errorNumber) {
    if (errorNumber == ENOENT) throw Vanished();
    throw ItemError(path(), errorNumber);
}

/// Takes a step on one item; says why when it cannot be done. @returns whether it was done.
template <typename Step>
bool triesToCopy(Diagnostics& diagnostics, const Step& step) {
    try {
        step();
        return true;
    } catch (const ItemError& error) {
        diagnostics.say(error.what());
    } catch (const Vanished&) {
        return false;
    }
    return false;
}

}  // namespace tarvik::ditto
