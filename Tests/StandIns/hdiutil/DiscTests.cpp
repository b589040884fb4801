#include "Platform/Files/Files.h"
#include "Platform/Processes/CommandRunner.h"
#include "StandIns/hdiutil/ImageWorld.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

namespace tarvik::test {
namespace {

using testing::ElementsAre;

/// Where xorriso is; nothing where it is not installed.
std::optional<fs::path> xorriso() {
    for (const char* path : {"/usr/bin/xorriso", "/opt/homebrew/bin/xorriso", "/usr/local/bin/xorriso"})
        if (fs::exists(path)) return path;
    return std::nullopt;
}

class HdiutilDisc : public ImageWorld {
protected:
    void SetUp() override {
        if (!xorriso()) TARVIK_SKIP_BECAUSE("xorriso is not installed.");
    }
    fs::path discOf(std::vector<std::string> options) const {
        const fs::path image = folder / "disc.iso";
        fs::remove(image);
        std::vector<std::string> arguments = {"-as", "mkisofs", "-quiet", "-V", "DISC"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        arguments.insert(arguments.end(), {"-o", image.native(), tree.native()});
        const auto result = CommandRunner::run(*xorriso(), arguments);
        EXPECT_EQ(result.status, 0) << result.stderr;
        return image;
    }
};

TEST_F(HdiutilDisc, KeepsWhatRockRidgeTells) {
    for (const std::vector<std::string>& options : {std::vector<std::string>{"-R"}, {"-R", "-J"}}) {
        const fs::path image = discOf(options);
        EXPECT_THAT(attached(image), ElementsAre((volumes / "DISC").native()));
        EXPECT_EQ(contentsOf(volumes / "DISC"), contentsOf(tree));
        EXPECT_EQ(statusOf(volumes / "DISC/Read Me.txt").st_mtime, statusOf(tree / "Read Me.txt").st_mtime);
        EXPECT_EQ(detach(volumes / "DISC").status, 0);
        expectNothingAttached();
    }
}

TEST_F(HdiutilDisc, KeepsTheNamesOfJoliet) {
    attached(discOf({"-J", "--norock"}));
    EXPECT_EQ(contentOf(volumes / "DISC/Editor.app/Contents/MacOS/Editor"), "#!/bin/sh\n");
}

TEST_F(HdiutilDisc, IsOneVolumeOnADiskWithoutPartitions) {
    const fs::path image = discOf({"-R"});
    EXPECT_THAT(attached(image, "dev-entry"), ElementsAre("/dev/disk4"));
    EXPECT_THAT(attached(image, "volume-kind"), ElementsAre("cd9660"));
}

TEST_F(HdiutilDisc, ThatIsAlsoAMacsDiskShowsTheMacsVolume) {
    for (const char* blockSize : {"2048", "512"}) {
        const fs::path image = discOf({"-R", "-hfsplus", "-apm-block-size", blockSize});
        EXPECT_THAT(attached(image, "volume-kind"), ElementsAre("hfs")) << blockSize;
        EXPECT_EQ(contentsOf(volumes / "DISC"), contentsOf(tree)) << blockSize;
        EXPECT_EQ(detach(volumes / "DISC").status, 0);
        expectNothingAttached();
    }
}

TEST_F(HdiutilDisc, IsReadFromACompressedImageOfIt) {
    const fs::path image = folder / "disc.dmg";
    for (const std::vector<std::string>& options : {std::vector<std::string>{"-R"}, {"-R", "-hfsplus"}}) {
        fs::remove(image);
        Practice::DiskImage::write(image, {{"whole disk (Apple_ISO : 0)", contentOf(discOf(options))}},
                                   Practice::DiskImage::zlib());
        EXPECT_THAT(attached(image), ElementsAre((volumes / "DISC").native()));
        EXPECT_EQ(contentsOf(volumes / "DISC"), contentsOf(tree));
        EXPECT_EQ(detach("disk4").status, 0);
        expectNothingAttached();
    }
}

TEST_F(HdiutilDisc, ThatIsDamagedIsRefused) {
    std::string disc = contentOf(discOf({"-R"}));
    fs::resize_file(folder / "disc.iso", 60'000);
    expectRefusal(folder / "disc.iso", "corrupt image");
    disc.replace(std::size_t{18} * 2048, 20'000, std::string(20'000, '\xFF'));
    makeFile(folder / "other.iso", disc);
    const auto result = attach(folder / "other.iso");
    if (result.status != 0) expectNothingAttached();
}

}  // namespace
}  // namespace tarvik::test
