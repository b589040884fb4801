import QtQuick
import QtQuick.Templates as T
import Tarvik

/// How much of something is done, or taken. Set `Accessible.name` where it stands.
T.ProgressBar {
    id: bar

    /// See `Theme.colorOf`.
    property string tone: "accent"

    implicitWidth: 120
    implicitHeight: Theme.barHeight
    Accessible.role: Accessible.ProgressBar

    contentItem: Item {
        Rectangle {
            width: bar.visualPosition > 0 ? Math.max(height, parent.width * bar.visualPosition) : 0
            height: parent.height
            radius: height / 2
            color: Theme.fillOf(bar.tone)
            Behavior on width { NumberAnimation { duration: Theme.calm } }
        }
    }
    background: Rectangle {
        radius: height / 2
        color: Theme.track
    }
}
