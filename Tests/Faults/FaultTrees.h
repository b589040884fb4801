#pragma once

#include "Platform/Basics/Path.h"

namespace tarvik::test {

/// The trees that are moved, and how they are told apart.
namespace FaultTrees {

/// A folder with everything that a copy can get wrong.
void makeFolderOfAllKinds(const fs::path& tree);
/// More items than the copy tool handles on one thread.
void makeCrowd(const fs::path& tree);
/// An application with a program, an icon, links, an attribute and a resource that may not be written.
void makeApplication(const fs::path& bundle);
/// Data of an application, which differs from `seed` to `seed`.
void makeData(const fs::path& tree, unsigned seed);

/// Whether the trees are the same to the last byte.
bool isSame(const fs::path& tree, const fs::path& reference);
/// Whether the same tree stands in the folder, however deep.
bool isSameIn(const fs::path& folder, const fs::path& reference);

void copy(const fs::path& from, const fs::path& to);

}  // namespace FaultTrees

}  // namespace tarvik::test
