#pragma once

#include <cstdint>
#include <ctime>
#include <string>
#include <sys/types.h>

namespace tarvik::hdiutil {

/// What a volume holds at one place, as 7-Zip lists it. The bytes of everything that has any come in the same order.
struct Entry {
    enum class Type { folder, file, link, attribute, other };

    Type type = Type::other;
    std::string path;  ///< below the volume's container, without a slash at either end; hostile until it is looked at
    std::string attribute{};  ///< the name of the extended attribute of the item at `path`
    std::int64_t size = 0;    ///< in bytes
    mode_t permissions = 0644;
    timespec modified{};
    std::string comment{};  ///< what a container tells of a stretch of the disk

    bool operator==(const Entry& other) const {
        return type == other.type && path == other.path && attribute == other.attribute && size == other.size &&
               permissions == other.permissions && modified.tv_sec == other.modified.tv_sec &&
               modified.tv_nsec == other.modified.tv_nsec && comment == other.comment;
    }
};

}  // namespace tarvik::hdiutil
