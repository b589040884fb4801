#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Files/FileDescriptor.h"

/// What drives and file systems of this system do to their users.
namespace tarvik::test {

/// Makes the ext4 volume at `volume` answer every call with an I/O error from now on, also for files that are open, as
/// a drive does that was pulled out.
void failDrive(const fs::path& volume);

/// What a file system can forbid, whatever the permissions say: every change, or all but additions.
enum class FileFlag { immutable, appendOnly };

/// A file or a folder with a flag, for as long as this lives. Nobody may remove it, nor anything in it.
class Flagged {
public:
    Flagged(const fs::path& item, FileFlag flag);
    ~Flagged();
    Flagged(const Flagged&) = delete;
    Flagged& operator=(const Flagged&) = delete;

private:
    FileDescriptor m_item;
    int m_flag;
};

}  // namespace tarvik::test
