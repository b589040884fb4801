import QtQuick
import QtQuick.Shapes
import Tarvik

/// A small drawing of lines on a grid of 16 by 16.
Item {
    id: icon

    /// A key of `IconDrawings`.
    property string name
    property color color: Theme.textSecondary
    property int size: Theme.iconSize

    property bool keepsPicture: false

    function renewPicture() {
        if (!keepsPicture)
            return;
        keepsPicture = false;
        keepsPicture = true;
    }

    implicitWidth: size
    implicitHeight: size
    Accessible.ignored: true
    // Drawn with the processor, a shape that moves paints over what hides it; the picture of one does not. But the
    // picture does not follow a change of the shape: it is made anew.
    layer.enabled: keepsPicture && Theme.keepsPictures && GraphicsInfo.api === GraphicsInfo.Software
    Component.onCompleted: keepsPicture = true
    onColorChanged: renewPicture()
    onNameChanged: renewPicture()

    Shape {
        width: Theme.iconSize
        height: Theme.iconSize
        antialiasing: true
        scale: icon.size / Theme.iconSize
        transformOrigin: Item.TopLeft

        ShapePath {
            strokeColor: icon.color
            strokeWidth: 1.4
            fillColor: "transparent"
            capStyle: ShapePath.RoundCap
            joinStyle: ShapePath.RoundJoin
            PathSvg { path: IconDrawings.paths[icon.name] ?? "" }
        }
    }
}
