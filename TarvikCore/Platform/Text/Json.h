#pragma once

#include "Platform/Basics/Failure.h"
#include "Platform/Basics/Path.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// How records stand in JSON. A record's `to_json` and `from_json` are one line a field:
///
///     void to_json(nlohmann::json& json, const Pet& pet) {
///         Json::write(json, "name", pet.name);
///         Json::write(json, "owner", pet.owner);  // optional: no key at all when it is absent
///     }
///     void from_json(const nlohmann::json& json, Pet& pet) {
///         Json::read(json, "name", pet.name);
///         Json::read(json, "owner", pet.owner);
///     }
///
/// A field may be a text, a truth value, a number, a path, another record, and a list or an optional of these. Reading
/// is strict, so that a damaged file is never taken for a good one: a missing key, and a value of the wrong type (1.5
/// for a whole number, "1" or true for a number), throw a Failure of the domain "Json". Keys that nobody asks for are
/// ignored.
///
/// A path is written as its text. The bytes of a name that is no valid UTF-8 cannot stand in JSON: each is written as
/// the character U+0000, which no path holds, and two lower-case hexadecimal digits, and so comes back as it was.
namespace tarvik::Json {

/// The value of a text, or nothing when the text is no JSON or nests far deeper than any record.
std::optional<nlohmann::json> parsed(std::string_view text);
/// The text of a value for people and programs: indented by two, keys sorted, a line break at the end. Bytes in its
/// texts that are no valid UTF-8 are replaced.
std::string pretty(const nlohmann::json& json);
/// The same without any white space.
std::string compact(const nlohmann::json& json);

/// A path as it stands in JSON, and back. @throws Failure when `text` is none that `textOfPath` makes.
std::string textOfPath(const fs::path& path);
fs::path pathOfText(std::string_view text);

/// The instant that "2026-11-15T17:45:43Z" means, or the same with an offset such as "+01:00"; nothing for other texts.
std::optional<std::chrono::system_clock::time_point> instantOfIsoDate(std::string_view text);

/// A date as ISO 8601 text in UTC. What is below a second is cut off.
void writeIsoDate(nlohmann::json& json, const char* key, std::chrono::system_clock::time_point instant);
void readIsoDate(const nlohmann::json& json, const char* key, std::chrono::system_clock::time_point& instant);
/// A date as a number: the seconds since the beginning of 2001 in UTC. It comes back to the microsecond.
void writeReferenceDate(nlohmann::json& json, const char* key, std::chrono::system_clock::time_point instant);
void readReferenceDate(const nlohmann::json& json, const char* key, std::chrono::system_clock::time_point& instant);

/// The value of a key. @throws Failure when `json` is no object or has no such key.
const nlohmann::json& member(const nlohmann::json& json, const char* key);
/// The value of a key, or null when it is absent or holds null. @throws Failure when `json` is no object.
const nlohmann::json* optionalMember(const nlohmann::json& json, const char* key);
/// Throws the Failure of a value that is not what its reader needs: `wanted` is "a text", "a whole number".
[[noreturn]] void refuse(std::string_view wanted);

template <typename Value>
inline constexpr bool isList = false;
template <typename Element>
inline constexpr bool isList<std::vector<Element>> = true;

/// A value as JSON.
template <typename Value>
nlohmann::json encoded(const Value& value) {
    if constexpr (std::same_as<Value, fs::path>) {
        return textOfPath(value);
    } else if constexpr (isList<Value>) {
        auto list = nlohmann::json::array();
        for (const auto& element : value) list.push_back(encoded(element));
        return list;
    } else {
        return value;
    }
}

/// The value of some JSON. @throws Failure when it is of another type.
template <typename Value>
Value decoded(const nlohmann::json& json) {
    if constexpr (std::same_as<Value, bool>) {
        if (!json.is_boolean()) refuse("true or false");
        return json.get<bool>();
    } else if constexpr (std::integral<Value>) {
        if (!json.is_number_integer()) refuse("a whole number");
        const bool fits = json.is_number_unsigned() ? std::in_range<Value>(json.get<std::uint64_t>())
                                                    : std::in_range<Value>(json.get<std::int64_t>());
        if (!fits) refuse("a whole number in range");
        return json.get<Value>();
    } else if constexpr (std::floating_point<Value>) {
        if (!json.is_number()) refuse("a number");
        return json.get<Value>();
    } else if constexpr (std::same_as<Value, std::string>) {
        if (!json.is_string()) refuse("a text");
        return json.get<std::string>();
    } else if constexpr (std::same_as<Value, fs::path>) {
        return pathOfText(decoded<std::string>(json));
    } else if constexpr (isList<Value>) {
        if (!json.is_array()) refuse("a list");
        Value list;
        list.reserve(json.size());
        for (const auto& element : json) list.push_back(decoded<typename Value::value_type>(element));
        return list;
    } else {
        try {
            return json.get<Value>();
        } catch (const nlohmann::json::exception&) {
            refuse("a record");
        }
    }
}

/// Adds a key to an object, which is made of a value that is still null.
template <typename Value>
void write(nlohmann::json& json, const char* key, const Value& value) {
    json[key] = encoded(value);
}

/// Adds the key only when there is a value.
template <typename Value>
void write(nlohmann::json& json, const char* key, const std::optional<Value>& value) {
    if (json.is_null()) json = nlohmann::json::object();
    if (value) json[key] = encoded(*value);
}

/// Takes a field from the key, which must be there.
template <typename Value>
void read(const nlohmann::json& json, const char* key, Value& value) {
    value = decoded<Value>(member(json, key));
}

/// Takes a field from a key that may be absent or null: the field is empty then. A value of the wrong type still
/// throws.
template <typename Value>
void read(const nlohmann::json& json, const char* key, std::optional<Value>& value) {
    const auto* const found = optionalMember(json, key);
    value = found ? std::optional<Value>(decoded<Value>(*found)) : std::nullopt;
}

/// The record, or the list of records, that a text holds; nothing when the text is no JSON or holds something else.
template <typename Value>
std::optional<Value> parsedAs(std::string_view text) {
    const auto json = parsed(text);
    if (!json) return std::nullopt;
    try {
        return decoded<Value>(*json);
    } catch (const Failure&) {
        return std::nullopt;
    }
}

}  // namespace tarvik::Json
