import QtQuick
import Tarvik

/// Heads a section.
Label {
    color: Theme.textSecondary
    font.pixelSize: Theme.captionSize
    font.weight: Font.DemiBold
    Accessible.role: Accessible.Heading
}
