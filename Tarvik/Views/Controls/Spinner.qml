import QtQuick
import QtQuick.Shapes
import Tarvik

/// Turns while one waits for something of unknown length. Costs nothing while it is hidden.
Item {
    id: spinner

    property int size: Theme.iconSize
    property color color: Theme.accent

    implicitWidth: size
    implicitHeight: size
    Accessible.role: Accessible.Indicator

    Shape {
        anchors.fill: parent
        antialiasing: true
        // As in `Icon`.
        layer.enabled: Theme.keepsPictures && GraphicsInfo.api === GraphicsInfo.Software
        layer.smooth: true

        ShapePath {
            strokeColor: spinner.color
            strokeWidth: 2
            fillColor: "transparent"
            capStyle: ShapePath.RoundCap
            PathAngleArc {
                centerX: spinner.size / 2
                centerY: spinner.size / 2
                radiusX: spinner.size / 2 - 2
                radiusY: radiusX
                startAngle: -90
                sweepAngle: 270
            }
        }
        RotationAnimation on rotation {
            running: spinner.visible
            from: 0
            to: 360
            duration: 900
            loops: Animation.Infinite
        }
    }
}
