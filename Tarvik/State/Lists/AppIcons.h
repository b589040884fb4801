#pragma once

#include "Platform/Basics/Path.h"

#include <QQuickAsyncImageProvider>
#include <QSize>
#include <QString>

namespace tarvik {

/// The icons of application bundles for `Image`, read and scaled in the background. Where there is none the picture is
/// one empty point, for which the view shows a neutral one: a bundle without an icon is no failure.
class AppIcons : public QQuickAsyncImageProvider {
public:
    /// The name by which an engine knows the provider.
    static constexpr const char* name = "app-icon";
    /// The address of a bundle's icon.
    static QString source(const fs::path& bundle);

    QQuickImageResponse* requestImageResponse(const QString& id, const QSize& requestedSize) override;
};

}  // namespace tarvik
