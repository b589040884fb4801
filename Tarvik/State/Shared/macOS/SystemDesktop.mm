#include "State/Shared/Desktop.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QUrl>

#import <AppKit/AppKit.h>

namespace tarvik {

namespace {

class MacDesktop : public Desktop {
public:
    MacDesktop() : Desktop(nullptr) {}

    bool hasMenuBar() const override { return true; }
    QString revealText() const override { return QStringLiteral("Reveal in Finder"); }

    void reveal(const FilePath& item) override {
        @autoreleasepool {
            // From the bytes as they are; a link is shown itself.
            NSURL* url = [NSURL fileURLWithFileSystemRepresentation:item.path.c_str() isDirectory:NO relativeToURL:nil];
            [NSWorkspace.sharedWorkspace activateFileViewerSelectingURLs:@[ url ]];
        }
    }
    void copyPath(const FilePath& item) override { QGuiApplication::clipboard()->setText(item.text()); }
    void openSettings(const QString& page) override {
        if (!QDesktopServices::openUrl(QUrl(page)))
            emit failed(QStringLiteral("The settings could not be opened. Look for Privacy & Security there."));
    }
};

}  // namespace

std::unique_ptr<Desktop> makeSystemDesktop() {
    return std::make_unique<MacDesktop>();
}

}  // namespace tarvik
