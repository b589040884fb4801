import QtQuick
import QtQml
import Tarvik

/// The keys of the window where no menus have them.
Item {
    id: keys

    required property WindowActs acts
    property int tabCount: 0
    signal tabPicked(int index)

    Shortcut {
        sequences: [keys.acts.refreshKeys, "F5"]
        autoRepeat: false
        enabled: keys.enabled
        onActivated: AppState.refreshAll()
    }
    Shortcut {
        // One window: to close it is to quit.
        sequences: [keys.acts.closeKeys, keys.acts.quitKeys]
        autoRepeat: false
        enabled: keys.enabled
        onActivated: keys.acts.close()
    }
    Shortcut {
        sequences: [keys.acts.minimizeKeys]
        autoRepeat: false
        enabled: keys.enabled
        onActivated: keys.acts.minimize()
    }
    Shortcut {
        sequences: [keys.acts.fullScreenKeys]
        autoRepeat: false
        enabled: keys.enabled
        onActivated: keys.acts.toggleFullScreen()
    }
    Shortcut {
        sequences: [StandardKey.HelpContents]
        autoRepeat: false
        enabled: keys.enabled
        onActivated: keys.acts.aboutAsked()
    }
    Instantiator {
        model: keys.tabCount
        Shortcut {
            required property int index
            sequence: keys.acts.tabKeys(index)
            enabled: keys.enabled
            onActivated: keys.tabPicked(index)
        }
    }
}
