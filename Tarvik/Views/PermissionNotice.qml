import QtQuick
import Tarvik

/// Says that the system keeps something from the program, and leads to where that is changed. Shown while there is
/// something to say, and until it is sent away.
Item {
    id: place

    property string text
    property string settingsPage
    /// What the page of the settings is called.
    property string permission
    /// What sending it away does.
    property string sendAwayHelp

    /// The user comes back to the window, and may have changed the settings.
    signal cameBack
    signal sentAway

    visible: text !== ""
    implicitHeight: visible ? notice.height + Theme.medium : 0

    Notice {
        id: notice
        x: Theme.margin
        y: Theme.medium
        width: parent.width - 2 * Theme.margin
        text: place.text
        iconName: "warning"
        tone: "warning"
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text

        Button {
            objectName: "openSettingsButton"
            anchors.verticalCenter: parent.verticalCenter
            text: "Open Settings"
            Accessible.description: "Opens " + place.permission + " in the settings of the system"
            onClicked: Desktop.openSettings(place.settingsPage)
        }
        IconButton {
            objectName: "sendNoticeAwayButton"
            anchors.verticalCenter: parent.verticalCenter
            iconName: "close"
            help: place.sendAwayHelp
            onClicked: place.sentAway()
        }
    }
    Connections {
        target: Qt.application
        function onStateChanged() {
            if (Qt.application.state === Qt.ApplicationActive)
                place.cameBack();
        }
    }
}
