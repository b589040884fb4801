#include "Platform/Storage/VolumeFlush.h"

#include "Platform/Files/SystemCalls.h"

namespace tarvik {

VolumeFlush::VolumeFlush(const fs::path& item)
    : m_error(
          std::async(std::launch::async | std::launch::deferred, [item] { return SystemCalls::flushVolume(item); })) {}

}  // namespace tarvik
