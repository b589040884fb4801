import QtQuick
import QtQuick.Layouts
import Tarvik

/// What the run under way does, or what the last one did, and the folder that is being moved back.
Rectangle {
    id: panel
    objectName: "jobsPanel"

    property int maximumHeight: 300
    property bool isFolded: false
    readonly property bool hasRestore: !AppState.restore.isEmpty
    readonly property bool isActive: AppState.isRunning || AppState.isRestoring
    readonly property string title: {
        if (AppState.isRunning)
            return "Moving";
        if (AppState.isRestoring)
            return "Moving back";
        return list.count > 0 ? "Last run" : "Move Back";
    }

    visible: list.count > 0 || hasRestore
    height: visible ? Math.min(implicitHeight, maximumHeight) : 0
    implicitHeight: header.implicitHeight + (isFolded ? 0 : list.contentHeight + Theme.small)
    color: Theme.card

    Connections {
        target: AppState
        function onIsRunningChanged() { if (AppState.isRunning) panel.isFolded = false }
        function onIsRestoringChanged() { if (AppState.isRestoring) panel.isFolded = false }
    }

    RowLayout {
        id: header
        width: parent.width
        spacing: Theme.small

        Label {
            objectName: "jobsTitle"
            Layout.leftMargin: Theme.margin
            text: panel.title
            font.weight: Font.DemiBold
            Accessible.role: Accessible.Heading
        }
        Figures {
            objectName: "jobsSummary"
            text: AppState.isRestoring || list.count === 0 ? AppState.restore.summary : AppState.jobsSummary
            color: Theme.textSecondary
        }
        ElidedLabel {
            objectName: "jobsCurrent"
            Layout.fillWidth: true
            fullText: AppState.isRunning ? AppState.currentJobLabel : AppState.isRestoring ? AppState.restore.label : ""
            color: Theme.textSecondary
        }
        Figures {
            objectName: "timeLeft"
            text: AppState.timeLeft
            color: Theme.textSecondary
        }
        ProgressBar {
            objectName: "jobsBar"
            Layout.preferredWidth: 160
            visible: AppState.isRunning ? list.count > 1 : AppState.isRestoring && AppState.restore.summary !== ""
            value: AppState.isRunning ? AppState.jobsFraction : AppState.restore.allFraction
            Accessible.name: "All items"
        }
        IconButton {
            objectName: "foldButton"
            Layout.rightMargin: closeButton.visible ? 0 : Theme.large
            Layout.topMargin: 6
            Layout.bottomMargin: 6
            iconName: panel.isFolded ? "chevronUp" : "chevronDown"
            help: panel.isFolded ? "Show items" : "Hide items"
            onClicked: panel.isFolded = !panel.isFolded
        }
        IconButton {
            id: closeButton
            objectName: "closeRunButton"
            Layout.rightMargin: Theme.large
            visible: !panel.isActive
            iconName: "close"
            help: "Close"
            onClicked: AppState.clearRun()
        }
    }
    RowList {
        id: list
        objectName: "jobList"
        /// Stays in sight: the job under way, and afterwards the first one that failed.
        readonly property int shownJob: AppState.currentJob
        onShownJobChanged: if (shownJob >= 0) positionViewAtIndex(shownJob, ListView.Contain)
        anchors.top: header.bottom
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.small
        width: parent.width
        visible: !panel.isFolded
        activeFocusOnTab: false
        clip: true
        Accessible.name: "Items of the run"
        model: AppState.jobs
        header: RestoreRow {
            width: list.width
            visible: panel.hasRestore
        }
        delegate: JobRow { width: list.width }
    }
    Rectangle {
        width: parent.width
        height: 1
        color: Theme.border
    }
}
