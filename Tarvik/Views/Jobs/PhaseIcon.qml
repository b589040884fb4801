import QtQuick
import Tarvik

/// Where an item stands: waiting, on its way, there, or failed.
Item {
    id: phaseIcon

    property string phase
    readonly property bool isActive: ["copying", "verifying", "linking"].includes(phase)

    implicitWidth: Theme.iconSize
    implicitHeight: Theme.iconSize

    Spinner {
        visible: phaseIcon.isActive
        Accessible.ignored: true
    }
    Icon {
        visible: !phaseIcon.isActive
        name: ({ done: "check", failed: "warning" })[phaseIcon.phase] ?? "clock"
        color: ({ done: Theme.success, failed: Theme.danger })[phaseIcon.phase] ?? Theme.neutral
    }
}
