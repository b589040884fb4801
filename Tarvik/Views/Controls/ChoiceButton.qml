import QtQuick
import QtQuick.Templates as T
import Tarvik

/// A button that shows what is chosen and opens the menu of the choices. Space, Return and the down arrow open it.
T.Button {
    id: button

    /// What is chosen with it, for assistive tools.
    property string label
    property var choices: []
    property int choice: 0
    signal picked(int index)

    /// Made when it is first asked for.
    property var menu: null

    function open() {
        if (menu === null)
            menu = menuMaker.createObject(button);
        menu.popup(button, 0, button.height + 2);
        menu.currentIndex = choice;
    }

    implicitWidth: text.implicitWidth + chevron.width + Theme.tiny + leftPadding + rightPadding
    implicitHeight: Theme.controlHeight
    leftPadding: Theme.medium
    rightPadding: Theme.small
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    Accessible.role: Accessible.ButtonMenu
    Accessible.name: label + ": " + (choices[choice] ?? "")
    Accessible.onPressAction: clicked()
    Keys.onSpacePressed: event => openOnce(event)
    Keys.onReturnPressed: event => openOnce(event)
    Keys.onEnterPressed: event => openOnce(event)
    Keys.onDownPressed: event => openOnce(event)
    onClicked: open()

    /// A key that is held down presses once.
    function openOnce(event) {
        if (!event.isAutoRepeat)
            open();
    }

    contentItem: Item {
        Label {
            id: text
            anchors.left: parent.left
            anchors.right: chevron.left
            anchors.rightMargin: Theme.tiny
            anchors.verticalCenter: parent.verticalCenter
            text: button.text
            elide: Text.ElideRight
            font.weight: Font.Medium
            Accessible.ignored: true
        }
        Icon {
            id: chevron
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            name: "chevronDown"
            size: 12
        }
    }
    background: Rectangle {
        radius: Theme.radius
        color: button.down ? Theme.controlPressed : button.hovered ? Theme.controlHovered : Theme.card
        border.width: 1
        border.color: Theme.controlBorder
        FocusRing { visible: button.visualFocus }
    }

    Component {
        id: menuMaker
        ChoiceMenu {
            label: button.label
            choices: button.choices
            choice: button.choice
            onPicked: index => button.picked(index)
            onClosed: button.forceActiveFocus(Qt.PopupFocusReason)
        }
    }
}
