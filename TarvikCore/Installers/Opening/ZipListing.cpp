#include "Installers/Opening/ZipListing.h"

#include "Installers/Opening/ZipFields.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace tarvik::ZipListing {

namespace {

using ZipFields::eight;
using ZipFields::four;
using ZipFields::two;

// "End of central directory record", "Zip64 end of central directory locator" and "... record" of APPNOTE.TXT.
constexpr std::string_view endSignature{"PK\5\6", 4};
constexpr std::string_view locatorSignature{"PK\6\7", 4};
constexpr std::string_view wideSignature{"PK\6\6", 4};
constexpr std::size_t endLength = 22;
constexpr std::size_t locatorLength = 20;
constexpr std::size_t wideLength = 56;
constexpr std::size_t longestComment = 0xFFFF;
constexpr std::uint32_t inZip64 = 0xFFFFFFFF;

/// Where the last end record of a file is. Nothing when an earlier one reaches to the end of the file just as well:
/// then it is a reader's choice which of them counts.
std::optional<std::uint64_t> placeOfEnd(ZipBytes& bytes) {
    if (bytes.size() < endLength) return std::nullopt;
    const auto length = static_cast<std::size_t>(std::min<std::uint64_t>(bytes.size(), endLength + longestComment));
    const std::uint64_t start = bytes.size() - length;
    const std::string_view tail = bytes.at(start, length);
    if (tail.size() < length) return std::nullopt;
    const std::size_t last = tail.rfind(endSignature, length - endLength);
    if (last == std::string_view::npos) return std::nullopt;
    for (std::size_t at = tail.find(endSignature); at < last; at = tail.find(endSignature, at + 1))
        if (at + endLength + two(tail, at + 20) == length) return std::nullopt;
    return start + last;
}

struct Claim {
    std::uint64_t size = 0;
    std::uint64_t offset = 0;
    /// Where the directory ends: right before the records.
    std::uint64_t end = 0;
};

std::optional<Claim> wideClaim(ZipBytes& bytes, std::uint64_t end) {
    if (end < locatorLength) return std::nullopt;
    const std::string_view locator = bytes.at(end - locatorLength, locatorLength);
    if (!locator.starts_with(locatorSignature)) return std::nullopt;
    const std::uint64_t told = eight(locator, 8);
    // The locator tells where the record is, unless something was put before the archive: then it is right before.
    for (const std::uint64_t place :
         {told, end < locatorLength + wideLength ? end : end - locatorLength - wideLength}) {
        const std::string_view wide = bytes.at(place, wideLength);
        if (wide.size() < wideLength || !wide.starts_with(wideSignature)) continue;
        if (four(wide, 16) != 0 || four(wide, 20) != 0) return std::nullopt;
        return Claim{eight(wide, 40), eight(wide, 48), place};
    }
    return std::nullopt;
}

std::optional<Claim> claimAt(ZipBytes& bytes, std::uint64_t end) {
    const std::string_view record = bytes.at(end, endLength);
    if (two(record, 4) != 0 && two(record, 4) != 0xFFFF) return std::nullopt;
    const Claim claim{four(record, 12), four(record, 16), end};
    const bool isWide = claim.size == inZip64 || claim.offset == inZip64 || two(record, 10) == 0xFFFF;
    const auto wide = wideClaim(bytes, end);
    if (!wide) return claim.size == inZip64 || claim.offset == inZip64 ? std::nullopt : std::optional(claim);
    // Some readers believe the wide record wherever there is one, others only where the small one sends them there.
    if (!isWide && (wide->size != claim.size || wide->offset != claim.offset)) return std::nullopt;
    return wide;
}

}  // namespace

std::optional<Place> find(ZipBytes& bytes) {
    const auto end = placeOfEnd(bytes);
    if (!end) return std::nullopt;
    const auto claim = claimAt(bytes, *end);
    if (!claim || claim->size > claim->end || claim->offset > claim->end - claim->size) return std::nullopt;
    const std::uint64_t begin = claim->end - claim->size;
    return Place{begin, claim->end, begin - claim->offset};
}

bool forEach(ZipBytes& bytes, const Place& place, const std::function<void(const ZipHeader&)>& use) {
    std::uint64_t at = place.begin;
    while (at < place.end) {
        const auto header = ZipHeader::centralAt(bytes, at);
        if (!header || header->length > place.end - at) return false;
        use(*header);
        at += header->length;
    }
    return true;
}

}  // namespace tarvik::ZipListing
