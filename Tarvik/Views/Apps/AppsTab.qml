import QtQuick
import Tarvik

/// The applications: which are here and which are on a drive, how large they are, and the moves of those that are ticked.
Item {
    id: tab
    objectName: "appsTab"

    /// As `ShownApps` counts them.
    readonly property var scopes: ["onDrive", "local", "all"]
    readonly property string scope: scopes[shownApps.scope]
    readonly property bool isEmpty: shownApps.totalCount === 0

    ShownApps {
        id: shownApps
        state: AppsState
    }

    AppsHeader {
        id: header
        width: parent.width
        shown: shownApps
        scope: tab.scope
        onScopePicked: name => shownApps.scope = tab.scopes.indexOf(name)
    }
    Rectangle {
        anchors.top: header.bottom
        anchors.bottom: actionBar.top
        width: parent.width
        color: Theme.card

        RowList {
            id: list
            objectName: "appList"
            anchors.fill: parent
            topMargin: Theme.tiny
            bottomMargin: Theme.tiny
            clip: true
            Accessible.name: "Applications"
            model: shownApps.rows
            currentIndex: -1
            // Rows that nobody sees are not made: all at once they would keep a click waiting. While one scrolls, each is
            // one that has been seen before.
            cacheBuffer: 0
            delegate: AppRow { hasMoveBackColumn: tab.scope !== "local" }
        }
        // New rows are made before the frame that draws them: both in one go would keep a click waiting.
        Connections {
            target: shownApps.rows
            function onCountChanged() { Qt.callLater(list.forceLayout) }
        }
        Loader {
            anchors.fill: parent
            active: shownApps.count === 0
            sourceComponent: {
                if (!tab.isEmpty)
                    return noneShown;
                return AppsState.isScanningApps ? discovering : empty;
            }
        }
        Rectangle {
            width: parent.width
            height: 1
            color: Theme.border
        }
    }
    AppsActionBar {
        id: actionBar
        anchors.bottom: parent.bottom
        width: parent.width
        scope: tab.scope
    }

    Component {
        id: discovering
        DiscoveringAppsView {}
    }
    Component {
        id: empty
        EmptyAppsView {}
    }
    Component {
        id: noneShown
        NoAppsShownView { scope: tab.scope }
    }
}
