#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Files/FileDescriptor.h"

#include <string>

namespace tarvik::test {

/// A chain of folders, each in the one before, deeper than any path can say. Each level holds the file "file", whose
/// content is the level's number. Removed at the end of its life.
class DeepTree {
public:
    /// Says that there is, or will be, such a tree at `root`.
    DeepTree(fs::path root, int levels) : m_root(std::move(root)), m_levels(levels) {}
    ~DeepTree();
    DeepTree(const DeepTree&) = delete;
    DeepTree& operator=(const DeepTree&) = delete;

    void make() const;
    /// How many levels hold what `make` puts there, counted from the top to the first that does not.
    int intactLevels() const;

private:
    /// Long names, so that the whole is far longer than any path.
    static const std::string& levelName();

    fs::path m_root;
    int m_levels;
};

}  // namespace tarvik::test
