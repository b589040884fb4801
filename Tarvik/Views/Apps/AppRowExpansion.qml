import QtQuick
import Tarvik

/// What lies below an opened application: who signed it, and its data, of which parts can go to the Trash.
Rectangle {
    id: expansion
    objectName: "appExpansion"

    required property var bundle
    required property string appName
    /// As far in as the name above.
    property int indent: 0
    readonly property int mostTreeHeight: 320

    // A row serves one application after the other: nothing of the last one is left to the next.
    onBundleChanged: {
        header.showsMore = false;
        tree.positionViewAtBeginning();
    }
    implicitHeight: column.implicitHeight + 2 * Theme.medium
    color: Theme.well

    AppDetails {
        id: appDetails
        state: AppsState
        bundle: expansion.bundle
    }
    // What is pressed beside the controls is no press of the row.
    MouseArea { anchors.fill: parent }

    Column {
        id: column
        anchors.left: parent.left
        anchors.leftMargin: expansion.indent
        anchors.right: parent.right
        anchors.rightMargin: Theme.margin
        y: Theme.medium
        spacing: Theme.small

        AppRowExpansionHeader {
            id: header
            width: parent.width
            details: appDetails
        }
        Rectangle {
            width: parent.width
            height: appDetails.hasData ? tree.height + 2 : nothing.height + 2 * Theme.medium
            radius: Theme.radius
            color: Theme.card
            border.width: 1
            border.color: Theme.border

            Label {
                id: nothing
                objectName: "noDataText"
                anchors.centerIn: parent
                visible: !appDetails.hasData
                text: "No tracked data paths."
                color: Theme.textSecondary
            }
            RowList {
                id: tree
                objectName: "dataTree"
                x: 1
                y: 1
                width: parent.width - 2
                height: Math.min(contentHeight, expansion.mostTreeHeight)
                visible: appDetails.hasData
                clip: true
                Accessible.name: "Data of " + expansion.appName
                model: appDetails.rows
                currentIndex: -1
                delegate: DataTreeRow { details: appDetails }
            }
        }
        AppRowExpansionActionBar {
            width: parent.width
            visible: appDetails.hasData
            details: appDetails
        }
    }
}
