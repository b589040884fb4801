#include "Discovery/ApplicationsRootScan.h"

#include "Discovery/AppBundleEnumerator.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/ListedFolder.h"

#include <cstddef>
#include <utility>

namespace tarvik::ApplicationsRootScan {

namespace {

void addEntriesOf(const fs::path& root, Result& result) {
    const auto folder = ListedFolder::at(root);
    if (!folder) return;
    for (std::size_t index = 0; index < folder->size(); ++index) {
        if (!AppBundleEnumerator::isBundleName(folder->name(index))) continue;
        if (folder->type(index) != Files::ItemType::symbolicLink) {
            result.realAppNames.insert(folder->name(index));
            continue;
        }
        fs::path location = root / folder->name(index);
        if (const auto text = Files::linkText(location))
            result.symlinks.push_back({std::move(location), Files::standardized(root / *text)});
    }
}

}  // namespace

Result scan(const std::vector<fs::path>& roots) {
    Result result;
    for (const fs::path& root : roots) addEntriesOf(root, result);
    return result;
}

}  // namespace tarvik::ApplicationsRootScan
