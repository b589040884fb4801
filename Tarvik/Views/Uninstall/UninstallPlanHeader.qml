import QtQuick
import QtQuick.Layouts
import Tarvik

/// The chosen application, more about it on demand, and what to be careful about.
Item {
    id: header

    readonly property PlannedUninstall planned: UninstallState.planned
    property bool showsMore: false
    signal closed

    implicitHeight: column.implicitHeight + Theme.large + Theme.small

    ColumnLayout {
        id: column
        x: Theme.large
        y: Theme.large
        width: parent.width - 2 * Theme.large
        spacing: Theme.medium

        RowLayout {
            spacing: Theme.medium
            AppIcon {
                Layout.preferredWidth: 40
                Layout.preferredHeight: 40
                source: header.planned.iconSource
            }
            Column {
                Layout.fillWidth: true
                spacing: 2
                ElidedLabel {
                    objectName: "planName"
                    width: parent.width
                    fullText: header.planned.name
                    font.pixelSize: Theme.headlineSize + 2
                    font.weight: Font.DemiBold
                    Accessible.role: Accessible.Heading
                }
                Row {
                    spacing: Theme.small
                    Label {
                        objectName: "planFilesTitle"
                        text: "Apps files and folders"
                        color: Theme.textSecondary
                    }
                    Figures {
                        objectName: "planItems"
                        text: header.planned.itemsText
                        color: Theme.textSecondary
                    }
                }
            }
            IconButton {
                objectName: "closePlanButton"
                Layout.alignment: Qt.AlignTop
                iconName: "close"
                help: "Choose no application"
                onClicked: header.closed()
            }
        }
        Column {
            Layout.fillWidth: true
            spacing: Theme.tiny
            MetadataRow {
                objectName: "planDeveloper"
                label: "Developer"
                value: header.planned.developer
            }
            MetadataRow {
                objectName: "planVerification"
                label: "App verification"
                value: header.planned.verification
            }
            Column {
                objectName: "planMoreInfo"
                width: parent.width
                visible: header.showsMore
                spacing: Theme.tiny
                MetadataRow {
                    objectName: "planVersion"
                    label: "Version"
                    value: header.planned.version
                }
                MetadataRow {
                    objectName: "planBundleId"
                    label: "Bundle ID"
                    value: header.planned.bundleId
                }
                MetadataRow {
                    objectName: "planKind"
                    label: "Kind"
                    value: header.planned.kindText
                }
                MetadataRow {
                    objectName: "planPath"
                    label: "Path"
                    value: header.planned.pathText
                }
            }
            Button {
                objectName: "planMoreInfoButton"
                x: -Theme.small
                text: "More info"
                kind: "quiet"
                iconName: header.showsMore ? "chevronDown" : "chevronRight"
                Accessible.checkable: true
                Accessible.checked: header.showsMore
                onClicked: header.showsMore = !header.showsMore
            }
        }
        Repeater {
            model: header.planned.warnings
            Notice {
                required property int index
                required property string modelData
                objectName: "planWarning-" + index
                Layout.fillWidth: true
                text: modelData
                iconName: "warning"
                tone: "warning"
            }
        }
    }
}
