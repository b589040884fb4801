import QtQuick
import QtQuick.Dialogs
import QtQuick.Layouts
import Tarvik

/// The folder that is to be moved: chosen in a panel or dropped here, measured, moved, or brought back when it is a link.
Card {
    id: card
    objectName: "sourceCard"

    required property FolderSource source
    readonly property bool canMove: !source.isEmpty && source.problem === "" && AppState.hasSelectedDrive && !AppState.isBusy
    /// Why nothing can be moved now, or where to.
    readonly property string hint: {
        if (AppState.isRunning)
            return "A move is under way.";
        if (AppState.isRestoring)
            return "A folder is being moved back.";
        if (source.isEmpty)
            return "Choose a folder to move.";
        if (source.problem !== "" || source.isLink)
            return "";
        if (!AppState.hasSelectedDrive)
            return AppState.hasTargetDrives ? "Pick a target drive in the sidebar." : "Connect a drive to move it to.";
        return "To " + AppState.selectedDriveName + ", " + AppState.selectedDriveFree + " free";
    }

    border.color: dropArea.containsDrag ? Theme.accent : Theme.border

    DropArea {
        id: dropArea
        objectName: "sourceDropArea"
        parent: card
        anchors.fill: parent
        keys: ["text/uri-list"]
        onDropped: drop => {
            if (drop.hasUrls) {
                card.source.setUrl(drop.urls[0]);
                drop.accept();
            }
        }
    }

    SectionTitle {
        objectName: "sourceTitle"
        text: "Source folder"
    }

    SourceWell {
        width: parent.width
        source: card.source
        isTarget: dropArea.containsDrag
    }
    Notice {
        objectName: "sourceProblem"
        width: parent.width
        visible: card.source.problem !== ""
        text: card.source.problem
        iconName: "warning"
        tone: "warning"
    }
    Notice {
        objectName: "sourceLink"
        width: parent.width
        visible: card.source.isLink && card.source.problem === ""
        text: "This is a link to " + card.source.targetText
        iconName: "link"
    }

    RowLayout {
        width: parent.width
        spacing: Theme.medium

        Button {
            objectName: "chooseButton"
            text: "Choose"
            Accessible.description: "Choose the folder to move"
            onClicked: panel.open()
        }
        ElidedLabel {
            objectName: "sourceHint"
            Layout.fillWidth: true
            horizontalAlignment: Text.AlignRight
            fullText: card.hint
            color: Theme.textSecondary
            font.pixelSize: Theme.captionSize
        }
        Button {
            objectName: "sourceMoveBackButton"
            visible: card.source.isLink
            text: "Move Back"
            iconName: "back"
            enabled: !AppState.isBusy && card.source.problem === ""
            onClicked: AppState.restoreSymlink(card.source.path)
        }
        Button {
            objectName: "moveButton"
            visible: !card.source.isLink
            text: "Move & Symlink"
            kind: "primary"
            enabled: card.canMove
            onClicked: FoldersState.moveArbitraryFolder(card.source.path)
        }
    }

    FolderDialog {
        id: panel
        parentWindow: card.Window.window
        title: "Choose a folder to move"
        acceptLabel: "Choose"
        onAccepted: card.source.setUrl(selectedFolder)
    }
}
