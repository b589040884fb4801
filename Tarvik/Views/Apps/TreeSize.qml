import QtQuick
import Tarvik

/// The size of a line of a tree, in its column; a spinner until it is known.
Label {
    id: size

    width: 84
    horizontalAlignment: Text.AlignRight
    font.pixelSize: Theme.captionSize
    Accessible.ignored: true

    Loader {
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        active: size.text === ""
        sourceComponent: Spinner {
            size: 12
            Accessible.name: "Measuring"
        }
    }
}
