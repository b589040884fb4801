import QtQuick
import QtQuick.Templates as T
import Tarvik

/// One line of an `ItemMenu`.
T.MenuItem {
    id: row

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: 26
    leftPadding: Theme.small
    rightPadding: Theme.large
    Accessible.role: Accessible.MenuItem
    Accessible.name: text

    contentItem: Label {
        text: row.text
        verticalAlignment: Text.AlignVCenter
        color: row.highlighted ? Theme.textOnAccent : Theme.text
        Accessible.ignored: true
    }
    background: Rectangle {
        radius: Theme.radiusSmall
        color: row.highlighted ? Theme.accent : "transparent"
    }
}
