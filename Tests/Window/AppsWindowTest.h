#pragma once

#include "Support/Bundles.h"
#include "Support/IconFiles.h"
#include "Window/WindowTest.h"

#include <QBuffer>
#include <QColor>
#include <QImage>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace tarvik::test {

/// The window over a machine with applications.
class AppsWindowTest : public WindowTest {
protected:
    /// An application of about that many bytes; with as many in its cache, when there shall be one.
    fs::path app(const std::string& name, std::size_t bytes = 4096, std::size_t cacheBytes = 0) {
        const fs::path bundle = applications / (name + ".app");
        makeBundle(bundle, {{"CFBundleIdentifier", "org.example." + name}, {"CFBundleShortVersionString", "1.2"}});
        makeFileOfSize(bundle / "Contents/Resources/filling", bytes);
        if (cacheBytes > 0) makeFileOfSize(world.home / "Library/Caches" / name / "cache", cacheBytes);
        return bundle;
    }
    /// Every application is signed and notarized.
    void signApps() {
        const std::string authority = "Developer ID Application: Ada Apps (ABCDE12345)";
        world.host.tools.codesign = world.tool("codesign", "echo 'Authority=" + authority + "' >&2");
        world.host.tools.xcrun = world.tool("xcrun", "echo 'The validate action worked!'");
        world.host.tools.spctl = world.tool("spctl", "echo 'source=Notarized Developer ID' >&2");
    }
    /// An application that a move has taken to the drive.
    fs::path appOnDrive(const std::string& name, std::size_t bytes = 4096) {
        const fs::path there = backup / "ExternalTarvik/Apps" / (name + ".app");
        fs::create_directories(there.parent_path());
        fs::rename(app(name, bytes), there);
        makeLink(applications / (name + ".app"), there);
        return there;
    }
    /// Gives an application an icon of one colour.
    static void makeIcon(const fs::path& bundle, const QColor& color, const std::string& identifier) {
        QByteArray png;
        QBuffer buffer(&png);
        buffer.open(QIODevice::WriteOnly);
        QImage image(128, 128, QImage::Format_ARGB32);
        image.fill(color);
        image.save(&buffer, "PNG");
        makeBundle(bundle, {{"CFBundleIdentifier", identifier}, {"CFBundleIconFile", "Icon"}});
        makeFile(bundle / "Contents/Resources/Icon.icns", iconFile({{"ic07", png.toStdString()}}));
    }
    /// One from the store, and one with a system extension.
    void makeRiskyApps() {
        makeFile(app("Store") / "Contents/_MASReceipt/receipt");
        makeFolder(app("Driver") / "Contents/Library/SystemExtensions/driver.systemextension");
    }
    WindowUnderTest& openScope(const char* scope, QSize size = large) {
        open(size).click(QLatin1String("viewPicker-") + scope);
        return *opened;
    }
    /// The names of the rows that are made, from top to bottom.
    std::vector<QString> shownApps() {
        std::vector<std::pair<double, QString>> rows;
        QMetaObject::invokeMethod(&opened->item("appList"), "forceLayout");
        const auto* content = opened->item("appList").property("contentItem").value<QQuickItem*>();
        for (const QQuickItem* row : content->childItems())
            if (row->isVisible() && row->objectName().startsWith("app-"))
                rows.emplace_back(row->y(), row->objectName().mid(4));
        std::sort(rows.begin(), rows.end());
        std::vector<QString> names;
        for (const auto& [place, name] : rows) names.push_back(name);
        return names;
    }

    fs::path applications = world.folder / "Applications";
};

}  // namespace tarvik::test
