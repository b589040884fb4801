#include "Platform/Text/PropertyListCheck.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

namespace tarvik::PropertyListCheck {

namespace {

constexpr std::string_view signature = "bplist0";
constexpr std::size_t headerSize = 8;
constexpr std::size_t trailerSize = 32;

enum class Kind : std::uint8_t { plain, ascii, utf16, list, dictionary };

/// Where the content of one object lies, and how many bytes, characters, items or pairs it has.
struct Content {
    Kind kind = Kind::plain;
    std::size_t start = 0;
    std::size_t count = 0;
};

/// What is known of an object: all that it holds, each time that it is named, and how deep that nests. No cost stands
/// for an object that was not looked at yet.
struct Measure {
    std::size_t cost = 0;
    std::size_t depth = 0;
    bool isOpen = false;
};

/// A walk over the objects of one list, each of which is looked at once.
class BinaryWalk {
public:
    explicit BinaryWalk(std::string_view bytes) : m_bytes(bytes) {}

    bool isSound() {
        if (!readTrailer()) return false;
        m_measures.resize(m_objectCount);
        return measure(m_topObject, 1);
    }

private:
    bool readTrailer() {
        if (m_bytes.size() < headerSize + trailerSize) return false;
        const std::size_t trailer = m_bytes.size() - trailerSize;
        m_offsetSize = static_cast<unsigned char>(m_bytes[trailer + 6]);
        m_referenceSize = static_cast<unsigned char>(m_bytes[trailer + 7]);
        const std::uint64_t objectCount = number(trailer + 8, 8);
        const std::uint64_t topObject = number(trailer + 16, 8);
        const std::uint64_t table = number(trailer + 24, 8);
        if (m_offsetSize < 1 || m_offsetSize > 8 || m_referenceSize < 1 || m_referenceSize > 8) return false;
        if (table < headerSize || table > trailer) return false;
        if (objectCount > (trailer - table) / m_offsetSize || topObject >= objectCount) return false;
        m_objectCount = objectCount;
        m_topObject = topObject;
        m_table = table;
        return true;
    }

    /// A big-endian number of up to 8 bytes, which must lie in the file.
    std::uint64_t number(std::size_t position, std::size_t size) const {
        std::uint64_t value = 0;
        for (std::size_t index = 0; index < size; ++index)
            value = value << 8 | static_cast<unsigned char>(m_bytes[position + index]);
        return value;
    }

    /// Whether `count` things of `size` bytes each lie before the table of offsets.
    bool holds(std::size_t start, std::uint64_t count, std::size_t size) const {
        return start <= m_table && count <= (m_table - start) / size;
    }

    std::optional<Content> contentOf(std::uint64_t object) const {
        const std::uint64_t offset = number(m_table + object * m_offsetSize, m_offsetSize);
        if (offset < headerSize || offset >= m_table) return std::nullopt;
        const auto marker = static_cast<unsigned char>(m_bytes[offset]);
        return contentAt(offset + 1, marker >> 4, marker & 0x0F);
    }

    /// The kinds are told by the upper half of an object's first byte, the size by the lower one.
    std::optional<Content> contentAt(std::size_t start, unsigned kind, unsigned size) const {
        constexpr unsigned falseValue = 8;
        constexpr unsigned trueValue = 9;
        constexpr unsigned doubleSize = 3;
        switch (kind) {
            case 0x0:
                return size == falseValue || size == trueValue ? plain(start, 0) : std::nullopt;
            case 0x1:
                return size <= 4 ? plain(start, std::size_t{1} << size) : std::nullopt;
            case 0x2:
                return size == doubleSize - 1 || size == doubleSize ? plain(start, std::size_t{1} << size)
                                                                    : std::nullopt;
            case 0x3:
                return size == doubleSize ? plain(start, 8) : std::nullopt;
            case 0x4:
                return counted(Kind::plain, start, size, 1);
            case 0x5:
                return counted(Kind::ascii, start, size, 1);
            case 0x6:
                return counted(Kind::utf16, start, size, 2);
            case 0x8:
                return size < 8 ? plain(start, size + 1) : std::nullopt;
            case 0xA:
                return counted(Kind::list, start, size, m_referenceSize);
            case 0xD:
                return counted(Kind::dictionary, start, size, 2 * m_referenceSize);
            default:
                return std::nullopt;
        }
    }

