#include "StandIns/hdiutil/ImageWorld.h"
#include "Support/ExtendedAttributes.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <sys/stat.h>

namespace tarvik::test {
namespace {

class HdiutilAttributes : public ImageWorld {};

TEST_F(HdiutilAttributes, ComeFromTheImage) {
    makeFile(folder / "probe");
    try {
        setAttribute(folder / "probe", "user.probe", "x");
    } catch (const std::runtime_error&) {
        GTEST_SKIP() << "The file system of this machine keeps no attributes.";
    }
    auto file = itemAt(0, u"file", S_IFREG | 0644, "data");
    file.resourceFork = "the fork";
    file.attributes = {{"com.apple.quarantine", "0081;x"}, {"org.example:colon", "y"}};
    auto folderItem = itemAt(0, u"folder", S_IFDIR | 0755);
    folderItem.attributes = {{"com.apple.FinderInfo", std::string(32, 'F')}};
    attached(imageOf({file, folderItem, itemAt(0, u"next", S_IFREG | 0644, "next")}));
    EXPECT_EQ(contentOf(volumes / "Volume/file"), "data");
    EXPECT_EQ(contentOf(volumes / "Volume/next"), "next");
    EXPECT_EQ(attributeOf(volumes / "Volume/file", "user.com.apple.ResourceFork"), "the fork");
    EXPECT_EQ(attributeOf(volumes / "Volume/file", "user.com.apple.quarantine"), "0081;x");
    EXPECT_EQ(attributeOf(volumes / "Volume/folder", "user.com.apple.FinderInfo"), std::string(32, 'F'));
}

}  // namespace
}  // namespace tarvik::test
