#include "Platform/Storage/APFSSnapshotService.h"

#include "Platform/Files/Files.h"
#include "Platform/Processes/CommandRunner.h"
#include "Platform/Text/LocalTime.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

namespace tarvik::APFSSnapshotService {

namespace {

constexpr std::string_view namePrefix = "com.apple.TimeMachine";

/// The pieces of `text` between each two full stops.
std::vector<std::string_view> piecesOf(std::string_view text) {
    std::vector<std::string_view> pieces;
    for (;;) {
        const std::size_t end = text.find('.');
        pieces.push_back(text.substr(0, end));
        if (end == text.npos) return pieces;
        text.remove_prefix(end + 1);
    }
}

std::optional<Snapshot> snapshotIn(std::string_view output) {
    constexpr std::string_view mark = "date: ";
    for (const auto line : Text::lines(output)) {
        const std::size_t found = line.find(mark);
        if (found == line.npos) continue;
        const std::string date = Text::trimmed(line.substr(found + mark.size()));
        return Snapshot{fmt::format("{}.{}.local", namePrefix, date), timestamp(date)};
    }
    return std::nullopt;
}

bool hasForm(std::string_view text, std::string_view form) {
    const auto fits = [](char character, char wanted) {
        return wanted == '0' ? character >= '0' && character <= '9' : character == wanted;
    };
    return text.size() == form.size() && std::equal(text.begin(), text.end(), form.begin(), fits);
}

}  // namespace

bool isSupported(const Host& host) {
    return Files::exists(host.tools.tmutil);
}

CreateResult create(const Host& host, const std::optional<std::string>& /*label*/) {
    if (!isSupported(host)) return {.stderr = "tmutil not present"};
    auto result = CommandRunner::run(host.tools.tmutil, {"localsnapshot"});
    return {snapshotIn(result.stdout), std::move(result.stdout), std::move(result.stderr), result.succeeded()};
}

std::vector<Snapshot> list(const Host& host) {
    if (!isSupported(host)) return {};
    const auto result = CommandRunner::run(host.tools.tmutil, {"listlocalsnapshots", "/"});
    std::vector<Snapshot> snapshots;
    for (const auto line : Text::lines(result.stdout))
        if (line.find(namePrefix) != line.npos) snapshots.push_back({std::string(line), timestamp(line)});
    return snapshots;
}

std::optional<std::chrono::system_clock::time_point> timestamp(std::string_view text) {
    constexpr std::int64_t longest = 19;
    const auto pieces = piecesOf(text);
    const auto dated = std::find_if(pieces.begin(), pieces.end(), [](std::string_view piece) {
        return piece.find('-') != piece.npos && Text::characterCount(piece) >= longest;
    });
    const std::string date = Text::firstCharacters(dated == pieces.end() ? text : *dated, longest);
    if (!hasForm(date, "0000-00-00-000000")) return std::nullopt;
    const auto number = [&](std::size_t position, std::size_t length) {
        int value = 0;
        std::from_chars(date.data() + position, date.data() + position + length, value);
        return value;
    };
    return LocalTime::instantOf(
        {number(0, 4), number(5, 2), number(8, 2), number(11, 2), number(13, 2), number(15, 2)});
}

}  // namespace tarvik::APFSSnapshotService
