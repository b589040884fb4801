import QtQuick
import Tarvik

/// A sentence that stays where it concerns something, with room for a button beside it. Wraps and is shown in full; line
/// breaks of its own, from names of files, are shown as spaces.
Rectangle {
    id: notice

    property string text
    property string iconName: "info"
    property string tone: "neutral"
    default property alias actions: actionRow.data

    readonly property real lineHeight: message.contentHeight / Math.max(1, message.lineCount)

    implicitHeight: Math.max(message.implicitHeight, actionRow.height) + 2 * Theme.small
    radius: Theme.radius
    color: Theme.tintOf(tone)

    Icon {
        id: icon
        x: Theme.medium
        y: message.y + (notice.lineHeight - height) / 2
        name: notice.iconName
        color: message.color
    }
    Label {
        id: message
        anchors.left: icon.right
        anchors.leftMargin: Theme.small
        anchors.right: actionRow.left
        anchors.rightMargin: Theme.small
        y: message.lineCount > 1 ? Theme.small : (notice.height - height) / 2
        text: notice.text.replace(/[\n\r\u0085\u2028\u2029]+/g, " ")
        color: notice.tone === "neutral" ? Theme.textSecondary : Theme.colorOf(notice.tone)
        wrapMode: Text.Wrap
    }
    Row {
        id: actionRow
        anchors.right: parent.right
        anchors.rightMargin: children.length > 0 ? Theme.small : 0
        anchors.verticalCenter: parent.verticalCenter
    }
}
