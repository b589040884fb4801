import QtQuick
import QtQuick.Shapes
import Tarvik

/// Shows that applications can be dropped on the tab.
Item {
    id: zone
    objectName: "uninstallDropZone"

    property bool isTarget: false

    /// A rectangle with round corners.
    readonly property string outline: {
        const round = Theme.radiusLarge;
        const across = width - 2 * round - 2;
        const down = height - 2 * round - 2;
        const corner = (x, y) => `a${round} ${round} 0 0 1 ${x} ${y}`;
        return `M${round + 1} 1h${across}${corner(round, round)}v${down}${corner(-round, round)}h${-across}${corner(-round, -round)}v${-down}${corner(round, -round)}`;
    }

    implicitHeight: 104

    Rectangle {
        anchors.fill: parent
        radius: Theme.radiusLarge
        color: zone.isTarget ? Theme.accentTint : Theme.card
    }
    Shape {
        anchors.fill: parent
        ShapePath {
            strokeColor: zone.isTarget ? Theme.accent : Theme.controlBorder
            strokeWidth: 1.4
            strokeStyle: ShapePath.DashLine
            dashPattern: [4, 3]
            fillColor: "transparent"
            PathSvg { path: zone.outline }
        }
    }
    Column {
        anchors.centerIn: parent
        width: parent.width - 2 * Theme.large
        spacing: Theme.small
        Icon {
            anchors.horizontalCenter: parent.horizontalCenter
            name: "trash"
            size: 24
            color: zone.isTarget ? Theme.accent : Theme.neutral
        }
        Label {
            objectName: "dropZoneText"
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            text: "Drag & Drop an application to quickly uninstall"
            color: zone.isTarget ? Theme.accent : Theme.textSecondary
        }
    }
}
