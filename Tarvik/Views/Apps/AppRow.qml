import QtQuick
import Tarvik

/// One application. Space ticks it, the right arrow opens what is known of it, the left one closes that.
ListRow {
    id: row

    required property string name
    required property var bundlePath
    required property string bundlePathText
    required property string version
    required property string iconSource
    required property string appSizeText
    required property string dataSizeText
    required property string totalSizeText
    required property string riskText
    required property bool isAlreadySymlinked
    required property bool isAbsent
    required property bool isSizeKnown
    required property bool isSelected
    required property bool isExpanded
    /// Whether the column of the button is there, in all rows or in none.
    property bool hasMoveBackColumn: true

    readonly property int lineHeight: 54
    readonly property int iconLeft: 28
    readonly property int nameLeft: iconLeft + 32 + Theme.medium
    readonly property int sizesWidth: 196
    readonly property int moveBackWidth: 108
    signal moveBack

    function setExpanded(isOpen) {
        AppsState.setAppExpanded(bundlePath, isOpen);
    }

    objectName: "app-" + name
    implicitHeight: lineHeight + expansion.height
    bottomInset: expansion.height
    bottomPadding: expansion.height
    leftPadding: Theme.margin
    rightPadding: Theme.large
    Accessible.name: [name, riskText, isSizeKnown ? totalSizeText : "", isAbsent ? "not there" : isAlreadySymlinked ? "on a drive" : ""].filter(part => part !== "").join(", ")
    Accessible.checkable: true
    Accessible.checked: isSelected
    item: bundlePath
    turns: true
    onTurned: isOpen => setExpanded(isOpen)

    onClicked: AppsState.setAppSelected(bundlePath, !isSelected)
    onMoveBack: AppsState.restoreApp(bundlePath)

    contentItem: Item {
        CheckBox {
            objectName: "appBox"
            width: row.iconLeft
            height: row.lineHeight
            focusPolicy: Qt.NoFocus
            name: "Select " + row.name
            checkState: row.isSelected ? Qt.Checked : Qt.Unchecked
            onClicked: row.clicked()
        }
        AppIcon {
            objectName: "appIcon"
            x: row.iconLeft
            anchors.verticalCenter: parent.verticalCenter
            source: row.iconSource
        }
        Column {
            anchors.left: parent.left
            anchors.leftMargin: row.nameLeft
            anchors.right: sizes.left
            anchors.rightMargin: Theme.medium
            anchors.verticalCenter: parent.verticalCenter
            spacing: 3

            ElidedLabel {
                objectName: "appName"
                width: parent.width
                fullText: row.name
                font.weight: Font.DemiBold
                Accessible.ignored: true
            }
            Row {
                width: parent.width
                height: 18
                spacing: Theme.small
                Badge {
                    id: risk
                    objectName: "appRisk"
                    visible: text !== ""
                    implicitHeight: 18
                    text: row.riskText
                    tone: text === "caution" ? "warning" : "danger"
                }
                Loader {
                    id: absence
                    active: row.isAbsent
                    visible: active
                    sourceComponent: Badge {
                        objectName: "appAbsence"
                        implicitHeight: 18
                        text: "not there"
                        tone: "neutral"

                        HoverHandler { id: pointer }
                        Loader {
                            active: pointer.hovered
                            sourceComponent: Tooltip {
                                parent: absence
                                text: "Its drive is not connected, or it has gone from there."
                                visible: true
                            }
                        }
                    }
                }
                ElidedLabel {
                    objectName: "appPath"
                    anchors.verticalCenter: parent.verticalCenter
                    width: parent.width - (risk.visible ? risk.width + parent.spacing : 0) - (absence.visible ? absence.width + parent.spacing : 0)
                    fullText: (row.version === "" ? "" : row.version + " \u00b7 ") + row.bundlePathText
                    color: Theme.textSecondary
                    font.pixelSize: Theme.captionSize
                    Accessible.ignored: true
                }
            }
        }
        AppSizes {
            id: sizes
            anchors.right: parent.right
            anchors.rightMargin: chevron.width + Theme.small + (row.hasMoveBackColumn ? row.moveBackWidth : 0)
            anchors.verticalCenter: parent.verticalCenter
            width: row.sizesWidth
            isKnown: row.isSizeKnown
            appText: row.appSizeText
            dataText: row.dataSizeText
            totalText: row.totalSizeText
        }
        Loader {
            anchors.right: chevron.left
            anchors.rightMargin: Theme.tiny
            anchors.verticalCenter: parent.verticalCenter
            active: row.isAlreadySymlinked
            sourceComponent: Button {
                objectName: "appMoveBackButton"
                enabled: !AppState.isBusy && !row.isAbsent
                focusPolicy: Qt.NoFocus
                text: "Move Back"
                kind: "quiet"
                iconName: "back"
                Accessible.name: "Move Back " + row.name
                onClicked: row.moveBack()
            }
        }
        // Its drawing is a good part of the work for a row: it comes a moment later.
        Loader {
            id: chevron
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            width: Theme.iconButtonSize
            height: Theme.iconButtonSize
            asynchronous: true
            sourceComponent: DisclosureButton {
                objectName: "appChevron"
                focusPolicy: Qt.NoFocus
                isOpen: row.isExpanded
                onClicked: row.setExpanded(!row.isExpanded)
            }
        }
    }

    Loader {
        id: expansion
        y: row.lineHeight
        width: row.width
        height: item ? item.implicitHeight : 0
        active: row.isExpanded
        sourceComponent: AppRowExpansion {
            bundle: row.bundlePath
            appName: row.name
            indent: row.leftPadding + row.nameLeft
        }
    }
}
