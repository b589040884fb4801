import QtQuick
import Tarvik

/// A line of the plan: a section or one thing that may go. Space ticks it, the right arrow opens a section, the left one
/// closes it.
ListRow {
    id: row

    required property string kind
    required property string name
    required property string detail
    required property string sizeText
    required property string iconName
    required property var itemPath
    required property bool isPrivileged
    required property int checkState
    required property bool isOpen
    readonly property bool isSection: kind === "section"

    objectName: (isSection ? "section-" : "candidate-") + (isSection ? name : name.split("/").pop())
    implicitHeight: isSection ? 36 : 46
    leftPadding: Theme.large
    rightPadding: Theme.large
    Accessible.name: [name, detail, sizeText, isPrivileged ? "admin" : ""].filter(part => part !== "").join(", ")
    Accessible.checkable: true
    Accessible.checked: checkState === Qt.Checked
    item: itemPath
    turns: isSection
    onTurned: isOpen => UninstallState.setPlanRowOpen(index, isOpen)
    onClicked: UninstallState.togglePlanRow(index)

    contentItem: Loader {
        sourceComponent: row.isSection ? section : candidate
    }

    Component {
        id: section
        UninstallSectionLine { line: row }
    }
    Component {
        id: candidate
        UninstallCandidateLine { line: row }
    }
}
