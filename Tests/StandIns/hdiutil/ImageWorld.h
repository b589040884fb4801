#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Processes/CommandResult.h"
#include "Platform/Text/PropertyList.h"
#include "Practice/DiskImages/DiskImage.h"
#include "Practice/DiskImages/HFSVolume.h"
#include "Support/EnvironmentVariable.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

/// A machine in a folder to which images are attached, and what images are made of.
namespace tarvik::test {

class ImageWorld : public testing::Test {
protected:
    ImageWorld();

    CommandResult attach(const fs::path& image) const;
    CommandResult detach(const std::string& target) const;
    /// Attaches it, and gives what its property list says under a key, in the order of the entities.
    std::vector<std::string> attached(const fs::path& image, const std::string& key = "mount-point") const;
    /// Expects the words and the status, and that nothing is left.
    void expectRefusal(const fs::path& image, const std::string& words) const;
    void expectNothingAttached() const;

    /// An image of one volume with these items.
    fs::path imageOf(const std::vector<Practice::HFSVolume::Item>& items, const std::string& name = "Volume") const;
    /// An image of a volume with the contents of `tree`, its pieces packed in this way.
    fs::path imageOfTree(const Practice::DiskImage::Packing& packing) const;

    TemporaryFolder folder;
    const fs::path machine = folder / "machine";
    const fs::path volumes = machine / "Volumes";
    const fs::path tree = folder / "tree";  ///< holds an application and a link
    const EnvironmentVariable root{"TARVIK_ROOT", machine.native()};
};

/// The picture of a tree, without a line for the tree itself.
std::string contentsOf(const fs::path& tree);

/// A file, a folder or a link at the top of a volume.
Practice::HFSVolume::Item itemAt(std::size_t folder, const std::u16string& name, mode_t mode,
                                 const std::string& content = {});

/// Pieces in bzip2.
Practice::DiskImage::Packing bzip2();
/// Pieces in the stream of LZFSE, with blocks of its simpler kind, LZVN.
Practice::DiskImage::Packing lzfse();

}  // namespace tarvik::test
