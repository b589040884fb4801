import QtQuick
import Tarvik

/// One figure with its name.
Column {
    id: tile

    required property string title
    required property string value
    property color color: Theme.text

    spacing: 2
    Accessible.role: Accessible.StaticText
    Accessible.name: title + ": " + value

    Label {
        objectName: "tileValue"
        text: tile.value
        color: tile.color
        font.pixelSize: Theme.titleSize
        font.weight: Font.DemiBold
        Accessible.ignored: true
    }
    Label {
        objectName: "tileTitle"
        text: tile.title
        color: Theme.textSecondary
        font.pixelSize: Theme.captionSize
        Accessible.ignored: true
    }
}
