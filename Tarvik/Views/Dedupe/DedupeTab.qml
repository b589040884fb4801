import QtQuick
import Tarvik

/// Which launchers stand beside the real application that they open, and their removal.
Item {
    objectName: "dedupeTab"

    DedupeTabHeader {
        id: header
        x: Theme.margin
        y: Theme.large
        width: parent.width - 2 * Theme.margin
    }
    Connections {
        target: DedupeState
        // It comes to stand above all groups.
        function onFailuresChanged() {
            Qt.callLater(list.positionViewAtBeginning);
        }
    }
    Item {
        id: body
        anchors.top: header.bottom
        anchors.topMargin: Theme.large
        anchors.bottom: parent.bottom
        width: parent.width

        Card {
            objectName: "scanningDuplicates"
            x: Theme.margin
            width: parent.width - 2 * Theme.margin
            visible: DedupeState.isScanningDedupe && !DedupeState.hasPlan
            ScanningDuplicates { anchors.horizontalCenter: parent.horizontalCenter }
        }
        EmptyState {
            objectName: "duplicatesNeverScanned"
            anchors.centerIn: parent
            width: Math.min(parent.width - 2 * Theme.margin, Theme.textWidth)
            visible: !DedupeState.isScanningDedupe && !DedupeState.hasPlan
            iconName: "dedupe"
            title: "Scan to find duplicate launcher apps."
        }
        DedupeSummary {
            id: summary
            x: Theme.margin
            width: parent.width - 2 * Theme.margin
            visible: DedupeState.hasPlan
        }
        RowList {
            id: list
            objectName: "dedupeList"
            anchors.top: summary.bottom
            anchors.topMargin: Theme.small
            anchors.bottom: parent.bottom
            width: parent.width
            // For the ring around the first card.
            topMargin: Theme.tiny
            visible: DedupeState.hasPlan
            leftMargin: Theme.margin
            rightMargin: Theme.margin
            bottomMargin: Theme.margin
            contentWidth: width - 2 * Theme.margin
            clip: true
            currentIndex: -1
            Accessible.name: "Duplicates"
            model: DedupeState.groups
            header: Column {
                width: list.contentWidth
                spacing: Theme.small
                bottomPadding: DedupeState.failures.length > 0 ? Theme.medium : 0

                Repeater {
                    model: DedupeState.failures
                    Notice {
                        required property int index
                        required property string modelData
                        objectName: "dedupeFailure-" + index
                        width: list.contentWidth
                        text: modelData
                        iconName: "warning"
                        tone: "warning"
                    }
                }
                EmptyState {
                    objectName: "noDuplicates"
                    width: parent.width
                    visible: DedupeState.groupCount === 0
                    iconName: "check"
                    title: DedupeState.nothingFound
                }
            }
            delegate: DedupeGroupCard { width: list.contentWidth }
            // Above the first one stands what has failed.
            onCurrentIndexChanged: if (showsFocus && currentIndex === 0) positionViewAtBeginning()
        }
    }
}
