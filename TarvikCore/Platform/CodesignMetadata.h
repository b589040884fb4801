#pragma once

#include "Platform/Host.h"

#include <string>

/// Who signed an application, and how it is notarized, in words for a user. Each blocks for one run of a tool, however
/// long that takes, and never fails.
namespace tarvik::CodesignMetadata {

/// The name in the developer's certificate, "Apple (Mac App Store)", or "Unsigned / Ad-hoc".
std::string teamName(const Host& host, const fs::path& path);
/// "Notarized", "Mac App Store", "Not signed", "Accepted" or "Unknown".
std::string notarizationStatus(const Host& host, const fs::path& path);

}  // namespace tarvik::CodesignMetadata
