#include "State/Uninstall/UninstallSort.h"

#include "Platform/Text/Text.h"

#include <algorithm>
#include <chrono>
#include <cstddef>

namespace tarvik {

namespace {

struct SortTexts {
    const char* label;
    const char* shortLabel;
    const char* listHeader;
};

/// In the order of the enumerators.
constexpr std::array<SortTexts, 8> sortTexts = {{
    {"Name: A to Z", "Name", "All Applications"},
    {"Name: Z to A", "Name", "All Applications"},
    {"Size: Large to Small", "Size", ""},
    {"Size: Small to Large", "Size", ""},
    {"Date: Newest to Oldest", "Date", "Today"},
    {"Date: Oldest to Newest", "Date", "Today"},
    {"App Verification: Not Verified First", "Verification", "Not App Store Verified"},
    {"Permissions: Most First", "Permissions", "With Permissions"},
}};

const SortTexts& textsOf(UninstallSort sort) {
    return sortTexts.at(static_cast<std::size_t>(sort));
}

std::chrono::system_clock::time_point dateOf(const AppRecord& record) {
    return record.modifiedAt.value_or(std::chrono::system_clock::time_point::min());
}

bool standsBefore(const AppRecord& left, const AppRecord& right, UninstallSort sort) {
    switch (sort) {
        case UninstallSort::nameAZ:
            return Text::localizedCompare(left.displayName, right.displayName) < 0;
        case UninstallSort::nameZA:
            return Text::localizedCompare(left.displayName, right.displayName) > 0;
        case UninstallSort::sizeLargeSmall:
            return left.displaySizeBytes() > right.displaySizeBytes();
        case UninstallSort::sizeSmallLarge:
            return left.displaySizeBytes() < right.displaySizeBytes();
        case UninstallSort::dateNewest:
            return dateOf(left) > dateOf(right);
        case UninstallSort::dateOldest:
            return dateOf(left) < dateOf(right);
        case UninstallSort::verificationFirst:
            return !left.isMacAppStore && right.isMacAppStore;
        case UninstallSort::permissionsFirst:
            return left.permissionCount() > right.permissionCount();
    }
    return false;
}

}  // namespace

const std::array<UninstallSort, 8>& allUninstallSorts() {
    using enum UninstallSort;
    static constexpr std::array<UninstallSort, 8> all = {nameAZ,     nameZA,     sizeLargeSmall,    sizeSmallLarge,
                                                         dateNewest, dateOldest, verificationFirst, permissionsFirst};
    return all;
}

std::string labelOf(UninstallSort sort) {
    return textsOf(sort).label;
}

std::string shortLabelOf(UninstallSort sort) {
    return textsOf(sort).shortLabel;
}

std::string listHeaderOf(UninstallSort sort) {
    return textsOf(sort).listHeader;
}

bool isSizeSort(UninstallSort sort) {
    return sort == UninstallSort::sizeLargeSmall || sort == UninstallSort::sizeSmallLarge;
}

std::vector<AppRecord> sorted(std::vector<AppRecord> records, UninstallSort sort) {
    std::stable_sort(records.begin(), records.end(),
                     [sort](const AppRecord& left, const AppRecord& right) { return standsBefore(left, right, sort); });
    return records;
}

}  // namespace tarvik
