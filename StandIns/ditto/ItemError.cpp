#include "ditto/ItemError.h"

#include "Platform/Files/FileError.h"

#include <fmt/format.h>

namespace tarvik::ditto {

ItemError::ItemError(const fs::path& path, int errorNumber)
    : ItemError(path, errorNumber, systemErrorText(errorNumber)) {}

ItemError::ItemError(const fs::path& path, int errorNumber, std::string_view reason)
    : Failure("ditto", errorNumber, fmt::format("{}: {}", path.native(), reason)) {}

}  // namespace tarvik::ditto
