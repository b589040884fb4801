#include "Signatures/SignatureFailure.h"
#include "codesign/Arguments.h"
#include "codesign/Display.h"
#include "codesign/Signing.h"
#include "codesign/Verification.h"

#include <cstdio>
#include <exception>
#include <string>
#include <string_view>
#include <vector>

namespace {

using tarvik::codesign::Arguments;

constexpr int failed = 1;
constexpr int wrongUsage = 2;

/// All that the tool says goes to standard error.
void say(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stderr);
}

void verify(const std::string& path, const Arguments& arguments) {
    tarvik::codesign::Verification::verify(path, {.isDeep = arguments.isDeep, .isStrict = arguments.isStrict});
    if (arguments.verbosity > 0) say(path + ": valid on disk\n" + path + ": satisfies its Designated Requirement\n");
}

void sign(const std::string& path, const Arguments& arguments) {
    if (arguments.identity != "-") throw tarvik::signatures::SignatureFailure(arguments.identity, "no identity found");
    if (tarvik::codesign::Signing::sign(path, {.isForced = arguments.isForced, .isDeep = arguments.isDeep}))
        say(path + ": replacing existing signature\n");
}

int act(const std::string& path, const Arguments& arguments) {
    try {
        switch (arguments.operation) {
            case Arguments::Operation::verify:
                verify(path, arguments);
                break;
            case Arguments::Operation::display:
                say(tarvik::codesign::Display::describe(path, arguments.verbosity));
                break;
            case Arguments::Operation::sign:
                sign(path, arguments);
                break;
        }
        return 0;
    } catch (const tarvik::signatures::SignatureFailure& failure) {
        say(failure.description() + "\n");
    } catch (const std::exception& failure) {
        say(path + ": " + failure.what() + "\n");
    }
    return failed;
}

}  // namespace

/// Signs bundles ad hoc, verifies them and describes their signatures, as codesign(1) of a Mac does:
///
///     codesign --sign - [--force] [--deep] [--timestamp=none] PATH...
///     codesign --verify [--deep] [--strict] [-v] PATH...
///     codesign -d [-v...] PATH...
///
/// What it does not: sign with an identity, check requirements, look into Mach-O programs, sign a file that is no
/// bundle, or list all that it has looked at when it is told to be very verbose. Their bundles and files fail.
int main(int argc, char** argv) {
    const auto arguments = Arguments::parsed({argv + 1, argv + argc});
    if (!arguments) {
        say("Usage: codesign -s identity [-fv] [--deep] path ... # sign\n"
            "       codesign -v [-v] [--deep] [--strict] path ... # verify\n"
            "       codesign -d [-v] path ... # display\n");
        return wrongUsage;
    }
    int status = 0;
    for (const std::string& path : arguments->paths)
        if (const int one = act(path, *arguments)) status = one;
    return status;
}
