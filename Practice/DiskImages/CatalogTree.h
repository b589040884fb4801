#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// The B-tree files of an HFS Plus volume, as Apple's technical note 1150 describes them.
namespace tarvik::Practice::CatalogTree {

struct Record {
    std::string key;   ///< with the two bytes of its length in front
    std::string data;  ///< of an even size
};

struct Kind {
    std::uint16_t nodeSize;
    std::uint16_t largestKey;
    std::uint8_t comparison;  ///< 0xBC for names that are compared unit by unit, 0 where no names are compared
};

/// The whole file, of records that are in the order of their keys; empty trees have a header alone.
/// @throws Failure when it would need more nodes than one map can tell of.
std::string file(const std::vector<Record>& records, Kind kind);

}  // namespace tarvik::Practice::CatalogTree
