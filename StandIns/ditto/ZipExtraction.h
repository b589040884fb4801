#pragma once

#include "Platform/Basics/Path.h"
#include "ditto/Diagnostics.h"

/// Expands zip archives.
namespace tarvik::ditto::ZipExtraction {

/// Expands what is in `archive` into the folder `destination`, which is made where it is missing, and merged with what
/// it holds. What came to stand there before a failure stays.
///
/// It goes wherever the names of the entries lead, by ".." and through links to folders, as nothing in the page of the
/// Mac's tool keeps that from it; except that a name which begins with "/" is one below `destination`. A link, a pipe
/// or a device that stands where a file belongs makes way for it.
///
/// Says in `diagnostics` what keeps it from going on: it ends with the first thing that goes wrong. Blocks.
void extract(const fs::path& archive, const fs::path& destination, Diagnostics& diagnostics);

}  // namespace tarvik::ditto::ZipExtraction
