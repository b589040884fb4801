#pragma once

#include "Platform/FileDescriptor.h"
#include "Platform/Path.h"

/// What drives and file systems of this system do to their users.
namespace tarvik::test {

/// Makes the ext4 volume at `volume` answer every call with an I/O error from now on, also for files that are open, as
/// a drive does that was pulled out.
void failDrive(const fs::path& volume);

/// Nobody may change or remove the file while this lives, whatever its permissions say.
class Immutable {
public:
    explicit Immutable(const fs::path& file);
    ~Immutable();
    Immutable(const Immutable&) = delete;
    Immutable& operator=(const Immutable&) = delete;

private:
    FileDescriptor m_file;
};

}  // namespace tarvik::test
