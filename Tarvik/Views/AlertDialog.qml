import QtQuick
import QtQuick.Templates as T
import Tarvik

/// The question of `Alerts`, in front of everything until it is answered. Return gives the first answer, Escape the last.
T.Popup {
    id: dialog

    readonly property bool isAsked: Alerts.isOpen

    /// A path's first slash stays with its name when the line breaks.
    function unbroken(text) {
        return text.replace(/(^|\s)\//g, "$1/\u2060");
    }

    x: Math.round((parent.width - width) / 2)
    y: Math.round((parent.height - height) / 3)
    width: Theme.dialogWidth
    height: Math.min(implicitContentHeight + 2 * padding, parent.height - 2 * Theme.margin)
    padding: Theme.huge
    modal: true
    dim: true
    focus: true
    closePolicy: T.Popup.NoAutoClose
    onIsAskedChanged: isAsked ? open() : close()
    Component.onCompleted: if (isAsked) open()
    onOpened: answers.itemAt(0)?.forceActiveFocus(Qt.PopupFocusReason)

    T.Overlay.modal: Rectangle { color: Theme.scrim }

    background: Rectangle {
        radius: Theme.radiusLarge
        color: Theme.card
        border.width: 1
        border.color: Theme.border
    }
    enter: Transition {
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.quick }
    }

    contentItem: FocusScope {
        objectName: "alertDialog"
        focus: true
        implicitHeight: title.height + Math.ceil(texts.height) + buttonRow.height + Theme.small + Theme.huge
        Accessible.role: Accessible.Dialog
        Accessible.name: Alerts.title
        Accessible.description: Alerts.details.concat(Alerts.text).join("\n")
        // The key that opened the dialog may still be held down: it answers nothing.
        Keys.onReturnPressed: event => event.isAutoRepeat || Alerts.answer(0)
        Keys.onEnterPressed: event => event.isAutoRepeat || Alerts.answer(0)
        Keys.onEscapePressed: event => event.isAutoRepeat || Alerts.cancel()

        Icon {
            id: sign
            objectName: "alertSign"
            y: Math.round((titleMetrics.height - height) / 2)
            name: "warning"
            color: Theme.warningFill
            size: 20
        }
        FontMetrics {
            id: titleMetrics
            font: title.font
        }
        Label {
            id: title
            objectName: "alertTitle"
            anchors.left: sign.right
            anchors.leftMargin: Theme.small
            anchors.right: parent.right
            text: Alerts.title
            wrapMode: Text.Wrap
            font.pixelSize: Theme.headlineSize
            font.weight: Font.DemiBold
        }
        ScrollView {
            anchors.top: title.bottom
            anchors.topMargin: Theme.small
            anchors.bottom: buttonRow.top
            anchors.bottomMargin: Theme.huge
            width: parent.width
            contentHeight: texts.height
            Column {
                id: texts
                width: parent.width
                spacing: Theme.small
                Label {
                    objectName: "alertDetails"
                    width: parent.width
                    visible: text !== ""
                    text: dialog.unbroken(Alerts.details.join("\n"))
                    wrapMode: Text.Wrap
                    lineHeight: 1.2
                }
                Label {
                    objectName: "alertText"
                    width: parent.width
                    text: dialog.unbroken(Alerts.text)
                    wrapMode: Text.Wrap
                    color: Theme.textSecondary
                    lineHeight: 1.2
                }
            }
        }
        // The first button stands rightmost, where the hand expects what goes ahead.
        Row {
            id: buttonRow
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            layoutDirection: Qt.RightToLeft
            spacing: Theme.small
            Repeater {
                id: answers
                model: Alerts.buttons
                Button {
                    required property int index
                    required property string modelData

                    objectName: "alertButton-" + index
                    text: modelData
                    kind: index === 0 ? "primary" : "secondary"
                    width: Math.max(implicitWidth, 88)
                    onClicked: Alerts.answer(index)
                }
            }
        }
    }
}
