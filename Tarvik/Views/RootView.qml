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
        { name: "uninstall", label: "Uninstall", icon: "trash", view: "Uninstall/UninstallTab.qml" },
        { name: "dedupe", label: "Dedupe", icon: "dedupe", view: "Dedupe/DedupeTab.qml" },
        { name: "symlinks", label: "Symlinks", icon: "link", view: "Symlinks/SymlinksTab.qml" },
        { name: "health", label: "Health", icon: "seal", view: "Health/HealthTab.qml" }
    ]
    property int selectedTab: 0
    property int toastDuration: Theme.toastDuration

    Component.onCompleted: {
        if (Desktop.hasMenuBar)
            makeMenuBar();
        AppState.refreshAll();
    }

    function showTab(name) {
        selectedTab = tabs.findIndex(tab => tab.name === name);
    }

    /// By its address: where there are no menus, what they are made of need not be installed.
    function makeMenuBar() {
        const bar = Qt.createComponent("MenuBar.qml").createObject(root, { acts: acts, tabs: tabs });
        bar.isEnabled = Qt.binding(() => !Alerts.isOpen);
        bar.tabPicked.connect(index => selectedTab = index);
    }

    WindowActs {
        id: acts
        window: root.Window.window
        onAboutAsked: about.open()
    }
    // Keys are where the menus are, or else here.
    WindowKeys {
        acts: acts
        enabled: !Desktop.hasMenuBar && !Alerts.isOpen
        tabCount: root.tabs.length
        onTabPicked: index => root.selectedTab = index
    }

    Connections {
        target: FoldersState
        function onTaken() {
            root.showTab("folders");
        }
    }

    Sidebar {
        id: sidebar
        width: Theme.sidebarWidth
        height: parent.height
        tabs: root.tabs
        selectedTab: root.selectedTab
        onTabPicked: index => root.selectedTab = index
        onAboutAsked: about.open()
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
        Column {
            id: notices
            anchors.top: toolbar.bottom
            width: parent.width

            PermissionNotice {
                property bool isSentAway: false

                objectName: "fullDiskAccessNotice"
                width: parent.width
                text: AppState.missesFullDiskAccess && !isSentAway ? AppState.fullDiskAccessText : ""
                permission: "Full Disk Access"
                settingsPage: AppState.fullDiskAccessPage
                sendAwayHelp: "Hide until the next start"
                onSentAway: isSentAway = true
                onCameBack: AppState.lookAtFullDiskAccess()
            }
            PermissionNotice {
                objectName: "appManagementNotice"
                width: parent.width
                text: AppState.keptApplications.text
                permission: "App Management"
                settingsPage: AppState.keptApplications.settingsPage
                sendAwayHelp: "Hide"
                onSentAway: AppState.keptApplications.forget()
                onCameBack: AppState.keptApplications.lookAgain()
            }
        }
        Item {
            id: content
            objectName: "tabContent"
            anchors.top: notices.bottom
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

    AboutDialog { id: about }
    AlertDialog {}
}
