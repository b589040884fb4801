#pragma once

#include "Platform/Basics/Path.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace tarvik {

/// A value of a property list, the format in which a Mac's bundles and tools describe things. A new one is an empty
/// dictionary. Texts are UTF-8, dates are read and written in whole seconds.
class PropertyList {
public:
    struct Data {
        std::string bytes;

        bool operator==(const Data&) const = default;
    };
    using Date = std::chrono::system_clock::time_point;
    using List = std::vector<PropertyList>;
    using Dictionary = std::map<std::string, PropertyList, std::less<>>;

    PropertyList() = default;
    PropertyList(bool value) : m_value(value) {}
    PropertyList(std::int64_t value) : m_value(value) {}
    PropertyList(int value) : m_value(std::int64_t{value}) {}
    PropertyList(double value) : m_value(value) {}
    PropertyList(std::string value) : m_value(std::move(value)) {}
    PropertyList(const char* value) : m_value(std::string(value)) {}
    PropertyList(Data value) : m_value(std::move(value)) {}
    PropertyList(Date value) : m_value(value) {}
    PropertyList(List value) : m_value(std::move(value)) {}
    PropertyList(Dictionary value) : m_value(std::move(value)) {}

    /// What the bytes hold, in the XML or the binary form; nothing when they hold no property list, nest deeper than
    /// any reader needs, or stand for more than memory should hold. XML may be UTF-8 or, with a byte order mark,
    /// UTF-16. Never throws. An integer that needs 64 bits without
    /// sign becomes a real number, an archive's reference the dictionary that stands for it in XML.
    static std::optional<PropertyList> parsed(std::string_view bytes);
    /// What a file holds, links followed; nothing when it is no ordinary file, cannot be read, is larger than 32 MB, or
    /// is no property list. Never waits for a pipe or a device.
    static std::optional<PropertyList> at(const fs::path& file);
    /// The dictionary in a file; an empty one where `at` gives nothing or another type.
    static PropertyList dictionaryAt(const fs::path& file);

    /// The value as the type asked for, or null when it is of another one.
    template <typename Value>
    const Value* as() const {
        return std::get_if<Value>(&m_value);
    }
    /// What this dictionary holds under the key; null when there is none, or this is no dictionary.
    const PropertyList* find(std::string_view key) const;
    /// The text under a key; nothing when it is absent or no text. An empty text is a text.
    std::optional<std::string> text(std::string_view key) const;

    /// The two forms for files. Of texts they hold what XML knows, and U+FFFD for everything else, but nothing for a
    /// NUL.
    std::string xml() const;
    std::string binary() const;

    bool operator==(const PropertyList&) const = default;

private:
    std::variant<Dictionary, List, std::string, std::int64_t, double, bool, Date, Data> m_value;
};

}  // namespace tarvik
