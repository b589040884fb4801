#include "Platform/Files/Files.h"
#include "Volume/VolumeTest.h"

#include <string>
#include <vector>

namespace tarvik::test {

namespace {

using Lines = std::vector<std::string>;
class Journal : public VolumeTest {};

}  // namespace

TEST_F(Journal, TellsWhatWasDoneInOrder) {
    makeFile(at("draft"), "text");
    EXPECT_EQ(renaming(at("draft"), at("letter")), 0);
    EXPECT_EQ(removal(at("letter")), 0);
    EXPECT_EQ(volume->journal(), (Lines{"write draft", "rename letter", "remove letter"}));
}

TEST_F(Journal, TellsWhatTheDriveHasFromWhatItsCacheHas) {
    makeFile(at("letter"), "text");
    const FileDescriptor letter(::open(at("letter").c_str(), O_RDONLY | O_CLOEXEC));
    EXPECT_EQ(::fsync(letter.get()), 0);
    Files::writeDurably(at("record"), "{}");
    Files::flushVolume(folder.path());
    const Lines journal = volume->journal();
    ASSERT_GE(journal.size(), 3U);
    EXPECT_EQ(journal[1], "sync letter");
    EXPECT_EQ(journal[journal.size() - 2], "flush .") << "the folder with the record's name";
    EXPECT_EQ(journal.back(), "flush everything");
}

}  // namespace tarvik::test
