import QtQuick
import Tarvik

/// One file or folder in a category. A folder reads its contents the first time it is opened.
Item {
    id: file

    /// The `DataTreeRow` that it stands in.
    required property var row

    DisclosureButton {
        id: chevron
        objectName: "fileChevron"
        anchors.verticalCenter: parent.verticalCenter
        width: 20
        height: 24
        visible: file.row.isDirectory && !file.row.isLoading
        focusPolicy: Qt.NoFocus
        isOpen: file.row.isOpen
        onClicked: file.row.details.setOpen(file.row.index, !file.row.isOpen)
    }
    Spinner {
        objectName: "fileSpinner"
        anchors.centerIn: chevron
        visible: file.row.isLoading
        size: 14
        Accessible.name: "Reading the folder"
    }
    CheckBox {
        id: box
        objectName: "fileBox"
        x: chevron.width + Theme.tiny
        height: parent.height
        focusPolicy: Qt.NoFocus
        enabled: !file.row.isLocked
        name: "Select " + file.row.name
        checkState: file.row.checkState
        onClicked: file.row.clicked()
    }
    Icon {
        id: icon
        anchors.left: box.right
        anchors.leftMargin: Theme.small
        anchors.verticalCenter: parent.verticalCenter
        name: file.row.isLink ? "link" : file.row.isDirectory ? "folder" : "file"
        size: 14
    }
    ElidedLabel {
        objectName: "fileName"
        anchors.left: icon.right
        anchors.leftMargin: Theme.small
        anchors.right: note.left
        anchors.rightMargin: Theme.small
        anchors.verticalCenter: parent.verticalCenter
        fullText: file.row.name
        Accessible.ignored: true
    }
    Label {
        id: note
        objectName: "fileNote"
        anchors.right: size.left
        anchors.verticalCenter: parent.verticalCenter
        text: file.row.isLocked ? "on a drive, use Move Back" : ""
        color: Theme.textSecondary
        font.pixelSize: Theme.captionSize
    }
    TreeSize {
        id: size
        objectName: "fileSize"
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        text: file.row.sizeText
    }
}
