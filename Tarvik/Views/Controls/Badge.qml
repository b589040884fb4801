import QtQuick
import Tarvik

/// A word about the state of something, in the colours of a tone.
Rectangle {
    property alias text: label.text
    property string tone: "neutral"

    implicitWidth: label.implicitWidth + 2 * Theme.small
    implicitHeight: 20
    radius: height / 2
    color: Theme.tintOf(tone)

    Label {
        id: label
        anchors.centerIn: parent
        color: parent.tone === "neutral" ? Theme.textSecondary : Theme.colorOf(parent.tone)
        font.pixelSize: Theme.captionSize
        font.weight: Font.Medium
    }
}
