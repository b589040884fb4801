import QtQuick
import QtQml
import Tarvik

/// The shell: the sidebar, the chosen tab with its toolbar, and what lies over or below any tab.
FocusScope {
    id: root
    objectName: "rootView"

    /// The tabs in the order of the sidebar. A new tab is a new line.
    readonly property var tabs: [
        { name: "apps", label: "Apps", icon: "apps", view: "Apps/AppsTab.qml" },
        { name: "folders", label: "Folders", icon: "folder", view: "Folders/FoldersTab.qml" },
        { name: "symlinks", label: "Symlinks", icon: "link", view: "Symlinks/SymlinksTab.qml" },
        { name: "health", label: "Health", icon: "seal", view: "Health/HealthTab.qml" }
    ]
    property int selectedTab: 0
    property int toastDuration: Theme.toastDuration

    Component.onCompleted: AppState.refreshAll()

    Shortcut {
        sequences: ["Ctrl+R", "F5"]
        enabled: !Alerts.isOpen
        autoRepeat: false
        onActivated: AppState.refreshAll()
    }
    Instantiator {
        model: root.tabs.length
        Shortcut {
            required property int index
            sequence: "Ctrl+" + (index + 1)
            enabled: !Alerts.isOpen
            onActivated: root.selectedTab = index
        }
    }

    Sidebar {
        id: sidebar
        width: Theme.sidebarWidth
        height: parent.height
        tabs: root.tabs
        selectedTab: root.selectedTab
        onTabPicked: index => root.selectedTab = index
    }

    Item {
        id: detail
        anchors.left: sidebar.right
        anchors.right: parent.right
        height: parent.height

        Toolbar {
            id: toolbar
            width: parent.width
            title: root.tabs[root.selectedTab].label
        }
        Item {
            id: content
            objectName: "tabContent"
            anchors.top: toolbar.bottom
            anchors.bottom: jobsPanel.top
            width: parent.width
        }
        // Unlike those of a Repeater, what it makes is found among the children of the window.
        Instantiator {
            model: root.tabs
            TabPage {
                required property int index
                parent: content
                isSelected: index === root.selectedTab
            }
        }
        JobsPanel {
            id: jobsPanel
            anchors.bottom: parent.bottom
            width: parent.width
            maximumHeight: Math.round(parent.height * 0.45)
        }
        Column {
            // Over the toolbar, whose middle is empty: rows and buttons stay free.
            anchors.top: parent.top
            anchors.topMargin: Theme.tiny
            anchors.horizontalCenter: parent.horizontalCenter
            spacing: Theme.tiny

            Toast {
                objectName: "infoToast"
                tone: "success"
                text: AppState.lastInfo
                duration: root.toastDuration
                onExpired: AppState.clearInfo()
            }
            Toast {
                objectName: "errorToast"
                tone: "warning"
                text: AppState.lastError
                duration: root.toastDuration
                onExpired: AppState.clearError()
            }
        }
    }

    AlertDialog {}
}
