import QtQuick
import Tarvik

/// The move back that is under way, or how the last one ended.
TransferRow {
    objectName: "restoreRow"
    height: visible ? implicitHeight : 0
    label: AppState.restoreLabel
    from: AppState.restoreFrom
    to: AppState.restoreTo
    status: AppState.isRestoring ? "Moving back" : AppState.restoreFailed ? "Failed" : "Done"
    failure: AppState.restoreFailed ? AppState.restoreOutcome : ""
    bytes: AppState.restoreBytes
    fraction: AppState.restoreFraction
    phase: AppState.isRestoring ? "copying" : AppState.restoreFailed ? "failed" : "done"
}
