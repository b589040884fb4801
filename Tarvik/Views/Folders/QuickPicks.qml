import QtQuick
import Tarvik

/// Folders that are often large. A row fills the source.
Column {
    id: quickPicks

    /// The path that is chosen now, as text.
    property string chosenText
    signal picked(var path)

    spacing: Theme.small

    SectionTitle {
        objectName: "quickPicksTitle"
        text: "Common candidates"
    }
    Card {
        width: parent.width
        padding: Theme.tiny

        EmptyState {
            objectName: "noQuickPicks"
            width: parent.width
            visible: list.count === 0
            iconName: "folder"
            title: "None of the usual large folders is here."
            text: "Choose any other folder above."
        }
        RowList {
            id: list
            objectName: "quickPickList"
            width: parent.width
            height: contentHeight
            visible: count > 0
            Accessible.name: "Common candidates"
            model: FoldersState.quickPicks
            currentIndex: -1
            delegate: QuickPickRow {
                id: row
                isChosen: row.path.text === quickPicks.chosenText
                onClicked: quickPicks.picked(row.path)
            }
        }
    }
}
