import QtQuick
import Tarvik

/// A figure of what is ticked.
Column {
    id: figure

    property string value
    property string unit
    property bool showsUnit: true
    /// Its width with the unit.
    readonly property real fullWidth: number.implicitWidth + Theme.tiny + unitLabel.implicitWidth

    spacing: 0
    Accessible.role: Accessible.StaticText
    Accessible.name: value + " " + unit + " selected"

    Row {
        spacing: Theme.tiny
        Figures {
            id: number
            objectName: "figureValue"
            text: figure.value
            size: Theme.headlineSize + 2
            weight: Font.DemiBold
            Accessible.ignored: true
        }
        Label {
            id: unitLabel
            objectName: "figureUnit"
            visible: figure.showsUnit
            anchors.bottom: number.bottom
            anchors.bottomMargin: 2
            text: figure.unit
            Accessible.ignored: true
        }
    }
    Label {
        objectName: "figureCaption"
        text: "selected"
        color: Theme.textSecondary
        font.pixelSize: Theme.captionSize
        Accessible.ignored: true
    }
}
