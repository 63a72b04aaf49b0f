// Dragging a line: the hook took the press on a line; three deferred ticks
// begin the drag, follow the cursor through the position field's own
// validation five times a second, and end it at the release.
#include "editor/main_form.hpp"
#include "lib/errors.hpp"
#include "lib/numbers.hpp"

namespace ostrivane {

void MainForm::WireGrabEvents() {
    timMoveMarkerStart.Tick.Connect([this] { timMoveMarkerStart_Tick(); });
    timMoveMarker.Tick.Connect([this] { timMoveMarker_Tick(); });
    timMoveMarkerComplete.Tick.Connect([this] { timMoveMarkerComplete_Tick(); });
}

void MainForm::timMoveMarkerStart_Tick() {
    timMoveMarkerStart.SetTimerEnabled(false);
    FormWasForeground = desktop_.IsForegroundWindow(*this);
    for (int i = 0; i < lstMarkers.ListCount(); ++i) lstMarkers.SetSelected(i, false);
    // The list's click fills the fields with the grabbed marker.
    lstMarkers.SetListIndex(GrabbedMarker - 1);
    lstMarkers.SetSelected(GrabbedMarker - 1, true);
    SkipOnFailure([&] { SetVisible(false); });
    SkipOnFailure([&] { input_.SetMousePointer(vbCrosshair); });
    SkipOnFailure([&] { timMoveMarker.SetTimerEnabled(true); });
}

// Only what a tick sees counts: no sample is taken at the release.
void MainForm::timMoveMarker_Tick() {
    const PixelPoint at = input_.GetCursorPos();
    if (at.x == LastCursorX && at.y == LastCursorY) return;
    LastCursorX = CheckedInt16(at.x);
    LastCursorY = CheckedInt16(at.y);
    bool cancel = false;
    if (MouseMode == 2) {
        txtHpos.SetText(DecimalText(at.x));
        txtHpos_Validate(cancel);
    }
    if (MouseMode == 3) {
        txtVpos.SetText(DecimalText(at.y));
        txtVpos_Validate(cancel);
    }
}

void MainForm::timMoveMarkerComplete_Tick() {
    timMoveMarkerComplete.SetTimerEnabled(false);
    timMoveMarker.SetTimerEnabled(false);
    MouseMode = 0;
    input_.SetMousePointer(vbDefault);
    // A form that was behind another program stays hidden, in the tray.
    if (FormWasForeground) SetVisible(true);
    MoveMarker();
}

void MainForm::MoveMarker() {
    while (input_.ShowCursor(true) < 0) {
    }
}

}  // namespace ostrivane
