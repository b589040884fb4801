import QtQuick
import QtQuick.Templates as T
import Tarvik

/// A short help text below its parent.
T.ToolTip {
    id: tooltip

    x: parent ? Math.round((parent.width - width) / 2) : 0
    y: parent ? parent.height + Theme.tiny : 0
    width: Math.min(implicitWidth, Theme.toastWidth)
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    margins: Theme.small
    padding: 6
    horizontalPadding: Theme.small
    delay: 500
    closePolicy: T.Popup.NoAutoClose

    contentItem: Label {
        text: tooltip.text
        color: Theme.textOnAccent
        font.pixelSize: Theme.captionSize
        wrapMode: Text.Wrap
    }
    background: Rectangle {
        radius: Theme.radiusSmall
        color: Theme.text
    }
}
