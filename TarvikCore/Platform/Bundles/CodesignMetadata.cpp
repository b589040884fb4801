#include "Platform/Bundles/CodesignMetadata.h"

#include "Platform/Processes/CommandRunner.h"
#include "Platform/Text/Text.h"

#include <array>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace tarvik::CodesignMetadata {

namespace {

constexpr const char* unknown = "Unknown";

/// What a tool answers: both tools do so on standard error. Empty when it could not be launched, nothing when it was
/// stopped at its limit.
std::optional<std::string> answerOf(const fs::path& tool, const std::vector<std::string>& arguments, Limit limit) {
    auto result = CommandRunner::run(tool, arguments, limit);
    if (result.timedOut) return std::nullopt;
    return result.status == CommandResult::notLaunched ? std::string() : std::move(result.stderr);
}

}  // namespace

std::string teamName(const Host& host, const fs::path& path, Limit limit) {
    constexpr std::string_view developer = "Authority=Developer ID Application: ";
    constexpr std::string_view store = "Authority=Apple Mac OS Application Signing";
    const auto answer = answerOf(host.tools.codesign, {"-dvv", path.native()}, limit);
    if (!answer) return unknown;
    for (const std::string_view line : Text::lines(*answer)) {
        if (line.starts_with(developer)) {
            const std::string_view name = line.substr(developer.size());
            return Text::trimmed(name.substr(0, name.find('(')));
        }
        if (line.starts_with(store)) return "Apple (Mac App Store)";
    }
    return "Unsigned / Ad-hoc";
}

std::string notarizationStatus(const Host& host, const fs::path& path, Limit limit) {
    using Meaning = std::pair<std::string_view, std::string_view>;
    constexpr std::array<Meaning, 4> meanings = {{{"source=Notarized Developer ID", "Notarized"},
                                                  {"source=Mac App Store", "Mac App Store"},
                                                  {"rejected", "Not signed"},
                                                  {"accepted", "Accepted"}}};
    const auto answer = answerOf(host.tools.spctl, {"-a", "-vv", path.native()}, limit);
    if (!answer) return unknown;
    for (const auto& [found, meaning] : meanings)
        if (answer->find(found) != std::string::npos) return std::string(meaning);
    return unknown;
}

}  // namespace tarvik::CodesignMetadata
