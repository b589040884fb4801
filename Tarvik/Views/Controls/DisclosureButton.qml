import Tarvik

/// The chevron that opens and closes what lies below a row.
IconButton {
    property bool isOpen: false

    iconName: isOpen ? "chevronDown" : "chevronRight"
    help: isOpen ? "Hide details" : "Show details"
}
