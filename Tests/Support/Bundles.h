#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Text/PropertyList.h"

namespace tarvik::test {

/// Makes an application bundle with a program in it, described by `info`.
void makeBundle(const fs::path& bundle, const PropertyList::Dictionary& info = {});
/// Makes a bundle that opens another one.
void makeLauncher(const fs::path& bundle, const fs::path& target, const PropertyList::Dictionary& info = {});

}  // namespace tarvik::test
