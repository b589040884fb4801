#include "Platform/Files/FileDescriptor.h"
#include "StandIns/StandInRun.h"
#include "StandIns/hdiutil/ImageWorld.h"

#include <gtest/gtest.h>

#include <fcntl.h>

namespace tarvik::test {
namespace {

class HdiutilBusyVolume : public ImageWorld {};

TEST_F(HdiutilBusyVolume, StaysUntilItsFilesAreClosed) {
    attached(imageOfTree(Practice::DiskImage::zlib()));
    FileDescriptor opened(::open((volumes / "Editor/Read Me.txt").c_str(), O_RDONLY | O_CLOEXEC));
    const auto refused = runStandIn("hdiutil", {"detach", (volumes / "Editor").native()});
    EXPECT_EQ(refused.status, 16);
    EXPECT_EQ(refused.stderr, "hdiutil: couldn't unmount \"disk4\" - Resource busy\n");
    EXPECT_TRUE(fs::exists(volumes / "Editor/Read Me.txt"));
    opened.close();
    EXPECT_EQ(detach(volumes / "Editor").status, 0);
    expectNothingAttached();
}

}  // namespace
}  // namespace tarvik::test
