#pragma once

#include "Program/Volume.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>

/// The files "._NAME" in which a Mac keeps the attributes of NAME on a volume that has no place for them. Each is an
/// item of the volume like any other: it is listed, and who copies NAME alone loses the attributes.
namespace tarvik::macvolume::AppleDouble {

using Attributes = std::map<std::string, std::string, std::less<>>;

/// The bytes of such a file: a header (RFC 1740, appendix B), and the attributes in the room of the Finder's entry, in
/// a form of our own. Pure.
std::string encoded(const Attributes& attributes);
/// Nothing for bytes that are no such file. Pure.
std::optional<Attributes> decoded(std::string_view bytes);

/// Where the attributes of an item are kept.
std::string placeFor(const std::string& item);
bool isOne(const std::string& place);

Attributes read(const Backing& backing, const std::string& item);
/// No file is left for an item without attributes.
void write(const Backing& backing, const std::string& item, const Attributes& attributes);

// The system lets such a file follow its item.
void removeFor(const Backing& backing, const std::string& item);
void renameFor(const Backing& backing, const std::string& from, const std::string& to);
/// Those in a folder that belong to no item any more: they do not keep it from being removed.
void removeOrphans(const Backing& backing, const std::string& folder);

}  // namespace tarvik::macvolume::AppleDouble
