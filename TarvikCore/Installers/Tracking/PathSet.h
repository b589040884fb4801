#pragma once

#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace tarvik {

/// A set of paths that is kept small: a million of them take some 20 to 40 MB, where as many texts would take 150.
///
/// The paths stand in the order of a walk, each folder before its contents, and of each only what differs from the one
/// before it is kept: how many bytes they share, and the rest. They lie in blocks of about 4 KB, each of which begins
/// with a whole path, so that one path is looked up by its block alone. Paths are bytes and not looked at: whether they
/// are standardized is up to who adds them.
class PathSet {
public:
    class Iterator;

    PathSet() = default;
    /// In any order; what is there twice counts once.
    explicit PathSet(std::vector<std::string> paths);

    /// Whether `one` stands before `other`: by their bytes, where "/" comes before every other byte. So the contents of
    /// a folder follow it at once, "a", "a/b", "a.b".
    static bool isBefore(std::string_view one, std::string_view other);

    /// Adds a path that comes after all that are there. False, and nothing is added, when it does not.
    bool append(std::string_view path);
    bool contains(std::string_view path) const;
    std::size_t size() const { return m_size; }
    bool empty() const { return m_size == 0; }

    /// The paths as `std::string_view`, each valid until the iterator goes on. As long as one is in use the set must
    /// not change.
    Iterator begin() const;
    Iterator end() const;

    bool operator==(const PathSet&) const = default;

private:
    std::vector<std::string> m_blocks;
    std::string m_last;
    std::size_t m_size = 0;
};

class PathSet::Iterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = std::string_view;
    using difference_type = std::ptrdiff_t;
    using pointer = const std::string_view*;
    using reference = std::string_view;

    Iterator() = default;

    std::string_view operator*() const { return m_path; }
    Iterator& operator++();
    bool operator==(const Iterator& other) const { return m_block == other.m_block && m_next == other.m_next; }

private:
    friend class PathSet;
    /// At the first path of a block, or at the end of the set where there is no such block.
    Iterator(const std::vector<std::string>& blocks, std::size_t block);
    void read();

    const std::vector<std::string>* m_blocks = nullptr;
    std::size_t m_block = 0;
    std::size_t m_next = 0;  // Where the path after this one begins in its block.
    std::string m_path;
};

}  // namespace tarvik
