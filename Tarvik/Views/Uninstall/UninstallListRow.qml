import QtQuick
import Tarvik

/// A line of the list: a header, a group or an application. Return and a click choose an application and open a group;
/// Space ticks; the right arrow opens a group, the left one closes it.
ListRow {
    id: row

    required property string kind
    required property string name
    required property string rowId
    required property var bundlePath
    required property string iconSource
    required property string badge
    required property string sizeText
    required property string permissionsText
    required property string dateText
    required property string countText
    required property int checkState
    required property bool canClose
    required property bool isOpen
    required property bool isMember
    readonly property bool isApp: kind === "app"
    readonly property bool isChosen: isApp && rowId === "app:" + UninstallState.planned.appId
    readonly property int lineHeight: 50

    objectName: kind + "-" + name
    implicitHeight: kind === "header" ? Theme.rowHeight : lineHeight
    leftPadding: Theme.large + (isMember ? 20 : 0)
    rightPadding: Theme.large
    restingColor: isChosen ? Theme.accentTint : "transparent"
    highlighted: isChosen
    Accessible.role: kind === "header" ? Accessible.Heading : Accessible.ListItem
    Accessible.name: [name, countText, badge, sizeText, permissionsText].filter(part => part !== "").join(", ")
    Accessible.checkable: kind !== "header"
    Accessible.checked: checkState === Qt.Checked
    item: isApp ? bundlePath : undefined
    ticks: kind !== "header"
    onTicked: UninstallState.toggleRowMark(index)
    turns: canClose
    onTurned: isOpen => UninstallState.setRowOpen(index, isOpen)
    onClicked: UninstallState.pressRow(index)

    contentItem: Loader {
        sourceComponent: row.kind === "header" ? header : row.kind === "group" ? group : app
    }

    Component {
        id: header
        Item {
            SectionTitle {
                objectName: "listHeader"
                anchors.left: parent.left
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                text: row.name
                elide: Text.ElideRight
            }
            Icon {
                anchors.right: parent.right
                anchors.rightMargin: 6
                anchors.verticalCenter: parent.verticalCenter
                visible: row.canClose
                name: row.isOpen ? "chevronDown" : "chevronRight"
                size: 12
            }
        }
    }
    Component {
        id: group
        UninstallGroupLine { line: row }
    }
    Component {
        id: app
        UninstallAppLine { line: row }
    }
}
