#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <optional>
#include <string>

/// Decides whether a copy may replace its original: kinds, sizes, link texts and entry counts are compared, entry by
/// entry. Contents are not read. Everything here blocks; any thread. Nothing fails: all that goes wrong becomes a
/// reason.
namespace tarvik::MoveVerifier {

/// The first reason why the copy is not good, in words, or nothing when it is.
std::optional<std::string> failureReason(const Host& host, const fs::path& source, const fs::path& destination);

/// The same without the count of entries, so that a socket, which no copy holds, does not stand against the copy.
std::optional<std::string> failureReasonByItem(const Host& host, const fs::path& source, const fs::path& destination);

}  // namespace tarvik::MoveVerifier
