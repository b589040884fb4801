import QtQuick
import Tarvik

/// Ticks all applications that are to be seen, or takes their ticks away when all are ticked.
CheckBox {
    required property ShownApps shown

    objectName: "selectAllBox"
    text: "Select all"
    enabled: shown.count > 0
    checkState: shown.areAllSelected ? Qt.Checked : Qt.Unchecked
    onClicked: shown.toggleAll()
}
