import QtQuick
import QtQuick.Layouts
import Tarvik

/// A sentence that stays where it concerns something, with room for a button beside it. Wraps and is shown in full.
Rectangle {
    id: notice

    property string text
    property string iconName: "info"
    property string tone: "neutral"
    default property alias actions: actionRow.data

    implicitHeight: row.implicitHeight + 2 * Theme.small
    radius: Theme.radius
    color: Theme.tintOf(tone)

    RowLayout {
        id: row
        anchors.fill: parent
        anchors.leftMargin: Theme.medium
        anchors.rightMargin: actionRow.children.length ? Theme.small : Theme.medium
        anchors.topMargin: Theme.small
        anchors.bottomMargin: Theme.small
        spacing: Theme.small

        Icon {
            Layout.alignment: Qt.AlignTop
            Layout.topMargin: (Math.min(row.height, Theme.controlHeight) - height) / 2
            name: notice.iconName
            color: message.color
        }
        Label {
            id: message
            Layout.fillWidth: true
            Layout.minimumHeight: 16
            text: notice.text
            color: notice.tone === "neutral" ? Theme.textSecondary : Theme.colorOf(notice.tone)
            wrapMode: Text.Wrap
        }
        Row {
            id: actionRow
            visible: children.length > 0
        }
    }
}
