#include "Applications/AppChoice.h"

#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/WrittenPath.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

namespace tarvik::AppChoice {

namespace {

enum Code { noneFits = 1, severalFit };

using Choices = std::vector<const AppEntry*>;

constexpr std::string_view bundleExtension = ".app";
/// More names than these help nobody to find the right one.
constexpr std::size_t mostShown = 5;

Failure failure(Code code, std::string description) {
    return {"AppChoice", code, std::move(description)};
}

std::string listOf(const Choices& entries) {
    std::vector<std::string> texts;
    for (const auto* entry : entries) {
        if (texts.size() == mostShown) break;
        texts.push_back(fmt::format("{} ({})", entry->name, entry->bundlePath.native()));
    }
    const auto rest = entries.size() - texts.size();
    return fmt::format("{}{}", fmt::join(texts, ", "), rest > 0 ? fmt::format(" and {} more", rest) : "");
}

template <typename Fits>
Choices choicesOf(const std::vector<AppEntry>& entries, const Fits& fits) {
    Choices choices;
    for (const auto& entry : entries)
        if (fits(entry)) choices.push_back(&entry);
    return choices;
}

/// Whether one of the texts that an application goes by `equals` what is wanted.
template <typename Equals>
bool goesBy(const AppEntry& entry, const Equals& equals) {
    return equals(entry.name) || equals(entry.name + std::string(bundleExtension)) ||
           (entry.bundleIdentifier && equals(*entry.bundleIdentifier)) ||
           equals(entry.bundlePath.filename().native()) || equals(entry.bundlePath.stem().native());
}

/// The same name for a user: case does not count, nor whether an accent is a character of its own.
bool areAlike(std::string_view left, std::string_view right) {
    // Bytes that are no text would all be alike.
    return Text::isValidUtf8(left) && Text::isValidUtf8(right) &&
           (Text::caseFolded(left) == Text::caseFolded(right) || Text::localizedCompare(left, right) == 0);
}

Choices atPath(const std::vector<AppEntry>& entries, std::string_view wanted) {
    const auto written = WrittenPath::meant(wanted);
    auto choices = choicesOf(entries, [&](const AppEntry& entry) { return entry.bundlePath == written; });
    if (!choices.empty()) return choices;

    // Links in the folder are followed, the item itself is not: it may be a link that stands for an application.
    const auto item = Files::info(written);
    if (!item) return {};
    choices = choicesOf(entries,
                        [&](const AppEntry& entry) { return Files::isSameItem(Files::info(entry.bundlePath), item); });
    if (!choices.empty()) return choices;
    const auto target = Files::infoFollowingLinks(written);
    return choicesOf(entries, [&](const AppEntry& entry) {
        return Files::isSameItem(Files::infoFollowingLinks(entry.bundlePath), target);
    });
}

Choices fitting(const std::vector<AppEntry>& entries, std::string_view wanted) {
    const std::string composed = Text::composed(wanted);
    const auto exactly = [&](std::string_view text) { return Text::composed(text) == composed; };
    const auto roughly = [&](std::string_view text) { return areAlike(text, wanted); };
    auto choices = choicesOf(entries, [&](const AppEntry& entry) { return goesBy(entry, exactly); });
    if (choices.empty()) choices = atPath(entries, wanted);
    if (choices.empty()) choices = choicesOf(entries, [&](const AppEntry& entry) { return goesBy(entry, roughly); });
    return choices;
}

/// What a user may have meant by a name that none has.
Choices closeTo(const std::vector<AppEntry>& entries, std::string_view wanted) {
    auto part = Text::trimmed(wanted);
    if (Text::lowerCased(part).ends_with(bundleExtension)) part.resize(part.size() - bundleExtension.size());
    if (part.empty()) return {};
    return choicesOf(entries, [&](const AppEntry& entry) {
        return Text::localizedContains(entry.name, part) ||
               Text::localizedContains(entry.bundlePath.stem().native(), part);
    });
}

}  // namespace

const AppEntry& named(const std::vector<AppEntry>& entries, std::string_view wanted) {
    const auto choices = wanted.empty() ? Choices() : fitting(entries, wanted);
    if (choices.size() == 1) return *choices.front();
    if (choices.size() > 1)
        throw failure(severalFit, fmt::format("More than one application is called \"{}\": {}. Name one by its path.",
                                              wanted, listOf(choices)));

    if (wanted.find('/') != std::string_view::npos)
        throw failure(noneFits, fmt::format("\"{}\" is not the path of an application that can be moved.", wanted));
    const auto close = closeTo(entries, wanted);
    if (close.empty()) throw failure(noneFits, fmt::format("There is no application \"{}\".", wanted));
    throw failure(noneFits, fmt::format("There is no application \"{}\". Close to it: {}.", wanted, listOf(close)));
}

}  // namespace tarvik::AppChoice
