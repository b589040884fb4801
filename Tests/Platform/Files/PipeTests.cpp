#include "Platform/Files/Pipe.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

namespace tarvik {

TEST(Pipe, LeadsFromItsWriteEndToItsReadEnd) {
    const Pipe pipe = Pipe::make();
    ASSERT_TRUE(pipe.readEnd && pipe.writeEnd);
    ASSERT_EQ(::write(pipe.writeEnd.get(), "x", 1), 1);
    char byte = 0;
    EXPECT_EQ(::read(pipe.readEnd.get(), &byte, 1), 1);
    EXPECT_EQ(byte, 'x');
}

TEST(Pipe, IsInheritedByNoProgram) {
    const Pipe pipe = Pipe::make();
    for (const FileDescriptor* end : {&pipe.readEnd, &pipe.writeEnd})
        EXPECT_NE(::fcntl(end->get(), F_GETFD) & FD_CLOEXEC, 0);
}

}  // namespace tarvik
