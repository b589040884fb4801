import QtQuick
import Tarvik

/// Moves any one folder.
ScrollView {
    id: tab
    objectName: "foldersTab"

    contentHeight: column.height

    FolderSource { id: source }

    Connections {
        target: AppState
        function onIsRunningChanged() { source.refresh() }
        function onIsRestoringChanged() { source.refresh() }
    }

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
            source: source
        }
        QuickPicks {
            width: parent.width
            chosenText: source.text
            onPicked: path => source.path = path
        }
    }
}
