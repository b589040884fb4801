#include "State/Threads/Background.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"

#include <QGuiApplication>
#include <gtest/gtest.h>

#include <filesystem>

namespace {

/// A warning of the toolkit is a fault in a view.
void failOnWarnings(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type != QtDebugMsg && type != QtInfoMsg) ADD_FAILURE() << message.toStdString();
}

}  // namespace

/// Windows without a display, drawn by the software renderer: the same pixels on every machine.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    tarvik::test::RealVolume::prepareProcess();
    const tarvik::test::TemporaryFolder session;  // The toolkit warns when there is none.
    if (!qEnvironmentVariableIsSet("XDG_RUNTIME_DIR")) {
        std::filesystem::permissions(session.path(), std::filesystem::perms::owner_all);
        qputenv("XDG_RUNTIME_DIR", QByteArray::fromStdString(session.path().native()));
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    qInstallMessageHandler(failOnWarnings);
    QGuiApplication application(argc, argv);
    const int status = RUN_ALL_TESTS();
    tarvik::Background::finish();  // A window may close while a folder is measured.
    return status;
}
