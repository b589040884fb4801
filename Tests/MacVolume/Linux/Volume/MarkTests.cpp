#include "Volume/VolumeTest.h"

#include <string>
#include <vector>

namespace tarvik::test {

namespace {

class Marks : public VolumeTest {
protected:
    void SetUp() override {
        VolumeTest::SetUp();
        if (volume) makeFile(at("folder/file"), "content");
    }

    fs::path in(const fs::path& name) const { return at("folder") / name; }
    int appending(const fs::path& file) const { return opening(file, O_WRONLY | O_APPEND); }
    int writing(const fs::path& file) const { return opening(file, O_WRONLY); }
};

std::vector<std::string> attributeNames(const fs::path& item) {
    std::string list(static_cast<std::size_t>(::listxattr(item.c_str(), nullptr, 0)), '\0');
    list.resize(static_cast<std::size_t>(::listxattr(item.c_str(), list.data(), list.size())));
    std::vector<std::string> names;
    for (std::size_t begin = 0; begin < list.size(); begin += names.back().size() + 1)
        names.emplace_back(list.c_str() + begin);
    return names;
}

}  // namespace

TEST_F(Marks, OfNoUnlinkGuardTheFolderAndNothingInIt) {
    setMacFlags(at("folder"), MacFlag::noUnlink);
    EXPECT_EQ(renaming(at("folder"), at("other")), EPERM);
    EXPECT_EQ(addition(in("new")), 0);
    EXPECT_EQ(renaming(in("new"), in("newer")), 0);
    EXPECT_EQ(removal(in("newer")), 0);
    EXPECT_EQ(changeOfPermissions(at("folder")), 0);
    EXPECT_EQ(removal(in("file")), 0);
    EXPECT_EQ(removal(at("folder")), EPERM);
    setMacFlags(at("folder"), 0);
    EXPECT_EQ(removal(at("folder")), 0);
}

TEST_F(Marks, ThatForbidChangesSealAFolder) {
    for (const auto flag : {MacFlag::userImmutable, MacFlag::systemImmutable, MacFlag::restricted}) {
        setMacFlags(at("folder"), flag);
        EXPECT_EQ(addition(in("new")), EPERM);
        EXPECT_EQ(opening(in("new"), O_WRONLY | O_CREAT), EPERM);
        EXPECT_EQ(errorOf(::symlink("file", in("link").c_str())), EPERM);
        EXPECT_EQ(removal(in("file")), EPERM);
        EXPECT_EQ(renaming(in("file"), in("other")), EPERM);
        EXPECT_EQ(renaming(in("file"), at("other")), EPERM);
        EXPECT_EQ(renaming(at("folder"), at("other")), EPERM);
        EXPECT_EQ(changeOfPermissions(at("folder")), EPERM);
        EXPECT_EQ(setting(at("folder"), "user.note", "x"), EPERM);
        EXPECT_EQ(writing(in("file")), 0) << "it is sealed, not its files";
    }
}

TEST_F(Marks, ThatForbidChangesLockAFile) {
    for (const auto flag : {MacFlag::userImmutable, MacFlag::systemImmutable, MacFlag::restricted}) {
        setMacFlags(in("file"), flag);
        EXPECT_EQ(writing(in("file")), EPERM);
        EXPECT_EQ(appending(in("file")), EPERM);
        EXPECT_EQ(errorOf(::truncate(in("file").c_str(), 1)), EPERM);
        EXPECT_EQ(changeOfPermissions(in("file")), EPERM);
        EXPECT_EQ(errorOf(::utimensat(AT_FDCWD, in("file").c_str(), nullptr, 0)), EPERM);
        EXPECT_EQ(errorOf(::link(in("file").c_str(), in("second").c_str())), EPERM);
        EXPECT_EQ(removal(in("file")), EPERM);
        EXPECT_EQ(renaming(in("file"), in("other")), EPERM);
        makeFile(in("new"));
        EXPECT_EQ(renaming(in("new"), in("file")), EPERM) << "it would be replaced";
        EXPECT_EQ(renaming(in("new"), in("file"), RENAME_EXCHANGE), EPERM);
        EXPECT_EQ(contentOf(in("file")), "content");
        EXPECT_EQ(renaming(at("folder"), at("other")), 0) << "the folder above is free";
        EXPECT_EQ(renaming(at("other"), at("folder")), 0);
    }
}

TEST_F(Marks, OfAppendOnlyLetThingsGrow) {
    for (const auto flag : {MacFlag::userAppend, MacFlag::systemAppend}) {
        setMacFlags(in("file"), flag);
        EXPECT_EQ(appending(in("file")), 0);
        EXPECT_EQ(writing(in("file")), EPERM);
        EXPECT_EQ(opening(in("file"), O_WRONLY | O_APPEND | O_TRUNC), EPERM);
        EXPECT_EQ(removal(in("file")), EPERM);
        setMacFlags(in("file"), 0);
        setMacFlags(at("folder"), flag);
        makeFolder(in("more"));
        EXPECT_EQ(removal(in("more")), EPERM);
        EXPECT_EQ(renaming(in("more"), in("less")), EPERM);
        setMacFlags(at("folder"), 0);
        EXPECT_EQ(removal(in("more")), 0);
    }
}

TEST_F(Marks, ThatDenyDeletionAreNoPermission) {
    denyDelete(at("folder"));
    EXPECT_EQ(renaming(at("folder"), at("other")), EACCES);
    makeFolder(at("other"));
    EXPECT_EQ(renaming(at("folder"), at("other"), RENAME_EXCHANGE), EACCES);
    EXPECT_EQ(renaming(at("other"), at("folder"), RENAME_EXCHANGE), EACCES);
    EXPECT_EQ(changeOfPermissions(at("folder")), 0);
    EXPECT_EQ(removal(in("file")), 0);
    EXPECT_EQ(removal(at("folder")), EACCES);
    denyDelete(at("folder"), false);
    EXPECT_EQ(removal(at("folder")), 0);
}

TEST_F(Marks, ThatDenyDeletionInAFolderLetThingsComeIn) {
    denyDeleteInside(at("folder"));
    EXPECT_EQ(addition(in("new")), 0);
    EXPECT_EQ(removal(in("new")), EACCES);
    EXPECT_EQ(renaming(in("new"), in("other")), EACCES);
    EXPECT_EQ(renaming(in("file"), at("file")), EACCES);
    EXPECT_EQ(renaming(at("folder"), at("other")), 0);
}

TEST_F(Marks, GoWithTheirItemAndEndWithIt) {
    makeFile(at("marked"));
    setMacFlags(at("marked"), MacFlag::hidden | MacFlag::dataless);
    EXPECT_EQ(renaming(at("marked"), in("file")), 0);
    EXPECT_EQ(attributeOf(in("file"), MacAttribute::flags), "40008000");
    EXPECT_EQ(removal(in("file")), 0);
    // The next file may get the number of the one that has gone.
    for (int number = 0; number < 20; ++number) {
        makeFile(in(std::to_string(number)));
        EXPECT_EQ(attributeOf(in(std::to_string(number)), MacAttribute::flags), "0");
    }
}

TEST_F(Marks, AreInNoListOfAttributes) {
    setMacFlags(in("file"), MacFlag::compressed);
    denyDelete(in("file"));
    EXPECT_EQ(attributeNames(in("file")), std::vector<std::string>{});
    EXPECT_EQ(setting(in("file"), "user.note", "x"), 0);
    EXPECT_EQ(attributeNames(in("file")), std::vector<std::string>{"user.note"});
}

TEST_F(Marks, CanBeSetOnLinks) {
    makeLink(at("link"), "folder");
    setMacFlags(at("link"), MacFlag::noUnlink);
    EXPECT_EQ(removal(at("link")), EPERM);
    EXPECT_EQ(renaming(at("folder"), at("other")), 0);
}

}  // namespace tarvik::test
