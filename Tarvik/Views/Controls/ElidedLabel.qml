import QtQuick
import Tarvik

/// One line for a name or a path of any length. What does not fit is left out of the middle and told by a tooltip.
Label {
    id: label

    /// The whole text; line breaks in it are shown as spaces.
    property string fullText

    text: fullText.replace(/[\n\r\u0085\u2028\u2029]+/g, " ")
    elide: Text.ElideMiddle
    maximumLineCount: 1

    HoverHandler {
        id: hover
        enabled: label.truncated
    }
    Loader {
        active: hover.hovered && label.truncated
        sourceComponent: Tooltip {
            parent: label
            text: label.text
            visible: true
        }
    }
}
