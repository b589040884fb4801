import QtQuick
import Tarvik

/// Moves any one folder.
ScrollView {
    id: tab
    objectName: "foldersTab"

    readonly property FolderSource source: FoldersState.source

    contentHeight: column.height

    Column {
        id: column
        width: Math.min(parent.width - 2 * Theme.margin, Theme.columnWidth)
        x: Theme.margin
        topPadding: Theme.margin
        bottomPadding: Theme.margin
        spacing: Theme.huge

        Column {
            width: parent.width
            spacing: Theme.small
            Label {
                objectName: "foldersHeading"
                text: "Move Folder"
                font.pixelSize: Theme.titleSize
                font.weight: Font.DemiBold
                Accessible.role: Accessible.Heading
            }
            Label {
                objectName: "foldersText"
                width: Math.min(parent.width, Theme.textWidth)
                text: "Relocate any folder to the target drive and replace it with a symlink. Use for Logic Pro Library, Application Support data, or any path the Apps tab can't handle."
                color: Theme.textSecondary
                wrapMode: Text.Wrap
                lineHeight: 1.25
            }
        }
        SourceCard {
            width: parent.width
            source: tab.source
        }
        QuickPicks {
            width: parent.width
            chosenText: tab.source.text
            onPicked: path => tab.source.path = path
        }
    }
}
