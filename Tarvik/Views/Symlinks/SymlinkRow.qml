import QtQuick
import Tarvik

/// One link: where it stands, where it leads, and whether something is there. Space or Return moves that back, once the
/// user has agreed.
ListRow {
    id: row

    required property var location
    required property string locationText
    required property string targetText
    required property string sizeText
    required property bool isValid
    readonly property int stateWidth: 62
    readonly property int sizeWidth: 72
    readonly property int moveBackWidth: 108
    signal restore

    objectName: "symlink-" + location.name
    implicitHeight: 54
    leftPadding: Theme.margin
    rightPadding: Theme.large
    Accessible.name: locationText + ", " + (isValid ? "valid" : "broken")
    Accessible.description: targetText
    item: location

    onRestore: AppState.restoreSymlink(location)
    Keys.onReturnPressed: event => restoreOnce(event)
    Keys.onEnterPressed: event => restoreOnce(event)
    Keys.onSpacePressed: event => restoreOnce(event)

    function restoreOnce(event) {
        if (!event.isAutoRepeat && !AppState.isBusy)
            restore();
    }

    contentItem: Item {
        Column {
            anchors.left: parent.left
            anchors.right: size.left
            anchors.rightMargin: Theme.medium
            anchors.verticalCenter: parent.verticalCenter
            spacing: 3

            Row {
                width: parent.width
                spacing: Theme.small
                Icon {
                    id: linkIcon
                    anchors.verticalCenter: parent.verticalCenter
                    name: "link"
                    size: 14
                    color: row.isValid ? Theme.accent : Theme.danger
                }
                ElidedLabel {
                    objectName: "symlinkPath"
                    width: parent.width - linkIcon.width - parent.spacing
                    fullText: row.locationText
                    font.weight: Font.Medium
                    Accessible.ignored: true
                }
            }
            Row {
                width: parent.width
                spacing: Theme.small
                Icon {
                    id: arrow
                    objectName: "symlinkArrow"
                    anchors.verticalCenter: parent.verticalCenter
                    name: "arrowRight"
                    size: 14
                }
                ElidedLabel {
                    objectName: "symlinkTarget"
                    width: parent.width - arrow.width - parent.spacing
                    fullText: row.targetText
                    color: Theme.textSecondary
                    font.pixelSize: Theme.captionSize
                    Accessible.ignored: true
                }
            }
        }
        Label {
            id: size
            objectName: "symlinkSize"
            anchors.right: badge.left
            anchors.rightMargin: Theme.large
            anchors.verticalCenter: parent.verticalCenter
            width: row.sizeWidth
            visible: row.isValid
            horizontalAlignment: Text.AlignRight
            text: row.sizeText
            Accessible.ignored: true
        }
        Badge {
            id: badge
            objectName: "symlinkState"
            anchors.right: parent.right
            anchors.rightMargin: row.moveBackWidth + Theme.small
            anchors.verticalCenter: parent.verticalCenter
            width: row.stateWidth
            text: row.isValid ? "valid" : "broken"
            tone: row.isValid ? "success" : "danger"
        }
        Button {
            objectName: "symlinkMoveBackButton"
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            enabled: !AppState.isBusy
            focusPolicy: Qt.NoFocus
            text: "Move Back"
            kind: "quiet"
            iconName: "back"
            Accessible.name: "Move Back " + row.locationText
            onClicked: row.restore()
        }
    }
}
