import QtQuick
import QtQuick.Layouts
import Tarvik

/// What the tab is for, and the button that starts a scan.
ColumnLayout {
    spacing: Theme.tiny

    RowLayout {
        spacing: Theme.medium
        Label {
            objectName: "dedupeHeading"
            Layout.fillWidth: true
            text: "Dedupe"
            font.pixelSize: Theme.titleSize
            font.weight: Font.DemiBold
            Accessible.role: Accessible.Heading
        }
        ScanningDuplicates {
            objectName: "rescanningDuplicates"
            visible: DedupeState.isScanningDedupe && DedupeState.hasPlan
        }
        Button {
            objectName: "dedupeScanButton"
            text: "Scan"
            iconName: "refresh"
            enabled: !DedupeState.isScanningDedupe && !DedupeState.isRunningDedupe
            onClicked: DedupeState.refreshDedupe()
        }
    }
    Label {
        objectName: "dedupeText"
        Layout.fillWidth: true
        Layout.maximumWidth: Theme.textWidth
        text: DedupeState.purpose
        color: Theme.textSecondary
        wrapMode: Text.Wrap
    }
}
