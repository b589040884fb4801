#include "Installers/Inspection/ScriptTrustInspector.h"

#include "Installers/Inspection/NonEmptyLines.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace tarvik::ScriptTrustInspector {

namespace {

constexpr std::int64_t longestScript = 16'000'000;
constexpr std::int64_t linesLookedAt = 40;

constexpr std::array<std::string_view, 7> signsOfPrivilege = {"/Applications/", "/Library/", "/usr/local/", "/private/",
                                                              "sudo ",          "$HOME/.",   "~/."};

std::string scriptText(const fs::path& script) {
    std::string text;
    ignoringFailure([&] { text = Files::read(script, longestScript); });
    return Text::isValidUtf8(text) ? text : std::string();
}

bool namesSystemFolder(std::string_view line) {
    return line.find("/Applications") != line.npos || line.find("/Library") != line.npos;
}

std::string_view withoutBlanksAround(std::string_view line) {
    const auto begin = line.find_first_not_of(" \t");
    if (begin == line.npos) return {};
    return line.substr(begin, line.find_last_not_of(" \t") - begin + 1);
}

}  // namespace

TrustSummary inspect(const fs::path& script) {
    const std::string text = scriptText(script);
    TrustSummary trust;
    trust.status = TrustSummary::untrustedScript;
    trust.hasScripts = !text.empty();
    trust.hasPrivilegedPayload = std::any_of(signsOfPrivilege.begin(), signsOfPrivilege.end(),
                                             [&](std::string_view sign) { return text.find(sign) != text.npos; });
    std::string reference;
    std::int64_t count = 0;
    NonEmptyLines::forEach(text, [&](std::string_view line) {
        if (count == 0) trust.details.emplace_back(line);
        if (count < linesLookedAt && reference.empty() && namesSystemFolder(line))
            reference = fmt::format("References: {}", withoutBlanksAround(line));
        ++count;
    });
    trust.details.push_back(fmt::format("Lines: {}", count));
    if (!reference.empty()) trust.details.push_back(std::move(reference));
    return trust;
}

}  // namespace tarvik::ScriptTrustInspector
