import QtQuick
import QtQuick.Templates as T
import Tarvik

/// What can be done with the item of a row, wherever it is listed.
T.Menu {
    id: menu

    /// The item that it was opened for.
    property var item

    implicitWidth: Math.max(implicitBackgroundWidth, implicitContentWidth + leftPadding + rightPadding)
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    margins: Theme.tiny
    padding: Theme.tiny

    contentItem: ListView {
        objectName: "itemMenu"
        implicitHeight: contentHeight
        model: menu.contentModel
        interactive: false
        currentIndex: menu.currentIndex
        Accessible.role: Accessible.PopupMenu
        Accessible.name: "Item"
    }
    background: Rectangle {
        implicitWidth: 180
        radius: Theme.radius
        color: Theme.card
        border.width: 1
        border.color: Theme.controlBorder
    }

    ItemMenuRow {
        objectName: "revealItem"
        text: Desktop.revealText
        onTriggered: Desktop.reveal(menu.item)
    }
    ItemMenuRow {
        objectName: "copyPathItem"
        text: "Copy Path"
        onTriggered: Desktop.copyPath(menu.item)
    }
}
