import QtQuick
import Tarvik

/// The repairs of a finding, a button each. A press starts at once; while one is under way, none can be pressed.
Row {
    id: actions

    required property string issueName
    required property var repairs
    /// Whether the keyboard reaches the buttons: of a long list, those of one row.
    property bool isOnKeyboard: false
    property bool isRepairing: false
    signal repair(int strategy)

    spacing: Theme.small

    Repeater {
        model: actions.repairs
        Button {
            required property int index
            required property var modelData
            objectName: "repairButton-" + index
            text: modelData.label
            enabled: !actions.isRepairing
            focusPolicy: actions.isOnKeyboard ? Qt.TabFocus : Qt.NoFocus
            Accessible.name: modelData.label + ": " + actions.issueName
            onClicked: actions.repair(modelData.strategy)
        }
    }
    Spinner {
        objectName: "repairSpinner"
        anchors.verticalCenter: parent.verticalCenter
        visible: actions.isRepairing
        Accessible.name: "Repairing"
    }
}
