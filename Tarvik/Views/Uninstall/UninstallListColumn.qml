import QtQuick
import QtQuick.Layouts
import Tarvik

/// The applications that can be removed, and the choices of which are listed.
Item {
    id: column

    readonly property UninstallList apps: UninstallState.list

    ColumnLayout {
        id: header
        x: Theme.large
        y: Theme.medium
        width: parent.width - 2 * Theme.large
        spacing: Theme.small

        RowLayout {
            spacing: Theme.tiny
            SearchField {
                objectName: "uninstallSearch"
                Layout.fillWidth: true
                placeholderText: "Search"
                onTextChanged: column.apps.search = text
            }
            IconButton {
                objectName: "refreshUninstallButton"
                visible: !UninstallState.isScanningUninstall
                iconName: "refresh"
                help: "Refresh applications"
                onClicked: UninstallState.refreshUninstall()
            }
            Item {
                visible: UninstallState.isScanningUninstall
                implicitWidth: Theme.iconButtonSize
                implicitHeight: Theme.iconButtonSize
                Spinner {
                    objectName: "uninstallSpinner"
                    anchors.centerIn: parent
                    Accessible.name: "Looking for applications"
                }
            }
        }
        RowLayout {
            spacing: Theme.small
            ChoiceButton {
                objectName: "uninstallFilter"
                Layout.fillWidth: true
                label: "Filter"
                text: choices[choice]
                choices: column.apps.filterLabels
                choice: column.apps.filter
                onPicked: index => column.apps.filter = index
            }
            ChoiceButton {
                objectName: "uninstallSort"
                label: "Sort"
                text: column.apps.sortShortLabel
                choices: column.apps.sortLabels
                choice: column.apps.sort
                onPicked: index => column.apps.sort = index
            }
        }
    }
    Rectangle {
        anchors.top: header.bottom
        anchors.topMargin: Theme.medium
        anchors.bottom: parent.bottom
        width: parent.width
        color: Theme.card

        RowList {
            id: list
            objectName: "uninstallList"
            anchors.fill: parent
            topMargin: Theme.tiny
            bottomMargin: Theme.tiny
            clip: true
            Accessible.name: "Applications"
            model: column.apps.rows
            currentIndex: -1
            // As in the Apps tab: rows that nobody sees are not made.
            cacheBuffer: 0
            delegate: UninstallListRow {}
        }
        // New rows are made before the frame that draws them: both in one go would keep a click waiting.
        Connections {
            target: column.apps.rows
            function onCountChanged() { Qt.callLater(list.forceLayout) }
        }
        Column {
            anchors.centerIn: parent
            visible: UninstallState.isScanningUninstall && column.apps.totalCount === 0
            spacing: Theme.medium
            Spinner {
                anchors.horizontalCenter: parent.horizontalCenter
                size: 24
                Accessible.ignored: true
            }
            Label {
                objectName: "scanningApps"
                text: "Scanning apps…"
                color: Theme.textSecondary
            }
        }
        EmptyState {
            objectName: "noUninstallApps"
            anchors.centerIn: parent
            width: parent.width - 2 * Theme.large
            visible: column.apps.shownCount === 0 && !(UninstallState.isScanningUninstall && column.apps.totalCount === 0)
            iconName: column.apps.totalCount === 0 ? "apps" : "search"
            title: column.apps.totalCount === 0 ? "No applications found." : "No apps match this view."
            text: column.apps.totalCount === 0 ? "" : "Clear search or filters to see more apps."
        }
        Rectangle {
            width: parent.width
            height: 1
            color: Theme.border
        }
    }
}
