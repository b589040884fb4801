#include <QGuiApplication>
#include <gtest/gtest.h>

/// Windows without a display, drawn by the software renderer: the same pixels on every machine.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    // The platform asks for a folder of the session, which a test does not need, and says so when it is not set.
    if (!qEnvironmentVariableIsSet("XDG_RUNTIME_DIR")) qputenv("QT_LOGGING_RULES", "qt.core.qstandardpaths=false");
    QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
