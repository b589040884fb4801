import QtQuick
import Tarvik

/// What stays of the bundles of one identifier, and what goes.
ListRow {
    id: row

    required property string name
    required property string identifier
    required property string duplicatesText
    required property string reason
    required property var keep
    required property string keepText
    required property string keepSizeText
    required property var removed

    objectName: "dedupeGroup-" + name
    implicitHeight: column.implicitHeight + 2 * Theme.large + Theme.medium
    topPadding: Theme.large
    leftPadding: Theme.large
    rightPadding: Theme.large
    Accessible.name: name + ", " + duplicatesText
    Accessible.description: reason
    item: keep

    contentItem: Item {
        Column {
            id: column
            width: parent.width
            spacing: Theme.small

            Item {
                width: parent.width
                implicitHeight: heading.implicitHeight + Theme.tiny

                ElidedLabel {
                    id: heading
                    objectName: "dedupeName"
                    width: Math.min(implicitWidth, parent.width - count.width - Theme.small)
                    fullText: row.name
                    font.pixelSize: Theme.headlineSize
                    font.weight: Font.DemiBold
                    Accessible.ignored: true
                }
                Badge {
                    id: count
                    objectName: "dedupeCount"
                    anchors.left: heading.right
                    anchors.leftMargin: Theme.small
                    anchors.verticalCenter: heading.verticalCenter
                    text: row.duplicatesText
                    tone: "warning"
                }
            }
            DedupeItemRow {
                objectName: "dedupeKeep"
                width: parent.width
                verb: "Keep"
                tone: "success"
                pathText: row.keepText
                sizeText: row.keepSizeText
            }
            Repeater {
                model: row.removed
                DedupeItemRow {
                    required property int index
                    required property var modelData
                    objectName: "dedupeRemove-" + index
                    width: column.width
                    verb: "Remove"
                    tone: "danger"
                    pathText: modelData.pathText
                    sizeText: modelData.sizeText
                    targetText: modelData.targetText
                }
            }
        }
    }
    background: Rectangle {
        height: row.height - Theme.medium
        radius: Theme.radiusLarge
        color: Theme.card
        border.width: 1
        border.color: Theme.border
        FocusRing {
            radius: Theme.radiusLarge
            visible: row.ListView.isCurrentItem && row.list !== null && row.list.activeFocus && row.list.showsFocus
        }
    }
}
