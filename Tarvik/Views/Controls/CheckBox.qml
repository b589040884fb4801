import QtQuick
import QtQuick.Templates as T
import Tarvik

/// A box with a tick, a dash for "some of it", or nothing, and a text beside it. It shows the state that it is given; who
/// handles `clicked` changes that. Space and Return click it.
T.AbstractButton {
    id: box

    property int checkState: Qt.Unchecked
    /// What assistive tools call it, where no text stands beside it.
    property string name: text
    readonly property bool isMarked: checkState !== Qt.Unchecked

    implicitWidth: Theme.iconSize + (text === "" ? 0 : Theme.small + label.implicitWidth)
    implicitHeight: Theme.controlHeightSmall
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    Accessible.role: Accessible.CheckBox
    Accessible.name: name
    Accessible.checkable: true
    Accessible.checked: checkState === Qt.Checked
    Accessible.checkStateMixed: checkState === Qt.PartiallyChecked
    Accessible.onToggleAction: clicked()
    Keys.onSpacePressed: event => pressOnce(event)
    Keys.onReturnPressed: event => pressOnce(event)
    Keys.onEnterPressed: event => pressOnce(event)

    /// A key that is held down presses once.
    function pressOnce(event) {
        if (!event.isAutoRepeat)
            box.clicked();
    }

    contentItem: Item {
        Rectangle {
            id: square
            anchors.verticalCenter: parent.verticalCenter
            width: Theme.iconSize
            height: Theme.iconSize
            radius: Theme.radiusSmall
            color: {
                if (!box.enabled)
                    return Theme.disabled;
                if (box.isMarked)
                    return box.down ? Theme.accentPressed : box.hovered ? Theme.accentHovered : Theme.accent;
                return box.down ? Theme.controlPressed : box.hovered ? Theme.controlHovered : Theme.card;
            }
            border.width: box.isMarked && box.enabled ? 0 : 1
            border.color: box.enabled ? Theme.controlBorder : Theme.border

            Loader {
                anchors.centerIn: parent
                active: box.isMarked
                sourceComponent: Icon {
                    name: box.checkState === Qt.PartiallyChecked ? "minus" : "check"
                    size: 12
                    color: box.enabled ? Theme.textOnAccent : Theme.textDisabled
                }
            }
            FocusRing {
                visible: box.visualFocus
                radius: square.radius + 3
            }
        }
        Label {
            id: label
            anchors.left: square.right
            anchors.leftMargin: Theme.small
            anchors.verticalCenter: parent.verticalCenter
            text: box.text
            color: box.enabled ? Theme.text : Theme.textDisabled
            Accessible.ignored: true
        }
    }
}
