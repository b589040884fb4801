#include "Support/RealVolume.h"

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    tarvik::test::RealVolume::prepareProcess();
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
