import QtQuick
import Tarvik

/// What takes the most room on the drives, and is well.
Column {
    id: section
    objectName: "topLargest"

    /// The finding that the keyboard comes from, and goes back to.
    property HealthIssueRow previous: null
    /// What the keyboard comes to; nothing where there is no list.
    readonly property Item stop: visible ? list : null
    signal reached
    signal abandoned

    visible: list.count > 0
    height: visible ? implicitHeight : 0
    topPadding: Theme.huge
    spacing: Theme.small

    Label {
        objectName: "topLargestTitle"
        text: "Top 10 largest healthy symlinked apps"
        font.pixelSize: Theme.headlineSize
        font.weight: Font.DemiBold
        Accessible.role: Accessible.Heading
    }
    Card {
        width: parent.width
        padding: Theme.tiny

        RowList {
            id: list
            objectName: "largestList"
            width: parent.width
            height: contentHeight
            Accessible.name: "Largest healthy apps"
            model: HealthState.largest
            currentIndex: -1
            // Behind a finding with buttons, these lead here: among the children of a list a footer is not the last.
            activeFocusOnTab: count > 0 && (activeFocus || !(section.previous?.repairs.length > 0))
            Keys.onBacktabPressed: event => {
                event.accepted = section.previous !== null;
                section.previous?.forceActiveFocus(Qt.BacktabFocusReason);
            }
            onActiveFocusChanged: activeFocus ? section.reached() : section.abandoned()
            delegate: ListRow {
                id: row
                required property var location
                required property string name
                required property string spaceText
                objectName: "largest-" + name
                leftPadding: Theme.medium
                rightPadding: Theme.medium
                item: location
                Accessible.name: name + ", " + spaceText

                contentItem: Item {
                    ElidedLabel {
                        objectName: "largestName"
                        anchors.verticalCenter: parent.verticalCenter
                        width: parent.width - size.width - Theme.large
                        fullText: row.name
                        Accessible.ignored: true
                    }
                    Figures {
                        id: size
                        objectName: "largestSize"
                        anchors.right: parent.right
                        anchors.verticalCenter: parent.verticalCenter
                        text: row.spaceText
                    }
                }
            }
        }
    }
}
