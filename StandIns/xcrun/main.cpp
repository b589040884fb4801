#include "Platform/Files/Files.h"
#include "Platform/Files/LastComponent.h"
#include "Signatures/SignatureFailure.h"
#include "xcrun/Ticket.h"

#include <cstdio>
#include <exception>
#include <string>
#include <string_view>
#include <sysexits.h>
#include <vector>

namespace {

int validate(const std::string& path) {
    const std::string name = tarvik::lastComponent(path);
    std::printf("Processing: %s\n", tarvik::Files::standardized(path).c_str());
    switch (tarvik::xcrun::Ticket::stateOf(path)) {
        case tarvik::xcrun::Ticket::State::none:
            std::printf("%s does not have a ticket stapled to it.\n", name.c_str());
            return EX_DATAERR;
        case tarvik::xcrun::Ticket::State::doesNotFit:
            std::printf("Could not validate ticket for %s\nThe validate action failed! Error %d.\n", name.c_str(),
                        EX_DATAERR);
            return EX_DATAERR;
        case tarvik::xcrun::Ticket::State::fits:
            std::puts("The validate action worked!");
            return EX_OK;
    }
    return EX_SOFTWARE;
}

}  // namespace

/// Validates the notary's ticket of a bundle as far as the bundle alone tells: `xcrun stapler validate PATH`, the only
/// one of the developer's tools that it knows. Exit statuses as in stapler(1), which takes them from sysexits(3); the
/// words, which that leaves open, from published sessions.
int main(int argc, char** argv) {
    const std::vector<std::string_view> words(argv + 1, argv + argc);
    if (words.empty() || words[0] != "stapler") {
        std::fputs("xcrun: error: unable to find utility, not a developer tool or in PATH\n", stderr);
        return 72;  // As the Mac's: EX_OSFILE.
    }
    if (words.size() != 3 || words[1] != "validate" || words[2].empty()) {
        std::fputs("Usage: stapler validate path\n", stderr);
        return EX_USAGE;
    }
    const std::string path(words[2]);
    try {
        return validate(path);
    } catch (const tarvik::signatures::SignatureFailure& failure) {
        std::printf("%s\n", failure.what());
        return tarvik::Files::exists(path) ? EX_DATAERR : EX_NOINPUT;
    } catch (const std::exception& failure) {
        std::printf("%s: %s\n", path.c_str(), failure.what());
        return EX_SOFTWARE;
    }
}
