#pragma once

#include "Installers/Opening/ZipBytes.h"
#include "Installers/Opening/ZipHeader.h"
#include "Platform/Basics/Path.h"

#include <cstdint>
#include <functional>
#include <string_view>

/// The data of an archive's entries.
namespace tarvik::ditto::ZipData {

/// Unpacks the data of an entry of the directory, piece by piece. `shift` is where the archive begins in the file.
/// @throws ItemError, which tells of `path`, when they are packed in a way that is not known, broken, or not as long as
/// the directory says; the pieces before have been used by then
void read(ZipBytes& bytes, const ZipHeader& entry, std::uint64_t shift, const fs::path& path,
          const std::function<void(std::string_view)>& use);

}  // namespace tarvik::ditto::ZipData
