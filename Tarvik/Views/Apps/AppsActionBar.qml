import QtQuick
import QtQuick.Layouts
import Tarvik

/// What is ticked, where it would go, and the moves.
Rectangle {
    id: bar
    objectName: "appsActionBar"

    required property string scope
    readonly property int movable: AppsState.selectedMovableCount
    readonly property int restorable: AppsState.selectedRestorableCount
    /// Where all are listed, what can come back is told as well once some of that is ticked.
    readonly property string selection: {
        const here = movable + " selected - " + AppsState.selectedTotalText;
        const there = restorable + " selected to move back";
        if (scope === "all")
            return restorable === 0 ? here : movable === 0 ? there : here + ", " + there;
        return scope === "local" ? here : there;
    }
    readonly property string target: {
        if (scope === "onDrive")
            return "External-drive apps";
        return AppState.hasSelectedDrive ? AppState.selectedDriveName : "Pick a target drive in sidebar";
    }
    readonly property bool hasTarget: scope !== "onDrive" && AppState.hasSelectedDrive

    implicitHeight: 56
    color: Theme.window

    Rectangle {
        width: parent.width
        height: 1
        color: Theme.border
    }
    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Theme.margin
        anchors.rightMargin: Theme.margin
        spacing: Theme.small

        Column {
            Layout.fillWidth: true
            spacing: 2
            Figures {
                objectName: "selectionText"
                text: bar.selection
                weight: Font.DemiBold
            }
            Row {
                width: parent.width
                spacing: Theme.small
                ElidedLabel {
                    objectName: "targetText"
                    width: Math.min(implicitWidth, parent.width - (bar.hasTarget ? free.width + parent.spacing : 0))
                    fullText: bar.target
                    color: Theme.textSecondary
                    font.pixelSize: Theme.captionSize
                }
                Figures {
                    id: free
                    objectName: "targetFree"
                    visible: bar.hasTarget
                    text: AppState.selectedDriveFree + " free"
                    color: Theme.textSecondary
                    size: Theme.captionSize
                }
            }
        }
        Button {
            objectName: "clearSelectionButton"
            text: "Clear"
            kind: "quiet"
            enabled: bar.movable + bar.restorable > 0
            onClicked: AppsState.clearSelection()
        }
        Button {
            objectName: "restoreSelectedButton"
            visible: bar.scope !== "local"
            text: "Move Back"
            iconName: "back"
            enabled: bar.restorable > 0 && !AppState.isBusy
            onClicked: AppsState.restoreSelectedApps()
        }
        Button {
            objectName: "moveAppsButton"
            visible: bar.scope !== "onDrive"
            text: "Move & Symlink"
            kind: "primary"
            enabled: bar.movable > 0 && AppState.hasSelectedDrive && !AppState.isBusy
            onClicked: AppsState.confirmAndMove()
        }
    }
}
