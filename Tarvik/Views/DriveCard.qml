import QtQuick
import QtQuick.Layouts
import Tarvik

/// One drive: its name, what is free on it, how full it is, and whether it is the target.
ListRow {
    id: card

    required property string driveId
    required property string name
    required property string freeText
    required property string totalText
    required property real usedFraction

    objectName: "drive-" + name
    highlighted: driveId === AppState.selectedDriveId
    restingColor: Theme.card
    implicitHeight: 76
    leftPadding: Theme.medium
    rightPadding: Theme.medium
    ringMargin: 4
    Accessible.role: Accessible.RadioButton
    Accessible.name: name + ", " + freeText + " free of " + totalText
    Accessible.checkable: true
    Accessible.checked: highlighted

    onClicked: AppState.selectDrive(driveId)

    Rectangle {
        anchors.fill: parent
        z: 1
        radius: Theme.radius
        color: "transparent"
        border.width: card.highlighted ? 2 : 1
        border.color: card.highlighted ? Theme.accent : Theme.border
    }

    contentItem: Item {
        ColumnLayout {
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            spacing: 6

            RowLayout {
                spacing: 6
                Icon {
                    objectName: "driveIcon"
                    name: "drive"
                    color: card.highlighted ? Theme.accent : Theme.textSecondary
                }
                ElidedLabel {
                    objectName: "driveName"
                    Layout.fillWidth: true
                    fullText: card.name
                    font.weight: Font.DemiBold
                    Accessible.ignored: true
                }
                CheckMark {
                    objectName: "driveCheckMark"
                    visible: card.highlighted
                    Layout.preferredHeight: 16
                    Layout.preferredWidth: 16
                }
            }
            ProgressBar {
                objectName: "driveCapacity"
                Layout.fillWidth: true
                Layout.preferredHeight: 4
                value: card.usedFraction
                tone: value > 0.95 ? "warning" : card.highlighted ? "accent" : "neutral"
                Accessible.name: "Used"
            }
            RowLayout {
                Figures {
                    objectName: "driveFree"
                    Layout.fillWidth: true
                    text: card.freeText + " free"
                    color: Theme.textSecondary
                    size: Theme.captionSize
                }
                Figures {
                    objectName: "driveTotal"
                    text: card.totalText
                    color: Theme.textSecondary
                    size: Theme.captionSize
                }
            }
        }
    }
}
