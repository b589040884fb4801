import QtQuick
import QtQuick.Layouts
import Tarvik

/// An uninstall of the past with its way back, or below it one thing that went. The right arrow opens it, the left one
/// closes it; Tab goes from the row to its button.
ListRow {
    id: row

    required property string kind
    required property string sessionId
    required property string name
    required property string detail
    required property string note
    required property string stateText
    required property string tone
    required property var itemPath
    required property bool isOpen
    required property bool canPutBack
    readonly property bool isSession: kind === "session"
    readonly property bool isBusy: isSession && UninstallState.past.puttingBackId === sessionId
    readonly property bool isCurrent: ListView.isCurrentItem

    objectName: (isSession ? "past-" : "pastItem-") + (isSession ? name : name.split("/").pop())
    implicitHeight: content.implicitHeight + 2 * Theme.small
    leftPadding: Theme.tiny + (isSession ? 0 : 22 + Theme.small)
    rightPadding: Theme.tiny
    Accessible.name: [name, detail, stateText].filter(part => part !== "").join(", ")
    Accessible.description: note
    item: itemPath
    turns: isSession
    onTurned: isOpen => UninstallState.past.setRowOpen(index, isOpen)
    onClicked: if (isSession) turned(!isOpen)

    contentItem: RowLayout {
        id: content
        spacing: Theme.small

        DisclosureButton {
            objectName: "pastChevron"
            Layout.preferredWidth: 22
            Layout.preferredHeight: 22
            visible: row.isSession
            focusPolicy: Qt.NoFocus
            isOpen: row.isOpen
            onClicked: row.turned(!row.isOpen)
        }
        Column {
            Layout.fillWidth: true
            spacing: 2
            RowLayout {
                width: parent.width
                spacing: Theme.small
                ElidedLabel {
                    objectName: "pastName"
                    Layout.fillWidth: true
                    fullText: row.name
                    font.weight: row.isSession ? Font.DemiBold : Font.Normal
                    Accessible.ignored: true
                }
                Badge {
                    objectName: "pastState"
                    visible: row.stateText !== ""
                    implicitHeight: 18
                    text: row.stateText
                    tone: row.tone
                }
            }
            Label {
                objectName: "pastDetail"
                width: parent.width
                visible: text !== ""
                wrapMode: Text.Wrap
                text: row.detail
                color: Theme.textSecondary
                font.pixelSize: Theme.captionSize
                Accessible.ignored: true
            }
            Label {
                objectName: "pastNote"
                width: parent.width
                visible: text !== ""
                wrapMode: Text.Wrap
                text: row.note
                color: row.tone === "" && !row.isSession ? Theme.textSecondary : Theme.warning
                font.pixelSize: Theme.captionSize
                Accessible.ignored: true
            }
        }
        Spinner {
            objectName: "pastSpinner"
            visible: row.isBusy
            Accessible.name: "Putting back"
        }
        Button {
            objectName: "putBackButton"
            visible: row.isSession && row.canPutBack
            focusPolicy: row.isCurrent || activeFocus ? Qt.TabFocus : Qt.NoFocus
            enabled: !AppState.isBusy
            text: "Put Back"
            iconName: "back"
            Accessible.name: "Put Back " + row.name
            onClicked: UninstallState.putBack(row.sessionId)
        }
    }
}
