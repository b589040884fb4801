#include "State/Lists/AppIcons.h"

#include "Platform/Basics/Cancellation.h"
#include "Platform/Bundles/BundleIcon.h"
#include "State/Threads/Background.h"

#include <QFutureWatcher>
#include <QImage>
#include <QPromise>
#include <QQuickTextureFactory>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

namespace tarvik {

namespace {

constexpr QSize usualSize{64, 64};

QImage emptyPoint() {
    QImage image(1, 1, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

QImage load(const fs::path& bundle, QSize size) {
    const auto png = BundleIcon::png(bundle, std::max(size.width(), size.height()));
    if (!png) return emptyPoint();
    QImage image;
    if (!image.loadFromData(reinterpret_cast<const uchar*>(png->data()), static_cast<int>(png->size()), "PNG"))
        return emptyPoint();
    return image.scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation)
        .convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

class Response : public QQuickImageResponse {
public:
    Response(const QFuture<QImage>& icon, Cancellation notWanted) : m_notWanted(std::move(notWanted)) {
        connect(&m_icon, &QFutureWatcherBase::finished, this, &QQuickImageResponse::finished);
        m_icon.setFuture(icon);
    }

    QQuickTextureFactory* textureFactory() const override {
        const QFuture<QImage> icon = m_icon.future();
        return QQuickTextureFactory::textureFactoryForImage(icon.resultCount() > 0 ? icon.result() : emptyPoint());
    }

    /// The row has gone: most that is scrolled past is never loaded.
    void cancel() override { m_notWanted.cancel(); }

private:
    QFutureWatcher<QImage> m_icon;
    Cancellation m_notWanted;
};

}  // namespace

QString AppIcons::source(const fs::path& bundle) {
    // The bytes as they are: a name need not be valid UTF-8.
    const QByteArray bytes = QByteArray::fromStdString(bundle.native()).toHex();
    return QStringLiteral("image://%1/%2").arg(QLatin1String(name), QString::fromLatin1(bytes));
}

QQuickImageResponse* AppIcons::requestImageResponse(const QString& id, const QSize& requestedSize) {
    const fs::path bundle(QByteArray::fromHex(id.toLatin1()).toStdString());
    const QSize size = requestedSize.isEmpty() ? usualSize : requestedSize;
    const auto promise = std::make_shared<QPromise<QImage>>();
    const Cancellation notWanted;
    auto* response = new Response(promise->future(), notWanted);
    promise->start();
    Background::run(Priority::pictures, [promise, bundle, size, notWanted] {
        if (!notWanted.isCancelled()) promise->addResult(load(bundle, size));
        promise->finish();
    });
    return response;
}

}  // namespace tarvik
