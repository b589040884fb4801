#include "Platform/Text/UserLocale.h"

namespace tarvik {

std::string UserLocale::inSystemSettings() {
    return {};
}

}  // namespace tarvik
