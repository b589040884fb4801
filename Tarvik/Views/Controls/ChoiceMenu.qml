import QtQuick
import QtQuick.Templates as T
import Tarvik

/// The choices of a `ChoiceButton`, with a mark at the one that is chosen.
T.Menu {
    id: menu

    property string label
    property var choices: []
    property int choice: 0
    signal picked(int index)

    implicitWidth: Math.max(implicitBackgroundWidth, implicitContentWidth + leftPadding + rightPadding)
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    margins: Theme.tiny
    padding: Theme.tiny

    contentItem: ListView {
        objectName: "choiceMenu"
        implicitHeight: contentHeight
        implicitWidth: {
            let widest = 0;
            for (let row = 0; row < menu.count; ++row)
                widest = Math.max(widest, menu.itemAt(row)?.implicitWidth ?? 0);
            return widest;
        }
        model: menu.contentModel
        interactive: false
        currentIndex: menu.currentIndex
        Accessible.role: Accessible.PopupMenu
        Accessible.name: menu.label
    }
    background: Rectangle {
        implicitWidth: 180
        radius: Theme.radius
        color: Theme.card
        border.width: 1
        border.color: Theme.controlBorder
    }

    Repeater {
        model: menu.choices
        T.MenuItem {
            id: row

            required property int index
            required property string modelData

            objectName: "choice-" + index
            implicitWidth: label.implicitWidth + leftPadding + rightPadding
            implicitHeight: 26
            leftPadding: Theme.small + 18
            rightPadding: Theme.large
            text: modelData
            Accessible.role: Accessible.RadioButton
            Accessible.name: text
            Accessible.checkable: true
            Accessible.checked: index === menu.choice
            onTriggered: menu.picked(index)

            contentItem: Label {
                id: label
                text: row.text
                verticalAlignment: Text.AlignVCenter
                color: row.highlighted ? Theme.textOnAccent : Theme.text
                Accessible.ignored: true
            }
            background: Rectangle {
                radius: Theme.radiusSmall
                color: row.highlighted ? Theme.accent : "transparent"
                Icon {
                    x: Theme.small - 2
                    anchors.verticalCenter: parent.verticalCenter
                    visible: row.index === menu.choice
                    name: "check"
                    size: 12
                    color: row.highlighted ? Theme.textOnAccent : Theme.accent
                }
            }
        }
    }
}
