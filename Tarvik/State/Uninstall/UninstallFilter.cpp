#include "State/Uninstall/UninstallFilter.h"

namespace tarvik {

namespace {

constexpr std::chrono::seconds longUnused{5'184'000};

}  // namespace

const std::array<UninstallFilter, 4>& allUninstallFilters() {
    using enum UninstallFilter;
    static constexpr std::array<UninstallFilter, 4> filters = {all, unused, selected, incompatible};
    return filters;
}

std::string labelOf(UninstallFilter filter) {
    switch (filter) {
        case UninstallFilter::all:
            return "All Applications";
        case UninstallFilter::unused:
            return "Unused";
        case UninstallFilter::selected:
            return "Selected";
        case UninstallFilter::incompatible:
            return "Incompatible Applications";
    }
    return {};
}

bool keeps(UninstallFilter filter, const AppRecord& record, const std::set<std::string>& markedIds,
           std::chrono::system_clock::time_point now) {
    switch (filter) {
        case UninstallFilter::all:
            return true;
        case UninstallFilter::unused:
            return !record.modifiedAt || *record.modifiedAt < now - longUnused;
        case UninstallFilter::selected:
            return markedIds.contains(record.id);
        case UninstallFilter::incompatible:
            return record.kind == AppRecordKind::symlink || record.hasSystemExtension;
    }
    return false;
}

}  // namespace tarvik
