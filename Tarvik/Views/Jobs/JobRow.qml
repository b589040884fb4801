import QtQuick
import Tarvik

/// One job of a run.
TransferRow {
    id: row

    required property var model

    objectName: "job-" + model.label
    label: model.label
    from: model.sourceText
    to: model.destinationText
    status: model.state === "failed" ? "Failed" : model.statusText
    failure: model.state === "failed" ? model.statusText : ""
    bytes: model.bytesText
    fraction: model.progress
    phase: model.state
    canMoveBack: model.canMoveBack && !AppState.isBusy
    onMoveBack: AppState.restoreSymlink(model.source)
}