    std::optional<Content> plain(std::size_t start, std::size_t size) const {
        if (!holds(start, size, 1)) return std::nullopt;
        return Content{Kind::plain, start, size};
    }

    /// A count of 15 and more stands in an integer of its own before the content.
    std::optional<Content> counted(Kind kind, std::size_t start, std::uint64_t count, std::size_t size) const {
        constexpr std::uint64_t countFollows = 15;
        if (count == countFollows) {
            if (!holds(start, 1, 1)) return std::nullopt;
            const auto marker = static_cast<unsigned char>(m_bytes[start]);
            const std::size_t width = std::size_t{1} << (marker & 0x0F);
            if (marker >> 4 != 1 || width > 8 || !holds(start + 1, width, 1)) return std::nullopt;
            count = number(start + 1, width);
            start += 1 + width;
        }
        if (!holds(start, count, size)) return std::nullopt;
        return Content{kind, start, static_cast<std::size_t>(count)};
    }

    /// Measures an object that is named at the given level, by recursion that never goes deeper than lists may nest.
    bool measure(std::uint64_t object, std::size_t level) {
        if (object >= m_objectCount || level > PropertyListCheck::deepestNesting) return false;
        Measure& known = m_measures[object];
        if (known.isOpen) return false;
        if (known.cost > 0) return level + known.depth <= PropertyListCheck::deepestNesting;
        const auto content = contentOf(object);
        if (!content) return false;
        known.isOpen = true;
        if (!measureContent(*content, level, known)) return false;
        known.isOpen = false;
        return known.cost <= PropertyListCheck::largestCost;
    }

    bool measureContent(const Content& content, std::size_t level, Measure& result) {
        result.cost = costOfValue;
        switch (content.kind) {
            case Kind::plain:
                result.cost += content.count;
                return true;
            case Kind::ascii:
                result.cost += content.count;
                return m_bytes.substr(content.start, content.count).find('\0') == std::string_view::npos;
            case Kind::utf16:
                result.cost += 3 * content.count;
                return isText(content);
            case Kind::list:
                return measureItems(content.start, content.count, level, result);
            case Kind::dictionary:
                return keysAreTexts(content) && measureItems(content.start, 2 * content.count, level, result);
        }
        return false;
    }

    /// Whether no character is NUL, and every surrogate stands in a pair.
    bool isText(const Content& content) const {
        bool isPairOpen = false;
        for (std::size_t index = 0; index < content.count; ++index) {
            const std::uint64_t unit = number(content.start + 2 * index, 2);
            const bool isSecondOfPair = unit >= 0xDC00 && unit <= 0xDFFF;
            if (unit == 0 || isSecondOfPair != isPairOpen) return false;
            isPairOpen = unit >= 0xD800 && unit < 0xDC00;
        }
        return !isPairOpen;
    }

    bool keysAreTexts(const Content& dictionary) const {
        for (std::size_t index = 0; index < dictionary.count; ++index) {
            const std::uint64_t key = reference(dictionary.start, index);
            if (key >= m_objectCount) return false;
            const auto content = contentOf(key);
            if (!content || (content->kind != Kind::ascii && content->kind != Kind::utf16)) return false;
        }
        return true;
    }

    bool measureItems(std::size_t start, std::size_t count, std::size_t level, Measure& result) {
        for (std::size_t index = 0; index < count; ++index) {
            const std::uint64_t item = reference(start, index);
            if (!measure(item, level + 1)) return false;
            result.cost += m_measures[item].cost;
            result.depth = std::max(result.depth, m_measures[item].depth + 1);
            if (result.cost > PropertyListCheck::largestCost) return false;
        }
        return true;
    }

    std::uint64_t reference(std::size_t start, std::size_t index) const {
        return number(start + index * m_referenceSize, m_referenceSize);
    }

    const std::string_view m_bytes;
    std::size_t m_offsetSize = 0;
    std::size_t m_referenceSize = 0;
    std::size_t m_objectCount = 0;
    std::size_t m_topObject = 0;
    std::size_t m_table = 0;
    std::vector<Measure> m_measures;
};

}  // namespace

bool isBinary(std::string_view bytes) {
    return bytes.starts_with(signature);
}

bool isSoundBinary(std::string_view bytes) {
    return isBinary(bytes) && BinaryWalk(bytes).isSound();
}

}  // namespace tarvik::PropertyListCheck
