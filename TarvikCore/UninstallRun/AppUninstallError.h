#pragma once

#include "Platform/Basics/Failure.h"

#include <string>

namespace tarvik {

/// An uninstall that is refused before anything is touched. Its domain is "AppUninstall".
class AppUninstallError : public Failure {
public:
    static AppUninstallError refused(std::string message);

private:
    using Failure::Failure;
};

}  // namespace tarvik
