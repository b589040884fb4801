import QtQuick
import Tarvik

/// A small "i" that tells what a category of data is.
Item {
    id: help
    objectName: "categoryHelp"

    property string text

    implicitWidth: 20
    implicitHeight: 20
    Accessible.role: Accessible.StaticText
    Accessible.name: text

    Icon {
        anchors.centerIn: parent
        name: "info"
        size: 14
        color: Theme.neutral
    }
    HoverHandler { id: hover }
    Loader {
        active: hover.hovered
        sourceComponent: Tooltip {
            objectName: "categoryTooltip"
            parent: help
            text: help.text
            visible: true
        }
    }
}
