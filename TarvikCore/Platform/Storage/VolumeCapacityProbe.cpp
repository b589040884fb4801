#include "Platform/Storage/VolumeCapacityProbe.h"

#include "Platform/Machine/VolumeList.h"

namespace tarvik::VolumeCapacityProbe {

std::int64_t freeBytes(const Host& host, const fs::path& path) {
    return host.volumes->availableBytes(path).value_or(0);
}

}  // namespace tarvik::VolumeCapacityProbe
