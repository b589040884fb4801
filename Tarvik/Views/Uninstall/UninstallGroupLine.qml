import QtQuick
import Tarvik

/// The applications of one vendor, as one line.
Item {
    id: group

    /// The `UninstallListRow` that it stands in.
    required property var line

    CheckBox {
        id: box
        objectName: "groupBox"
        width: 26
        height: parent.height
        focusPolicy: Qt.NoFocus
        name: "Select " + group.line.name
        checkState: group.line.checkState
        onClicked: group.line.ticked()
    }
    Rectangle {
        id: picture
        anchors.left: box.right
        anchors.verticalCenter: parent.verticalCenter
        width: 28
        height: 28
        radius: Theme.radius
        color: Theme.neutralTint
        Icon {
            anchors.centerIn: parent
            name: "group"
            color: Theme.neutral
        }
    }
    Column {
        anchors.left: picture.right
        anchors.leftMargin: Theme.small + 2
        anchors.right: chevron.left
        anchors.rightMargin: Theme.small
        anchors.verticalCenter: parent.verticalCenter
        spacing: 2
        ElidedLabel {
            objectName: "groupName"
            width: parent.width
            fullText: group.line.name
            font.weight: Font.DemiBold
            Accessible.ignored: true
        }
        Label {
            objectName: "groupCount"
            width: parent.width
            elide: Text.ElideRight
            text: group.line.countText
            color: Theme.textSecondary
            font.pixelSize: Theme.captionSize
            Accessible.ignored: true
        }
    }
    DisclosureButton {
        id: chevron
        objectName: "groupChevron"
        anchors.right: parent.right
        anchors.rightMargin: -Theme.tiny
        anchors.verticalCenter: parent.verticalCenter
        width: 24
        focusPolicy: Qt.NoFocus
        isOpen: group.line.isOpen
        help: isOpen ? "Hide applications" : "Show applications"
        onClicked: group.line.turned(!group.line.isOpen)
    }
}
