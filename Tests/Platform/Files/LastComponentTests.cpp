#include "Platform/Files/LastComponent.h"

#include <gtest/gtest.h>

namespace tarvik {

TEST(LastComponent, IsTheNameAlsoBeforeASlash) {
    EXPECT_EQ(lastComponent("/Applications/Foo.app"), "Foo.app");
    EXPECT_EQ(lastComponent("/Applications/Foo.app/"), "Foo.app");
    EXPECT_EQ(lastComponent("/caf\xE9"), "caf\xE9");
    EXPECT_EQ(lastComponent("Foo.app"), "Foo.app");
}

TEST(LastComponent, OfTheRootIsTheRoot) {
    EXPECT_EQ(lastComponent("/"), "/");
    EXPECT_EQ(lastComponent(""), "");
}

}  // namespace tarvik
