#include "Installers/Opening/ZipCheck.h"

#include "Installers/Opening/ZipBytes.h"
#include "Installers/Opening/ZipHeader.h"
#include "Installers/Opening/ZipListing.h"
#include "Installers/Opening/ZipPaths.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <optional>
#include <string_view>
#include <vector>

namespace tarvik {

namespace {

/// A part of the file, in bytes from its beginning.
struct ZipRange {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
};

/// What two headers tell of a listed entry.
struct ListedData {
    ZipRange range;
    /// Whether all of it is the entry's for sure, by its local header too.
    bool isCertain = false;
};

/// Calls `use` with each place in the range where the signature of a header begins, which may end behind the range.
template <typename Use>
void forEachSignature(ZipBytes& bytes, ZipRange range, const Use& use) {
    constexpr std::size_t signatureLength = 4;
    constexpr std::size_t step = ZipBytes::windowSize / 4;
    std::vector<std::uint64_t> places;
    for (std::uint64_t at = range.begin; at < range.end; at += step) {
        const auto end = static_cast<std::size_t>(std::min<std::uint64_t>(step, range.end - at));
        const std::string_view piece = bytes.at(at, end + signatureLength - 1);
        places.clear();
        for (std::size_t found = piece.find('P'); found < end; found = piece.find('P', found + 1))
            if (const auto signature = piece.substr(found, signatureLength);
                signature == ZipHeader::localSignature || signature == ZipHeader::centralSignature)
                places.push_back(at + found);
        // Looking at a header may move the bytes.
        for (const std::uint64_t place : places) use(place);
    }
}

class ArchiveReading {
public:
    explicit ArchiveReading(ZipBytes& bytes) : m_bytes(bytes), m_namesLeft(bytes.size() * mostReadings) {}

    ZipCheck check() {
        const auto directory = ZipListing::find(m_bytes);
        if (!directory || !readListed(*directory)) {
            m_unpackedSize = 0;
            m_paths = {};
            addAllHeaders();
        }
        return {m_isTooMuch || m_paths.areUnsafe(), m_unpackedSize};
    }

private:
    /// How often each byte of the archive may be read as part of a name. Twice is enough where no headers overlap, also
    /// when the directory turns out to be none in the end.
    static constexpr std::uint64_t mostReadings = 4;

    /// Takes the header into account. @returns false, for good, when headers overlap so much that reading all their
    /// names would take for ever: no writer makes such an archive.
    bool isWorthReading(const ZipHeader& header) {
        const std::uint64_t length = header.name.size() + header.unicodeName.size();
        m_isTooMuch = m_isTooMuch || length > m_namesLeft;
        if (!m_isTooMuch) m_namesLeft -= length;
        return !m_isTooMuch;
    }

    /// @returns whether the directory and the local headers fit together.
    bool readListed(const ZipListing::Place& directory) {
        if (!readDirectory(directory)) return false;
        std::sort(m_data.begin(), m_data.end(),
                  [](const ListedData& one, const ListedData& other) { return one.range.begin < other.range.begin; });
        std::uint64_t end = 0;
        // Any number of entries may claim the same data: whatever lies before this was looked through.
        std::uint64_t searched = 0;
        for (const ListedData& data : m_data) {
            if (data.range.begin > end) addHidden({end, data.range.begin});
            if (!data.isCertain) {
                addHidden({std::max(searched, data.range.begin + 1), data.range.end});
                searched = std::max(searched, data.range.end);
            }
            end = std::max(end, data.range.end);
        }
        if (directory.begin > end) addHidden({end, directory.begin});
        addHidden({directory.end, m_bytes.size()});
        return true;
    }

    bool readDirectory(const ZipListing::Place& directory) {
        // Both kinds of headers are read a stretch at a time, since one window cannot be in two places.
        constexpr std::size_t stretch = 4096;
        std::vector<ZipHeader> entries;
        bool fits = true;
        const auto readLocals = [&] {
            for (const ZipHeader& entry : entries) fits = fits && readLocal(entry, directory);
            entries.clear();
        };
        const bool isWhole = ZipListing::forEach(m_bytes, directory, [&](const ZipHeader& entry) {
            addSize(entry);
            entries.push_back(entry);
            if (entries.size() == stretch) readLocals();
        });
        readLocals();
        return isWhole && fits;
    }

    bool readLocal(const ZipHeader& entry, const ZipListing::Place& directory) {
        if (entry.localOffset > directory.begin - directory.shift) return false;
        const std::uint64_t begin = entry.localOffset + directory.shift;
        const auto local = ZipHeader::localAt(m_bytes, begin);
        if (!local || local->length > directory.begin - begin ||
            entry.storedSize > directory.begin - begin - local->length)
            return false;
        if (!isWorthReading(*local)) return false;
        m_paths.add(entry, *local);
        const bool isCertain = !local->hasDescriptor && local->storedSize == entry.storedSize;
        m_data.push_back({{begin, begin + local->length + entry.storedSize}, isCertain});
        return true;
    }

    void addSize(const ZipHeader& entry) {
        const std::uint64_t most = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
        const std::uint64_t room = most - static_cast<std::uint64_t>(m_unpackedSize);
        m_unpackedSize += static_cast<std::int64_t>(std::min(entry.size, room));
    }

    /// Where only a reader that does not go by the directory would look.
    void addHidden(ZipRange range) {
        forEachSignature(m_bytes, range, [&](std::uint64_t place) {
            if (m_isTooMuch) return;
            if (const auto local = ZipHeader::localAt(m_bytes, place); local && isWorthReading(*local))
                m_paths.add(*local);
        });
    }

    void addAllHeaders() {
        forEachSignature(m_bytes, {0, m_bytes.size()}, [&](std::uint64_t place) {
            if (m_isTooMuch) return;
            if (const auto central = ZipHeader::centralAt(m_bytes, place); central && isWorthReading(*central))
                m_paths.add(*central);
            if (const auto local = ZipHeader::localAt(m_bytes, place); local && isWorthReading(*local))
                m_paths.addAgain(*local);
        });
    }

    ZipBytes& m_bytes;
    ZipPaths m_paths;
    std::uint64_t m_namesLeft = 0;
    bool m_isTooMuch = false;
    std::int64_t m_unpackedSize = 0;
    std::vector<ListedData> m_data;
};

}  // namespace

ZipCheck ZipCheck::of(const fs::path& archive) {
    auto bytes = ZipBytes::open(archive);
    return bytes ? ArchiveReading(*bytes).check() : ZipCheck();
}

}  // namespace tarvik
