import QtQuick
import QtQuick.Templates as T
import Tarvik

/// A list of `ListRow` delegates: Tab reaches it as one stop, arrows walk it, Space and Return press the row.
ListView {
    id: list

    /// True while the keyboard is the one who walks, so that rows show their ring.
    property bool showsFocus: false

    /// A key that is held down presses once.
    function pressCurrent(event) {
        if (!event.isAutoRepeat)
            (currentItem as ListRow)?.clicked();
    }

    /// Arrows that are pressed in a control within a row belong there.
    function turnCurrent(event, isOpen) {
        const row = currentItem as ListRow;
        const focused = Window.activeFocusItem;
        event.accepted = row !== null && row.turns && (focused === list || focused === row);
        if (event.accepted)
            row.turned(isOpen);
    }

    activeFocusOnTab: count > 0
    keyNavigationEnabled: true
    highlightFollowsCurrentItem: true
    highlightMoveDuration: 0
    boundsBehavior: Flickable.StopAtBounds
    interactive: contentHeight > height
    reuseItems: true
    clip: interactive
    T.ScrollBar.vertical: ScrollBar {}

    Accessible.role: Accessible.List
    Keys.onSpacePressed: event => pressCurrent(event)
    Keys.onReturnPressed: event => pressCurrent(event)
    Keys.onEnterPressed: event => pressCurrent(event)
    Keys.onRightPressed: event => turnCurrent(event, true)
    Keys.onLeftPressed: event => turnCurrent(event, false)
    Keys.onPressed: event => {
        showsFocus = true;
        event.accepted = false;
    }
    onActiveFocusChanged: {
        showsFocus = activeFocus;
        // Where a control in a row has taken the keyboard, it keeps it.
        if (activeFocus && currentIndex < 0 && Window.activeFocusItem === list)
            currentIndex = 0;
    }
}
