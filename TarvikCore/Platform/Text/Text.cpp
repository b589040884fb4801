#include "Platform/Text/Text.h"

#include "Platform/Text/UnicodeFailure.h"
#include "Platform/Text/UserCollation.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <unicode/brkiter.h>
#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/utext.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <memory>

namespace tarvik {

namespace {

constexpr std::string_view replacementCharacter = "\xEF\xBF\xBD";
/// The one pair of ASCII bytes that a user sees as one character.
constexpr std::string_view lineBreakPair = "\r\n";

/// The number of leading bytes that are ASCII, found eight at a time.
std::size_t asciiPrefix(std::string_view text) {
    constexpr std::uint64_t highBits = 0x8080808080808080U;
    std::size_t position = 0;
    for (std::uint64_t word = 0; position + sizeof word <= text.size(); position += sizeof word) {
        std::memcpy(&word, text.data() + position, sizeof word);
        if ((word & highBits) != 0) break;
    }
    while (position < text.size() && static_cast<unsigned char>(text[position]) < 0x80) ++position;
    return position;
}

bool isAscii(std::string_view text) {
    return asciiPrefix(text) == text.size();
}

struct CodePoint {
    UChar32 value = U_SENTINEL;
    std::size_t length = 0;
};

/// The well-formed code point at the beginning of `text`; its length is 0 when there is none.
CodePoint firstCodePoint(std::string_view text) {
    constexpr std::size_t longest = 4;
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    const auto size = static_cast<std::int32_t>(std::min(text.size(), longest));
    if (size == 0) return {};
    std::int32_t position = 0;
    UChar32 value = U_SENTINEL;
    U8_NEXT(bytes, position, size, value);
    return value < 0 ? CodePoint{} : CodePoint{value, static_cast<std::size_t>(position)};
}

/// The well-formed code point that ends where `text` ends.
CodePoint lastCodePoint(std::string_view text) {
    constexpr std::size_t longest = 4;
    for (std::size_t length = 1; length <= std::min(text.size(), longest); ++length) {
        const CodePoint candidate = firstCodePoint(text.substr(text.size() - length));
        if (candidate.length == length) return candidate;
    }
    return {};
}

bool isWhiteSpace(const CodePoint& codePoint) {
    return codePoint.length > 0 && u_isUWhiteSpace(codePoint.value);
}

/// The length of the longest beginning that is valid UTF-8.
std::size_t validPrefix(std::string_view bytes) {
    std::size_t position = 0;
    for (;;) {
        position += asciiPrefix(bytes.substr(position));
        const CodePoint next = firstCodePoint(bytes.substr(position));
        if (next.length == 0) return position;
        position += next.length;
    }
}

std::string lowerCasedAscii(std::string_view text) {
    std::string lower(text);
    for (char& letter : lower)
        if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
    return lower;
}

/// `text` itself when it is valid, else its displayable form, kept in `storage`.
std::string_view valid(std::string_view text, std::string& storage) {
    if (Text::isValidUtf8(text)) return text;
    storage = Text::displayable(text);
    return storage;
}

/// This thread's iterator over characters, set to the beginning of `text`, which is valid and outlives its use.
icu::BreakIterator& charactersOf(std::string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    thread_local const std::unique_ptr<icu::BreakIterator> iterator(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    throwUnicodeFailure(iterator ? status : U_MISSING_RESOURCE_ERROR);  // It failed in an earlier call.
    UText view = UTEXT_INITIALIZER;
    utext_openUTF8(&view, text.data(), static_cast<std::int64_t>(text.size()), &status);
    iterator->setText(&view, status);
    utext_close(&view);
    throwUnicodeFailure(status);
    return *iterator;
}

std::string groupedThousands(std::uint64_t number) {
    constexpr std::size_t group = 3;
    std::string digits = fmt::to_string(number);
    for (std::size_t end = digits.size(); end > group;) digits.insert(end -= group, 1, ',');
    return digits;
}

struct SizeUnit {
    std::string_view name;
    std::uint64_t bytes;
    /// How many bytes the last decimal place stands for.
    std::uint64_t step;
    int decimals;
};

constexpr std::array<SizeUnit, 3> sizeUnits = {{
    {"KB", 1'000, 1'000, 0},
    {"MB", 1'000'000, 100'000, 1},
    {"GB", 1'000'000'000, 10'000'000, 2},
}};

std::string byteCountIn(const SizeUnit& unit, std::uint64_t steps) {
    const std::uint64_t stepsInUnit = unit.bytes / unit.step;
    std::string number = groupedThousands(steps / stepsInUnit);
    if (steps % stepsInUnit != 0) {
        number += fmt::format(".{:0{}}", steps % stepsInUnit, unit.decimals);
        number.erase(number.find_last_not_of('0') + 1);
    }
    return fmt::format("{} {}", number, unit.name);
}

std::string magnitudeText(std::uint64_t bytes) {
    if (bytes == 0) return "Zero KB";
    bytes = std::max(bytes, sizeUnits.front().bytes);
    for (const auto& unit : sizeUnits) {
        const std::uint64_t steps = bytes / unit.step + (bytes % unit.step >= unit.step / 2 ? 1 : 0);
        // What rounds to 1000 of a unit is 1 of the next.
        const bool fits = steps < 1'000 * (unit.bytes / unit.step);
        if (fits || &unit == &sizeUnits.back()) return byteCountIn(unit, steps);
    }
    return {};
}

struct CivilTime {
    explicit CivilTime(std::chrono::system_clock::time_point instant) {
        using namespace std::chrono;
        const auto midnight = floor<days>(instant);
        const year_month_day date(midnight);
        const hh_mm_ss clock(floor<seconds>(instant) - midnight);
        day = fmt::format("{:04}-{:02}-{:02}", int(date.year()), unsigned(date.month()), unsigned(date.day()));
        time =
            fmt::format("{:02}:{:02}:{:02}", clock.hours().count(), clock.minutes().count(), clock.seconds().count());
    }

    std::string day;
    std::string time;
};

}  // namespace

std::string Text::trimmed(std::string_view text) {
    for (auto first = firstCodePoint(text); isWhiteSpace(first); first = firstCodePoint(text))
        text.remove_prefix(first.length);
    for (auto last = lastCodePoint(text); isWhiteSpace(last); last = lastCodePoint(text))
        text.remove_suffix(last.length);
    return std::string(text);
}

bool Text::isValidUtf8(std::string_view bytes) {
    return validPrefix(bytes) == bytes.size();
}

std::optional<std::string> Text::fromUtf16(std::string_view bytes, std::endian order) {
    if (bytes.size() % 2 != 0) return std::nullopt;
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(bytes[at]); };
    std::u16string units;
    units.reserve(bytes.size() / 2);
    for (std::size_t at = 0; at < bytes.size(); at += 2) {
        const bool isLittle = order == std::endian::little;
        units += static_cast<char16_t>(byte(isLittle ? at + 1 : at) << 8 | byte(isLittle ? at : at + 1));
    }
    std::string text;
    text.reserve(units.size());
    for (std::size_t at = 0; at < units.size();) {
        UChar32 value = U_SENTINEL;
        U16_NEXT(units, at, units.size(), value);
        if (U_IS_SURROGATE(value)) return std::nullopt;  // Half a pair.
        std::array<char, U8_MAX_LENGTH> encoded{};
        std::size_t length = 0;
        U8_APPEND_UNSAFE(encoded, length, value);
        text.append(encoded.data(), length);
    }
    return text;
}

std::string Text::displayable(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size());
    for (;;) {
        const std::size_t length = validPrefix(bytes);
        text += bytes.substr(0, length);
        bytes.remove_prefix(length);
        if (bytes.empty()) return text;
        text += replacementCharacter;
        bytes.remove_prefix(1);
    }
}

std::vector<std::string_view> Text::lines(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        lines.push_back(text.substr(0, text.find('\n')));
        text.remove_prefix(std::min(lines.back().size() + 1, text.size()));
    }
    return lines;
}

std::string Text::replacing(std::string_view text, std::string_view wanted, std::string_view replacement) {
    std::string result;
    for (std::size_t place = 0; !wanted.empty() && (place = text.find(wanted)) != text.npos;) {
        result.append(text.substr(0, place)).append(replacement);
        text.remove_prefix(place + wanted.size());
    }
    return result.append(text);
}

std::string Text::listed(const std::vector<std::string>& names, std::size_t most) {
    const auto shown = std::min(names.size(), most);
    const auto end = names.begin() + static_cast<std::ptrdiff_t>(shown);
    std::string text = fmt::format("{}", fmt::join(names.begin(), end, ", "));
    if (names.size() > shown) text += fmt::format(" and {} more", names.size() - shown);
    return text;
}

std::int64_t Text::characterCount(std::string_view text) {
    if (isAscii(text)) {
        auto count = static_cast<std::int64_t>(text.size());
        for (auto pair = text.find(lineBreakPair); pair != text.npos; pair = text.find(lineBreakPair, pair + 2))
            --count;
        return count;
    }
    std::string storage;
    auto& characters = charactersOf(valid(text, storage));
    std::int64_t count = 0;
    while (characters.next() != icu::BreakIterator::DONE) ++count;
    return count;
}

std::string Text::firstCharacters(std::string_view text, std::int64_t count) {
    std::string storage;
    text = valid(text, storage);
    return std::string(text.substr(0, text.size() - droppingCharacters(text, count).size()));
}

std::string Text::droppingCharacters(std::string_view text, std::int64_t count) {
    std::string storage;
    text = valid(text, storage);
    if (isAscii(text)) {
        for (; count > 0 && !text.empty(); --count)
            text.remove_prefix(text.starts_with(lineBreakPair) ? lineBreakPair.size() : 1);
        return std::string(text);
    }
    auto& characters = charactersOf(text);
    for (; count > 0; --count)
        if (characters.next() == icu::BreakIterator::DONE) return {};
    return std::string(text.substr(static_cast<std::size_t>(characters.current())));
}

std::string Text::caseFolded(std::string_view text) {
    if (isAscii(text)) return lowerCasedAscii(text);
    std::string folded;
    std::string storage;
    text = valid(text, storage);
    icu::StringByteSink<std::string> sink(&folded);
    UErrorCode status = U_ZERO_ERROR;
    icu::CaseMap::utf8Fold(U_FOLD_CASE_DEFAULT, icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())),
                           sink, nullptr, status);
    throwUnicodeFailure(status);
    return folded;
}

