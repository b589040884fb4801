#include "Installers/Tracking/ReceiptScanner.h"

#include "Platform/Processes/CommandRunner.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace tarvik::ReceiptScanner {

ReceiptSnapshot capture(const Host& host) {
    const auto result = CommandRunner::run(host.tools.pkgutil, {"--pkgs"});
    ReceiptSnapshot snapshot;
    std::string_view rest = result.stdout;
    while (!rest.empty()) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        if (!line.empty()) snapshot.packageIDs.emplace(line);
        rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    }
    return snapshot;
}

std::vector<std::string> added(const ReceiptSnapshot& before, const ReceiptSnapshot& after) {
    std::vector<std::string> identifiers;
    std::set_difference(after.packageIDs.begin(), after.packageIDs.end(), before.packageIDs.begin(),
                        before.packageIDs.end(), std::back_inserter(identifiers));
    return identifiers;
}

}  // namespace tarvik::ReceiptScanner
