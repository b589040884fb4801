import QtQuick
import Tarvik

/// A line of the tree of an application's data. Space ticks it, the right arrow opens it, the left one closes it.
ListRow {
    id: line

    required property string kind
    required property string name
    required property var path
    required property string pathText
    required property string helpText
    required property string summary
    required property string sizeText
    required property int depth
    required property bool isDirectory
    required property bool isLink
    required property bool isOpen
    required property bool isLoading
    required property bool isLocked
    required property int checkState
    required property AppDetails details

    objectName: kind === "category" ? "category-" + name : kind === "file" ? "file-" + name.split("/").pop() : "moreFiles"
    implicitHeight: Theme.rowHeight - 2
    leftPadding: Theme.small + depth * 18
    rightPadding: Theme.large
    Accessible.name: [name, summary, sizeText].filter(part => part !== "").join(", ")
    Accessible.checkable: kind !== "more" && !isLocked
    Accessible.checked: checkState === Qt.Checked
    item: kind === "file" ? path : undefined
    turns: true
    onTurned: isOpen => details.setOpen(index, isOpen)

    onClicked: details.toggleChecked(index)

    contentItem: Loader {
        sourceComponent: line.kind === "category" ? category : line.kind === "file" ? file : more
    }

    Component {
        id: category
        AppRowExpansionCategorySection { row: line }
    }
    Component {
        id: file
        FileTreeRow { row: line }
    }
    Component {
        id: more
        Label {
            leftPadding: 48
            verticalAlignment: Text.AlignVCenter
            text: line.name
            color: Theme.textSecondary
            font.pixelSize: Theme.captionSize
        }
    }
}
