#pragma once

#include "Platform/Machine/Volume.h"
#include "Support/Tree.h"
#include "Support/World.h"
#include "Window/WindowUnderTest.h"

#include <QSize>
#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace tarvik::test {

inline constexpr QSize large{1400, 900};
inline constexpr QSize small{900, 600};

/// A made machine with the drives "Backup" and "Media", and the window over it once it has been opened. Each test
/// leaves a picture of its last moment, named after it.
class WindowTest : public testing::Test {
protected:
    WindowTest() : WindowTest(fs::path()) {}
    /// With the drive "Backup" at `drivePath`.
    explicit WindowTest(const fs::path& drivePath);
    void TearDown() override;

    WindowUnderTest& open(QSize size = large, bool hasMenus = false);
    /// The same, with the Folders tab in sight.
    WindowUnderTest& openFolders(QSize size = large);
    /// Lists another volume; unlike the two drives it stands nowhere. The caller may change what is returned before the
    /// window is opened.
    Volume& addVolume(const fs::path& mountPath, const std::string& name);
    /// A folder of some files in the home.
    fs::path makePhotos(const std::string& name = "Photos");

    /// Lets the copy tool stop in the middle of each copy, until `letCopyEnd`.
    void holdCopies();
    void letCopyEnd();
    /// Chooses `folder`, and agrees to its move to "Backup".
    void startMove(const fs::path& folder);
    /// The same, and waits for the end.
    void move(const fs::path& folder);

    World world;
    fs::path backup, media;
    /// Set by `open`.
    std::optional<WindowUnderTest> opened;
};

}  // namespace tarvik::test
