#pragma once

#include "MacMachine.h"
#include "Window/WindowUnderTest.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace tarvik::test {

/// The window over a machine of a Mac's volumes.
class MacWindow : public OnMacVolumes {
protected:
    using OnMacVolumes::OnMacVolumes;

    /// Leaves a picture of the test's last moment.
    void TearDown() override {
        if (!opened) return;
        opened->savePicture(std::string("MacWindow.") + testing::UnitTest::GetInstance()->current_test_info()->name());
        opened.reset();
    }

    WindowUnderTest& open() { return opened.emplace(mac->host); }
    /// Agrees to what is asked, and waits for the end of the run.
    void agree() {
        opened->click("alertButton-0");
        ASSERT_TRUE(opened->waitUntilShown("jobsPanel"));
        ASSERT_TRUE(opened->waitUntil([&] { return !opened->state().isRunning(); }));
    }
    /// Moves a folder to the drive.
    void move(const fs::path& folder, const QString& drive) {
        opened->click("drive-" + drive);
        opened->chooseFolder(folder);
        ASSERT_TRUE(opened->waitUntil([&] { return opened->isEnabled("moveButton"); }));
        opened->click("moveButton");
        agree();
    }

    std::optional<WindowUnderTest> opened;
};

}  // namespace tarvik::test
