import QtQuick
import Tarvik

/// The picture of an application, loaded in the background; a neutral one until it is there, and where there is none.
Item {
    id: icon

    property alias source: picture.source
    readonly property bool isNeutral: picture.status !== Image.Ready || picture.implicitWidth < 2

    width: 32
    height: 32
    Accessible.ignored: true

    Image {
        id: picture
        anchors.fill: parent
        visible: !icon.isNeutral
        // In points: the picture comes with as many pixels as the screen has for them.
        sourceSize: Qt.size(icon.width, icon.height)
        asynchronous: true
        fillMode: Image.PreserveAspectFit
    }
    Loader {
        anchors.fill: parent
        anchors.margins: 2
        active: icon.isNeutral
        sourceComponent: Rectangle {
            radius: Theme.radius
            color: Theme.neutralTint
            border.width: 1
            border.color: Theme.border
            Loader {
                anchors.centerIn: parent
                // Most pictures are there in a moment: until then the drawing is not worth making.
                active: picture.status !== Image.Loading
                sourceComponent: Icon {
                    name: "apps"
                    color: Theme.neutral
                }
            }
        }
    }
}
