#include "Installers/Inspection/PackageTrustInspector.h"

#include "Installers/Inspection/NonEmptyLines.h"
#include "Platform/Processes/CommandRunner.h"
#include "Platform/Text/Text.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tarvik::PackageTrustInspector {

namespace {

using namespace std::chrono_literals;

// In bytes: what a tool says of a hostile package must not fill the memory. Real answers are a thousandth of it.
constexpr std::size_t mostSignatureText = 2'000'000;
constexpr std::size_t mostListingText = 32'000'000;

constexpr std::array<std::string_view, 4> privilegedPlaces = {"Library/LaunchDaemons", "Library/PrivilegedHelperTools",
                                                              "Library/SystemExtensions", "Library/Extensions"};

/// A plain search for the words, since the sentences around them differ between systems. "untrusted" holds one of them
/// too: that is why users are shown all that the tool says.
bool tellTrust(const std::vector<std::string>& lines) {
    return std::any_of(lines.begin(), lines.end(), [](const std::string& line) {
        const std::string lower = Text::lowerCased(line);
        return lower.find("status: signed") != lower.npos || lower.find("trusted") != lower.npos;
    });
}

/// The names in the archive that a flat package is, a line each; none for a package that is a folder.
std::string listingOf(const Host& host, const fs::path& package) {
    const auto answer =
        CommandRunner::ask(host.tools.xar, {"-tf", package.native()}, {.limit = 30s, .mostOutput = mostListingText});
    return answer.succeeded() ? answer.stdout : std::string();
}

bool isPrivileged(std::string_view entry) {
    return std::any_of(privilegedPlaces.begin(), privilegedPlaces.end(),
                       [&](std::string_view place) { return entry.find(place) != entry.npos; });
}

bool isOfScripts(std::string_view entry) {
    return entry == "Scripts" || entry.ends_with("/Scripts") || entry.find("/Scripts/") != entry.npos;
}

}  // namespace

TrustSummary inspect(const Host& host, const fs::path& package) {
    TrustSummary trust;
    // Only the words count: the status tells apart no more than they do, and what was said in time was said.
    const auto answer = CommandRunner::ask(host.tools.pkgutil, {"--check-signature", package.native()},
                                           {.limit = 15s, .mostOutput = mostSignatureText});
    NonEmptyLines::forEach(answer.stdout + answer.stderr,
                           [&](std::string_view line) { trust.details.emplace_back(line); });
    trust.status = tellTrust(trust.details) ? TrustSummary::trusted : TrustSummary::untrusted;
    NonEmptyLines::forEach(listingOf(host, package), [&](std::string_view entry) {
        trust.hasPrivilegedPayload = trust.hasPrivilegedPayload || isPrivileged(entry);
        trust.hasScripts = trust.hasScripts || isOfScripts(entry);
    });
    return trust;
}

}  // namespace tarvik::PackageTrustInspector
