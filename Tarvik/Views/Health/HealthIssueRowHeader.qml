import QtQuick
import Tarvik

/// What a finding is about, and how large that is.
Item {
    id: header

    required property string name
    required property string locationText
    required property string sizeText

    implicitHeight: names.implicitHeight

    Column {
        id: names
        width: parent.width - (size.visible ? size.implicitWidth + Theme.large : 0)
        spacing: 2
        ElidedLabel {
            objectName: "issueName"
            width: parent.width
            fullText: header.name
            font.weight: Font.Bold
            Accessible.ignored: true
        }
        ElidedLabel {
            objectName: "issueLocation"
            width: parent.width
            fullText: header.locationText
            color: Theme.textSecondary
            font.pixelSize: Theme.captionSize
        }
    }
    Label {
        id: size
        objectName: "issueSize"
        anchors.right: parent.right
        visible: text !== ""
        text: header.sizeText
        Accessible.ignored: true
    }
}
