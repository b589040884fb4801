#include "State/Shared/Desktop.h"

#include <QClipboard>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QProcess>
#include <QUrl>

namespace tarvik {

namespace {

constexpr int patienceMilliseconds = 5000;

/// A name need not be valid UTF-8: its bytes are written as an address.
QString addressOf(const fs::path& path) {
    const QByteArray encoded = QByteArray::fromStdString(path.native()).toPercentEncoding("/");
    return QStringLiteral("file://") + QString::fromLatin1(encoded);
}

class LinuxDesktop : public Desktop {
public:
    LinuxDesktop() : Desktop(nullptr) {}
    ~LinuxDesktop() override { QDBusConnection::disconnectFromBus(connectionName); }

    bool hasMenuBar() const override { return false; }
    QString revealText() const override { return QStringLiteral("Show in File Manager"); }

    /// Asks the file manager as freedesktop.org's "File Manager D-Bus Interface" has it; where none answers, whatever
    /// opens folders opens the one that the item is in.
    void reveal(const FilePath& item) override {
        // When it is first needed: the window is there sooner.
        const auto bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, connectionName);
        if (!bus.isConnected()) return openFolderOf(item);
        auto call = QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
            QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
        call << QStringList{addressOf(item.path)} << QString();
        auto* answer = new QDBusPendingCallWatcher(bus.asyncCall(call, patienceMilliseconds), this);
        connect(answer, &QDBusPendingCallWatcher::finished, this, [this, item](QDBusPendingCallWatcher* finished) {
            finished->deleteLater();
            if (finished->isError()) openFolderOf(item);
        });
    }
    void copyPath(const FilePath& item) override { QGuiApplication::clipboard()->setText(item.text()); }
    void openSettings(const QString& page) override { QDesktopServices::openUrl(QUrl(page)); }

private:
    const QString connectionName = QStringLiteral("tarvik-desktop");

    void openFolderOf(const FilePath& item) {
        if (!QProcess::startDetached(QStringLiteral("xdg-open"), {addressOf(item.path.parent_path())}))
            emit failed(QStringLiteral("No file manager answers. The item is at %1.").arg(item.text()));
    }
};

}  // namespace

std::unique_ptr<Desktop> makeSystemDesktop() {
    return std::make_unique<LinuxDesktop>();
}

}  // namespace tarvik
