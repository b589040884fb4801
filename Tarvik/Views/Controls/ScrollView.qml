import QtQuick
import QtQuick.Templates as T
import Tarvik

/// Lets a column be higher than its place. What takes the keyboard is scrolled into sight.
Flickable {
    id: view

    readonly property Item focusItem: Window.activeFocusItem

    function reveal(item) {
        const top = item.mapToItem(contentItem, 0, 0).y - Theme.small;
        const bottom = top + item.height + 2 * Theme.small;
        if (top < contentY)
            contentY = Math.max(0, top);
        else if (bottom > contentY + height)
            contentY = Math.max(0, Math.min(bottom - height, contentHeight - height));
    }

    contentWidth: width
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    T.ScrollBar.vertical: ScrollBar {}

    onFocusItemChanged: {
        for (let item = focusItem; item; item = item.parent) {
            if (item === contentItem) {
                reveal(focusItem);
                return;
            }
        }
    }
}
