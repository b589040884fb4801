import QtQuick
import Tarvik

/// What takes the most room on the drives, and is well.
Column {
    id: section
    objectName: "topLargest"

    visible: rows.count > 0
    height: visible ? implicitHeight : 0
    topPadding: Theme.huge
    spacing: Theme.small

    Label {
        objectName: "topLargestTitle"
        text: "Top 10 largest healthy symlinked apps"
        font.pixelSize: Theme.headlineSize
        font.weight: Font.DemiBold
        Accessible.role: Accessible.Heading
    }
    Card {
        width: parent.width
        spacing: Theme.small
        Repeater {
            id: rows
            model: HealthState.largest
            Item {
                id: line
                required property string name
                required property string sizeText
                objectName: "largest-" + name
                width: parent.width
                implicitHeight: lineName.implicitHeight
                ElidedLabel {
                    id: lineName
                    objectName: "largestName"
                    width: parent.width - lineSize.width - Theme.large
                    fullText: line.name
                }
                Figures {
                    id: lineSize
                    objectName: "largestSize"
                    anchors.right: parent.right
                    text: line.sizeText
                }
            }
        }
    }
}
