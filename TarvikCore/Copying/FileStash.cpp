#include "Copying/FileStash.h"

#include "Platform/Files/Files.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>

namespace tarvik::FileStash {

Disposal::Outcome moveAside(const Host& host, const fs::path& path, std::string_view reason) {
    return moveAside(host, path, path, reason);
}

Disposal::Outcome moveAside(const Host& host, const fs::path& path, const fs::path& place, std::string_view reason) {
    if (!Files::itemExists(path)) return {};
    std::string stamp = Text::isoDate(host.now());
    stamp.erase(std::remove(stamp.begin(), stamp.end(), ':'), stamp.end());
    return Disposal::dispose(host, path, place, fmt::format("-{}-{}", reason, stamp));
}

}  // namespace tarvik::FileStash
