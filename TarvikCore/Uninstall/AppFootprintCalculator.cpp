#include "Uninstall/AppFootprintCalculator.h"

#include "AppData/SupplementalInstall.h"
#include "Applications/ExternalTarget.h"
#include "Discovery/AppBundleEnumerator.h"
#include "Platform/Files/Files.h"
#include "Platform/Storage/SizingService.h"
#include "Uninstall/RelatedFileScanner.h"

namespace tarvik::AppFootprintCalculator {

namespace {

/// The bundle that a launcher stands for, when it is there; the record's own else. A launcher's text can name anything:
/// only a bundle is measured.
fs::path measuredBundle(const AppRecord& app) {
    if (!app.isTarvikLauncher) return app.bundlePath;
    const auto target = ExternalTarget::of(app);
    const bool isBundle = target && AppBundleEnumerator::isBundleName(target->filename().native());
    return isBundle && Files::exists(*target) ? *target : app.bundlePath;
}

}  // namespace

std::int64_t footprint(const Host& host, const AppRecord& app, const Cancellation& cancellation) {
    std::int64_t bytes = 0;
    for (const UninstallCandidate& candidate :
         RelatedFileScanner::onDisk(host, app, RelatedFileScanner::Sizes::measured, cancellation))
        bytes += candidate.sizeBytes;
    return bytes;
}

AppRecord measured(const Host& host, const AppRecord& app, const Cancellation& cancellation) {
    AppRecord sized = app.withBundleSize(SizingService::size(host, measuredBundle(app), cancellation));
    if (SupplementalInstall::matches(host, app.bundlePath))
        sized = sized.withFootprint(footprint(host, app, cancellation));
    return sized;
}

}  // namespace tarvik::AppFootprintCalculator
