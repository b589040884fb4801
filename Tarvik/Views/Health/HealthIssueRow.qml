import QtQuick
import Tarvik

/// One finding with what can be done about it. Tab goes from the row to its buttons.
ListRow {
    id: row

    required property string id
    required property string kind
    required property var location
    required property string name
    required property string locationText
    required property string targetText
    required property string detail
    required property string sizeText
    required property var repairs
    readonly property bool isCurrent: ListView.isCurrentItem
    /// What the keyboard comes to behind all findings.
    property Item following: null

    objectName: "issue-" + kind + "-" + name
    implicitHeight: column.implicitHeight + 2 * Theme.medium + Theme.small
    topPadding: Theme.medium
    leftPadding: Theme.large
    rightPadding: Theme.large
    Accessible.name: name + (sizeText !== "" ? ", " + sizeText : "")
    Accessible.description: detail
    item: location

    contentItem: Item {
        Column {
            id: column
            width: parent.width
            spacing: Theme.small

            HealthIssueRowHeader {
                width: parent.width
                name: row.name
                locationText: row.locationText
                sizeText: row.sizeText
            }
            Label {
                objectName: "issueDetail"
                width: parent.width
                visible: text !== ""
                text: row.detail
                wrapMode: Text.Wrap
                Accessible.ignored: true
            }
            ElidedLabel {
                objectName: "issueTarget"
                width: parent.width
                visible: text !== ""
                fullText: row.targetText
                color: Theme.textSecondary
                font.pixelSize: Theme.captionSize
            }
            HealthIssueRowActions {
                visible: row.repairs.length > 0
                issueName: row.name
                isOnKeyboard: row.isCurrent && !row.following?.activeFocus
                following: row.following
                isRepairing: HealthState.repairing.includes(row.id)
                repairs: row.repairs
                onRepair: strategy => HealthState.repairHealth(row.id, strategy)
            }
        }
    }
    background: Rectangle {
        height: row.height - Theme.small
        radius: Theme.radiusLarge
        color: Theme.card
        border.width: 1
        border.color: Theme.border
        FocusRing {
            radius: Theme.radiusLarge
            visible: row.activeFocus && row.list !== null && row.list.showsFocus
        }
    }
}
