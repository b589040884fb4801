#include "Drop/Linux/DisplayServer.h"
#include "Drop/Linux/DragSource.h"
#include "State/Threads/Background.h"

#include <QGuiApplication>
#include <gtest/gtest.h>

#include <optional>
#include <string_view>

/// Windows on a display of their own; where there is none, the tests say so.
int main(int argc, char** argv) {
    if (argc > 1 && std::string_view(argv[1]) == tarvik::test::DragSource::option)
        return tarvik::test::DragSource::run(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    std::optional<tarvik::test::DisplayServer> display;
    if (!GTEST_FLAG_GET(list_tests)) display.emplace();
    const bool hasDisplay = display && display->isRunning();
    qputenv("QT_QPA_PLATFORM", hasDisplay ? "xcb" : "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    int status = 0;
    {
        const QGuiApplication application(argc, argv);
        status = RUN_ALL_TESTS();
        tarvik::Background::finish();
    }
    return status;
}
