#include "Installers/Install/InstallLinePath.h"

#include "AppData/DataName.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <string>

namespace tarvik::InstallLinePath {

namespace {

/// A name for a sentence of one line.
std::string shown(std::string name) {
    std::replace_if(
        name.begin(), name.end(), [](char byte) { return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F; },
        '?');
    return Text::displayable(name);
}

}  // namespace

void require(const fs::path& path) {
    for (const fs::path& name : path.relative_path())
        if (!DataName::isOneComponent(name.native()))
            throw Failure("install", EINVAL, fmt::format("{} has a name that cannot be used.", shown(name)));
}

}  // namespace tarvik::InstallLinePath
