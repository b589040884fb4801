#include "Platform/Files/FileError.h"
#include "Signatures/BundleLayout.h"
#include "Signatures/CodeDirectory.h"
#include "Signatures/SignatureFailure.h"

#include <cerrno>
#include <cstdio>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <vector>

namespace {

namespace signatures = tarvik::signatures;

constexpr int failed = 1;
constexpr int wrongUsage = 2;
constexpr int denied = 3;

struct Arguments {
    bool assesses = false;
    int verbosity = 0;
    std::vector<std::string> paths;
};

bool readLetters(std::string_view letters, Arguments& result) {
    for (const char letter : letters) {
        if (letter != 'a' && letter != 'v') return false;
        if (letter == 'a') result.assesses = true;
        if (letter == 'v') ++result.verbosity;
    }
    return true;
}

std::optional<Arguments> parsed(const std::vector<std::string_view>& words) {
    Arguments result;
    for (const std::string_view word : words) {
        if (word.empty()) return std::nullopt;
        if (word == "--assess") {
            result.assesses = true;
        } else if (word == "--verbose") {
            ++result.verbosity;
        } else if (word.front() != '-') {
            result.paths.emplace_back(word);
        } else if (word.size() < 2 || !readLetters(word.substr(1), result)) {
            return std::nullopt;
        }
    }
    if (!result.assesses || result.paths.empty()) return std::nullopt;
    return result;
}

int assess(const std::string& path, int verbosity) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        std::fprintf(stderr, "%s: %s\n", path.c_str(), tarvik::systemErrorText(errno).c_str());
        return failed;
    }
    try {
        signatures::CodeDirectory::ofBundle(signatures::BundleLayout::at(path));
    } catch (const signatures::SignatureFailure& failure) {
        if (failure.sentence() != signatures::Sentences::notSigned) {
            const bool isBeyondReading = failure.sentence() == signatures::Sentences::unsupported;
            std::fprintf(stderr, "%s: %s\n", path.c_str(),
                         isBeyondReading ? "internal error in Code Signing subsystem" : failure.sentence().c_str());
            return failed;
        }
    }
    std::fprintf(stderr, "%s: rejected\n", path.c_str());
    if (verbosity > 0) std::fputs("source=no usable signature\n", stderr);
    return denied;
}

}  // namespace

/// Judges by whom an item is signed, as a Mac's spctl(8) does: `spctl -a [-v...] PATH...`. Nobody vouches for an item
/// here, so each is rejected, but for one that carries a Mac's own signature: of that, it says that it cannot tell.
/// Ends with the first that is not accepted.
int main(int argc, char** argv) {
    const auto arguments = parsed({argv + 1, argv + argc});
    if (!arguments) {
        std::fputs("Usage: spctl --assess [-v] path ... # assessment\n", stderr);
        return wrongUsage;
    }
    try {
        return assess(arguments->paths.front(), arguments->verbosity);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return failed;
    }
}
