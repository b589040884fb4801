import QtQuick
import Tarvik

/// The repairs of a finding, a button each. A press starts at once.
Row {
    id: actions

    required property string issueName
    required property var repairs
    signal repair(int strategy)

    spacing: Theme.small

    Repeater {
        model: actions.repairs
        Button {
            required property int index
            required property var modelData
            objectName: "repairButton-" + index
            text: modelData.label
            Accessible.name: modelData.label + ": " + actions.issueName
            onClicked: actions.repair(modelData.strategy)
        }
    }
}
