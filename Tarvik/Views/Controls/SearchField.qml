import QtQuick
import QtQuick.Templates as T
import Tarvik

/// A line to type what is looked for. Escape and the cross empty it.
T.TextField {
    id: field

    implicitWidth: 200
    implicitHeight: Theme.controlHeight
    leftPadding: Theme.iconSize + 2 * Theme.small
    rightPadding: cross.visible ? cross.width + Theme.tiny : Theme.small
    verticalAlignment: TextInput.AlignVCenter
    maximumLength: 200
    selectByMouse: true
    color: Theme.text
    selectionColor: Theme.accent
    selectedTextColor: Theme.textOnAccent
    font.family: Theme.family
    font.pixelSize: Theme.textSize
    Accessible.role: Accessible.EditableText
    Accessible.name: placeholderText
    Accessible.searchEdit: true
    Keys.onEscapePressed: event => {
        event.accepted = text !== "";
        clear();
    }

    background: Rectangle {
        radius: Theme.radius
        color: Theme.card
        border.width: 1
        border.color: field.activeFocus ? Theme.accent : Theme.controlBorder
        FocusRing { visible: field.activeFocus && (field.focusReason === Qt.TabFocusReason || field.focusReason === Qt.BacktabFocusReason) }
    }

    Icon {
        x: Theme.small
        anchors.verticalCenter: parent.verticalCenter
        name: "search"
        size: 14
    }
    Label {
        anchors.left: parent.left
        anchors.leftMargin: field.leftPadding
        anchors.right: parent.right
        anchors.rightMargin: Theme.small
        anchors.verticalCenter: parent.verticalCenter
        visible: field.text === "" && field.preeditText === ""
        text: field.placeholderText
        elide: Text.ElideRight
        color: Theme.textDisabled
        Accessible.ignored: true
    }
    IconButton {
        id: cross
        objectName: field.objectName + "Clear"
        anchors.right: parent.right
        anchors.rightMargin: 1
        anchors.verticalCenter: parent.verticalCenter
        visible: field.text !== ""
        focusPolicy: Qt.NoFocus
        iconName: "close"
        help: "Clear the search"
        onClicked: field.clear()
    }
}
