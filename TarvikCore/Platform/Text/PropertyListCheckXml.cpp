#include "Platform/Text/PropertyListCheck.h"

#include <algorithm>
#include <array>
#include <vector>

namespace tarvik::PropertyListCheck {

namespace {

constexpr std::array<std::string_view, 11> elements = {"plist", "dict", "array", "key",  "string", "integer",
                                                       "real",  "true", "false", "date", "data"};
constexpr std::string_view space = " \t\r\n";
constexpr std::string_view digits = "0123456789";

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(space);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(space) + 1 - first);
}

bool consistsOf(std::string_view text, std::string_view characters) {
    return text.find_first_not_of(characters) == std::string_view::npos;
}

bool isInteger(std::string_view text) {
    if (text.starts_with('-') || text.starts_with('+')) text.remove_prefix(1);
    const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
    if (isHexadecimal) text.remove_prefix(2);
    constexpr std::string_view hexadecimalDigits = "0123456789abcdefABCDEF";
    return !text.empty() && consistsOf(text, isHexadecimal ? hexadecimalDigits : digits);
}

bool isReal(std::string_view text) {
    if (text.starts_with('-') || text.starts_with('+')) text.remove_prefix(1);
    constexpr std::array<std::string_view, 6> words = {"inf", "infinity", "Infinity", "nan", "NaN", "INF"};
    if (std::find(words.begin(), words.end(), text) != words.end()) return true;
    return consistsOf(text, "0123456789.eE+-") && !text.empty() &&
           (digits.find(text[0]) != std::string_view::npos || text[0] == '.');
}

/// "2026-11-15T17:45:43Z".
bool isDate(std::string_view text) {
    constexpr std::string_view pattern = "0000-00-00T00:00:00Z";
    return std::equal(text.begin(), text.end(), pattern.begin(), pattern.end(), [](char found, char expected) {
        return expected == '0' ? found >= '0' && found <= '9' : found == expected;
    });
}

bool isBase64(std::string_view text) {
    return consistsOf(text, "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/= \t\r\n");
}

/// Whether the text between the tags of an element is one. The decoder takes a number that is none for 0.
bool isContent(std::string_view element, std::string_view text) {
    if (element == "integer") return isInteger(trimmed(text));
    if (element == "real") return isReal(trimmed(text));
    if (element == "date") return isDate(trimmed(text));
    if (element == "data") return isBase64(text);
    return true;
}

/// An element whose end has not come yet.
struct OpenElement {
    std::string_view name;
    /// What follows its opening tag.
    std::string_view content;
    std::size_t children = 0;
};

/// Goes from tag to tag. What stands between those that hold others is the decoder's concern.
class XmlWalk {
public:
    explicit XmlWalk(std::string_view bytes) : m_rest(bytes), m_cost(bytes.size()) {}

    bool isSound() {
        if (m_rest.find('\0') != std::string_view::npos) return false;
        while (skipTo("<")) {
            if (!readMarkup()) return false;
            if (m_open.size() > PropertyListCheck::deepestNesting || m_cost > PropertyListCheck::largestCost)
                return false;
        }
        return m_open.empty() && m_hasRoot;
    }

private:
    /// Goes behind the next place of a text. @returns whether there was one.
    bool skipTo(std::string_view text) {
        const std::size_t found = m_rest.find(text);
        if (found == std::string_view::npos) return false;
        m_rest.remove_prefix(found + text.size());
        return true;
    }

    bool skip(std::string_view text) {
        if (!m_rest.starts_with(text)) return false;
        m_rest.remove_prefix(text.size());
        return true;
    }

    /// Reads on behind a "<".
    bool readMarkup() {
        if (skip("?")) return skipTo("?>");
        if (skip("!--")) return skipTo("-->");
        if (skip("![CDATA[")) return !m_open.empty() && skipTo("]]>");
        if (skip("!")) return readDocumentType();
        const std::size_t length = m_rest.find('>');
        if (length == std::string_view::npos) return false;
        const std::string_view tag = m_rest.substr(0, length);
        if (!tag.starts_with('/')) return open(tag);
        const std::string_view end = m_rest;
        m_rest.remove_prefix(length + 1);
        return close(trimmed(tag.substr(1)), end);
    }

    /// A document type that declares anything of its own is no property list's.
    bool readDocumentType() {
        const std::size_t length = m_rest.find('>');
        if (m_hasRoot || !m_rest.starts_with("DOCTYPE") || length == std::string_view::npos) return false;
        if (m_rest.substr(0, length).find('[') != std::string_view::npos) return false;
        m_rest.remove_prefix(length + 1);
        return true;
    }

    bool open(std::string_view tag) {
        m_rest.remove_prefix(tag.size() + 1);
        const bool isEmpty = tag.ends_with('/');
        if (isEmpty) tag.remove_suffix(1);
        const std::string_view name = tag.substr(0, tag.find_first_of(space));
        const bool hasAttributes = !trimmed(tag.substr(name.size())).empty();
        if (std::find(elements.begin(), elements.end(), name) == elements.end()) return false;
        if ((hasAttributes && name != "plist") || !mayStandHere(name)) return false;
        if (!m_open.empty()) ++m_open.back().children;
        m_hasRoot = true;
        m_cost += costOfValue;
        if (isEmpty) return isContent(name, {});
        m_open.push_back({name, m_rest});
        return true;
    }

    bool mayStandHere(std::string_view name) const {
        if (m_open.empty()) return !m_hasRoot && name != "key";
        const OpenElement& parent = m_open.back();
        if (name == "plist") return false;
        if (parent.name == "dict") return (name == "key") == (parent.children % 2 == 0);
        return name != "key" && (parent.name == "array" || (parent.name == "plist" && parent.children == 0));
    }

    /// `end` is what follows the "<" of the closing tag.
    bool close(std::string_view name, std::string_view end) {
        if (m_open.empty() || m_open.back().name != name) return false;
        const OpenElement element = m_open.back();
        m_open.pop_back();
        if (name == "dict" && element.children % 2 != 0) return false;
        return isContent(name, element.content.substr(0, element.content.size() - end.size() - 1));
    }

    std::string_view m_rest;
    std::size_t m_cost;
    std::vector<OpenElement> m_open;
    bool m_hasRoot = false;
};

}  // namespace

bool isSoundXml(std::string_view bytes) {
    return XmlWalk(bytes).isSound();
}

}  // namespace tarvik::PropertyListCheck
