import QtQuick
import QtQuick.Templates as T
import Tarvik

/// A button that is only an icon. `help` names it, in a tooltip and for assistive tools.
T.Button {
    id: button

    property string iconName
    property string help

    implicitWidth: Theme.iconButtonSize
    implicitHeight: Theme.iconButtonSize
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    Accessible.role: Accessible.Button
    Accessible.name: help
    Keys.onSpacePressed: event => pressOnce(event)
    Keys.onReturnPressed: event => pressOnce(event)
    Keys.onEnterPressed: event => pressOnce(event)

    /// A key that is held down presses once.
    function pressOnce(event) {
        if (!event.isAutoRepeat)
            button.clicked();
    }

    contentItem: Item {
        Icon {
            anchors.centerIn: parent
            name: button.iconName
            color: button.enabled ? Theme.textSecondary : Theme.textDisabled
        }
    }
    background: Rectangle {
        radius: Theme.radius
        color: button.down ? Theme.pressed : button.hovered && button.enabled ? Theme.hovered : "transparent"
        FocusRing { visible: button.visualFocus }
    }

    Loader {
        active: button.hovered || button.visualFocus
        sourceComponent: Tooltip {
            parent: button
            text: button.help
            visible: true
        }
    }
}
