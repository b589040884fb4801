import QtQuick
import Tarvik

/// One application: what it is called, what kind it is, how large, how old, and what it may do.
Item {
    id: app

    /// The `UninstallListRow` that it stands in.
    required property var line
    readonly property string facts: [line.dateText, line.permissionsText].filter(fact => fact !== "").join(" · ")

    CheckBox {
        id: box
        objectName: "markBox"
        width: 26
        height: parent.height
        focusPolicy: Qt.NoFocus
        name: "Select " + app.line.name
        checkState: app.line.checkState
        onClicked: app.line.ticked()
    }
    AppIcon {
        id: picture
        anchors.left: box.right
        anchors.verticalCenter: parent.verticalCenter
        width: 28
        height: 28
        source: app.line.iconSource
    }
    Item {
        anchors.left: picture.right
        anchors.leftMargin: Theme.small + 2
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        height: 36

        ElidedLabel {
            objectName: "rowName"
            anchors.left: parent.left
            width: Math.min(implicitWidth, size.x - Theme.small - (badge.visible ? badge.width + Theme.small : 0))
            fullText: app.line.name
            font.weight: Font.DemiBold
            Accessible.ignored: true

            Badge {
                id: badge
                objectName: "rowBadge"
                anchors.left: parent.right
                anchors.leftMargin: Theme.small
                anchors.verticalCenter: parent.verticalCenter
                visible: text !== ""
                implicitHeight: 17
                text: app.line.badge
            }
        }
        Figures {
            id: size
            objectName: "rowSize"
            anchors.right: parent.right
            text: app.line.sizeText
            size: Theme.captionSize
            color: Theme.textSecondary
            Accessible.ignored: true
        }
        ElidedLabel {
            objectName: "rowFacts"
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            fullText: app.facts
            elide: Text.ElideRight
            color: Theme.textSecondary
            font.pixelSize: Theme.captionSize
            Accessible.ignored: true
        }
    }
}
