import QtQuick
import Tarvik

/// What would go with the chosen application, section by section, and the acts.
Item {
    id: view
    objectName: "uninstallPlan"

    RowList {
        id: list
        objectName: "planList"
        anchors.top: parent.top
        anchors.bottom: bar.top
        width: parent.width
        bottomMargin: Theme.small
        clip: true
        currentIndex: -1
        Accessible.name: "Files of " + UninstallState.planned.name
        model: UninstallState.planned.rows
        header: UninstallPlanHeader {
            width: list.width
            onClosed: UninstallState.clearSelection()
            // It grows upwards, out of sight.
            onImplicitHeightChanged: Qt.callLater(list.positionViewAtBeginning)
        }
        delegate: UninstallPlanRow {}
        // Above the first row is what is known of the application.
        onCurrentIndexChanged: if (showsFocus && currentIndex === 0) positionViewAtBeginning()

        Connections {
            target: UninstallState.planned
            function onPlanChanged() {
                list.currentIndex = -1;
                Qt.callLater(list.positionViewAtBeginning);
            }
        }
    }
    UninstallActionBar {
        id: bar
        anchors.bottom: parent.bottom
        width: parent.width
    }
}
