import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Tarvik

/// The tabs, the target drive, and what is left on the boot volume.
Rectangle {
    id: sidebar

    property var tabs: []
    property int selectedTab: 0
    signal tabPicked(int index)
    signal aboutAsked

    color: Theme.sidebar

    Rectangle {
        anchors.right: parent.right
        width: 1
        height: parent.height
        color: Theme.border
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.leftMargin: Theme.medium
        anchors.rightMargin: Theme.medium + 1
        spacing: 0

        T.AbstractButton {
            id: appName
            objectName: "appName"
            Layout.preferredHeight: Theme.toolbarHeight
            Layout.leftMargin: Theme.small
            implicitWidth: implicitContentWidth
            text: "Tarvik"
            focusPolicy: Qt.NoFocus
            Accessible.role: Accessible.Heading
            Accessible.name: text
            Accessible.description: "About Tarvik"
            Accessible.onPressAction: sidebar.aboutAsked()
            onClicked: sidebar.aboutAsked()

            contentItem: Label {
                text: appName.text
                verticalAlignment: Text.AlignVCenter
                font.pixelSize: Theme.headlineSize
                font.weight: Font.Bold
                Accessible.ignored: true
            }
        }
        RowList {
            id: tabList
            objectName: "tabList"
            Layout.fillWidth: true
            Layout.preferredHeight: contentHeight
            Accessible.name: "Tabs"
            model: sidebar.tabs
            spacing: 2
            currentIndex: sidebar.selectedTab
            onCurrentIndexChanged: sidebar.tabPicked(currentIndex)
            delegate: TabRow {
                id: row
                isSelected: row.index === sidebar.selectedTab
            }

            Connections {
                target: sidebar
                function onSelectedTabChanged() { tabList.currentIndex = sidebar.selectedTab }
            }
        }
        DriveSection {
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.topMargin: Theme.huge
        }
        Rectangle {
            Layout.fillWidth: true
            Layout.preferredHeight: 1
            color: Theme.border
        }
        Figures {
            objectName: "bootFree"
            Layout.leftMargin: Theme.small
            Layout.topMargin: Theme.medium
            Layout.bottomMargin: Theme.medium
            text: AppState.bootFree === "" ? "" : "Boot: " + AppState.bootFree + " free"
            color: Theme.textSecondary
            size: Theme.captionSize
        }
    }
}
