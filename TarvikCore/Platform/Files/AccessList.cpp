#include "Platform/Files/AccessList.h"

namespace tarvik::AccessList {

std::optional<Culprit> culprit(const fs::path& item, const std::vector<Denial>& own,
                               const std::vector<Denial>& ofFolder) {
    std::optional<Culprit> only;
    int count = 0;
    const auto look = [&](const Denial& denial, const fs::path& place, std::string_view right) {
        ++count;
        // The command for a plain entry does not name an inherited one: chmod(1) has another mode for those.
        if (denial.isForEveryone && !denial.isInherited) only = {place, right};
    };
    for (const Denial& denial : own)
        if (denial.coversItem) look(denial, item, "delete");
    for (const Denial& denial : ofFolder)
        if (denial.coversContents) look(denial, item.parent_path(), "delete_child");
    return count == 1 ? only : std::nullopt;
}

std::optional<Culprit> culprit(const fs::path& item) {
    return culprit(item, denialsAt(item), denialsAt(item.parent_path()));
}

}  // namespace tarvik::AccessList
