#include "Platform/Files/ClashNames.h"

#include <algorithm>

namespace tarvik::ClashNames {

namespace {

// What comes after a later "." is more likely a sentence than an extension.
constexpr std::size_t longestExtension = 32;

/// The first bytes of `text`, `limit` at most, without a character that would lose its end.
std::string_view cut(std::string_view text, std::size_t limit) {
    if (text.size() <= limit) return text;
    const auto continues = [&](std::size_t at) { return (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80U; };
    std::size_t end = limit;
    // A character has at most three bytes after its first; more of them are no UTF-8, and any place is good.
    for (int step = 0; step < 3 && end > 0 && continues(end); ++step) --end;
    return text.substr(0, continues(end) ? limit : end);
}

}  // namespace

std::string numbered(std::string_view name, int number, char separator, std::size_t limit) {
    const std::size_t dot = name.find_last_of('.');
    const bool hasExtension = dot != std::string_view::npos && dot > 0 && name.size() - dot <= longestExtension;
    const std::string_view extension = hasExtension ? name.substr(dot) : std::string_view{};
    const std::string_view stem = name.substr(0, name.size() - extension.size());

    const std::string mark = number > 1 ? separator + std::to_string(number) : std::string{};
    const std::size_t tail = mark.size() + extension.size();
    if (tail >= limit) return std::string(cut(stem, limit - std::min(limit, mark.size()))) + mark;
    return std::string(cut(stem, limit - tail)) + mark + std::string(extension);
}

std::string suffixed(std::string_view name, std::string_view suffix, std::size_t limit) {
    return std::string(cut(name, limit - std::min(limit, suffix.size()))) + std::string(suffix);
}

}  // namespace tarvik::ClashNames
