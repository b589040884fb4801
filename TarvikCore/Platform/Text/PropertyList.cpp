#include "Platform/Text/PropertyList.h"

#include "Platform/Files/Files.h"
#include "Platform/Text/PropertyListCheck.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>
#include <plist/plist.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <limits>
#include <memory>
#include <new>
#include <utility>

namespace tarvik {

namespace {

/// What describes an application is some KB, a tool's answer a few MB. Whatever is larger is no such thing, and would
/// take many times its size in memory.
constexpr std::size_t largestSize = std::size_t{32} << 20;

/// How an archive's reference to another of its objects is written in XML, where there is no type for it.
constexpr const char* referenceKey = "CF$UID";

using Seconds = std::chrono::seconds;

/// Thrown and caught inside this file, where a list holds what has no meaning.
class Unreadable : public std::exception {};

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
using OwnedText = std::unique_ptr<char, Free>;

/// Owns a node and all that is below it.
class Node {
public:
    explicit Node(plist_t node) : m_node(node) {
        if (!m_node) throw std::bad_alloc();
    }
    Node(Node&& other) noexcept : m_node(std::exchange(other.m_node, nullptr)) {}
    Node& operator=(Node&&) = delete;
    ~Node() { ::plist_free(m_node); }

    plist_t get() const { return m_node; }
    plist_t release() { return std::exchange(m_node, nullptr); }

private:
    plist_t m_node;
};

/// What one of the library's writers makes of a node. Its versions differ in what the writers give back.
template <auto write>
std::string written(plist_t node) {
    char* bytes = nullptr;
    std::uint32_t length = 0;
    write(node, &bytes, &length);
    const OwnedText owner(bytes);
    return bytes ? std::string(bytes, length) : std::string();
}

std::string checkedText(std::string text) {
    if (!Text::isValidUtf8(text) || text.find('\0') != std::string::npos) throw Unreadable();
    return text;
}

/// The library gives unsigned integers, whose upper half may stand for negative ones. What is too large for a signed
/// one becomes a real number.
PropertyList integerOf(plist_t node) {
    std::uint64_t value = 0;
    ::plist_get_uint_val(node, &value);
    const auto asSigned = static_cast<std::int64_t>(value);
    if (asSigned >= 0) return asSigned;
    const bool isNegative = written<plist_to_xml>(node).find("<integer>-") != std::string::npos;
    return isNegative ? PropertyList(asSigned) : PropertyList(static_cast<double>(value));
}

/// An instant in seconds since 1970, or the nearest one that a date can hold.
PropertyList::Date dateAt(Seconds sinceEpoch) {
    using Date = PropertyList::Date;
    constexpr auto earliest = std::chrono::ceil<Seconds>(Date::min().time_since_epoch());
    constexpr auto latest = std::chrono::floor<Seconds>(Date::max().time_since_epoch());
    return Date(std::clamp(sinceEpoch, earliest, latest));
}

/// By its text: the library's number of seconds reaches from 1932 to 2069 alone in some versions.
PropertyList dateOf(plist_t node) {
    const std::string text = written<plist_to_xml>(node);
    const std::size_t start = text.find("<date>");
    int year = 0;
    unsigned month = 0, day = 0, hour = 0, minute = 0, second = 0;
    constexpr int fields = 6;
    if (start == std::string::npos || std::sscanf(text.c_str() + start, "<date>%6d-%2u-%2uT%2u:%2u:%2uZ", &year, &month,
                                                  &day, &hour, &minute, &second) != fields)
        throw Unreadable();
    const std::chrono::sys_days date = std::chrono::year(year) / std::chrono::month(month) / std::chrono::day(day);
    return dateAt(date.time_since_epoch() + std::chrono::hours(hour) + std::chrono::minutes(minute) + Seconds(second));
}

PropertyList dataOf(plist_t node) {
    char* bytes = nullptr;
    std::uint64_t length = 0;
    ::plist_get_data_val(node, &bytes, &length);
    const OwnedText owner(bytes);
    return PropertyList::Data{bytes ? std::string(bytes, length) : std::string()};
}

PropertyList valueOf(plist_t node);

PropertyList listOf(plist_t node) {
    PropertyList::List list;
    list.reserve(::plist_array_get_size(node));
    plist_array_iter iterator = nullptr;
    ::plist_array_new_iter(node, &iterator);
    const std::unique_ptr<void, Free> owner(iterator);
    while (true) {
        plist_t item = nullptr;
        ::plist_array_next_item(node, iterator, &item);
        if (!item) return list;
        list.push_back(valueOf(item));
    }
}

PropertyList dictionaryOf(plist_t node) {
    PropertyList::Dictionary dictionary;
    plist_dict_iter iterator = nullptr;
    ::plist_dict_new_iter(node, &iterator);
    const std::unique_ptr<void, Free> owner(iterator);
    while (true) {
        char* key = nullptr;
        plist_t item = nullptr;
        ::plist_dict_next_item(node, iterator, &key, &item);
        const OwnedText keyOwner(key);
        if (!item || !key) return dictionary;
        dictionary.insert_or_assign(checkedText(key), valueOf(item));
    }
}

/// By recursion: what is read here has been checked for how deep it nests.
PropertyList valueOf(plist_t node) {
    switch (::plist_get_node_type(node)) {
        case PLIST_BOOLEAN: {
            std::uint8_t value = 0;
            ::plist_get_bool_val(node, &value);
            return value != 0;
        }
        case PLIST_UINT:
            return integerOf(node);
        case PLIST_REAL: {
            double value = 0;
            ::plist_get_real_val(node, &value);
            return value;
        }
        case PLIST_STRING: {
            std::uint64_t length = 0;
            const char* text = ::plist_get_string_ptr(node, &length);
            return checkedText(text ? std::string(text, length) : std::string());
        }
        case PLIST_DATE:
            return dateOf(node);
        case PLIST_DATA:
            return dataOf(node);
        case PLIST_UID: {
            std::uint64_t value = 0;
            ::plist_get_uid_val(node, &value);
            return PropertyList::Dictionary{{referenceKey, static_cast<std::int64_t>(value)}};
        }
        case PLIST_ARRAY:
            return listOf(node);
        case PLIST_DICT:
            return dictionaryOf(node);
        default:
            throw Unreadable();
    }
}

/// The bytes at the beginning of `text`, which is UTF-8, that are a character of which XML knows nothing; 0 for others.
std::size_t unknownToXml(std::string_view text) {
    if (text.starts_with("\xEF\xBF\xBE") || text.starts_with("\xEF\xBF\xBF")) return 3;
    const auto byte = static_cast<unsigned char>(text.front());
    return byte < ' ' && byte != '\t' && byte != '\n' && byte != '\r' ? 1 : 0;
}

/// A text as both forms can hold it.
std::string writableText(const std::string& text) {
    std::string valid = Text::displayable(text);
    std::erase(valid, '\0');
    std::string writable;
    writable.reserve(valid.size());
    for (std::string_view rest = valid; !rest.empty();) {
        const std::size_t unknown = unknownToXml(rest);
        writable += unknown > 0 ? "\uFFFD" : rest.substr(0, 1);
        rest.remove_prefix(std::max(unknown, std::size_t{1}));
    }
    return writable;
}

/// A value by its text in XML: what the library's makers take for a date or a negative number differs between versions.
Node nodeOf(std::string_view element, const std::string& content) {
    const std::string xml = fmt::format("<plist><{0}>{1}</{0}></plist>", element, content);
    plist_t node = nullptr;
    ::plist_from_xml(xml.data(), static_cast<std::uint32_t>(xml.size()), &node);
    return Node(node);
}

Node nodeOf(const PropertyList& value) {
    if (const auto* boolean = value.as<bool>()) return Node(::plist_new_bool(*boolean ? 1 : 0));
    if (const auto* integer = value.as<std::int64_t>())
        return *integer < 0 ? nodeOf("integer", fmt::to_string(*integer))
                            : Node(::plist_new_uint(static_cast<std::uint64_t>(*integer)));
    if (const auto* real = value.as<double>()) return Node(::plist_new_real(*real));
    if (const auto* text = value.as<std::string>()) return Node(::plist_new_string(writableText(*text).c_str()));
    if (const auto* data = value.as<PropertyList::Data>())
        return Node(::plist_new_data(data->bytes.data(), data->bytes.size()));
    if (const auto* date = value.as<PropertyList::Date>()) return nodeOf("date", Text::isoDate(*date));
    if (const auto* list = value.as<PropertyList::List>()) {
        Node node(::plist_new_array());
        for (const auto& item : *list) ::plist_array_append_item(node.get(), nodeOf(item).release());
        return node;
    }
    Node node(::plist_new_dict());
    if (const auto* dictionary = value.as<PropertyList::Dictionary>())
        for (const auto& [key, item] : *dictionary)
            ::plist_dict_set_item(node.get(), writableText(key).c_str(), nodeOf(item).release());
    return node;
}

/// What the library's reader makes of bytes that were found sound.
template <auto read>
PropertyList decoded(std::string_view bytes) {
    plist_t node = nullptr;
    read(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &node);
    if (!node) throw Unreadable();
    const Node owner(node);
    return valueOf(node);
}

std::string_view withoutByteOrderMark(std::string_view bytes) {
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    return bytes.starts_with(mark) ? bytes.substr(mark.size()) : bytes;
}

/// The text of an XML list as UTF-8, which alone the library reads. A byte order mark tells UTF-16.
std::string textOf(std::string_view bytes) {
    const bool isLittleEndian = bytes.starts_with("\xFF\xFE");
    if (!isLittleEndian && !bytes.starts_with("\xFE\xFF")) return std::string(withoutByteOrderMark(bytes));
    auto text = Text::fromUtf16(bytes.substr(2), isLittleEndian ? std::endian::little : std::endian::big);
    if (!text) throw Unreadable();
    return std::move(*text);
}

}  // namespace

std::optional<PropertyList> PropertyList::parsed(std::string_view bytes) {
    if (bytes.size() > largestSize) return std::nullopt;
    try {
        if (PropertyListCheck::isSoundBinary(bytes)) return decoded<plist_from_bin>(bytes);
        const std::string text = textOf(bytes);
        if (PropertyListCheck::isSoundXml(text)) return decoded<plist_from_xml>(text);
    } catch (const std::exception&) {  // No meaning, or no memory: there is no property list to be had.
        return std::nullopt;
    }
    return std::nullopt;
}

std::optional<PropertyList> PropertyList::at(const fs::path& file) {
    try {
        return parsed(Files::read(file, largestSize));
    } catch (const FileError&) {
        return std::nullopt;
    }
}

PropertyList PropertyList::dictionaryAt(const fs::path& file) {
    auto list = at(file);
    return list && list->as<Dictionary>() ? std::move(*list) : PropertyList();
}

const PropertyList* PropertyList::find(std::string_view key) const {
    const auto* dictionary = as<Dictionary>();
    if (!dictionary) return nullptr;
    const auto found = dictionary->find(key);
    return found == dictionary->end() ? nullptr : &found->second;
}

std::optional<std::string> PropertyList::text(std::string_view key) const {
    const auto* value = find(key);
    const auto* text = value ? value->as<std::string>() : nullptr;
    return text ? std::optional(*text) : std::nullopt;
}

std::string PropertyList::xml() const {
    return written<plist_to_xml>(nodeOf(*this).get());
}

std::string PropertyList::binary() const {
    return written<plist_to_bin>(nodeOf(*this).get());
}

}  // namespace tarvik
