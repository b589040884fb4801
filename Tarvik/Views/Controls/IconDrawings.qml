pragma Singleton
import QtQuick

/// What an `Icon` draws, by its name: paths on a grid of 16 by 16. One table for all icons.
QtObject {
    readonly property var paths: ({
        "folder": "M1.5 4.5a1.5 1.5 0 0 1 1.5-1.5h3l1.8 2h5.2a1.5 1.5 0 0 1 1.5 1.5v5a1.5 1.5 0 0 1-1.5 1.5h-10a1.5 1.5 0 0 1-1.5-1.5z",
        "drive": "M3.6 3h8.8l2.1 6v2.5a1.5 1.5 0 0 1-1.5 1.5h-10a1.5 1.5 0 0 1-1.5-1.5v-2.5z M1.7 9h12.6 M11.2 11h1",
        "refresh": "M13.5 8a5.5 5.5 0 1 1-1.7-4 M12.2 1.4v2.9h-2.9",
        "check": "M3 8.6l3.3 3.3l6.7-7.4",
        "close": "M4 4l8 8 M12 4l-8 8",
        "minus": "M3.5 8h9",
        "apps": "M2.5 2.5h4.2v4.2h-4.2z M9.3 2.5h4.2v4.2h-4.2z M2.5 9.3h4.2v4.2h-4.2z M9.3 9.3h4.2v4.2h-4.2z",
        "search": "M7 2.2a4.8 4.8 0 1 1 0 9.6a4.8 4.8 0 1 1 0-9.6z M10.6 10.6l3.4 3.4",
        "file": "M4 1.8h5.2l3.3 3.3v9.1h-8.5z M9 1.8v3.5h3.5",
        "arrowRight": "M2.5 8h10.5 M9 4l4 4l-4 4",
        "chevronRight": "M6 3.5l4.5 4.5l-4.5 4.5",
        "chevronDown": "M3.5 6l4.5 4.5l4.5-4.5",
        "chevronUp": "M3.5 10l4.5-4.5l4.5 4.5",
        "link": "M6.8 9.2a2.8 2.8 0 0 0 4 0l2-2a2.8 2.8 0 0 0-4-4l-.8.8 M9.2 6.8a2.8 2.8 0 0 0-4 0l-2 2a2.8 2.8 0 0 0 4 4l.8-.8",
        "back": "M6 3.5l-3.5 3.5l3.5 3.5 M2.5 7h7.5a3.2 3.2 0 0 1 0 6.4h-3",
        "clock": "M8 2a6 6 0 1 1 0 12a6 6 0 1 1 0-12z M8 5v3.2l2.2 1.5",
        "warning": "M8 2.2l6.3 11.3h-12.6z M8 6.5v3.2 M8 11.4v.3",
        "info": "M8 2a6 6 0 1 1 0 12a6 6 0 1 1 0-12z M8 7.3v3.6 M8 4.9v.3"
    })
}
