import QtQuick
import Tarvik

/// Says that a look at the whole machine has found nothing.
Item {
    objectName: "emptyApps"

    EmptyState {
        anchors.centerIn: parent
        width: Math.min(parent.width - 2 * Theme.margin, Theme.textWidth)
        iconName: "apps"
        title: "No applications found."
    }
}
