#pragma once

#include "hdiutil/Entry.h"

#include <cstdio>
#include <memory>

namespace tarvik::hdiutil {

/// Entries on their way from a list to the disk. They wait in a file without a name, so that a volume of a million
/// items takes no more memory than one of ten. Every operation throws Failure.
class EntrySpool {
public:
    EntrySpool();

    void add(const Entry& entry);
    /// Goes back to the first one. Nothing is added any more.
    void rewind();
    /// @returns false behind the last one.
    bool next(Entry& entry);

    /// What the entries will take on a disk, in bytes, with their places in folders.
    std::int64_t neededBytes() const { return m_neededBytes; }

private:
    struct Closing {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    std::unique_ptr<std::FILE, Closing> m_file;
    std::int64_t m_neededBytes = 0;
};

}  // namespace tarvik::hdiutil
