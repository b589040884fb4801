#pragma once

#include "Platform/Files/FileDescriptor.h"
#include "Support/MacVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace tarvik::test {

// Single changes: 0, or the errno value that they fail with.

inline int errorOf(long callResult) {
    return callResult < 0 ? errno : 0;
}
inline int removal(const fs::path& item) {
    return errorOf(::remove(item.c_str()));
}
inline int renaming(const fs::path& from, const fs::path& to, unsigned flags = 0) {
    return errorOf(::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), flags));
}
inline int opening(const fs::path& item, int flags) {
    return errorOf(FileDescriptor(::open(item.c_str(), flags | O_CLOEXEC, 0644)).get());
}
inline int listing(const fs::path& folder) {
    return opening(folder, O_RDONLY | O_DIRECTORY);
}
/// Of a new folder.
inline int addition(const fs::path& folder) {
    return errorOf(::mkdir(folder.c_str(), 0755));
}
inline int changeOfPermissions(const fs::path& item) {
    return errorOf(::chmod(item.c_str(), 0700));
}
inline int setting(const fs::path& item, const char* attribute, const std::string& value) {
    return errorOf(::setxattr(item.c_str(), attribute, value.data(), value.size(), 0));
}

/// The text of an extended attribute; nothing when there is none.
inline std::optional<std::string> attributeOf(const fs::path& item, const char* attribute) {
    char value[256];
    const ssize_t length = ::getxattr(item.c_str(), attribute, value, sizeof value);
    if (length < 0) return std::nullopt;
    return std::string(value, static_cast<std::size_t>(length));
}

/// A volume of a Mac over a folder of its own, for as long as a test.
class VolumeTest : public testing::Test {
protected:
    void SetUp() override {
        TARVIK_NEEDS_MAC_VOLUMES();
        volume.emplace(folder.path());
    }

    fs::path at(const fs::path& name) const { return folder / name; }

    TemporaryFolder folder;
    std::optional<MacVolume> volume;
};

}  // namespace tarvik::test
