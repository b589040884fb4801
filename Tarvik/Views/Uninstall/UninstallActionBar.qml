import QtQuick
import QtQuick.Layouts
import Tarvik

/// How much is ticked, a rehearsal, and the removal.
Rectangle {
    id: bar
    objectName: "uninstallActionBar"

    readonly property PlannedUninstall planned: UninstallState.planned
    /// What everything takes with its units.
    readonly property real neededWidth: 2 * Theme.large + 4 * Theme.small + Theme.tiny + sizeFigure.implicitWidth + countFigure.fullWidth
        + (spinner.visible ? spinner.implicitWidth + Theme.small : 0) + dryRunButton.implicitWidth + removeButton.implicitWidth

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
            id: sizeFigure
            objectName: "checkedSizeFigure"
            // So that the next figure seldom moves, where there is room for that.
            Layout.minimumWidth: bar.width > 420 ? 84 : 0
            value: bar.planned.checkedSize
            unit: bar.planned.checkedSizeUnit
        }
        UninstallFigure {
            id: countFigure
            objectName: "checkedCountFigure"
            Layout.leftMargin: Theme.tiny
            showsUnit: bar.neededWidth <= bar.width
            value: bar.planned.checkedCount
            unit: bar.planned.checkedCountUnit
        }
        Item { Layout.fillWidth: true }
        Spinner {
            id: spinner
            objectName: "uninstallingSpinner"
            visible: UninstallState.isUninstalling
            Accessible.name: "Uninstalling"
        }
        Button {
            id: dryRunButton
            objectName: "dryRunButton"
            text: "Dry-run"
            enabled: !UninstallState.isUninstalling && bar.planned.hasPlan
            onClicked: UninstallState.runUninstall(true)
        }
        Button {
            id: removeButton
            objectName: "removeButton"
            text: "Remove"
            kind: "danger"
            enabled: !UninstallState.isUninstalling && bar.planned.isRemovable && !AppState.isBusy
            onClicked: UninstallState.runUninstall(false)
        }
    }
}
