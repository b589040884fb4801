#include "Installers/Install/ContainedItemsInstaller.h"

#include "Installers/Inspection/ContainedItemScanner.h"
#include "Installers/Install/InstallCancellation.h"

namespace tarvik::ContainedItemsInstaller {

void install(const Host& host, const fs::path& folder, const ItemInstaller& installItem,
             const Cancellation& cancellation, std::vector<std::string>& lines) {
    InstallCancellation::throwIfAsked(cancellation);
    for (const auto& item : ContainedItemScanner::scan(host, folder)) {
        InstallCancellation::throwIfAsked(cancellation);
        for (auto& line : installItem(item.path)) lines.push_back(std::move(line));
    }
}

}  // namespace tarvik::ContainedItemsInstaller