std::string Text::composed(std::string_view text) {
    if (isAscii(text) || !isValidUtf8(text)) return std::string(text);
    std::string result;
    icu::StringByteSink<std::string> sink(&result);
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* const composer = icu::Normalizer2::getNFCInstance(status);
    throwUnicodeFailure(status);
    composer->normalizeUTF8(0, icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())), sink, nullptr,
                            status);
    throwUnicodeFailure(status);
    return result;
}

std::string Text::nameKey(std::string_view name) {
    if (isAscii(name)) return lowerCasedAscii(name);
    return isValidUtf8(name) ? composed(caseFolded(composed(name))) : std::string(name);
}

std::string Text::upperCased(std::string_view text) {
    std::string storage;
    text = valid(text, storage);
    std::string upper;
    icu::StringByteSink<std::string> sink(&upper);
    UErrorCode status = U_ZERO_ERROR;
    icu::CaseMap::utf8ToUpper("", 0, icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())), sink,
                              nullptr, status);
    throwUnicodeFailure(status);
    return upper;
}

std::string Text::lowerCased(std::string_view text) {
    if (isAscii(text)) return lowerCasedAscii(text);
    std::string lower;
    for (;;) {
        const std::string_view piece = text.substr(0, validPrefix(text));
        icu::StringByteSink<std::string> sink(&lower);
        UErrorCode status = U_ZERO_ERROR;
        icu::CaseMap::utf8ToLower("", 0, icu::StringPiece(piece.data(), static_cast<std::int32_t>(piece.size())), sink,
                                  nullptr, status);
        throwUnicodeFailure(status);
        text.remove_prefix(piece.size());
        if (text.empty()) return lower;
        lower += text.front();
        text.remove_prefix(1);
    }
}

bool Text::localizedContains(std::string_view text, std::string_view needle) {
    std::string textStorage;
    std::string needleStorage;
    return UserCollation::contains(valid(text, textStorage), valid(needle, needleStorage));
}

int Text::localizedCompare(std::string_view left, std::string_view right) {
    std::string leftStorage;
    std::string rightStorage;
    return UserCollation::compare(valid(left, leftStorage), valid(right, rightStorage));
}

std::string Text::byteCount(std::int64_t bytes) {
    if (bytes >= 0) return magnitudeText(static_cast<std::uint64_t>(bytes));
    return fmt::format("-{}", magnitudeText(0 - static_cast<std::uint64_t>(bytes)));
}

std::string Text::date(std::chrono::system_clock::time_point instant) {
    const CivilTime civil(instant);
    return fmt::format("{} {} +0000", civil.day, civil.time);
}

std::string Text::isoDate(std::chrono::system_clock::time_point instant) {
    const CivilTime civil(instant);
    return fmt::format("{}T{}Z", civil.day, civil.time);
}

std::string Text::counted(std::int64_t count, std::string_view singular) {
    return fmt::format("{} {}{}", count, singular, count == 1 ? "" : "s");
}

}  // namespace tarvik
