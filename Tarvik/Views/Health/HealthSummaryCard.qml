import QtQuick
import Tarvik

/// The figures of the last check.
Card {
    id: card
    objectName: "healthSummary"

    Item {
        width: parent.width
        implicitHeight: tiles.implicitHeight

        Row {
            id: tiles
            spacing: Theme.margin * 1.5

            StatTile {
                objectName: "healthyTile"
                title: "Healthy"
                value: HealthState.healthyCount
                color: Theme.success
            }
            StatTile {
                objectName: "problemsTile"
                title: "Problems"
                value: HealthState.problemCount
                color: HealthState.problemCount > 0 ? Theme.danger : Theme.success
            }
            StatTile {
                objectName: "scannedTile"
                title: "Scanned"
                value: HealthState.scannedSymlinks
            }
            StatTile {
                objectName: "drivesTile"
                title: "Drives"
                value: HealthState.scannedDrives
            }
        }
        Label {
            objectName: "lastScan"
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            text: HealthState.lastScan
            color: Theme.textSecondary
            font.pixelSize: Theme.captionSize
        }
    }
}
