import QtQuick
import QtQuick.Layouts
import Tarvik

/// The links that moves have left, and the way back of each.
Item {
    objectName: "symlinksTab"

    ColumnLayout {
        id: header
        x: Theme.margin
        y: Theme.large
        width: parent.width - 2 * Theme.margin
        spacing: Theme.tiny

        RowLayout {
            spacing: Theme.medium
            Label {
                objectName: "symlinksHeading"
                Layout.fillWidth: true
                text: "Symlinks"
                font.pixelSize: Theme.titleSize
                font.weight: Font.DemiBold
                Accessible.role: Accessible.Heading
            }
            Button {
                objectName: "rescanButton"
                text: "Rescan"
                iconName: "refresh"
                onClicked: SymlinksState.refreshSymlinks()
            }
        }
        Label {
            objectName: "symlinksText"
            Layout.fillWidth: true
            Layout.maximumWidth: Theme.textWidth
            text: "All symbolic links found in the standard locations the mover writes to."
            color: Theme.textSecondary
            wrapMode: Text.Wrap
        }
    }
    Rectangle {
        anchors.top: header.bottom
        anchors.topMargin: Theme.large
        anchors.bottom: parent.bottom
        width: parent.width
        color: Theme.card

        RowList {
            id: list
            objectName: "symlinkList"
            anchors.fill: parent
            topMargin: Theme.tiny
            bottomMargin: Theme.tiny
            clip: true
            Accessible.name: "Symlinks"
            model: SymlinksState.symlinks
            currentIndex: -1
            delegate: SymlinkRow {}
        }
        EmptyState {
            objectName: "noSymlinks"
            anchors.centerIn: parent
            width: Math.min(parent.width - 2 * Theme.margin, Theme.textWidth)
            visible: list.count === 0
            iconName: "link"
            title: "No symlinks found."
        }
        Rectangle {
            width: parent.width
            height: 1
            color: Theme.border
        }
    }
}
