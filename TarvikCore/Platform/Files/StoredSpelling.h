#pragma once

#include "Platform/Basics/Path.h"

#include <functional>
#include <string>
#include <vector>

/// A path in the letters that its volume keeps. Where a volume folds case and normal forms, several spellings lead to
/// one item; its own is the one that listings give, so that paths can be compared as texts.
namespace tarvik::StoredSpelling {

/// `path`, which is standardized, with each name as the folder that holds it lists it. Links are not followed. What is
/// not there, and what stands in a folder that cannot be listed, stays as it is. A listing for each component; blocks;
/// any thread; never fails.
fs::path of(const fs::path& path);

/// The name under which `folder` lists its entry `name`: one component of the above.
std::string nameIn(const fs::path& folder, const std::string& name);

/// Whether both are spellings of one name: their folder holds one entry for them. Two hard links are not.
bool areOneName(const fs::path& one, const fs::path& other);

/// The one of a folder's `names` that `name`, under which something was found there, is another spelling of; `name`
/// where that cannot be told. `isTheItem` tells of a name whether it leads to what was found. Pure.
std::string amongNames(std::vector<std::string> names, const std::string& name,
                       const std::function<bool(const std::string&)>& isTheItem);

}  // namespace tarvik::StoredSpelling
