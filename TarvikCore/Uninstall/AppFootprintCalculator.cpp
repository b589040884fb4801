#include "Uninstall/AppFootprintCalculator.h"

#include "Uninstall/RelatedFileScanner.h"

namespace tarvik {

std::int64_t AppFootprintCalculator::footprint(const Host& host, const AppRecord& app,
                                               const Cancellation& cancellation) {
    std::int64_t bytes = 0;
    for (const UninstallCandidate& candidate :
         RelatedFileScanner::onDisk(host, app, RelatedFileScanner::Sizes::measured, cancellation))
        bytes += candidate.sizeBytes;
    return bytes;
}

}  // namespace tarvik
