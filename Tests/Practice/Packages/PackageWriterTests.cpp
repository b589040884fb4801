#include "Practice/Packages/PackageWriter.h"

#include <gtest/gtest.h>

namespace tarvik::Practice {
namespace {

std::string signedProduct() {
    PackageWriter::Component component;
    component.payload.addFile("./Applications/Editor.app/Contents/Info.plist", "<plist/>");
    component.scripts = {{"postinstall", "#!/bin/sh\n"}};
    const auto identity = SigningIdentity::made();
    return PackageWriter::product("Acme", {component}).bytes(&identity);
}

TEST(PackageWriter, MakesTheSameBytesOnEveryRun) {
    const std::string package = signedProduct();
    EXPECT_EQ(package, signedProduct());
    EXPECT_EQ(package.substr(0, 4), "xar!");
}

}  // namespace
}  // namespace tarvik::Practice
