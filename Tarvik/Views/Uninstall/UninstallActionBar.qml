import QtQuick
import QtQuick.Layouts
import Tarvik

/// How much is ticked, a rehearsal, and the removal.
Rectangle {
    id: bar
    objectName: "uninstallActionBar"

    readonly property PlannedUninstall planned: UninstallState.planned

    implicitHeight: 60
    color: Theme.window

    Rectangle {
        width: parent.width
        height: 1
        color: Theme.border
    }
    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Theme.large
        anchors.rightMargin: Theme.large
        spacing: Theme.small

        UninstallFigure {
            objectName: "checkedSizeFigure"
            // Wide enough that the next figure seldom moves.
            Layout.preferredWidth: Math.max(implicitWidth, Math.min(84, bar.width / 5))
            value: bar.planned.checkedSize
            unit: bar.planned.checkedSizeUnit
        }
        UninstallFigure {
            objectName: "checkedCountFigure"
            value: bar.planned.checkedCount
            unit: bar.planned.checkedCountUnit
        }
        Item { Layout.fillWidth: true }
        Spinner {
            objectName: "uninstallingSpinner"
            visible: UninstallState.isUninstalling
            Accessible.name: "Uninstalling"
        }
        Button {
            objectName: "dryRunButton"
            text: "Dry-run"
            enabled: !UninstallState.isUninstalling && bar.planned.hasPlan
            onClicked: UninstallState.runUninstall(true)
        }
        Button {
            objectName: "removeButton"
            text: "Remove"
            kind: "danger"
            enabled: !UninstallState.isUninstalling && bar.planned.isRemovable && !AppState.isBusy
            onClicked: UninstallState.runUninstall(false)
        }
    }
}
