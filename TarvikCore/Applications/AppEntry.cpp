#include "Applications/AppEntry.h"

#include <algorithm>
#include <utility>

namespace tarvik {

std::int64_t AppEntry::totalSize() const {
    return appSize + dataSize;
}

std::optional<DataPathSize> AppEntry::dominantDataPath() const {
    const auto largest =
        std::max_element(dataPathSizes.begin(), dataPathSizes.end(),
                         [](const DataPathSize& left, const DataPathSize& right) { return left.size < right.size; });
    if (largest == dataPathSizes.end()) return std::nullopt;
    return *largest;
}

RiskLevel AppEntry::riskLevel() const {
    if (hasSystemExtension) return RiskLevel::high;
    if (isMacAppStore || hasLoginItems) return RiskLevel::medium;
    return RiskLevel::low;
}

std::vector<std::string> AppEntry::warnings() const {
    std::vector<std::string> texts;
    if (isMacAppStore) texts.emplace_back("Mac App Store app \u2014 moving may break the receipt");
    if (hasSystemExtension) texts.emplace_back("Has a system extension \u2014 do not move");
    if (hasLoginItems) texts.emplace_back("Registers a login item / helper");
    if (isAlreadySymlinked) texts.emplace_back("Already a symlink (previously moved)");
    return texts;
}

AppEntry AppEntry::withDisplayName(std::string newName) const {
    AppEntry copy = *this;
    copy.name = std::move(newName);
    return copy;
}

AppEntry AppEntry::withSizes(std::int64_t bundleBytes, std::vector<DataPathSize> paths) const {
    AppEntry copy = *this;
    copy.appSize = bundleBytes;
    copy.dataSize = 0;
    for (const DataPathSize& path : paths) copy.dataSize += path.size;
    copy.dataPathSizes = std::move(paths);
    return copy;
}

}  // namespace tarvik
