#pragma once

#include "Platform/Text/PropertyList.h"

#include <cstdint>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace tarvik::hdiutil {

/// One line of what is told about an attached image: the disk, a slice of it, a volume.
struct Entity {
    std::string device;   ///< "/dev/disk4s1"
    std::string content;  ///< "Apple_HFS"
    std::string unmapped;
    std::string kind{};        ///< "hfs"; empty for what is no volume
    std::string mountPoint{};  ///< empty where nothing is mounted
    std::int64_t inode = 0;    ///< of the folder that is mounted, by which it is known again

    bool operator==(const Entity&) const = default;
};

/// An attached image.
struct Attachment {
    std::string image;     ///< its path, links resolved
    std::string identity;  ///< what tells this file, as it was when it was attached, from others
    std::vector<Entity> entities;

    bool operator==(const Attachment&) const = default;
};

namespace AttachmentRecord {

std::string identityOf(const struct stat& status);

/// As it is kept; and read, where what is missing or of another form is empty.
PropertyList kept(const Attachment& attachment);
Attachment read(const PropertyList& list);

/// The answer of `attach -plist`.
std::string answer(const Attachment& attachment);
/// The answer of `attach`: a line for each entity.
std::string lines(const Attachment& attachment);

}  // namespace AttachmentRecord

}  // namespace tarvik::hdiutil
