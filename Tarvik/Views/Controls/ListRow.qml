import QtQuick
import QtQuick.Templates as T
import Tarvik

/// A row of a `RowList`; a press with the pointer makes it the current one.
T.ItemDelegate {
    id: row

    required property int index
    property color restingColor: "transparent"
    /// Where and how the row shows the keyboard on it: a row with a frame or a fill sets the ring apart from these.
    property int ringMargin: 0
    property color ringColor: Theme.accent
    readonly property RowList list: ListView.view as RowList

    width: ListView.view ? ListView.view.width : implicitWidth
    implicitHeight: Theme.rowHeight
    focusPolicy: Qt.NoFocus
    hoverEnabled: true
    leftPadding: Theme.small
    rightPadding: Theme.small
    Accessible.role: Accessible.ListItem
    Accessible.selectable: true
    Accessible.selected: highlighted
    // On its own it would take each repetition of the key for a press.
    Keys.onSpacePressed: event => list.pressCurrent(event)

    onPressed: {
        list.currentIndex = index;
        list.forceActiveFocus(Qt.MouseFocusReason);
        list.showsFocus = false;
    }

    background: Rectangle {
        radius: Theme.radius
        color: row.restingColor
        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: row.down ? Theme.pressed : row.hovered ? Theme.hovered : "transparent"
        }
        FocusRing {
            anchors.margins: row.ringMargin
            radius: Theme.radius - row.ringMargin / 2
            border.color: row.ringColor
            visible: row.ListView.isCurrentItem && row.list !== null && row.list.activeFocus && row.list.showsFocus
        }
    }
}
