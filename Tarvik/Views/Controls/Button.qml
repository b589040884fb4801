import QtQuick
import QtQuick.Templates as T
import Tarvik

/// A button with a text. Space and Return press it.
T.Button {
    id: button

    /// "primary" for the one act of a place, "secondary", "danger", or "quiet" (no frame until the pointer is on it).
    property string kind: "secondary"
    property string iconName

    readonly property bool isFilled: kind === "primary" || kind === "danger"
    readonly property color foreground: {
        if (!enabled)
            return Theme.textDisabled;
        if (isFilled)
            return Theme.textOnAccent;
        return kind === "quiet" ? Theme.accent : Theme.text;
    }
    readonly property color fill: {
        if (kind === "quiet")
            return down ? Theme.pressed : hovered && enabled ? Theme.hovered : "transparent";
        if (!enabled)
            return Theme.disabled;
        if (kind === "primary")
            return down ? Theme.accentPressed : hovered ? Theme.accentHovered : Theme.accent;
        if (kind === "danger")
            return down ? Theme.dangerPressed : hovered ? Theme.dangerHovered : Theme.danger;
        return down ? Theme.controlPressed : hovered ? Theme.controlHovered : Theme.card;
    }

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: kind === "quiet" ? Theme.controlHeightSmall : Theme.controlHeight
    leftPadding: kind === "quiet" ? Theme.small : Theme.large - 2
    rightPadding: leftPadding
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    Accessible.role: Accessible.Button
    Accessible.name: text
    Keys.onSpacePressed: event => pressOnce(event)
    Keys.onReturnPressed: event => pressOnce(event)
    Keys.onEnterPressed: event => pressOnce(event)

    /// A key that is held down presses once.
    function pressOnce(event) {
        if (!event.isAutoRepeat)
            button.clicked();
    }

    contentItem: Item {
        implicitWidth: row.implicitWidth
        Row {
            id: row
            anchors.centerIn: parent
            spacing: Theme.small - 2
            Icon {
                anchors.verticalCenter: parent.verticalCenter
                visible: button.iconName !== ""
                name: button.iconName
                color: button.foreground
                size: 14
            }
            Label {
                anchors.verticalCenter: parent.verticalCenter
                text: button.text
                color: button.foreground
                font.weight: Font.Medium
                Accessible.ignored: true
            }
        }
    }
    background: Rectangle {
        radius: Theme.radius
        color: button.fill
        border.width: button.kind === "secondary" ? 1 : 0
        border.color: button.enabled ? Theme.controlBorder : Theme.border
        FocusRing { visible: button.visualFocus }
    }
}
