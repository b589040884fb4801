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
    /// Whether the right arrow opens the row and the left one closes it.
    property bool turns: false
    signal turned(bool isOpen)
    /// Whether Space ticks the row, where a press does something else.
    property bool ticks: false
    signal ticked
    /// The path of what the row stands for, for its menu; nothing where there is none.
    property var item
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
    Keys.onSpacePressed: event => list.tickCurrent(event)

    // A row that waits to be used again is not drawn, but what moves in it would go on.
    ListView.onPooled: visible = false
    ListView.onReused: visible = true

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
