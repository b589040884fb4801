import QtQuick
import Tarvik

/// What the tab is for, while no application is chosen, and what has been removed before.
RowList {
    id: list
    objectName: "uninstallHero"

    /// Whether something is held over the tab, to be dropped.
    property bool isTarget: false

    leftMargin: Theme.large
    rightMargin: Theme.large
    bottomMargin: Theme.huge
    contentWidth: width - 2 * Theme.large
    clip: true
    currentIndex: -1
    Accessible.name: "Past uninstalls"
    model: UninstallState.past.rows

    header: Column {
        width: list.contentWidth
        // It grows upwards, out of sight.
        onImplicitHeightChanged: if (list.currentIndex < 0) Qt.callLater(list.positionViewAtBeginning)
        topPadding: Theme.huge
        bottomPadding: Theme.small
        spacing: Theme.large

        Column {
            width: parent.width
            spacing: Theme.small
            Label {
                objectName: "heroTitle"
                width: parent.width
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
                text: "Uninstall applications"
                font.pixelSize: Theme.titleSize
                font.weight: Font.DemiBold
                Accessible.role: Accessible.Heading
            }
            Label {
                objectName: "heroText"
                width: parent.width
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
                text: "Select applications. Review service files.\nUninstall any application completely."
                color: Theme.textSecondary
                lineHeight: 1.25
            }
        }
        UninstallDropZone {
            width: Math.min(parent.width, 520)
            anchors.horizontalCenter: parent.horizontalCenter
            isTarget: list.isTarget
        }
        Column {
            width: parent.width
            topPadding: Theme.small
            spacing: Theme.tiny
            SectionTitle {
                objectName: "pastTitle"
                text: "Past uninstalls"
            }
            Label {
                objectName: "noPastUninstalls"
                width: parent.width
                visible: UninstallState.past.count === 0
                wrapMode: Text.Wrap
                text: "Nothing has been uninstalled yet. What you uninstall is listed here, and can be put back."
                color: Theme.textSecondary
                font.pixelSize: Theme.captionSize
            }
        }
    }
    delegate: PastUninstallRow { width: list.contentWidth }
}
