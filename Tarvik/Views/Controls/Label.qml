import QtQuick
import Tarvik

/// Text of the window. Never markup: names on a disk may hold any character.
Text {
    color: Theme.text
    textFormat: Text.PlainText
    font.family: Theme.family
    font.pixelSize: Theme.textSize
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
