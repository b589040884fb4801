import QtQuick
import Tarvik

/// One tab of the sidebar.
ListRow {
    id: row

    required property var modelData
    property bool isSelected: false

    objectName: "tab-" + modelData.name
    highlighted: isSelected
    restingColor: isSelected ? Theme.accent : "transparent"
    ringMargin: 2
    ringColor: isSelected ? Theme.textOnAccent : Theme.accent
    Accessible.role: Accessible.PageTab
    Accessible.name: modelData.label

    contentItem: Row {
        spacing: Theme.small
        Icon {
            anchors.verticalCenter: parent.verticalCenter
            name: row.modelData.icon
            color: row.isSelected ? Theme.textOnAccent : Theme.textSecondary
        }
        Label {
            anchors.verticalCenter: parent.verticalCenter
            text: row.modelData.label
            color: row.isSelected ? Theme.textOnAccent : Theme.text
            font.weight: Font.Medium
            Accessible.ignored: true
        }
    }
}
