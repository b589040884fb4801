#include "Installers/Options/InstallerOptionCheck.h"

#include "AppData/DataName.h"
#include "Platform/Basics/Failure.h"

#include <fmt/format.h>

#include <string_view>

namespace tarvik::InstallerOptionCheck {

namespace {

/// Whether the text is names with single slashes between them, none of which leads up or breaks a line.
bool isPlainRelativePath(std::string_view text) {
    while (true) {
        const std::string_view name = text.substr(0, text.find('/'));
        if (!DataName::isOneComponent(name)) return false;
        if (name.size() == text.size()) return true;
        text.remove_prefix(name.size() + 1);
    }
}

}  // namespace

void requireSafe(const InstallerOption& option) {
    const auto refuse = [&](std::string_view why) {
        throw Failure("InstallerOption", 1, fmt::format("The option \"{}\" cannot be used: {}", option.id, why));
    };
    if (!isPlainRelativePath(option.externalRootName))
        refuse("its externalRootName must be the name of a folder on the drive.");
    std::string_view links = option.applicationLinkRoot.native();
    if (links.ends_with('/')) links.remove_suffix(1);
    if (!links.starts_with('/') || !isPlainRelativePath(links.substr(1)))
        refuse("its applicationLinkRoot must be the absolute path of a folder, without \"..\".");
}

}  // namespace tarvik::InstallerOptionCheck
