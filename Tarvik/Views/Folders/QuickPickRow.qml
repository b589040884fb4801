import QtQuick
import QtQuick.Layouts
import Tarvik

/// One common candidate.
ListRow {
    id: row

    required property string label
    required property string pathText
    required property string sizeText
    required property var path
    property bool isChosen: false

    objectName: "quickPick-" + label
    implicitHeight: 38
    leftPadding: Theme.medium
    rightPadding: Theme.medium
    highlighted: isChosen
    item: path
    Accessible.name: label
    Accessible.description: sizeText === "" ? pathText : pathText + ", " + sizeText

    contentItem: RowLayout {
        spacing: Theme.medium
        Icon {
            name: "folder"
            color: row.isChosen ? Theme.accent : Theme.textSecondary
        }
        Label {
            text: row.label
            font.weight: Font.Medium
            Accessible.ignored: true
        }
        ElidedLabel {
            Layout.fillWidth: true
            horizontalAlignment: Text.AlignRight
            fullText: row.pathText
            color: Theme.textSecondary
            font.pixelSize: Theme.captionSize
        }
        Item {
            Layout.preferredWidth: 64
            implicitHeight: size.height
            Figures {
                id: size
                objectName: "quickPickSize"
                anchors.right: parent.right
                text: row.sizeText
                size: Theme.captionSize
            }
        }
        Icon {
            name: row.isChosen ? "check" : "chevronRight"
            size: 12
            color: row.isChosen ? Theme.accent : Theme.neutral
        }
    }
}
