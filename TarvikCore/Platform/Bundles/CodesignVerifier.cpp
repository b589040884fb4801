#include "Platform/Bundles/CodesignVerifier.h"

#include "Platform/Processes/CommandRunner.h"
#include "Platform/Text/Text.h"

#include <string_view>

namespace tarvik::CodesignVerifier {

namespace {

bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

std::string printedBy(const CommandResult& result) {
    return Text::trimmed(result.stdout + result.stderr);
}

/// The ticket tool names what it looks at in a first line. When it fails without another one, it found nothing to say.
bool isOnlyProcessingLine(std::string_view detail) {
    int lines = 0;
    bool namesItem = false;
    for (const std::string_view each : Text::lines(detail)) {
        const std::string line = Text::trimmed(each);
        if (line.empty()) continue;
        ++lines;
        namesItem = line.starts_with("Processing:");
    }
    return lines == 1 && namesItem;
}

std::optional<bool> judgementOf(const CommandResult& stapler, std::string_view detail) {
    if (contains(detail, "does not have a ticket") || contains(detail, "does not contain")) return std::nullopt;
    if (stapler.status == 0) return true;
    return isOnlyProcessingLine(detail) ? std::nullopt : std::optional(false);
}

}  // namespace

Result verify(const Host& host, const fs::path& bundle, std::chrono::duration<double> limit,
              const Cancellation& cancellation) {
    const auto& path = bundle.native();
    const CommandRunner::Bounds bounds{limit, cancellation};
    const auto display = CommandRunner::ask(host.tools.codesign, {"-dv", path}, bounds);
    const auto codesign = CommandRunner::ask(host.tools.codesign, {"--verify", "--deep", "--strict", path}, bounds);
    const auto stapler = CommandRunner::ask(host.tools.xcrun, {"stapler", "validate", path}, bounds);
    if (codesign.timedOut || stapler.timedOut)
        return {.isSigned = false, .codesignOK = true, .codesignDetail = "verification timed out", .isUnknown = true};

    Result result{.isSigned = display.succeeded(),
                  .codesignOK = codesign.status == 0,
                  .codesignDetail = printedBy(codesign),
                  .staplerDetail = printedBy(stapler),
                  .isUnknown = display.timedOut};
    result.staplerOK = judgementOf(stapler, result.staplerDetail);
    return result;
}

}  // namespace tarvik::CodesignVerifier
