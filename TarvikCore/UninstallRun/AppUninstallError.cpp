#include "UninstallRun/AppUninstallError.h"

#include <utility>

namespace tarvik {

AppUninstallError AppUninstallError::refused(std::string message) {
    return {"AppUninstall", 0, std::move(message)};
}

}  // namespace tarvik
