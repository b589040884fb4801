#include "hdiutil/Attach.h"

#include "Platform/Basics/Failure.h"
#include "hdiutil/Attachments.h"
#include "hdiutil/CompressedImage.h"
#include "hdiutil/DiskContents.h"
#include "hdiutil/ImageFile.h"

#include <fmt/format.h>

#include <utility>

namespace tarvik::hdiutil::Attach {

namespace {

/// What a container of APFS volumes, and one of these, are called in property lists.
constexpr const char* apfsContainer = "EF57347C-0000-11AA-AA11-00306543ECAC";
constexpr const char* apfsVolume = "41504653-0000-11AA-AA11-00306543ECAC";

/// Tells of a disk as a Mac does: the disk, its slices, and for an APFS container one more disk with its volumes.
/// A volume's mount point is where it shall be shown.
void tell(const DiskContents::Contents& contents, int number, const fs::path& volumes, Attachment& attachment,
          std::vector<fs::path>& folders) {
    auto& entities = attachment.entities;
    const std::string disk = fmt::format("/dev/disk{}", number);
    if (!contents.scheme.empty()) entities.push_back({disk, contents.scheme, contents.scheme});
    int nextDisk = number + 1;
    for (const auto& [slice, opened] : contents.slices) {
        const bool isWholeDisk = contents.scheme.empty();
        const std::string device = isWholeDisk ? disk : fmt::format("{}s{}", disk, slice.number);
        const bool isContainer = !opened.empty() && opened.front().kind == "apfs";
        Entity entity{device, slice.content, slice.unmapped};
        if (!opened.empty() && !isContainer) {
            entity.kind = opened.front().kind;
            entity.mountPoint = volumes / opened.front().name;
            folders.push_back(opened.front().folder);
        }
        entities.push_back(entity);
        if (!isContainer) continue;
        const std::string container = fmt::format("/dev/disk{}", nextDisk++);
        entities.push_back({container, apfsContainer, apfsContainer});
        int volume = 0;
        for (const auto& each : opened) {
            entities.push_back(
                {fmt::format("{}s{}", container, ++volume), apfsVolume, apfsVolume, each.kind, volumes / each.name});
            folders.push_back(each.folder);
        }
    }
}

}  // namespace

Attachment run(const fs::path& root, const fs::path& path) {
    const ImageFile image(path);
    if (CompressedImage::isEncrypted(image)) throw Failure("hdiutil", 1, "Authentication error");
    Attachments attachments(root);
    const std::string identity = AttachmentRecord::identityOf(image.status());
    if (auto attached = attachments.withIdentity(identity)) return *std::move(attached);

    const int number = attachments.freeNumber();
    try {
        const fs::path folder = attachments.begin(number);
        Attachment attachment{image.path(), identity, {}};
        std::vector<fs::path> folders;
        tell(DiskContents::open(image, folder), number, root / "Volumes", attachment, folders);
        attachments.show(number, attachment, folders);
        return attachment;
    } catch (...) {
        attachments.abandon(number);
        throw;
    }
}

}  // namespace tarvik::hdiutil::Attach
