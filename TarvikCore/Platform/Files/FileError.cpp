#include "Platform/Files/FileError.h"

#include <fmt/format.h>

#include <system_error>

namespace tarvik {

FileError::FileError(std::string_view verb, const fs::path& path, int errorNumber)
    : Failure("Files", errorNumber,
              fmt::format("Could not {} {}: {}", verb, path.native(), systemErrorText(errorNumber))) {}

std::string systemErrorText(int errorNumber) {
    return std::generic_category().message(errorNumber);
}

}  // namespace tarvik
