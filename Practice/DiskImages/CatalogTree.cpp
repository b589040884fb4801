#include "Practice/DiskImages/CatalogTree.h"

#include "Platform/Basics/Failure.h"
#include "Practice/DiskImages/Bytes.h"

#include <cerrno>
#include <cstddef>
#include <utility>

namespace tarvik::Practice::CatalogTree {

namespace {

constexpr std::size_t descriptorSize = 14;

/// A node in the making: its records, and what it says of itself.
struct Node {
    std::vector<std::string> records;
    std::string firstKey;
    std::size_t used = descriptorSize + 2;  // The offset of the free space is always there.

    bool takes(const std::string& record, std::size_t nodeSize) const { return used + record.size() + 2 <= nodeSize; }
    void add(std::string record) {
        used += record.size() + 2;
        records.push_back(std::move(record));
    }
};

std::vector<Node> packed(const std::vector<Record>& records, std::size_t nodeSize) {
    std::vector<Node> nodes;
    for (const Record& record : records) {
        std::string whole = record.key + record.data;
        if (nodes.empty() || !nodes.back().takes(whole, nodeSize)) nodes.emplace_back().firstKey = record.key;
        nodes.back().add(std::move(whole));
    }
    return nodes;
}

std::string written(const Node& node, std::int8_t kind, std::uint8_t height, std::uint32_t next, std::uint32_t before,
                    std::size_t nodeSize) {
    Bytes bytes;
    bytes.big(next).big(before).big(kind).big(height).big(static_cast<std::uint16_t>(node.records.size()));
    bytes.big(std::uint16_t{0});
    std::vector<std::size_t> offsets;
    for (const std::string& record : node.records) {
        offsets.push_back(bytes.size());
        bytes.text(record);
    }
    offsets.push_back(bytes.size());
    bytes.zeros(nodeSize - bytes.size() - 2 * offsets.size());
    for (std::size_t at = offsets.size(); at-- > 0;) bytes.big(static_cast<std::uint16_t>(offsets[at]));
    return std::move(bytes).all();
}

std::string map(std::size_t usedNodes, std::size_t size) {
    std::string bits(size, '\0');
    for (std::size_t at = 0; at < usedNodes; ++at)
        bits[at / 8] = static_cast<char>(static_cast<unsigned char>(bits[at / 8]) | (0x80U >> (at % 8)));
    return bits;
}

}  // namespace

std::string file(const std::vector<Record>& records, Kind kind) {
    const std::size_t nodeSize = kind.nodeSize;
    std::string body;
    std::uint32_t nextNode = 1;
    std::uint16_t depth = 0;
    std::uint32_t lastLeaf = 0;
    std::vector<Node> level = packed(records, nodeSize);
    while (!level.empty()) {
        ++depth;
        std::vector<Record> above;
        for (std::size_t at = 0; at < level.size(); ++at) {
            const std::uint32_t number = nextNode + static_cast<std::uint32_t>(at);
            body += written(level[at], depth == 1 ? -1 : 0, static_cast<std::uint8_t>(depth),
                            at + 1 < level.size() ? number + 1 : 0, at > 0 ? number - 1 : 0, nodeSize);
            above.push_back({level[at].firstKey, Bytes().big(number).all()});
        }
        nextNode += static_cast<std::uint32_t>(level.size());
        if (depth == 1) lastLeaf = nextNode - 1;
        level = level.size() > 1 ? packed(above, nodeSize) : std::vector<Node>();
    }

    const std::size_t mapSize = nodeSize - descriptorSize - 106 - 128 - 8;
    if (nextNode > mapSize * 8) throw Failure("Practice", EFBIG, "The disk image holds too many items.");
    Node header;
    Bytes about;
    about.big(depth).big(depth == 0 ? 0 : nextNode - 1).big(static_cast<std::uint32_t>(records.size()));
    about.big(std::uint32_t{depth == 0 ? 0U : 1U}).big(lastLeaf).big(kind.nodeSize).big(kind.largestKey);
    about.big(nextNode).big(std::uint32_t{0}).zeros(2).big(std::uint32_t{kind.nodeSize}).zeros(1);
    about.big(kind.comparison).big(std::uint32_t{0x6}).zeros(64);  // Large keys, of various lengths.
    header.add(about.all());
    header.add(std::string(128, '\0'));
    header.add(map(nextNode, mapSize));
    return written(header, 1, 0, 0, 0, nodeSize) + body;
}

}  // namespace tarvik::Practice::CatalogTree
