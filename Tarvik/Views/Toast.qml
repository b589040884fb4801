import QtQuick
import QtQuick.Layouts
import Tarvik

/// A message that goes by itself. The time runs from its appearing: a text that replaces a shown one gets what is left.
Rectangle {
    id: toast

    property string text
    property string tone: "success"
    property int duration: Theme.toastDuration
    readonly property bool isShown: text !== ""
    signal expired

    anchors.horizontalCenter: parent.horizontalCenter
    visible: isShown
    width: Math.min(row.implicitWidth + 2 * Theme.large, Theme.toastWidth)
    height: row.implicitHeight + 2 * Theme.medium
    radius: Theme.radiusLarge
    color: Theme.tintOf(tone)
    border.width: 1
    border.color: Theme.colorOf(tone)
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text

    Timer {
        objectName: "toastTimer"
        running: toast.isShown
        interval: toast.duration
        onTriggered: toast.expired()
    }
    RowLayout {
        id: row
        x: Theme.large
        width: parent.width - 2 * Theme.large
        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.small

        Icon {
            Layout.alignment: Qt.AlignTop
            name: toast.tone === "success" ? "check" : "warning"
            color: Theme.colorOf(toast.tone)
        }
        Label {
            objectName: "toastText"
            Layout.fillWidth: true
            text: toast.text
            wrapMode: Text.Wrap
            color: Theme.colorOf(toast.tone)
            font.weight: Font.Medium
            Accessible.ignored: true
        }
    }
}
