import QtQuick
import Tarvik

/// A white surface for what belongs together. As high as its content, which it lays out in a column.
Rectangle {
    id: card

    default property alias content: column.data
    property int padding: Theme.large
    property alias spacing: column.spacing

    implicitWidth: column.implicitWidth + 2 * padding
    implicitHeight: column.implicitHeight + 2 * padding
    radius: Theme.radiusLarge
    color: Theme.card
    border.width: 1
    border.color: Theme.border

    Column {
        id: column
        x: card.padding
        y: card.padding
        width: card.width - 2 * card.padding
        spacing: Theme.medium
    }
}
