#pragma once

#include "Platform/Basics/Cancellation.h"
#include "Platform/Machine/Host.h"

#include <string>
#include <string_view>
#include <vector>

/// What the machine's installer remembers of the packages that it has installed.
namespace tarvik::PackageReceipts {

/// The identifiers that `pkgutil` lists when it is asked for exactly this one, in its order. Waits for the
/// tool as long as it runs, or until it is cancelled; blocks; any thread; never fails: without an answer there are
/// none. Lines that are no identifiers are left out.
std::vector<std::string> named(const Host& host, const std::string& identifier, const Cancellation& cancellation = {});

/// A pattern that fits `text` and nothing else: an extended regular expression, as re_format(7) of a Mac tells. Pure.
std::string patternOf(std::string_view text);

}  // namespace tarvik::PackageReceipts
