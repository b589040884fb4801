#pragma once

#include "Installers/Opening/DiskImageMount.h"
#include "Platform/Basics/Path.h"
#include "Platform/Files/FileDescriptor.h"
#include "Platform/Machine/Host.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarvik {

/// A small file in the host's temporary folder that remembers an image while it is attached. The tool writes its answer
/// into it by itself, so that the answer is there even when this process was killed before the tool had ended; and the
/// lock on it lasts until both have ended. It also holds what was attached before, which is not ours.
class DiskImageNote {
public:
    /// Makes the file and locks it. @throws FileError
    static DiskImageNote make(const Host& host, const fs::path& image);
    /// Whether a file of this name is one.
    static bool isName(std::string_view name);
    /// What a file remembers of an attached image, and which of it is still what it was. Nothing when nothing was
    /// attached, or something else stands in the place by now.
    static std::optional<DiskImageMount> remembered(const fs::path& note);

    /// What the tool writes to.
    const FileDescriptor& file() const { return m_file; }
    /// What the tool has answered so far. @throws FileError
    std::string answer() const;
    /// Whether something of what the answer names was there before.
    bool wasThere(const DiskImageMount& mount) const;
    /// Notes what stands at the mount points, so that nothing else is ever taken for it; keeps the note for as long as
    /// the mount lives.
    void keepFor(DiskImageMount& mount);
    void remove() noexcept;

private:
    struct Before {
        fs::path image;
        /// The paths of all volumes and devices.
        std::vector<std::string> items;
    };

    DiskImageNote(fs::path path, FileDescriptor file, Before before);

    fs::path m_path;
    FileDescriptor m_file;
    Before m_before;
    std::size_t m_answerAt = 0;
};

}  // namespace tarvik
