#include "State/EventLoop.h"
#include "State/Shared/Desktop.h"
#include "Support/EnvironmentVariable.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QLocalServer>
#include <QLocalSocket>
#include <QProcess>
#include <gtest/gtest.h>

#include <fstream>

namespace tarvik::test {
namespace {

/// Where the bus would be. One for all tests: the library remembers the first address that it has read.
fs::path busSocket() {
    static const TemporaryFolder folder;
    return folder / "bus";
}

/// A desktop without a file manager on the bus, whose opener of folders is a script that notes what it is given.
class SystemDesktop : public testing::Test {
protected:
    SystemDesktop() {
        QObject::connect(desktop.get(), &Desktop::failed, [this](const QString& text) { told = text; });
    }
    void makeOpener() {
        makeFile(folder / "bin/xdg-open", "#!/bin/sh\nprintf %s \"$1\" > \"" + (folder / "new").native() + "\"\nmv \"" +
                                              (folder / "new").native() + "\" \"" + (folder / "opened").native() +
                                              "\"\n");
        fs::permissions(folder / "bin/xdg-open", fs::perms::owner_all);
    }
    std::string opened() const {
        std::ifstream file(folder / "opened");
        return std::string(std::istreambuf_iterator<char>(file), {});
    }

    TemporaryFolder folder;
    EnvironmentVariable bus{"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + busSocket().native()};
    EnvironmentVariable path{"PATH", (folder / "bin").native() + ":/usr/bin:/bin"};
    std::unique_ptr<Desktop> desktop = makeSystemDesktop();
    QString told;
};

TEST_F(SystemDesktop, OpensTheFolderOfAnItemWhereNoFileManagerAnswers) {
    makeOpener();
    desktop->reveal(FilePath(folder / "Some & \"place\"/caf\xE9 100%"));
    spinUntil([&] { return fs::exists(folder / "opened"); });
    EXPECT_EQ(opened(), "file://" + folder.path().native() + "/Some%20%26%20%22place%22");
    EXPECT_EQ(told, "");
}

TEST_F(SystemDesktop, WaitsForNoBusThatDoesNotAnswer) {
    makeFolder(folder / "bin");
    makeLink(folder / "bin/dbus-send", "/usr/bin/dbus-send");
    const EnvironmentVariable noOpener{"PATH", (folder / "bin").native()};
    QLocalServer silent;
    ASSERT_TRUE(silent.listen(QString::fromStdString(busSocket())));
    desktop->reveal(FilePath(folder / "place/item"));
    EXPECT_EQ(told, "") << "the window has waited for the end";
    spinUntil([&] { return silent.hasPendingConnections(); });
    spinUntil([&] { return !told.isEmpty(); });
}

TEST_F(SystemDesktop, LeavesNoCallBehindWhenTheWindowGoes) {
    static QString warning;
    const auto before =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& text) { warning = text; });
    QLocalServer silent;
    ASSERT_TRUE(silent.listen(QString::fromStdString(busSocket())));
    desktop->reveal(FilePath(folder / "place/item"));
    spinUntil([&] { return silent.hasPendingConnections(); });
    desktop.reset();
    qInstallMessageHandler(before);
    EXPECT_EQ(warning, "");
    auto* const caller = silent.nextPendingConnection();
    spinUntil([&] { return caller->state() == QLocalSocket::UnconnectedState; });
}

TEST_F(SystemDesktop, SaysWhereTheItemIsWhenNothingOpensFolders) {
    const EnvironmentVariable nothing{"PATH", (folder / "bin").native()};
    desktop->reveal(FilePath(folder / "item"));
    spinUntil([&] { return !told.isEmpty(); });
    EXPECT_EQ(told.toStdString(), "No file manager answers. The item is at " + (folder / "item").native() + ".");
}

/// A file manager as others see it on the bus.
class FileManager : public QDBusVirtualObject {
public:
    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        asked = message.interface() + "." + message.member();
        shown = message.arguments().value(0).toStringList();
        return bus.send(isBroken ? message.createErrorReply(QDBusError::Failed, "broken") : message.createReply());
    }

    bool isBroken = false;
    QString asked;
    QStringList shown;
};

/// The same with a file manager on a bus of its own.
class SystemDesktopWithFileManager : public SystemDesktop {
protected:
    SystemDesktopWithFileManager() {
        makeFile(folder / "bus.conf",
                 "<busconfig><type>session</type><listen>unix:path=" + busSocket().native() +
                     "</listen><policy context='default'><allow send_destination='*' eavesdrop='true'/><allow "
                     "eavesdrop='true'/>"
                     "<allow own='*'/></policy></busconfig>");
        daemon.start("dbus-daemon", {"--nofork", "--config-file=" + QString::fromStdString(folder / "bus.conf")});
        spinUntil([&] { return fs::exists(busSocket()); });
        auto connection =
            QDBusConnection::connectToBus("unix:path=" + QString::fromStdString(busSocket()), "test-file-manager");
        EXPECT_TRUE(connection.registerVirtualObject("/org/freedesktop/FileManager1", &manager));
        EXPECT_TRUE(connection.registerService("org.freedesktop.FileManager1"));
        makeOpener();
    }
    ~SystemDesktopWithFileManager() override {
        desktop.reset();
        QDBusConnection::disconnectFromBus("test-file-manager");
        daemon.kill();
        daemon.waitForFinished();
        fs::remove(busSocket());
    }

    QProcess daemon;
    FileManager manager;
};

TEST_F(SystemDesktopWithFileManager, ShowsTheItemThere) {
    desktop->reveal(FilePath(folder / "Some, place/caf\xE9"));
    spinUntil([&] { return !manager.shown.isEmpty(); });
    EXPECT_EQ(manager.asked, "org.freedesktop.FileManager1.ShowItems");
    EXPECT_EQ(manager.shown,
              QStringList{"file://" + QString::fromStdString(folder.path().native()) + "/Some%2C%20place/caf%E9"});
    spinOnce();
    EXPECT_FALSE(fs::exists(folder / "opened"));
}

TEST_F(SystemDesktopWithFileManager, OpensTheFolderWhenThatFails) {
    manager.isBroken = true;
    desktop->reveal(FilePath(folder / "place/item"));
    spinUntil([&] { return fs::exists(folder / "opened"); });
    EXPECT_EQ(opened(), "file://" + folder.path().native() + "/place");
}

}  // namespace
}  // namespace tarvik::test
