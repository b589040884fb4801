import QtQuick
import QtQuick.Templates as T
import Tarvik

/// A list of `ListRow` delegates: Tab reaches it as one stop, arrows walk it, Space and Return press the row. A right click,
/// the menu key or Shift-F10 opens the menu of a row that stands for an item.
ListView {
    id: list

    /// True while the keyboard is the one who walks, so that rows show their ring.
    property bool showsFocus: false

    /// A key that is held down presses once.
    function pressCurrent(event) {
        if (!event.isAutoRepeat)
            (currentItem as ListRow)?.clicked();
    }

    /// Space ticks a row that has a tick beside what a press does.
    function tickCurrent(event) {
        const row = currentItem as ListRow;
        if (!row?.ticks)
            return pressCurrent(event);
        if (!event.isAutoRepeat)
            row.ticked();
    }

    /// Arrows that are pressed in a control within a row belong there.
    function turnCurrent(event, isOpen) {
        const row = currentItem as ListRow;
        const focused = Window.activeFocusItem;
        event.accepted = row !== null && row.turns && (focused === list || focused === row);
        if (event.accepted)
            row.turned(isOpen);
    }

    /// Made when it is first asked for: most lists are never asked.
    property var menu: null
    property bool showedFocusBeforeMenu: false

    function openMenu(row, x, y) {
        if (!row?.item)
            return false;
        if (menu === null)
            menu = menuMaker.createObject(list);
        menu.item = row.item;
        showedFocusBeforeMenu = showsFocus;
        menu.popup(list, x, y);
        return true;
    }

    function openMenuAt(scenePosition) {
        const position = mapFromItem(null, scenePosition);
        const row = itemAt(position.x + contentX, position.y + contentY) as ListRow;
        if (!row?.item)
            return;
        currentIndex = row.index;
        forceActiveFocus(Qt.MouseFocusReason);
        showsFocus = false;
        openMenu(row, position.x, position.y);
    }

    /// Below the row, where it begins.
    function openCurrentMenu() {
        const row = currentItem as ListRow;
        if (!row)
            return false;
        const corner = row.mapToItem(list, row.leftPadding, row.height - row.bottomPadding);
        return openMenu(row, corner.x, corner.y);
    }

    Component {
        id: menuMaker
        ItemMenu {
            onClosed: {
                list.forceActiveFocus(Qt.PopupFocusReason);
                list.showsFocus = list.showedFocusBeforeMenu;
            }
        }
    }
    TapHandler {
        acceptedButtons: Qt.RightButton
        // A list in a row of another one keeps the click for itself.
        gesturePolicy: TapHandler.WithinBounds
        onTapped: eventPoint => list.openMenuAt(eventPoint.scenePosition)
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
    Keys.onSpacePressed: event => tickCurrent(event)
    Keys.onReturnPressed: event => pressCurrent(event)
    Keys.onEnterPressed: event => pressCurrent(event)
    Keys.onRightPressed: event => turnCurrent(event, true)
    Keys.onLeftPressed: event => turnCurrent(event, false)
    Keys.onPressed: event => {
        showsFocus = true;
        const asksForMenu = event.key === Qt.Key_Menu || (event.key === Qt.Key_F10 && event.modifiers & Qt.ShiftModifier);
        event.accepted = asksForMenu && openCurrentMenu();
    }
    onActiveFocusChanged: {
        showsFocus = activeFocus;
        // Where a control in a row has taken the keyboard, it keeps it.
        if (activeFocus && currentIndex < 0 && Window.activeFocusItem === list)
            currentIndex = 0;
    }
}
