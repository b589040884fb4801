#include "Move/VolumeFlush.h"

#include "Platform/SystemCalls.h"

namespace tarvik {

VolumeFlush::VolumeFlush(const fs::path& item)
    : m_error(
          std::async(std::launch::async | std::launch::deferred, [item] { return SystemCalls::flushVolume(item); })) {}

}  // namespace tarvik
