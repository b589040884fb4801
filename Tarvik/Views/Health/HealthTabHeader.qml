import QtQuick
import QtQuick.Layouts
import Tarvik

/// What the tab is for, and the button that starts a check.
ColumnLayout {
    spacing: Theme.tiny

    RowLayout {
        spacing: Theme.medium
        Label {
            objectName: "healthHeading"
            Layout.fillWidth: true
            text: "Health"
            font.pixelSize: Theme.titleSize
            font.weight: Font.DemiBold
            Accessible.role: Accessible.Heading
        }
        Button {
            objectName: "scanButton"
            text: "Scan"
            kind: HealthState.hasReport ? "secondary" : "primary"
            iconName: "refresh"
            enabled: !HealthState.isScanningHealth
            onClicked: HealthState.refreshHealth()
        }
    }
    Label {
        objectName: "healthText"
        Layout.fillWidth: true
        Layout.maximumWidth: Theme.textWidth
        text: "Verify every moved app is intact. Detects dangling, empty, corrupted, reverted, and orphaned bundles."
        color: Theme.textSecondary
        wrapMode: Text.Wrap
    }
}
