import QtQuick
import Tarvik

/// What can be done with the window as a whole, by its menus or by its keys, and the keys themselves.
QtObject {
    id: acts

    required property Window window
    // Not as the desktop has them: some have none.
    readonly property string quitKeys: "Ctrl+Q"
    readonly property string closeKeys: "Ctrl+W"
    readonly property var fullScreenKeys: StandardKey.FullScreen
    readonly property string minimizeKeys: "Ctrl+M"
    readonly property string refreshKeys: "Ctrl+R"
    signal aboutAsked

    function tabKeys(index) {
        return "Ctrl+" + (index + 1);
    }
    /// Asks first when something is being moved.
    function close() {
        window.close();
    }
    function minimize() {
        window.showMinimized();
    }
    function toggleFullScreen() {
        window.visibility = window.visibility === Window.FullScreen ? Window.AutomaticVisibility : Window.FullScreen;
    }
}
