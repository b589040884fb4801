#pragma once

#include "Platform/Machine/Host.h"

#include <chrono>
#include <optional>
#include <string>

/// Who signed an application, and how it is notarized, in words for a user. Each blocks for one run of a tool, however
/// long that takes without a limit, and never fails. What a tool says that had to be stopped is not listened to.
namespace tarvik::CodesignMetadata {

using Limit = std::optional<std::chrono::duration<double>>;

/// The name in the developer's certificate, "Apple (Mac App Store)", or "Unsigned / Ad-hoc"; "Unknown" when the tool
/// had to be stopped.
std::string teamName(const Host& host, const fs::path& path, Limit limit = std::nullopt);
/// "Notarized", "Mac App Store", "Not signed", "Accepted" or "Unknown".
std::string notarizationStatus(const Host& host, const fs::path& path, Limit limit = std::nullopt);

}  // namespace tarvik::CodesignMetadata
