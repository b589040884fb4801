import QtQuick
import QtQuick.Layouts
import Tarvik

/// What a plan, a run or a way back tells, line by line; the newest stays in sight.
Rectangle {
    id: view
    objectName: "uninstallLog"

    property bool isFolded: false
    readonly property int lineHeight: 18
    readonly property int mostLines: 5

    visible: list.count > 0
    height: visible ? header.height + (isFolded ? 0 : list.height + Theme.small) : 0
    color: Theme.card

    RowLayout {
        id: header
        width: parent.width
        height: 32
        SectionTitle {
            objectName: "logTitle"
            Layout.leftMargin: Theme.large
            Layout.fillWidth: true
            text: "Log"
        }
        IconButton {
            objectName: "foldLogButton"
            Layout.rightMargin: Theme.small
            iconName: view.isFolded ? "chevronUp" : "chevronDown"
            help: view.isFolded ? "Show the log" : "Hide the log"
            onClicked: view.isFolded = !view.isFolded
        }
    }
    RowList {
        id: list
        objectName: "logList"
        anchors.top: header.bottom
        width: parent.width
        height: Math.min(count, view.mostLines) * view.lineHeight
        visible: !view.isFolded
        clip: true
        currentIndex: -1
        Accessible.name: "Log"
        model: UninstallState.log
        onCountChanged: Qt.callLater(positionViewAtEnd)
        delegate: ListRow {
            id: row
            required property string line
            implicitHeight: view.lineHeight
            leftPadding: Theme.large
            rightPadding: Theme.large
            Accessible.name: line
            contentItem: ElidedLabel {
                objectName: "logLine"
                verticalAlignment: Text.AlignVCenter
                fullText: row.line.replace(/\t/g, "   ")
                color: Theme.textSecondary
                font.pixelSize: Theme.captionSize
                Accessible.ignored: true
            }
        }
    }
    Rectangle {
        width: parent.width
        height: 1
        color: Theme.border
    }
}
