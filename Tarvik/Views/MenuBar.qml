import QtQuick
import QtQml
import Qt.labs.platform as Platform
import Tarvik

/// The menus above the window. Those of the program itself (Services, Hide, Show All, Quit) come from the system, which
/// puts what has a role of its own there too, and adds Enter Full Screen to the menu that is called View.
Platform.MenuBar {
    id: bar

    required property WindowActs acts
    property var tabs: []
    /// Not while a question is open.
    property bool isEnabled: true
    signal tabPicked(int index)

    /// Where one types; null while nobody does.
    readonly property TextInput field: acts.window?.activeFocusItem as TextInput
    readonly property bool hasSelection: field !== null && field.selectedText !== ""

    Platform.Menu {
        title: "File"
        Platform.MenuItem {
            text: "About Tarvik"
            role: Platform.MenuItem.AboutRole
            enabled: bar.isEnabled
            onTriggered: bar.acts.aboutAsked()
        }
        Platform.MenuItem {
            text: "Close Window"
            shortcut: bar.acts.closeKeys
            onTriggered: bar.acts.close()
        }
    }
    Platform.Menu {
        title: "Edit"
        Platform.MenuItem {
            text: "Undo"
            shortcut: StandardKey.Undo
            enabled: bar.field?.canUndo ?? false
            onTriggered: bar.field.undo()
        }
        Platform.MenuItem {
            text: "Redo"
            shortcut: StandardKey.Redo
            enabled: bar.field?.canRedo ?? false
            onTriggered: bar.field.redo()
        }
        Platform.MenuSeparator {}
        Platform.MenuItem {
            text: "Cut"
            shortcut: StandardKey.Cut
            enabled: bar.hasSelection
            onTriggered: bar.field.cut()
        }
        Platform.MenuItem {
            text: "Copy"
            shortcut: StandardKey.Copy
            enabled: bar.hasSelection
            onTriggered: bar.field.copy()
        }
        Platform.MenuItem {
            text: "Paste"
            shortcut: StandardKey.Paste
            enabled: bar.field?.canPaste ?? false
            onTriggered: bar.field.paste()
        }
        Platform.MenuItem {
            text: "Select All"
            shortcut: StandardKey.SelectAll
            enabled: bar.field !== null
            onTriggered: bar.field.selectAll()
        }
    }
    Platform.Menu {
        id: view
        title: "View"
        Platform.MenuItem {
            text: "Refresh"
            shortcut: bar.acts.refreshKeys
            enabled: bar.isEnabled
            onTriggered: AppState.refreshAll()
        }
        Platform.MenuSeparator {}
    }
    Platform.Menu {
        title: "Window"
        Platform.MenuItem {
            text: "Minimize"
            shortcut: bar.acts.minimizeKeys
            onTriggered: bar.acts.minimize()
        }
    }
    property Instantiator tabItems: Instantiator {
        model: bar.tabs
        Platform.MenuItem {
            required property int index
            required property var modelData
            text: modelData.label
            shortcut: bar.acts.tabKeys(index)
            enabled: bar.isEnabled
            onTriggered: bar.tabPicked(index)
        }
        onObjectAdded: (index, item) => view.addItem(item)
        onObjectRemoved: (index, item) => view.removeItem(item)
    }
}
