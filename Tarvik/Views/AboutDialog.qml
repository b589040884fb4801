import QtQuick
import QtQuick.Templates as T
import Tarvik

/// What the program is, and which version of it.
T.Popup {
    id: dialog

    x: Math.round((parent.width - width) / 2)
    y: Math.round((parent.height - height) / 3)
    width: 320
    height: implicitContentHeight + 2 * padding
    padding: Theme.huge
    modal: true
    dim: true
    focus: true
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutside
    onOpened: closeButton.forceActiveFocus(Qt.PopupFocusReason)

    T.Overlay.modal: Rectangle { color: Theme.scrim }

    background: Rectangle {
        radius: Theme.radiusLarge
        color: Theme.card
        border.width: 1
        border.color: Theme.border
    }

    contentItem: FocusScope {
        objectName: "aboutDialog"
        implicitHeight: column.implicitHeight
        Accessible.role: Accessible.Dialog
        Accessible.name: "About Tarvik"

        Column {
            id: column
            width: parent.width
            spacing: Theme.small

            Label {
                objectName: "aboutName"
                width: parent.width
                horizontalAlignment: Text.AlignHCenter
                text: "Tarvik"
                font.pixelSize: Theme.titleSize
                font.weight: Font.Bold
            }
            Label {
                objectName: "aboutVersion"
                width: parent.width
                horizontalAlignment: Text.AlignHCenter
                text: "Version " + Qt.application.version
                color: Theme.textSecondary
            }
            Label {
                objectName: "aboutText"
                width: parent.width
                horizontalAlignment: Text.AlignHCenter
                text: "Moves applications, data and folders to an external drive, and leaves links behind."
                color: Theme.textSecondary
                wrapMode: Text.Wrap
                lineHeight: 1.2
                bottomPadding: Theme.medium
            }
            Button {
                id: closeButton
                objectName: "closeAboutButton"
                anchors.horizontalCenter: parent.horizontalCenter
                width: Math.max(implicitWidth, 88)
                text: "Close"
                kind: "primary"
                onClicked: dialog.close()
            }
        }
    }
}
