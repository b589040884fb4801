import QtQuick
import Tarvik

/// One thing that may go, with why it belongs to the application.
Item {
    id: candidate

    /// The `UninstallPlanRow` that it stands in.
    required property var line

    CheckBox {
        id: box
        objectName: "candidateBox"
        // Below that of the section.
        x: 26
        height: parent.height
        focusPolicy: Qt.NoFocus
        name: "Select " + candidate.line.name
        checkState: candidate.line.checkState
        onClicked: candidate.line.clicked()
    }
    Icon {
        id: icon
        anchors.left: box.right
        anchors.leftMargin: Theme.small
        anchors.verticalCenter: parent.verticalCenter
        name: candidate.line.iconName
    }
    Column {
        anchors.left: icon.right
        anchors.leftMargin: Theme.small
        anchors.right: badge.visible ? badge.left : size.left
        anchors.rightMargin: Theme.small
        anchors.verticalCenter: parent.verticalCenter
        spacing: 1
        ElidedLabel {
            objectName: "candidatePath"
            width: parent.width
            fullText: candidate.line.name
            Accessible.ignored: true
        }
        ElidedLabel {
            objectName: "candidateReason"
            width: parent.width
            fullText: candidate.line.detail
            color: Theme.textSecondary
            font.pixelSize: Theme.captionSize
            Accessible.ignored: true
        }
    }
    Badge {
        id: badge
        objectName: "candidateAdmin"
        anchors.right: size.left
        anchors.rightMargin: size.width > 0 ? Theme.small : 0
        anchors.verticalCenter: parent.verticalCenter
        visible: candidate.line.isPrivileged
        implicitHeight: 18
        text: "admin"
        tone: "warning"
    }
    Figures {
        id: size
        objectName: "candidateSize"
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        text: candidate.line.sizeText
        size: Theme.captionSize
        Accessible.ignored: true
    }
}
