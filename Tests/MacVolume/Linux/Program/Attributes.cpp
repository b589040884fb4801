#include "Program/Attributes.h"

#include "Program/AppleDouble.h"
#include "Program/Refusal.h"
#include "Support/MacAttributes.h"

#include <fmt/format.h>

#include <charconv>
#include <optional>
#include <sys/xattr.h>

namespace tarvik::macvolume::Attributes {

namespace {

struct MarkSwitch {
    std::string_view attribute;
    bool Marks::*isOn;
};
constexpr MarkSwitch markSwitches[] = {{test::MacAttribute::denyDelete, &Marks::deniesDelete},
                                       {test::MacAttribute::denyDeleteInside, &Marks::deniesDeleteInside},
                                       {test::MacAttribute::isPrivate, &Marks::isPrivate},
                                       {test::MacAttribute::breaksListing, &Marks::breaksListing}};

/// The attribute's text when it is one of a mark.
std::optional<std::string> markText(const Marks& marks, std::string_view name) {
    if (name == test::MacAttribute::flags) return fmt::format("{:x}", marks.flags);
    for (const MarkSwitch& each : markSwitches)
        if (name == each.attribute) return marks.*each.isOn ? "1" : "0";
    return std::nullopt;
}

/// The attribute's text when it tells of the whole volume.
std::optional<std::string> volumeText(const Volume& volume, std::string_view name) {
    if (name == test::MacAttribute::format) return std::string(volume.format());
    if (name == test::MacAttribute::keepsAppleDouble) return volume.has(Habit::isExFat) ? "1" : "0";
    if (name == test::MacAttribute::importantCapacity) return std::to_string(volume.importantCapacity());
    return std::nullopt;
}

std::uint32_t flagsOf(std::string_view text) {
    std::uint32_t flags = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), flags, 16);
    if (error != std::errc() || end != text.data() + text.size()) refuse(EINVAL);
    return flags;
}

/// False when the attribute is none of a mark.
bool setsMark(Marks& marks, std::string_view name, std::string_view text) {
    if (name == test::MacAttribute::flags) {
        marks.flags = flagsOf(text);
        return true;
    }
    for (const MarkSwitch& each : markSwitches) {
        if (name != each.attribute) continue;
        if (text != "0" && text != "1") refuse(EINVAL);
        marks.*each.isOn = text == "1";
        return true;
    }
    return false;
}

/// Access lists of Linux, labels and rights: no volume of a Mac has such a thing.
bool isOfLinux(std::string_view name) {
    return !name.starts_with("user.") && !name.starts_with("trusted.");
}

/// Calls with a buffer that is large enough.
template <typename Call>
std::string valueOf(const Call& call) {
    std::string value(requireCall(call(nullptr, 0)), '\0');
    value.resize(requireCall(call(value.data(), value.size())));
    return value;
}

void requireNew(bool isThere, int flags) {
    if (isThere && (flags & XATTR_CREATE) != 0) refuse(EEXIST);
    if (!isThere && (flags & XATTR_REPLACE) != 0) refuse(ENODATA);
}

}  // namespace

std::string read(const Volume& volume, const std::string& place, const std::string& name) {
    if (auto text = markText(volume.marksAt(place), name)) return std::move(*text);
    if (auto text = volumeText(volume, name)) return std::move(*text);
    if (isOfLinux(name)) refuse(name.starts_with("security.") ? ENODATA : ENOTSUP);
    if (volume.has(Habit::isExFat)) {
        auto attributes = AppleDouble::read(volume.backing(), place);
        const auto found = attributes.find(name);
        if (found == attributes.end()) refuse(ENODATA);
        return std::move(found->second);
    }
    const std::string path = volume.backing().pathOf(place);
    return valueOf([&](char* value, std::size_t size) { return ::lgetxattr(path.c_str(), name.c_str(), value, size); });
}

void write(Volume& volume, const std::string& place, const std::string& name, std::string_view value, int flags) {
    if (Marks marks = volume.marksAt(place); setsMark(marks, name, value)) return volume.mark(place, marks);
    if (name == test::MacAttribute::flushFile) return volume.journal().note("flush " + place);
    if (name == test::MacAttribute::flushVolume) return volume.journal().note("flush everything");
    if (isOfLinux(name)) refuse(ENOTSUP);
    volume.requireChange(place);
    if (volume.has(Habit::isExFat)) {
        auto attributes = AppleDouble::read(volume.backing(), place);
        requireNew(attributes.contains(name), flags);
        attributes[name] = value;
        return AppleDouble::write(volume.backing(), place, attributes);
    }
    requireCall(::lsetxattr(volume.backing().pathOf(place).c_str(), name.c_str(), value.data(), value.size(), flags));
}

void remove(const Volume& volume, const std::string& place, const std::string& name) {
    if (isOfLinux(name)) refuse(ENODATA);
    volume.requireChange(place);
    if (volume.has(Habit::isExFat)) {
        auto attributes = AppleDouble::read(volume.backing(), place);
        if (attributes.erase(name) == 0) refuse(ENODATA);
        return AppleDouble::write(volume.backing(), place, attributes);
    }
    requireCall(::lremovexattr(volume.backing().pathOf(place).c_str(), name.c_str()));
}

std::string names(const Volume& volume, const std::string& place) {
    if (volume.has(Habit::isExFat)) {
        std::string names;
        for (const auto& [name, value] : AppleDouble::read(volume.backing(), place)) names += name + '\0';
        return names;
    }
    const std::string path = volume.backing().pathOf(place);
    const std::string all =
        valueOf([&](char* list, std::size_t size) { return ::llistxattr(path.c_str(), list, size); });
    std::string names;
    for (std::size_t at = 0; at < all.size();) {
        const std::string name = all.c_str() + at;
        at += name.size() + 1;
        if (!isOfLinux(name)) names += name + '\0';
    }
    return names;
}

}  // namespace tarvik::macvolume::Attributes
