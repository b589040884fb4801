import QtQuick
import QtQuick.Layouts
import Tarvik

/// What is ticked in the data of an application, and its way to the Trash.
RowLayout {
    id: bar

    required property AppDetails details
    readonly property bool hasChecked: details.checkedCount > 0

    spacing: Theme.small

    Figures {
        objectName: "checkedText"
        text: bar.details.checkedText
        color: bar.hasChecked ? Theme.text : Theme.textSecondary
    }
    Figures {
        objectName: "checkedSize"
        Layout.fillWidth: true
        text: bar.details.checkedSizeText
        color: Theme.textSecondary
    }
    Button {
        objectName: "clearCheckedButton"
        text: "Clear"
        kind: "quiet"
        enabled: bar.hasChecked
        onClicked: bar.details.clearChecked()
    }
    Button {
        objectName: "trashButton"
        text: "Move to Trash"
        kind: "danger"
        enabled: bar.hasChecked && !AppState.isBusy
        onClicked: bar.details.moveToTrash()
    }
}
