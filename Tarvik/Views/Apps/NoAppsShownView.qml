import QtQuick
import Tarvik

/// Says why none of the applications is listed.
Item {
    id: view
    objectName: "noAppsShown"

    required property string scope
    readonly property var lines: ({
        onDrive: ["No apps on the selected drive.", "Moved apps appear here with Move Back actions."],
        local: ["No local apps match this view.", "Local apps appear here with Move & Symlink actions."],
        all: ["No apps match this search.", "Clear search or filters to see more apps."]
    })[scope]

    EmptyState {
        anchors.centerIn: parent
        width: Math.min(parent.width - 2 * Theme.margin, Theme.textWidth)
        iconName: view.scope === "onDrive" ? "drive" : view.scope === "local" ? "apps" : "search"
        title: view.lines[0]
        text: view.lines[1]
    }
}
