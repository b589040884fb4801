import QtQuick
import Tarvik

/// One bundle of a group: whether it stays, where it is, how large it is, and what it opens.
Item {
    id: row

    required property string verb
    required property string tone
    required property string pathText
    required property string sizeText
    property string targetText

    readonly property int verbWidth: 68

    implicitHeight: texts.implicitHeight
    Accessible.role: Accessible.StaticText
    Accessible.name: verb + ": " + pathText + ", " + sizeText
    Accessible.description: targetText

    Badge {
        objectName: "dedupeVerb"
        width: row.verbWidth
        text: row.verb
        tone: row.tone
    }
    Column {
        id: texts
        anchors.left: parent.left
        anchors.leftMargin: row.verbWidth + Theme.medium
        anchors.right: size.left
        anchors.rightMargin: Theme.large
        spacing: 2

        ElidedLabel {
            objectName: "dedupePath"
            width: parent.width
            height: 20
            verticalAlignment: Text.AlignVCenter
            fullText: row.pathText
            Accessible.ignored: true
        }
        ElidedLabel {
            objectName: "dedupeTarget"
            width: parent.width
            visible: text !== ""
            fullText: row.targetText
            color: Theme.textSecondary
            font.pixelSize: Theme.captionSize
            Accessible.ignored: true
        }
    }
    Label {
        id: size
        objectName: "dedupeSize"
        anchors.right: parent.right
        height: 20
        verticalAlignment: Text.AlignVCenter
        text: row.sizeText
        color: Theme.textSecondary
        Accessible.ignored: true
    }
}
