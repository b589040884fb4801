import QtQuick
import Tarvik

/// The repairs of a finding, a button each. A press starts at once; while one is under way, none can be pressed.
Row {
    id: actions

    required property string issueName
    required property var repairs
    /// Whether the keyboard reaches the buttons: of a long list, those of one row.
    property bool isOnKeyboard: false
    /// Where Tab goes from the last one, if not to what comes next anyhow.
    property Item following: null
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
            // What has the keyboard keeps it until it goes elsewhere.
            focusPolicy: actions.isOnKeyboard || activeFocus ? Qt.TabFocus : Qt.NoFocus
            Accessible.name: modelData.label + ": " + actions.issueName
            Keys.onTabPressed: event => {
                event.accepted = actions.following !== null && index === actions.repairs.length - 1;
                if (event.accepted)
                    actions.following.forceActiveFocus(Qt.TabFocusReason);
            }
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
