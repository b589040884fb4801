#include "Copying/MoverError.h"

#include <gtest/gtest.h>

namespace tarvik::test {

TEST(MoverError, SpeaksToTheUser) {
    EXPECT_EQ(MoverError::insufficientSpace(2'500'000'000, 999).description(),
              "Not enough space. Need 2.5 GB, have 1 KB.");
    EXPECT_EQ(MoverError::copyFailed("x").description(), "Copy failed: x");
    EXPECT_EQ(MoverError::verifyFailed("x").description(), "Verification failed: x");
    EXPECT_EQ(MoverError::symlinkFailed("x").description(), "Symlink creation failed: x");
    EXPECT_EQ(MoverError::sourceRemoveFailed("x").description(), "Could not remove original after copy: x");
    EXPECT_EQ(MoverError::appIsRunning("Foo.app").description(),
              "App is running: Foo.app. Quit it first, or pass --quit-running.");
    EXPECT_EQ(MoverError::sourceMissing().description(), "Source path no longer exists.");
    EXPECT_EQ(MoverError::destinationExists().description(), "Destination already exists.");
    EXPECT_EQ(MoverError::destinationExists().kind(), MoverError::Case::destinationExists);
}

}  // namespace tarvik::test
