#pragma once

#include "Platform/Basics/Path.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <sys/types.h>
#include <vector>

/// A volume of a Mac's extended format, as Apple's technical note 1150 describes it: HFSX, whose names differ by case.
namespace tarvik::Practice::HFSVolume {

/// The place of the volume's own folder in lists of items.
constexpr std::size_t top = 0;

struct Item {
    std::size_t folder;    ///< the place, in the list, of the folder that holds it, counted from 1; or `top`
    std::u16string name;   ///< decomposed, as all names on such volumes are; a slash is shown as a colon
    mode_t mode;           ///< with the type: a folder, a file or a symbolic link
    std::time_t modified;  ///< seconds since 1970
    std::string content;   ///< of a file; of a link, where it leads
    std::string resourceFork{};
    std::map<std::string, std::string> attributes{};  ///< extended ones, names in ASCII
    std::string typeAndCreator{};                     ///< eight letters, of files; links have theirs by themselves
    std::uint32_t special = 0;                        ///< the number by which hard links find what they share
};

/// All that lies in a folder, in the order of names; links are links. Names must be ASCII or decomposed UTF-8.
/// @throws FileError; Failure for what is neither a file, a folder nor a link.
std::vector<Item> itemsOf(const fs::path& folder);

/// The bytes of a volume that is just large enough for them. The same items give the same bytes.
/// @throws Failure when they are too many.
std::string bytes(const std::string& name, const std::vector<Item>& items);

/// Text as names of a volume are kept. What is no UTF-8 becomes U+FFFD.
std::u16string unitsOf(const std::string& text);

}  // namespace tarvik::Practice::HFSVolume
