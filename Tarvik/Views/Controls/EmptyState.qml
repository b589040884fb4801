import QtQuick
import Tarvik

/// What a list shows when there is nothing to list.
Column {
    id: emptyState

    property string iconName
    property string title
    property string text

    spacing: Theme.tiny
    topPadding: Theme.large
    bottomPadding: Theme.large

    Icon {
        anchors.horizontalCenter: parent.horizontalCenter
        name: emptyState.iconName
        size: 24
        color: Theme.neutral
    }
    Label {
        objectName: "emptyTitle"
        width: parent.width
        topPadding: Theme.tiny
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        text: emptyState.title
        color: Theme.textSecondary
    }
    Label {
        objectName: "emptyText"
        width: parent.width
        visible: text !== ""
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        text: emptyState.text
        color: Theme.textSecondary
        font.pixelSize: Theme.captionSize
    }
}
