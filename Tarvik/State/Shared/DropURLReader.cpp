#include "State/Shared/DropURLReader.h"

#include <QList>
#include <QMimeData>
#include <QVariantList>

namespace tarvik::DropURLReader {

namespace {

// The uniform type identifiers of <UniformTypeIdentifiers/UTCoreTypes.h>, and the two types of older senders.
constexpr const char* fileUrlType = "public.file-url";
constexpr const char* urlType = "public.url";
constexpr const char* itemType = "public.item";
constexpr const char* dataType = "public.data";

std::optional<QUrl> urlOfData(const QByteArray& bytes) {
    const QUrl url = QUrl::fromEncoded(bytes, QUrl::StrictMode);
    return url.isValid() && !url.scheme().isEmpty() ? std::optional(url) : std::nullopt;
}

std::optional<QUrl> urlOfText(const QByteArray& text) {
    // Not by the text's own trimming: that of bytes leaves white space of other scripts.
    const QByteArray trimmed = QString::fromUtf8(text).trimmed().toUtf8();
    // What is no UTF-8 stays the bytes that it is.
    const QByteArray path = QString::fromUtf8(text).toUtf8() == text ? trimmed : text.trimmed();
    if (path.isEmpty()) return std::nullopt;
    const auto url = urlOfData(path);
    return url && url->isLocalFile() ? *url : urlOf(path);
}

/// Whether there will be a form of a type, without asking for it: some senders make it only when they are asked.
bool hasForm(const QMimeData& data, const QString& type) {
    if (type == QLatin1String(fileUrlType) || type == QLatin1String(urlType)) return data.hasUrls();
    if (type == QLatin1String(itemType) || type == QLatin1String(dataType)) return data.hasText();
    return data.hasFormat(type);
}

/// The form of a type, out of those that the toolkit has on every system.
QVariant formOf(const QMimeData& data, const QString& type) {
    if (type == QLatin1String(itemType) || type == QLatin1String(dataType)) return data.text();
    if (type != QLatin1String(fileUrlType) && type != QLatin1String(urlType)) return data.data(type);
    QVariantList urls;
    const auto dropped = data.urls();
    for (const QUrl& url : dropped)
        if (type == QLatin1String(urlType) || url.isLocalFile()) urls.push_back(url);
    return urls;
}

}  // namespace

const QStringList& supportedTypes() {
    static const QStringList types = {QLatin1String(fileUrlType),
                                      QLatin1String(urlType),
                                      QLatin1String(itemType),
                                      QLatin1String(dataType),
                                      QStringLiteral("com.apple.pasteboard.promised-file-url"),
                                      QStringLiteral("NSFilenamesPboardType")};
    return types;
}

Item itemOf(const QMimeData& data) {
    Item item{{}, [&data](const QString& type) { return formOf(data, type); }};
    for (const QString& type : supportedTypes())
        if (hasForm(data, type)) item.types.push_back(type);
    return item;
}

std::optional<QUrl> load(const Item& item) {
    for (const QString& type : supportedTypes()) {
        if (!item.types.contains(type)) continue;
        if (auto url = decode(item.form(type))) return url;
    }
    return std::nullopt;
}

std::optional<QUrl> decode(const QVariant& form) {
    switch (form.metaType().id()) {
        case QMetaType::QUrl: {
            const QUrl url = form.toUrl();
            return url.isEmpty() ? std::nullopt : std::optional(url);
        }
        case QMetaType::QByteArray: {
            const auto url = urlOfData(form.toByteArray());
            return url ? url : urlOfText(form.toByteArray());
        }
        case QMetaType::QString:
            return urlOfText(form.toString().toUtf8());
        case QMetaType::QVariantList:
        case QMetaType::QStringList: {
            const auto elements = form.toList();
            for (const QVariant& element : elements)
                if (auto url = decode(element)) return url;
            return std::nullopt;
        }
        default:
            return std::nullopt;
    }
}

QUrl urlOf(const QByteArray& path) {
    QUrl url;
    url.setScheme(QStringLiteral("file"));
    url.setPath(QString::fromLatin1(path.toPercentEncoding("/")), QUrl::StrictMode);
    return url;
}

std::optional<fs::path> pathOf(const QUrl& url) {
    if (!url.isLocalFile()) return std::nullopt;
    // Through the encoded bytes of the address, as a name need not be valid UTF-8.
    const QByteArray path = QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1());
    // The system reads a path up to its first NUL: that would be another one.
    if (path.contains('\0')) return std::nullopt;
    return fs::path(path.toStdString());
}

}  // namespace tarvik::DropURLReader
