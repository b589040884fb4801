#include "Move/FileStash.h"

#include "Move/Disposal.h"
#include "Platform/Files.h"
#include "Platform/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>

namespace tarvik::FileStash {

void moveAside(const Host& host, const fs::path& path, std::string_view reason) {
    if (!Files::itemExists(path)) return;
    std::string stamp = Text::isoDate(host.now());
    stamp.erase(std::remove(stamp.begin(), stamp.end(), ':'), stamp.end());
    Disposal::dispose(host, path, fmt::format("-{}-{}", reason, stamp));
}

}  // namespace tarvik::FileStash
