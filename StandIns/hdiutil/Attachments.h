#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Files/FileDescriptor.h"
#include "hdiutil/Attachment.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarvik::hdiutil {

/// The attached images of a machine in a folder. They are kept in `Volumes/.diskimages`, a folder for each, in which an
/// image's volumes also grow before they are shown, and to which they go back before they are removed. One process at
/// a time holds them; another one waits. The folder goes with the last image.
///
/// A record stands in its folder as soon as anything of the image is shown, and is called finished only while all of it
/// is: what a killed process has left is told by that, and removed when the next one comes.
class Attachments {
public:
    /// Waits for its turn, and clears up. @throws FileError
    explicit Attachments(const fs::path& root);
    Attachments(const Attachments&) = delete;
    Attachments& operator=(const Attachments&) = delete;
    ~Attachments();

    /// The attached image with this identity whose volumes still stand.
    std::optional<Attachment> withIdentity(const std::string& identity) const;

    /// A disk's number that is free.
    int freeNumber() const;
    /// A new empty folder for the image that becomes the disk of this number.
    fs::path begin(int number);
    /// Shows the volumes, which lie in `folders` in the order of the entities that have a mount point, under names like
    /// those asked for by the mount points, where nothing else stands; and keeps the record. It tells the places.
    void show(int number, Attachment& attachment, const std::vector<fs::path>& folders);
    /// Removes what `begin` has made and what has become of it.
    void abandon(int number) noexcept;

    /// The disk of an attached image that a path of a volume or a name of a device means.
    std::optional<int> numberOf(std::string_view target) const;
    /// Takes the image's volumes away, whatever is in them.
    void end(int number);

private:
    fs::path folderOf(int number) const;
    std::vector<int> numbers() const;
    Attachment recordOf(int number) const;
    void hide(const Attachment& attachment, const fs::path& folder);

    fs::path m_volumes;
    fs::path m_folder;
    FileDescriptor m_lock;
};

}  // namespace tarvik::hdiutil
