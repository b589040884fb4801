#include "mdutil/IndexingState.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

namespace IndexingState = tarvik::mdutil::IndexingState;

/// @returns the exit status
int tell(const std::vector<std::string_view>& volumes) {
    const char* root = std::getenv("TARVIK_ROOT");
    int status = 0;
    for (const std::string_view volume : volumes) {
        const auto state = IndexingState::of(volume, root ? std::optional<tarvik::fs::path>(root) : std::nullopt);
        std::printf("%s:\n\t%s\n", std::string(volume).c_str(), std::string(IndexingState::sentence(state)).c_str());
        if (state == IndexingState::State::unknown) status = 1;
    }
    return status;
}

}  // namespace

/// Tells whether volumes are indexed for the search, as a Mac's mdutil(1) does: `mdutil -s VOLUME...`, of the machine
/// in the folder that the environment variable TARVIK_ROOT names. It changes nothing.
int main(int argc, char** argv) {
    std::vector<std::string_view> words(argv + 1, argv + argc);
    if (words.size() < 2 || words.front() != "-s") {
        std::fputs("Usage: mdutil -s volume ...\n", stderr);
        return 1;
    }
    words.erase(words.begin());
    try {
        return tell(words);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
