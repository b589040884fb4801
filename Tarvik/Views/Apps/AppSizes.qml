import QtQuick
import Tarvik

/// What an application takes: in all, and below that its bundle and its data, each in its column. A spinner while
/// nothing is known.
Item {
    id: sizes

    property bool isKnown: true
    property string appText
    property string dataText
    property string totalText
    readonly property int columnWidth: Math.floor((width - Theme.small) / 2)

    implicitHeight: 36

    Loader {
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        active: !sizes.isKnown
        sourceComponent: Spinner {
            objectName: "appSizeSpinner"
            Accessible.name: "Measuring the application"
        }
    }
    // What is not shown has no text: laying that out is most of the work for a new row.
    Label {
        objectName: "appTotal"
        width: parent.width
        visible: sizes.isKnown
        horizontalAlignment: Text.AlignRight
        text: sizes.isKnown ? sizes.totalText : ""
        font.weight: Font.DemiBold
        Accessible.ignored: true
    }
    Label {
        objectName: "appSize"
        anchors.bottom: parent.bottom
        width: sizes.columnWidth
        visible: sizes.isKnown
        horizontalAlignment: Text.AlignRight
        text: sizes.isKnown ? "app " + sizes.appText : ""
        color: Theme.textSecondary
        font.pixelSize: Theme.captionSize
        Accessible.ignored: true
    }
    Label {
        objectName: "appDataSize"
        anchors.bottom: parent.bottom
        anchors.right: parent.right
        width: sizes.columnWidth
        visible: sizes.isKnown
        horizontalAlignment: Text.AlignRight
        text: sizes.isKnown ? "data " + sizes.dataText : ""
        color: Theme.textSecondary
        font.pixelSize: Theme.captionSize
        Accessible.ignored: true
    }
}
