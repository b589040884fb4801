import QtQuick
import Tarvik

/// The figures of the plan, and the button that carries it out.
Card {
    id: card
    objectName: "dedupeSummary"

    Item {
        width: parent.width
        implicitHeight: Math.max(tiles.implicitHeight, removeButton.implicitHeight)

        Row {
            id: tiles
            anchors.verticalCenter: parent.verticalCenter
            spacing: Theme.margin * 1.5

            StatTile {
                objectName: "groupsTile"
                title: "Groups"
                value: DedupeState.groupCount
            }
            StatTile {
                objectName: "removeTile"
                title: "Remove"
                value: DedupeState.removableCount
                color: DedupeState.removableCount > 0 ? Theme.warning : Theme.success
            }
            StatTile {
                objectName: "spaceTile"
                title: "Space"
                value: DedupeState.removableSize
            }
        }
        Row {
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            spacing: Theme.medium

            Spinner {
                objectName: "dedupeSpinner"
                anchors.verticalCenter: parent.verticalCenter
                visible: DedupeState.isRunningDedupe
                Accessible.name: "Removing"
            }
            Button {
                id: removeButton
                objectName: "removeDuplicatesButton"
                text: "Remove Duplicates"
                kind: "primary"
                enabled: !DedupeState.isRunningDedupe && !AppState.isBusy
                Accessible.description: "Moves the duplicate launchers to the Trash"
                onClicked: DedupeState.runDedupe()
            }
        }
    }
}
