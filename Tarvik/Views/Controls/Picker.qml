import QtQuick
import QtQuick.Templates as T
import Tarvik

/// One of a few choices, side by side, with a word in front that says what is chosen. Tab reaches it as one stop, the
/// left and right arrows choose.
FocusScope {
    id: picker

    property string label
    /// The names of the choices, by which they are picked, and the text of each.
    property var choices: []
    property var texts: []
    property string choice
    /// True while the keyboard is the one who chooses.
    property bool showsFocus: false
    signal picked(string name)

    function pickNext(step) {
        const index = choices.indexOf(choice) + step;
        if (index >= 0 && index < choices.length)
            picked(choices[index]);
    }

    implicitWidth: row.implicitWidth
    implicitHeight: Theme.controlHeight
    activeFocusOnTab: true
    Accessible.role: Accessible.Grouping
    Accessible.name: label
    onActiveFocusChanged: showsFocus = activeFocus
    Keys.onLeftPressed: pickNext(-1)
    Keys.onRightPressed: pickNext(1)
    Keys.onPressed: event => {
        showsFocus = true;
        event.accepted = false;
    }

    Row {
        id: row
        height: parent.height
        spacing: Theme.small

        Label {
            anchors.verticalCenter: parent.verticalCenter
            text: picker.label
            color: Theme.textSecondary
            Accessible.ignored: true
        }
        Rectangle {
            width: segments.width + 4
            height: parent.height
            radius: Theme.radius
            color: Theme.track

            FocusRing { visible: picker.activeFocus && picker.showsFocus }
            Row {
                id: segments
                x: 2
                y: 2
                height: parent.height - 4

                Repeater {
                    model: picker.choices
                    T.AbstractButton {
                        id: segment

                        required property int index
                        required property string modelData
                        readonly property bool isChosen: modelData === picker.choice

                        objectName: picker.objectName + "-" + modelData
                        implicitWidth: name.implicitWidth + 2 * Theme.medium
                        implicitHeight: segments.height
                        text: picker.texts[index] ?? ""
                        focusPolicy: Qt.NoFocus
                        hoverEnabled: true
                        Accessible.role: Accessible.RadioButton
                        Accessible.name: text
                        Accessible.checkable: true
                        Accessible.checked: isChosen
                        onPressed: {
                            picker.forceActiveFocus(Qt.MouseFocusReason);
                            picker.showsFocus = false;
                        }
                        onClicked: picker.picked(modelData)

                        background: Rectangle {
                            radius: Theme.radius - 2
                            color: {
                                if (segment.isChosen)
                                    return Theme.card;
                                return segment.down ? Theme.pressed : segment.hovered ? Theme.hovered : "transparent";
                            }
                            border.width: segment.isChosen ? 1 : 0
                            border.color: Theme.controlBorder
                        }
                        contentItem: Label {
                            id: name
                            text: segment.text
                            horizontalAlignment: Text.AlignHCenter
                            verticalAlignment: Text.AlignVCenter
                            color: segment.isChosen ? Theme.text : Theme.textSecondary
                            font.weight: Font.Medium
                            Accessible.ignored: true
                        }
                    }
                }
            }
        }
    }
}
