// Placing a marker by mouse: a cross of four plain windows follows the
// hidden pointer, and the next press of the left button (taken by the mouse
// hook) fixes the new marker there.
#include "editor/main_form.hpp"
#include "lib/errors.hpp"
#include "lib/numbers.hpp"
#include "lib/profile.hpp"
#include "overlay/geometry.hpp"
#include "store/data_file.hpp"
#include "store/markers.hpp"

namespace ostrivane {

namespace {

std::string DefaultsKey(const MainForm& frm, const char* key, const char* defaultValue) {
    return lib_ProfileGetString(kDefaultsSection, key, defaultValue, frm.DataFile);
}

}  // namespace

void MainForm::WireAddMarkerEvents() {
    cmdAddMarker.Click.Connect([this] { cmdAddMarker_Click(); });
    timAddMarker.Tick.Connect([this] { timAddMarker_Tick(); });
    timAddMarkerComplete.Tick.Connect([this] { timAddMarkerComplete_Tick(); });
}

void MainForm::cmdAddMarker_Click() {
    if (chkCopyCurrOnAdd.Value() == kCheckChecked) {
        NewHlen = TextToValue(txtHlen.Text());
        NewVlen = TextToValue(txtVlen.Text());
        NewColour = TextToValue(txtColour.Text());
        NewThickness = TextToValue(txtThickness.Text());
        NewOpacity = TextToValue(txtOpacity.Text());
        NewDotted = chkDotted.Value();  // grey gives 2, not -1
    } else {
        NewHlen = NewVlen = NewColour = NewThickness = NewOpacity = NewDotted = -1;
    }
    UpdateMarkerTable();

    const std::int16_t opacity = TextToInt16(DefaultsKey(*this, "AddMarkerOpacity", "100"));
    const std::int32_t colour = TextToInt32(DefaultsKey(*this, "AddMarkerColour", "65535"));
    const std::int32_t dotted = TextToInt32(DefaultsKey(*this, "AddMarkerDotted", "0"));
    overlay_.CreateAddLines(colour, dotted, AlphaFromOpacity(opacity));

    MouseMode = 1;
    HookMouse();
    SetVisible(false);
    while (input_.ShowCursor(false) >= 0) {
    }
    timAddMarker.SetTimerEnabled(true);
}

// The cross stays at size 0 until the cursor is first seen at a new place.
void MainForm::timAddMarker_Tick() {
    const PixelPoint at = input_.GetCursorPos();
    if (at.x == LastCursorX && at.y == LastCursorY) return;
    LastCursorX = CheckedInt16(at.x);
    LastCursorY = CheckedInt16(at.y);
    overlay_.MoveAddLines(at.x, at.y, AddMarkerThickness);
}

void MainForm::timAddMarkerComplete_Tick() {
    timAddMarkerComplete.SetTimerEnabled(false);
    timAddMarker.SetTimerEnabled(false);
    MouseMode = 0;
    input_.SetMousePointer(vbDefault);
    SetVisible(true);
    AddMarker();
}

// A full table fails in AppendMarker after the cross is gone and before the
// pointer comes back; nothing here catches that.
void MainForm::AddMarker() {
    const PixelPoint at = input_.GetCursorPos();
    overlay_.DestroyAddLines();
    AppendMarker(at.x, at.y, NewHlen, NewVlen, NewColour, NewThickness, NewOpacity, NewDotted);
    while (input_.ShowCursor(true) < 0) {
    }
    for (int i = 0; i < lstMarkers.ListCount(); ++i) lstMarkers.SetSelected(i, false);
    const int added = store.MarkerCount - 1;
    lstMarkers.SetListIndex(added);
    lstMarkers.SetSelected(added, true);
    ShowMarker(store.MarkerCount);
    lblMsg.SetCaption("");
    Dirty = true;
}

}  // namespace ostrivane
