import QtQuick
import Tarvik

/// Whether everything that was moved is whole, and the repair of what is not.
Item {
    objectName: "healthTab"

    HealthTabHeader {
        id: header
        x: Theme.margin
        y: Theme.large
        width: parent.width - 2 * Theme.margin
    }
    Item {
        id: body
        anchors.top: header.bottom
        anchors.topMargin: Theme.large
        anchors.bottom: parent.bottom
        width: parent.width

        Card {
            objectName: "scanningHealth"
            x: Theme.margin
            width: parent.width - 2 * Theme.margin
            visible: HealthState.isScanningHealth && !HealthState.hasReport
            Row {
                anchors.horizontalCenter: parent.horizontalCenter
                spacing: Theme.small
                Spinner { anchors.verticalCenter: parent.verticalCenter }
                Label {
                    objectName: "scanningText"
                    anchors.verticalCenter: parent.verticalCenter
                    text: "Scanning…"
                    color: Theme.textSecondary
                }
            }
        }
        EmptyState {
            objectName: "neverScanned"
            anchors.centerIn: parent
            width: Math.min(parent.width - 2 * Theme.margin, Theme.textWidth)
            visible: !HealthState.isScanningHealth && !HealthState.hasReport
            iconName: "seal"
            title: "Click Scan to check the health of moved apps."
        }
        RowList {
            id: list
            objectName: "healthList"
            anchors.fill: parent
            visible: HealthState.hasReport
            leftMargin: Theme.margin
            rightMargin: Theme.margin
            bottomMargin: Theme.margin
            contentWidth: width - 2 * Theme.margin
            clip: true
            currentIndex: -1
            Accessible.name: "Findings"
            model: HealthState.problems
            section.property: "kind"
            section.delegate: HealthIssueSection {
                required property string section
                width: list.contentWidth
                kind: section
            }
            header: Column {
                width: list.contentWidth
                spacing: Theme.large
                HealthSummaryCard { width: parent.width }
                HealthAllHealthyCard {
                    width: parent.width
                    visible: HealthState.problemCount === 0
                }
            }
            delegate: HealthIssueRow {
                width: list.contentWidth
                following: (list.footerItem as HealthTopLargestSection)?.stop ?? null
            }
            footer: HealthTopLargestSection {
                width: list.contentWidth
                previous: list.currentItem as HealthIssueRow
                onReached: list.positionViewAtEnd()
                onAbandoned: if (list.currentItem) list.currentItem.focus = true
            }
            // Above the first one are the figures.
            onCurrentIndexChanged: if (showsFocus && currentIndex === 0) positionViewAtBeginning()
        }
    }
}
