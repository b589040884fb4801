import QtQuick
import Tarvik

/// A text with numbers in it, whose digits all take the same width: figures line up and do not tremble while they count.
Row {
    id: figures

    property string text
    property color color: Theme.text
    property int size: Theme.textSize
    property int weight: Font.Normal

    Accessible.role: Accessible.StaticText
    Accessible.name: text

    FontMetrics {
        id: metrics
        font.family: Theme.family
        font.pixelSize: figures.size
        font.weight: figures.weight
    }
    Repeater {
        // Spaces at the end of a piece count only when they do not break.
        model: figures.text.match(/\d|\D+/g)?.map(piece => piece.replace(/ /g, "\u00a0")) ?? []
        Text {
            required property string modelData

            width: /^\d$/.test(modelData) ? metrics.advanceWidth("0") : implicitWidth
            horizontalAlignment: Text.AlignHCenter
            text: modelData
            textFormat: Text.PlainText
            color: figures.color
            font: metrics.font
        }
    }
}
