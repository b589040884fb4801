#include "State/Lists/AppIcons.h"
#include "State/Threads/BusyThreads.h"
#include "Support/Bundles.h"
#include "Support/IconFiles.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <QBuffer>
#include <QImage>
#include <QQuickTextureFactory>
#include <QTest>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <thread>

namespace tarvik::test {

namespace {

class Icons : public testing::Test {
protected:
    Icons() {
        QByteArray png;
        QBuffer buffer(&png);
        buffer.open(QIODevice::WriteOnly);
        QImage image(128, 128, QImage::Format_ARGB32);
        image.fill(Qt::red);
        image.save(&buffer, "PNG");
        makeBundle(bundle, {{"CFBundleIconFile", "Icon"}});
        makeFile(bundle / "Contents/Resources/Icon.icns", iconFile({{"ic07", png.toStdString()}}));
    }

    std::unique_ptr<QQuickImageResponse> request() {
        const QString id = AppIcons::source(bundle).section('/', -1);
        return std::unique_ptr<QQuickImageResponse>(icons.requestImageResponse(id, {64, 64}));
    }
    /// The size of what a response brings, waited for.
    static QSize sizeOf(QQuickImageResponse& response) {
        bool hasCome = false;
        QObject::connect(&response, &QQuickImageResponse::finished, [&] { hasCome = true; });
        EXPECT_TRUE(QTest::qWaitFor([&] { return hasCome; }));
        return std::unique_ptr<QQuickTextureFactory>(response.textureFactory())->textureSize();
    }

    TemporaryFolder folder;
    fs::path bundle = folder / "Editor.app";
    AppIcons icons;
};

}  // namespace

TEST_F(Icons, ComeInTheSizeThatIsAskedFor) {
    EXPECT_EQ(sizeOf(*request()), QSize(64, 64));
}

TEST_F(Icons, AreNotLoadedForRowsThatHaveGone) {
    BusyThreads busyThreads(2, Priority::pictures);
    const auto response = request();
    response->cancel();
    busyThreads.end();
    EXPECT_EQ(sizeOf(*response), QSize(1, 1));
}

TEST_F(Icons, DoNotOutliveTheProgram) {
    bool isDone = false;
    Background::run(Priority::pictures, [&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        isDone = true;
    });
    Background::finish();
    EXPECT_TRUE(isDone);
}

}  // namespace tarvik::test
