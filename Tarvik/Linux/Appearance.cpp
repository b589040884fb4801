#include "Appearance.h"

#include "Platform/Files/Files.h"

#include <QColor>
#include <QGuiApplication>
#include <QIcon>
#include <QPalette>

namespace tarvik::Appearance {

void forceLight() {
    // The views bring their own colours; this is for what the toolkit draws itself, such as a file panel.
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(0xf5, 0xf6, 0xf8));
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::AlternateBase, QColor(0xf5, 0xf6, 0xf8));
    palette.setColor(QPalette::Button, QColor(0xec, 0xef, 0xf3));
    palette.setColor(QPalette::WindowText, QColor(0x1b, 0x24, 0x33));
    palette.setColor(QPalette::Text, QColor(0x1b, 0x24, 0x33));
    palette.setColor(QPalette::ButtonText, QColor(0x1b, 0x24, 0x33));
    palette.setColor(QPalette::Highlight, QColor(0x2b, 0x66, 0xd9));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    QGuiApplication::setPalette(palette);
}

void identify() {
    QGuiApplication::setDesktopFileName(QStringLiteral("com.tarvik.Tarvik"));
    QIcon icon;
    for (const int side : {16, 24, 32, 48, 64, 128, 256})
        icon.addFile(QStringLiteral(":/icon/%1x%1/apps/tarvik.png").arg(side));
    QGuiApplication::setWindowIcon(icon);
}

bool hasGraphicsCard() {
    return Files::exists("/dev/dri");
}

}  // namespace tarvik::Appearance
