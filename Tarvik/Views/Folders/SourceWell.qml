import QtQuick
import QtQuick.Layouts
import Tarvik

/// What is chosen and how large it is; or that nothing is.
Rectangle {
    id: well

    required property FolderSource source
    /// Whether something is held over it, to be dropped.
    property bool isTarget: false

    implicitHeight: 60
    radius: Theme.radius
    color: isTarget ? Theme.accentTint : Theme.well
    border.width: 1
    border.color: isTarget ? Theme.accent : Theme.hairline

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Theme.large
        anchors.rightMargin: Theme.small
        spacing: Theme.medium

        Icon {
            name: well.source.isLink ? "link" : "folder"
            size: 22
            color: well.source.isEmpty ? Theme.neutral : Theme.accent
        }
        Column {
            Layout.fillWidth: true
            spacing: 3
            ElidedLabel {
                objectName: "sourceName"
                width: parent.width
                fullText: well.source.isEmpty ? "No folder selected" : well.source.name
                color: well.source.isEmpty ? Theme.textSecondary : Theme.text
                font.weight: well.source.isEmpty ? Font.Normal : Font.DemiBold
            }
            ElidedLabel {
                objectName: "sourcePath"
                width: parent.width
                fullText: well.source.isEmpty ? "Choose one, or drop it here." : well.source.text
                color: Theme.textSecondary
                font.pixelSize: Theme.captionSize
            }
        }
        Spinner {
            objectName: "sourceSpinner"
            visible: well.source.isMeasuring
            Accessible.name: "Measuring the folder"
        }
        Figures {
            objectName: "sourceSize"
            Layout.rightMargin: Theme.tiny
            visible: text !== "" && !well.source.isMeasuring
            text: well.source.sizeText
            weight: Font.DemiBold
        }
        IconButton {
            objectName: "clearSourceButton"
            visible: !well.source.isEmpty
            iconName: "close"
            help: "Clear"
            onClicked: well.source.clear()
        }
    }
}
