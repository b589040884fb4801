#include "Applications/AppClassifier.h"

#include "Applications/AppFlags.h"
#include "Applications/LauncherLayout.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Machine/SystemFolders.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <cstdint>
#include <string_view>

namespace tarvik {

namespace {

std::string cleanedNotice(const std::string& notice) {
    constexpr std::int64_t longest = 80;
    const std::string words =
        Text::replacing(Text::replacing(Text::displayable(notice), "Copyright", ""), "\u00A9", "");
    return Text::firstCharacters(Text::trimmed(words), longest);
}

}  // namespace

AppClassifier::Classification AppClassifier::classify(const Host& host, const fs::path& bundle,
                                                      const PropertyList& plist, bool isSymlink,
                                                      const std::optional<fs::path>& symlinkTarget) {
    const std::string_view path = bundle.native();
    if (path.starts_with(SystemFolders::system(host).native() + "/")) return {.kind = AppRecordKind::systemRisky};
    if (isSymlink) return {.kind = AppRecordKind::symlink, .externalTargetPath = symlinkTarget};
    if (detectTarvikLauncher(bundle, plist))
        return {.kind = AppRecordKind::tarvikLauncher,
                .isTarvikLauncher = true,
                .externalTargetPath = readLauncherTarget(bundle)};
    if (path.find(fmt::format("/{}/", AppStorageNames::externalRoot)) != path.npos)
        return {.kind = AppRecordKind::externalTarget};
    if (path.starts_with((host.home / "Applications").native())) return {.kind = AppRecordKind::userApplications};
    if (AppFlags::isMacAppStore(bundle)) return {.kind = AppRecordKind::macAppStore};
    return {};
}

std::optional<std::string> AppClassifier::developer(const PropertyList& plist) {
    for (const std::string_view key : {"CFBundleGetInfoString", "NSHumanReadableCopyright"}) {
        const auto notice = plist.text(key);
        if (notice && !notice->empty()) return cleanedNotice(*notice);
    }
    return std::nullopt;
}

bool AppClassifier::detectTarvikLauncher(const fs::path& bundle, const PropertyList& plist) {
    const auto identifier = plist.text("CFBundleIdentifier");
    return (identifier && identifier->ends_with(LauncherLayout::identifierSuffix)) ||
           plist.text("CFBundleExecutable") == LauncherLayout::executable ||
           Files::exists(bundle / LauncherLayout::targetFile);
}

std::optional<fs::path> AppClassifier::readLauncherTarget(const fs::path& bundle) {
    try {
        const std::string text = Files::read(bundle / LauncherLayout::targetFile, LauncherLayout::longestTarget);
        // What comes after a zero byte would be lost on the way to the system: such a text names no path.
        if (text.find('\0') != text.npos) return std::nullopt;
        return Text::trimmed(text);
    } catch (const Failure&) {
        return std::nullopt;
    }
}

}  // namespace tarvik
