import QtQuick
import Tarvik

/// The place of one tab. Its view is made when it is first seen, and stays: what the user has set up in it, and where in a
/// list they were, is there when they come back.
Loader {
    required property var modelData
    property bool isSelected: false
    property bool hasBeenSeen: false

    anchors.fill: parent
    visible: isSelected
    // What is not seen takes no keys.
    enabled: isSelected
    active: isSelected || hasBeenSeen
    source: Qt.resolvedUrl(modelData.view)
    onLoaded: hasBeenSeen = true
}
