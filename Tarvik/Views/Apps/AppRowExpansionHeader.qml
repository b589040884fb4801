import QtQuick
import QtQuick.Layouts
import Tarvik

/// Who signed the application, more about it on demand, and how much data it has.
Column {
    id: header

    required property AppDetails details
    property bool showsMore: false

    spacing: Theme.small

    RowLayout {
        width: parent.width
        spacing: Theme.small

        SectionTitle {
            objectName: "verificationTitle"
            text: "App verification"
        }
        Badge {
            objectName: "notarization"
            visible: text !== ""
            text: header.details.notarization
            tone: ({ "Notarized": "success", "Mac App Store": "success", "Accepted": "success", "Not signed": "warning" })[text] ?? "neutral"
        }
        Spinner {
            objectName: "verificationSpinner"
            visible: header.details.isVerifying
            size: 14
            Accessible.name: "Reading the signature"
        }
        Item { Layout.fillWidth: true }
        Button {
            objectName: "moreInfoButton"
            text: "More info"
            kind: "quiet"
            iconName: header.showsMore ? "chevronDown" : "chevronRight"
            Accessible.checkable: true
            Accessible.checked: header.showsMore
            onClicked: header.showsMore = !header.showsMore
        }
    }
    Column {
        objectName: "moreInfo"
        width: parent.width
        visible: header.showsMore
        spacing: Theme.tiny

        MetadataRow {
            objectName: "bundleIdRow"
            label: "Bundle ID"
            value: header.details.bundleIdText
        }
        MetadataRow {
            objectName: "appStoreRow"
            visible: header.details.isMacAppStore
            label: "Mac App Store"
            value: "Yes (moving may break receipt)"
        }
        MetadataRow {
            objectName: "symlinkedRow"
            visible: header.details.isAlreadySymlinked
            label: "Symlinked"
            value: "Yes \u2014 bundle is external"
        }
        MetadataRow {
            objectName: "developerRow"
            label: "Developer"
            value: header.details.developer
            isLoading: header.details.isVerifying
        }
    }
    RowLayout {
        width: parent.width
        spacing: Theme.small

        SectionTitle {
            objectName: "filesTitle"
            text: "Apps files and folders"
        }
        Figures {
            objectName: "dataCount"
            text: header.details.itemsText
            color: Theme.textSecondary
            size: Theme.captionSize
        }
        Item { Layout.fillWidth: true }
    }
}
