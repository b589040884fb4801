#include "MovePlan/AppManagement.h"

#include "Discovery/AppBundleEnumerator.h"
#include "Platform/Files/AttributeCalls.h"
#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/Files.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>

namespace tarvik::AppManagement {

namespace {

bool isSigned(const fs::path& bundle) {
    return Files::exists(bundle / "Contents/_CodeSignature");
}

std::vector<fs::path> bundlesAt(const fs::path& item) {
    if (Files::isSymbolicLink(item)) return {};
    if (AppBundleEnumerator::isBundleName(item.filename().native())) return {item};
    std::vector<fs::path> bundles = AppBundleEnumerator::bundles(item);
    // What a link in the folder leads to stays where it is.
    const auto folder = Files::resolved(item);
    std::erase_if(bundles, [&](const fs::path& bundle) {
        const auto real = Files::resolved(bundle);
        return !real || !folder || !Files::isAtOrBelow(*real, *folder);
    });
    return bundles;
}

int errorOfAttribute(const fs::path& item, int openFlags) {
    const FileDescriptor handle(::open(item.c_str(), openFlags | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    if (!handle) return errno;
    if (const int error = AttributeCalls::put(handle.get())) return error;
    return AttributeCalls::take(handle.get());
}

/// open(2) and setxattr(2) answer with EACCES where permissions forbid it, and many lists may not be written: so the
/// folder with the list is tried too. A move has to empty that folder, and is refused before where permissions keep it.
int errorOfChange(const fs::path& bundle) {
    const int error = errorOfAttribute(bundle / "Contents/Info.plist", O_WRONLY);
    return error == 0 || error == EPERM ? error : errorOfAttribute(bundle / "Contents", O_RDONLY | O_DIRECTORY);
}

}  // namespace

std::vector<Trial> tryToChange(const fs::path& item) {
    std::vector<Trial> trials;
    for (const fs::path& bundle : bundlesAt(item))
        if (isSigned(bundle)) trials.push_back({bundle, errorOfChange(bundle)});
    return trials;
}

std::optional<std::string> refusalAfter(const std::vector<Trial>& trials) {
    const auto forbidden =
        std::find_if(trials.begin(), trials.end(), [](const Trial& trial) { return trial.error == EPERM; });
    if (forbidden == trials.end()) return std::nullopt;
    return fmt::format(
        "{} can't be moved until Tarvik, or the terminal it runs in, may change applications: allow it under System "
        "Settings > Privacy & Security > App Management.",
        forbidden->bundle.filename().native());
}

std::optional<std::string> refusalOf(const fs::path& item) {
    return refusalAfter(tryToChange(item));
}

}  // namespace tarvik::AppManagement
