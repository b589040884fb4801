#pragma once

#include "Applications/AppRecordKind.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"
#include "Platform/Text/PropertyList.h"

#include <optional>
#include <string>

/// Tells what kind of application a bundle is, and who made it.
namespace tarvik::AppClassifier {

struct Classification {
    AppRecordKind kind = AppRecordKind::normal;
    bool isTarvikLauncher = false;
    /// Where the application really is, when the bundle is a link or a launcher.
    std::optional<fs::path> externalTargetPath;

    bool operator==(const Classification&) const = default;
};

/// The first rule that fits decides: the system's own, a link, a launcher, on a drive in our folder, in the user's own
/// folder, from the store, anything else. Looks into the bundle for a launcher's target and a receipt.
Classification classify(const Host& host, const fs::path& bundle, const PropertyList& plist, bool isSymlink,
                        const std::optional<fs::path>& symlinkTarget);

/// The vendor's name out of the bundle's own words, at most 80 characters; pure.
std::optional<std::string> developer(const PropertyList& plist);

/// Whether a bundle is a launcher that we generated.
bool detectTarvikLauncher(const fs::path& bundle, const PropertyList& plist);
/// The path that a launcher opens, as it is stored in it; nothing when the file cannot be read.
std::optional<fs::path> readLauncherTarget(const fs::path& bundle);

}  // namespace tarvik::AppClassifier
