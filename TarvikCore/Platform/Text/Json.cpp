#include "Platform/Text/Json.h"

#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <system_error>
#include <utility>

namespace tarvik {

namespace {

using std::chrono::system_clock;
using FractionalSeconds = std::chrono::duration<double>;

/// Stands before the two digits of a byte that is no valid UTF-8.
constexpr char escape = '\0';

constexpr system_clock::time_point referenceDate = std::chrono::sys_days(std::chrono::year(2001) / 1 / 1);

[[noreturn]] void fail(std::string description) {
    throw Failure("Json", 0, std::move(description));
}

/// The number that all of `digits` make, or nothing when one of them is no digit.
std::optional<int> number(std::string_view digits, int base = 10) {
    int value = 0;
    const auto* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value, base);
    if (error != std::errc() || stop != end || digits.starts_with('-')) return std::nullopt;
    return value;
}

/// The same for digits at a place of `text`, which is known to be long enough, where the number is less than `limit`.
std::optional<int> numberBelow(int limit, std::string_view text, std::size_t position) {
    const auto value = number(text.substr(position, 2));
    return value && *value < limit ? value : std::nullopt;
}

/// What the end of a date, "Z" or "+01:00", says of its distance from UTC.
std::optional<std::chrono::minutes> offsetOf(std::string_view zone) {
    if (zone == "Z") return std::chrono::minutes(0);
    if (zone.size() != 6 || (zone[0] != '+' && zone[0] != '-') || zone[3] != ':') return std::nullopt;
    const auto hours = numberBelow(24, zone, 1);
    const auto minutes = numberBelow(60, zone, 4);
    if (!hours || !minutes) return std::nullopt;
    const std::chrono::minutes distance = std::chrono::hours(*hours) + std::chrono::minutes(*minutes);
    return zone[0] == '+' ? distance : -distance;
}

/// Whether an instant that many seconds from the clock's epoch can be told by the clock.
bool isInClockRange(FractionalSeconds sinceEpoch) {
    constexpr FractionalSeconds oneYear = std::chrono::years(1);
    return FractionalSeconds(system_clock::duration::min()) + oneYear < sinceEpoch &&
           sinceEpoch < FractionalSeconds(system_clock::duration::max()) - oneYear;
}

/// The length of the character that `bytes` begins with, or 0 when those bytes are no valid UTF-8.
std::size_t firstCharacterLength(std::string_view bytes) {
    constexpr std::size_t longest = 4;
    for (std::size_t length = 1; length <= std::min(longest, bytes.size()); ++length)
        if (Text::isValidUtf8(bytes.substr(0, length))) return length;
    return 0;
}

/// Whether lists and objects stand in each other beyond what any record needs. Each level costs the parser memory, and
/// a file of brackets alone would take a hundred times its size.
bool nestsTooDeep(std::string_view text) {
    constexpr int deepest = 128;
    int depth = 0;
    bool isInText = false;
    for (std::size_t position = 0; position < text.size(); ++position) {
        const char character = text[position];
        if (isInText && character == '\\') ++position;
        if (character == '"') isInText = !isInText;
        if (isInText) continue;
        if ((character == '[' || character == '{') && ++depth > deepest) return true;
        if (character == ']' || character == '}') --depth;
    }
    return false;
}

std::string dump(const nlohmann::json& json, int indent) {
    return json.dump(indent, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace

std::optional<nlohmann::json> Json::parsed(std::string_view text) {
    if (nestsTooDeep(text)) return std::nullopt;
    auto json = nlohmann::json::parse(text.begin(), text.end(), nullptr, false);
    if (json.is_discarded()) return std::nullopt;
    return json;
}

std::string Json::pretty(const nlohmann::json& json) {
    return dump(json, 2) + "\n";
}

std::string Json::compact(const nlohmann::json& json) {
    return dump(json, -1);
}

std::string Json::textOfPath(const fs::path& path) {
    std::string_view bytes = path.native();
    if (bytes.find(escape) != bytes.npos) fail("A path holds a NUL character.");
    const auto isAscii = [](char letter) { return static_cast<unsigned char>(letter) < 0x80; };
    if (std::all_of(bytes.begin(), bytes.end(), isAscii)) return std::string(bytes);
    std::string text;
    text.reserve(bytes.size());
    while (!bytes.empty()) {
        const std::size_t length = firstCharacterLength(bytes);
        if (length == 0) {
            text += escape;
            text += fmt::format("{:02x}", static_cast<unsigned char>(bytes.front()));
        } else {
            text += bytes.substr(0, length);
        }
        bytes.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return text;
}

fs::path Json::pathOfText(std::string_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::string_view rest = text; !rest.empty();) {
        const std::size_t length = std::min(rest.find(escape), rest.size());
        bytes += rest.substr(0, length);
        rest.remove_prefix(length);
        if (rest.empty()) break;
        const auto byte = rest.size() < 3 ? std::nullopt : number(rest.substr(1, 2), 16);
        if (byte.value_or(0) == 0) refuse("a path");
        bytes += static_cast<char>(*byte);
        rest.remove_prefix(3);
    }
    // Each path has one text: whatever else would give the same bytes is a damaged one.
    if (textOfPath(bytes) != text) refuse("a path");
    return bytes;
}

std::optional<std::chrono::system_clock::time_point> Json::instantOfIsoDate(std::string_view text) {
    constexpr std::string_view form = "0000-00-00T00:00:00";
    if (text.size() <= form.size()) return std::nullopt;
    for (std::size_t position = 0; position < form.size(); ++position)
        if (form[position] != '0' && text[position] != form[position]) return std::nullopt;
    const auto year = number(text.substr(0, 4));
    const auto month = numberBelow(13, text, 5);
    const auto day = numberBelow(32, text, 8);
    const auto hour = numberBelow(24, text, 11);
    const auto minute = numberBelow(60, text, 14);
    const auto second = numberBelow(60, text, 17);
    const auto offset = offsetOf(text.substr(form.size()));
    if (!year || !month || !day || !hour || !minute || !second || !offset) return std::nullopt;

    const auto date = std::chrono::year(*year) / *month / *day;
    if (!date.ok()) return std::nullopt;
    const auto instant = std::chrono::sys_days(date) + std::chrono::hours(*hour) + std::chrono::minutes(*minute) +
                         std::chrono::seconds(*second) - *offset;
    if (!isInClockRange(instant.time_since_epoch())) return std::nullopt;
    return instant;
}

void Json::writeIsoDate(nlohmann::json& json, const char* key, system_clock::time_point instant) {
    write(json, key, Text::isoDate(instant));
}

void Json::readIsoDate(const nlohmann::json& json, const char* key, system_clock::time_point& instant) {
    const auto read = instantOfIsoDate(decoded<std::string>(member(json, key)));
    if (!read) refuse("a date");
    instant = *read;
}

void Json::writeReferenceDate(nlohmann::json& json, const char* key, system_clock::time_point instant) {
    write(json, key, FractionalSeconds(instant - referenceDate).count());
}

void Json::readReferenceDate(const nlohmann::json& json, const char* key, system_clock::time_point& instant) {
    const FractionalSeconds distance(decoded<double>(member(json, key)));
    if (!isInClockRange(distance + referenceDate.time_since_epoch())) refuse("a date");
    instant = referenceDate + std::chrono::round<system_clock::duration>(distance);
}

const nlohmann::json& Json::member(const nlohmann::json& json, const char* key) {
    if (!json.is_object()) refuse("a record");
    const auto found = json.find(key);
    if (found == json.end()) fail(fmt::format("A record has no \"{}\".", key));
    return *found;
}

const nlohmann::json* Json::optionalMember(const nlohmann::json& json, const char* key) {
    if (!json.is_object()) refuse("a record");
    const auto found = json.find(key);
    return found == json.end() || found->is_null() ? nullptr : &*found;
}

void Json::refuse(std::string_view wanted) {
    fail(fmt::format("A value in a record is not {}.", wanted));
}

}  // namespace tarvik
