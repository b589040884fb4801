#include "Platform/Processes/StandardStreams.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

namespace tarvik {

TEST(StandardStreams, KeepTheirNumbersFromFilesWhenTheyWereClosed) {
    const test::TemporaryFolder folder;
    const auto openAFile = [&] {
        for (const int stream : {0, 1, 2}) ::close(stream);
        StandardStreams::occupyClosed();
        const int file = ::open((folder / "file").c_str(), O_WRONLY | O_CREAT, 0600);
        const bool canWrite = ::write(1, "x", 1) == 1 || ::write(2, "x", 1) == 1;
        ::_exit(file > 2 && !canWrite ? 0 : 1);
    };
    EXPECT_EXIT(openAFile(), testing::ExitedWithCode(0), "");
}

}  // namespace tarvik
