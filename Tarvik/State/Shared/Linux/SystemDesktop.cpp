#include "State/Shared/Desktop.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QProcess>
#include <QTimer>
#include <QUrl>

#include <chrono>

namespace tarvik {

namespace {

constexpr std::chrono::seconds patience{5};

/// A name need not be valid UTF-8: its bytes are written as an address, in which no comma ends it for dbus-send(1).
QString addressOf(const fs::path& path) {
    const QByteArray encoded = QByteArray::fromStdString(path.native()).toPercentEncoding("/");
    return QStringLiteral("file://") + QString::fromLatin1(encoded);
}

class LinuxDesktop : public Desktop {
public:
    LinuxDesktop() : Desktop(nullptr) {}
    ~LinuxDesktop() override {
        for (auto* call : findChildren<QProcess*>()) {
            call->disconnect(this);
            call->kill();
            call->waitForFinished();
        }
    }

    bool hasMenuBar() const override { return false; }
    QString revealText() const override { return QStringLiteral("Show in File Manager"); }

    /// Asks the file manager as freedesktop.org's "File Manager D-Bus Interface" has it; where none answers, whatever
    /// opens folders opens the one that the item is in. Another program makes the call, dbus-send(1): who connects to a
    /// bus that does not answer stands still.
    void reveal(const FilePath& item) override {
        auto* call = new QProcess(this);
        call->setStandardOutputFile(QProcess::nullDevice());
        call->setStandardErrorFile(QProcess::nullDevice());
        connect(call, &QProcess::finished, this, [this, call, item](int status, QProcess::ExitStatus end) {
            call->deleteLater();
            if (end != QProcess::NormalExit || status != 0) openFolderOf(item);
        });
        connect(call, &QProcess::errorOccurred, this, [this, call, item](QProcess::ProcessError error) {
            if (error != QProcess::FailedToStart) return;  // All others end it.
            call->deleteLater();
            openFolderOf(item);
        });
        QTimer::singleShot(patience, call, &QProcess::kill);
        call->start(
            QStringLiteral("dbus-send"),
            {QStringLiteral("--session"), QStringLiteral("--print-reply"),
             QStringLiteral("--dest=org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
             QStringLiteral("org.freedesktop.FileManager1.ShowItems"),
             QStringLiteral("array:string:") + addressOf(item.path), QStringLiteral("string:")});
    }
    void copyPath(const FilePath& item) override { QGuiApplication::clipboard()->setText(item.text()); }
    void openSettings(const QString& page) override { QDesktopServices::openUrl(QUrl(page)); }

private:
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
