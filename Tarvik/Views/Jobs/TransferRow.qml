import QtQuick
import QtQuick.Layouts
import Tarvik

/// One item on its way: how far it is, in a bar, in bytes and in words. A failure is shown in full.
Item {
    id: row

    property string label
    property string from
    property string to
    property string status
    /// Why it failed.
    property string failure
    property string bytes
    /// 0 to 1.
    property real fraction: 0
    /// "pending", "copying", "verifying", "linking", "done" or "failed".
    property string phase: "pending"
    property bool canMoveBack: false
    readonly property bool isActive: ["copying", "verifying", "linking"].includes(phase)
    readonly property string tone: phase === "done" ? "success" : phase === "failed" ? "danger" : isActive ? "accent" : "neutral"
    signal moveBack

    implicitHeight: column.implicitHeight + Theme.large
    Accessible.role: Accessible.ListItem
    Accessible.name: label + ", " + status

    ColumnLayout {
        id: column
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.leftMargin: Theme.margin
        anchors.rightMargin: Theme.margin
        anchors.verticalCenter: parent.verticalCenter
        spacing: 2

        RowLayout {
            Layout.preferredHeight: Theme.controlHeightSmall
            spacing: Theme.small
            PhaseIcon { phase: row.phase }
            ElidedLabel {
                objectName: "transferLabel"
                Layout.fillWidth: true
                fullText: row.label
                font.weight: Font.Medium
            }
            Button {
                objectName: "moveBackButton"
                visible: row.canMoveBack
                text: "Move Back"
                kind: "quiet"
                iconName: "back"
                Accessible.name: "Move Back " + row.label
                onClicked: row.moveBack()
            }
            Figures {
                objectName: "transferBytes"
                text: row.bytes
                color: Theme.textSecondary
                size: Theme.captionSize
            }
            Badge {
                objectName: "transferStatus"
                Layout.preferredWidth: Math.max(implicitWidth, 76)
                text: row.status
                tone: row.tone
            }
        }
        RowLayout {
            Layout.leftMargin: Theme.iconSize + Theme.small
            spacing: Theme.small
            visible: row.from !== "" && row.phase !== "pending"
            ElidedLabel {
                objectName: "transferFrom"
                Layout.fillWidth: true
                Layout.maximumWidth: Math.ceil(implicitWidth)
                fullText: row.from
                color: Theme.textSecondary
                font.pixelSize: Theme.captionSize
            }
            Label {
                text: "\u2192"
                color: Theme.textSecondary
                font.pixelSize: Theme.captionSize
                Accessible.name: "to"
            }
            ElidedLabel {
                objectName: "transferTo"
                Layout.fillWidth: true
                Layout.maximumWidth: Math.ceil(implicitWidth)
                fullText: row.to
                color: Theme.textSecondary
                font.pixelSize: Theme.captionSize
            }
            Item { Layout.fillWidth: true }
        }
        ProgressBar {
            objectName: "transferBar"
            Layout.fillWidth: true
            Layout.leftMargin: Theme.iconSize + Theme.small
            Layout.topMargin: Theme.tiny
            visible: row.isActive
            value: row.fraction
            tone: row.tone
            Accessible.name: row.label
        }
        Label {
            objectName: "transferFailure"
            Layout.fillWidth: true
            Layout.leftMargin: Theme.iconSize + Theme.small
            visible: row.phase === "failed"
            text: row.failure
            color: Theme.danger
            wrapMode: Text.Wrap
        }
    }
}
