import QtQuick
import Tarvik

/// The head of one category of the plan: its box for all that is in it, and how much that is.
Item {
    id: section

    /// The `UninstallPlanRow` that it stands in.
    required property var line

    DisclosureButton {
        id: chevron
        objectName: "sectionChevron"
        anchors.verticalCenter: parent.verticalCenter
        width: 22
        height: 24
        focusPolicy: Qt.NoFocus
        isOpen: section.line.isOpen
        onClicked: section.line.turned(!section.line.isOpen)
    }
    CheckBox {
        id: box
        objectName: "sectionBox"
        anchors.left: chevron.right
        anchors.leftMargin: Theme.tiny
        height: parent.height
        focusPolicy: Qt.NoFocus
        name: "Select " + section.line.name
        checkState: section.line.checkState
        onClicked: section.line.clicked()
    }
    Label {
        objectName: "sectionName"
        anchors.left: box.right
        anchors.leftMargin: Theme.small
        anchors.right: detail.left
        anchors.rightMargin: Theme.small
        anchors.verticalCenter: parent.verticalCenter
        text: section.line.name
        elide: Text.ElideRight
        font.weight: Font.DemiBold
        Accessible.ignored: true
    }
    Figures {
        id: detail
        objectName: "sectionDetail"
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        text: section.line.detail
        color: Theme.textSecondary
        size: Theme.captionSize
        Accessible.ignored: true
    }
}
