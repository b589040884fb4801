#include "Uninstall/PackageReceipts.h"

#include "AppData/DataName.h"
#include "Platform/Processes/CommandRunner.h"

#include <algorithm>
#include <limits>

namespace tarvik::PackageReceipts {

namespace {

/// In bytes; it is asked for one identifier.
constexpr std::size_t mostAnswer = 1'000'000;
/// How many bytes of the last character a cut answer may lack.
constexpr std::size_t longestCharacter = 4;

/// Identifiers are names of files in the receipts' folder, and have no blanks.
bool isIdentifier(std::string_view line) {
    return DataName::isOneComponent(line) && line.find(' ') == line.npos;
}

}  // namespace

std::vector<std::string> named(const Host& host, const std::string& identifier, const Cancellation& cancellation) {
    const auto result = CommandRunner::ask(
        host.tools.pkgutil, {"--pkgs=" + patternOf(identifier)},
        {.limit = std::chrono::duration<double>::max(), .cancellation = cancellation, .mostOutput = mostAnswer});
    std::vector<std::string> identifiers;
    if (!result.succeeded()) return identifiers;
    const bool isCut = result.stdout.size() + longestCharacter > mostAnswer;
    std::string_view rest = result.stdout;
    while (!rest.empty()) {
        const auto end = rest.find('\n');
        const std::string_view line = rest.substr(0, end);
        const bool isWhole = end != rest.npos || !isCut;
        if (isWhole && isIdentifier(line)) identifiers.emplace_back(line);
        rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    }
    return identifiers;
}

std::string patternOf(std::string_view text) {
    std::string pattern;
    for (const char character : text) {
        if (std::string_view(R"(.[\()*+?{|^$)").find(character) != std::string_view::npos) pattern += '\\';
        pattern += character;
    }
    return pattern;
}

}  // namespace tarvik::PackageReceipts
