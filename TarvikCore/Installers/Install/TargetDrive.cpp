#include "Installers/Install/TargetDrive.h"

#include "Platform/Files/Files.h"

namespace tarvik {

TargetDrive::TargetDrive(const Host& host, const fs::path& mountPath, const std::optional<std::string>& mark)
    : m_mountPath(Files::standardized(mountPath)), m_volume(DriveGuard::ofMarked(host, m_mountPath, mark)) {}

}  // namespace tarvik
