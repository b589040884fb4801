import QtQuick
import Tarvik

/// One fact and its name.
Item {
    id: row

    property string label
    property string value
    property bool isLoading: false

    width: parent ? parent.width : implicitWidth
    implicitHeight: 20
    Accessible.role: Accessible.StaticText
    Accessible.name: label + ": " + value

    Label {
        objectName: "metadataLabel"
        width: 110
        anchors.verticalCenter: parent.verticalCenter
        text: row.label
        color: Theme.textSecondary
        font.pixelSize: Theme.captionSize
        Accessible.ignored: true
    }
    ElidedLabel {
        objectName: "metadataValue"
        x: 118
        width: parent.width - x
        anchors.verticalCenter: parent.verticalCenter
        visible: !row.isLoading
        fullText: row.value
        font.pixelSize: Theme.captionSize
        Accessible.ignored: true
    }
    Spinner {
        x: 118
        anchors.verticalCenter: parent.verticalCenter
        visible: row.isLoading
        size: 12
        Accessible.ignored: true
    }
}
