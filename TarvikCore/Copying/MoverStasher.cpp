#include "Copying/MoverStasher.h"

#include "Platform/Files/Files.h"

#include <fmt/format.h>

#include <chrono>

namespace tarvik::MoverStasher {

Disposal::Outcome stash(const Host& host, const fs::path& path) {
    return stash(host, path, path);
}

Disposal::Outcome stash(const Host& host, const fs::path& path, const fs::path& place) {
    if (!Files::exists(path)) return {};
    const auto sinceEpoch = host.now().time_since_epoch();
    return Disposal::dispose(host, path, place,
                             fmt::format("-{}", std::chrono::floor<std::chrono::seconds>(sinceEpoch).count()));
}

}  // namespace tarvik::MoverStasher
