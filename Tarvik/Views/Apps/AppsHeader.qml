import QtQuick
import QtQuick.Layouts
import Tarvik

/// What is listed, and the choices of what shall be.
Item {
    id: header

    required property ShownApps shown
    required property string scope
    /// As `ShownApps` counts them.
    readonly property var sortKeys: ["size", "name", "risk"]
    signal scopePicked(string name)

    implicitHeight: column.implicitHeight + Theme.large + Theme.medium

    ColumnLayout {
        id: column
        x: Theme.margin
        y: Theme.large
        width: parent.width - 2 * Theme.margin
        spacing: Theme.medium

        RowLayout {
            spacing: Theme.medium
            Label {
                objectName: "appsHeading"
                text: "Applications"
                font.pixelSize: Theme.titleSize
                font.weight: Font.DemiBold
                Accessible.role: Accessible.Heading
            }
            Figures {
                objectName: "appsCount"
                Layout.alignment: Qt.AlignBaseline
                text: AppsState.isScanningApps ? "... " : header.shown.count + " shown / " + header.shown.totalCount + " total"
                color: Theme.textSecondary
            }
            ProgressBar {
                objectName: "sizingBar"
                Layout.fillWidth: true
                Layout.maximumWidth: 240
                visible: AppsState.isScanningApps && AppsState.sizeTotal > 0
                value: AppsState.sizeTotal > 0 ? AppsState.sizeProgress / AppsState.sizeTotal : 0
                Accessible.name: "Measured applications"
            }
            Item { Layout.fillWidth: true }
            Spinner {
                objectName: "appsSpinner"
                visible: AppsState.isScanningApps
                Accessible.name: "Looking for applications"
            }
            IconButton {
                objectName: "refreshAppsButton"
                // Below the one of the toolbar.
                Layout.rightMargin: Theme.large - Theme.margin
                iconName: "refresh"
                help: "Refresh applications"
                enabled: !AppsState.isScanningApps
                onClicked: AppsState.refreshApps()
            }
        }
        RowLayout {
            spacing: Theme.large
            Picker {
                objectName: "viewPicker"
                label: "View"
                choices: ["onDrive", "local", "all"]
                texts: [
                    "On Drive (" + header.shown.onDriveCount + ")",
                    "Local (" + header.shown.localCount + ")",
                    "All (" + header.shown.totalCount + ")"
                ]
                choice: header.scope
                onPicked: name => header.scopePicked(name)
            }
            SearchField {
                objectName: "appSearch"
                Layout.fillWidth: true
                Layout.maximumWidth: 360
                placeholderText: "Search"
                onTextChanged: header.shown.search = text
            }
        }
        RowLayout {
            spacing: Theme.large
            AppSelectionButton { shown: header.shown }
            Item { Layout.fillWidth: true }
            Picker {
                objectName: "sortPicker"
                label: "Sort"
                choices: header.sortKeys
                texts: ["Size", "Name", "Risk"]
                choice: header.sortKeys[header.shown.sortBy]
                onPicked: name => header.shown.sortBy = header.sortKeys.indexOf(name)
            }
            CheckBox {
                objectName: "hideRiskyBox"
                text: "Hide risky"
                checkState: header.shown.hideRisky ? Qt.Checked : Qt.Unchecked
                onClicked: header.shown.hideRisky = !header.shown.hideRisky
            }
            CheckBox {
                objectName: "includeDataBox"
                text: "Include app data"
                checkState: AppsState.includeAppData ? Qt.Checked : Qt.Unchecked
                onClicked: AppsState.includeAppData = !AppsState.includeAppData
            }
        }
    }
}
