#include "Platform/Files/AppleDouble.h"

bool tarvik::AppleDouble::areKeptAt(const fs::path&) {
    return false;  // No driver of Linux knows them.
}
