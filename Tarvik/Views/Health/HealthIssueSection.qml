import QtQuick
import Tarvik

/// Heads the findings of one kind.
Item {
    id: head

    required property string kind
    // Read anew with each report: the count and the sum are of all its findings.
    readonly property var words: HealthState.problemCount >= 0 ? HealthState.section(kind) : {}

    objectName: "healthSection-" + kind
    implicitHeight: line.implicitHeight + Theme.huge + Theme.small

    Row {
        id: line
        y: Theme.huge
        spacing: Theme.small
        Icon {
            objectName: "sectionIcon"
            anchors.verticalCenter: parent.verticalCenter
            name: head.words.icon
            color: Theme.colorOf(head.words.tone)
        }
        Label {
            objectName: "sectionTitle"
            anchors.verticalCenter: parent.verticalCenter
            text: head.words.title
            font.pixelSize: Theme.headlineSize
            font.weight: Font.DemiBold
            Accessible.role: Accessible.Heading
        }
    }
    Label {
        objectName: "sectionTotal"
        anchors.right: parent.right
        anchors.verticalCenter: line.verticalCenter
        visible: text !== ""
        text: head.words.total
        color: Theme.textSecondary
    }
}
