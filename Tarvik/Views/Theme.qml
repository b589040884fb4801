pragma Singleton

import QtQuick

/// Every colour, distance, radius, type size and duration of the window. Light, whatever the system's appearance is.
QtObject {
    readonly property color window: "#f5f6f8"
    readonly property color sidebar: "#e8ecf1"
    readonly property color card: "#ffffff"
    /// A surface sunk into a card.
    readonly property color well: "#f5f6f8"
    readonly property color border: "#dce0e6"
    readonly property color hairline: "#e6e9ed"
    /// What a bar fills.
    readonly property color track: "#dfe4ea"
    readonly property color scrim: "#661b2433"

    readonly property color text: "#1b2433"
    readonly property color textSecondary: "#566072"
    readonly property color textDisabled: "#8b94a3"
    readonly property color textOnAccent: "#ffffff"

    readonly property color accent: "#2b66d9"
    readonly property color accentHovered: "#245ac4"
    readonly property color accentPressed: "#1e4ca8"
    readonly property color accentTint: "#e6eefc"
    readonly property color success: "#1c7a4a"
    readonly property color successTint: "#e4f3ea"
    readonly property color warning: "#8a5600"
    readonly property color warningFill: "#dd9a1f"
    readonly property color warningTint: "#fcf2da"
    readonly property color danger: "#b8322a"
    readonly property color dangerHovered: "#a32a23"
    readonly property color dangerPressed: "#8b221c"
    readonly property color dangerTint: "#fbeae9"
    readonly property color neutral: "#7d8898"
    readonly property color neutralTint: "#eceff3"

    /// Laid over a surface while the pointer is on it, or presses it.
    readonly property color hovered: "#0d1b2433"
    readonly property color pressed: "#1a1b2433"
    readonly property color controlHovered: "#f7f8fa"
    readonly property color controlPressed: "#eceff3"
    readonly property color controlBorder: "#cbd1da"
    readonly property color disabled: "#e9ecf0"

    readonly property int tiny: 4
    readonly property int small: 8
    readonly property int medium: 12
    readonly property int large: 16
    readonly property int huge: 24
    readonly property int margin: 28

    readonly property int radiusSmall: 4
    readonly property int radius: 7
    readonly property int radiusLarge: 10

    readonly property int controlHeight: 30
    readonly property int controlHeightSmall: 24
    readonly property int iconButtonSize: 28
    readonly property int rowHeight: 32
    readonly property int toolbarHeight: 48
    readonly property int sidebarWidth: 244
    /// The widest that a column of text and cards grows.
    readonly property int columnWidth: 1100
    /// The widest that a paragraph grows, so that its lines are read with ease.
    readonly property int textWidth: 680
    readonly property int dialogWidth: 420
    readonly property int toastWidth: 500
    readonly property int barHeight: 6
    readonly property int iconSize: 16

    readonly property string family: Qt.fontFamilies().includes("Inter") ? "Inter" : Qt.application.font.family
    readonly property int titleSize: 22
    readonly property int headlineSize: 15
    readonly property int textSize: 13
    readonly property int captionSize: 12

    /// Whether a drawing with the processor may be kept as a picture: on a screen of more pixels than points that stays
    /// empty.
    readonly property bool keepsPictures: Array.from(Qt.application.screens).every(screen => screen.devicePixelRatio === 1)

    readonly property int quick: 120
    readonly property int calm: 170
    /// How long a message stays, in milliseconds.
    readonly property int toastDuration: 3000

    /// The colour of a tone for text and icons, for bars, and for a surface below text. A tone is "accent", "success",
    /// "warning", "danger", or anything else for neutral.
    function colorOf(tone) {
        return { accent: accent, success: success, warning: warning, danger: danger }[tone] ?? neutral;
    }
    function fillOf(tone) {
        return tone === "warning" ? warningFill : colorOf(tone);
    }
    function tintOf(tone) {
        return { accent: accentTint, success: successTint, warning: warningTint, danger: dangerTint }[tone] ?? neutralTint;
    }
}
