import QtQuick
import Tarvik

/// The head of one category: its box for all that is in it, what such data is, and how much there is of it.
Item {
    id: section

    /// The `DataTreeRow` that it stands in.
    required property var row

    DisclosureButton {
        id: chevron
        objectName: "categoryChevron"
        anchors.verticalCenter: parent.verticalCenter
        width: 20
        height: 24
        focusPolicy: Qt.NoFocus
        isOpen: section.row.isOpen
        onClicked: section.row.details.setOpen(section.row.index, !section.row.isOpen)
    }
    CheckBox {
        id: box
        objectName: "categoryBox"
        anchors.left: chevron.right
        anchors.leftMargin: Theme.tiny
        height: parent.height
        focusPolicy: Qt.NoFocus
        enabled: !section.row.isLocked
        name: "Select " + section.row.name
        checkState: section.row.checkState
        onClicked: section.row.clicked()
    }
    Label {
        id: title
        objectName: "categoryTitle"
        anchors.left: box.right
        anchors.leftMargin: Theme.small
        anchors.verticalCenter: parent.verticalCenter
        text: section.row.name
        font.weight: Font.DemiBold
        Accessible.ignored: true
    }
    AppRowExpansionCategoryHelp {
        id: help
        anchors.left: title.right
        anchors.leftMargin: Theme.tiny
        anchors.verticalCenter: parent.verticalCenter
        text: section.row.helpText
    }
    ElidedLabel {
        objectName: "categorySummary"
        anchors.left: help.right
        anchors.leftMargin: Theme.small
        anchors.right: size.left
        anchors.rightMargin: Theme.small
        anchors.verticalCenter: parent.verticalCenter
        fullText: section.row.summary
        color: Theme.textSecondary
        font.pixelSize: Theme.captionSize
        Accessible.ignored: true
    }
    TreeSize {
        id: size
        objectName: "categorySize"
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        text: section.row.sizeText
        font.weight: Font.DemiBold
    }
}
