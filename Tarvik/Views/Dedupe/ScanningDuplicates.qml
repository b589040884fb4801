import QtQuick
import Tarvik

/// Stands where one waits for a scan.
Row {
    spacing: Theme.small

    Spinner { anchors.verticalCenter: parent.verticalCenter }
    Label {
        objectName: "scanningDuplicatesText"
        anchors.verticalCenter: parent.verticalCenter
        text: "Scanning duplicates..."
        color: Theme.textSecondary
    }
}
