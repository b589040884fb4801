import QtQuick
import Tarvik

/// The move back that is under way, or how the last one ended.
TransferRow {
    objectName: "restoreRow"
    height: visible ? implicitHeight : 0
    label: AppState.restore.label
    from: AppState.restore.from
    to: AppState.restore.to
    status: AppState.isRestoring ? "Moving back" : AppState.restore.hasFailed ? "Failed" : "Done"
    failure: AppState.restore.hasFailed ? AppState.restore.outcome : ""
    bytes: AppState.restore.bytes
    fraction: AppState.restore.fraction
    phase: AppState.isRestoring ? "copying" : AppState.restore.hasFailed ? "failed" : "done"
}
