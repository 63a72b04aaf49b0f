#include "editor/main_form.hpp"

#include "lib/errors.hpp"
#include "lib/numbers.hpp"
#include "lib/profile.hpp"
#include "store/data_file.hpp"

namespace ostrivane {

namespace {

// Compares a field's value with its cell, raising dirty on a difference.
void Compare(bool& dirty, std::int32_t fieldValue, std::int32_t cell) {
    if (fieldValue != cell) dirty = true;
}

// 0 unchecked -> 2 grey -> 1 checked -> 0.
int NextThreeStateValue(int value) {
    switch (value) {
        case 0: return 2;
        case 2: return 1;
        default: return 0;
    }
}

// The button going down moves the box one step on; the guard keeps the
// click that the change raises from coming back in.
void CycleThreeState(form::CheckBox& box, bool& guard) {
    if (guard) return;
    guard = true;
    box.SetValue(NextThreeStateValue(box.Value()));
    guard = false;
}

}  // namespace

void MainForm::WireStateEvents() {
    lstMarkers.Click.Connect([this] { lstMarkers_Click(); });
    chkDotted.MouseDown.Connect([this] { chkDotted_MouseDown(); });
    chkDotted.Click.Connect([this] { chkDotted_Click(); });
    chkDottedGrpDef.MouseDown.Connect([this] { chkDottedGrpDef_MouseDown(); });
    chkDottedGrpDef.Click.Connect([this] { chkDottedGrpDef_Click(); });
    chkCopyCurrOnAdd.Click.Connect([this] { chkCopyCurrOnAdd_Click(); });
    chkAllowGrabMarkers.Click.Connect([this] { chkAllowGrabMarkers_Click(); });
}

void MainForm::UpdateMarkerTable() {
    MarkerTable& m = store.Markers;
    if (store.MarkerCount == 0) return;  // group defaults typed into an empty group stay in the fields

    const int i = lstMarkers.ListIndex();
    const int r = i + 1;
    if (!txtHpos.Text().empty() && !txtVpos.Text().empty() && i != -1 && store.MarkerCount > i) {
        const double hpos = TextToNumber(txtHpos.Text());
        const double vpos = TextToNumber(txtVpos.Text());
        if (hpos != m(r, Hpos)) Dirty = true;
        if (vpos != m(r, Vpos)) Dirty = true;
        const std::int32_t hlen = TextToValue(txtHlen.Text());
        Compare(Dirty, hlen, m(r, Hlen));
        const std::int32_t vlen = TextToValue(txtVlen.Text());
        Compare(Dirty, vlen, m(r, Vlen));
        const std::int32_t colour = TextToValue(txtColour.Text());
        Compare(Dirty, colour, m(r, Colour));
        const std::int32_t thickness = TextToValue(txtThickness.Text());
        Compare(Dirty, thickness, m(r, Thickness));
        const std::int32_t opacity = TextToValue(txtOpacity.Text());
        Compare(Dirty, opacity, m(r, Opacity));
        const std::int32_t dotted = CheckToDotted(chkDotted.Value());
        Compare(Dirty, dotted, m(r, Dotted));

        m(r, Hpos) = RoundToInt32(hpos);
        m(r, Vpos) = RoundToInt32(vpos);
        m(r, Hlen) = hlen;
        m(r, Vlen) = vlen;
        m(r, Colour) = colour;
        m(r, Thickness) = thickness;
        m(r, Opacity) = opacity;
        m(r, Dotted) = dotted;
    }

    if (m(0, Hlen) == 0 && m(0, Vlen) == 0) return;  // row 0 never cleared: the form is not ready

    const std::int32_t hlen = TextToValue(txtHlenGrpDef.Text());
    Compare(Dirty, hlen, m(0, Hlen));
    const std::int32_t vlen = TextToValue(txtVlenGrpDef.Text());
    Compare(Dirty, vlen, m(0, Vlen));
    const std::int32_t colour = TextToValue(txtColourGrpDef.Text());
    Compare(Dirty, colour, m(0, Colour));
    const std::int32_t thickness = TextToValue(txtThicknessGrpDef.Text());
    Compare(Dirty, thickness, m(0, Thickness));
    const std::int32_t opacity = TextToValue(txtOpacityGrpDef.Text());
    Compare(Dirty, opacity, m(0, Opacity));
    const std::int32_t dotted = CheckToDotted(chkDottedGrpDef.Value());
    Compare(Dirty, dotted, m(0, Dotted));

    m(0, Hlen) = hlen;
    m(0, Vlen) = vlen;
    m(0, Colour) = colour;
    m(0, Thickness) = thickness;
    m(0, Opacity) = opacity;
    m(0, Dotted) = dotted;
}

void MainForm::ClearMarkerFields() {
    Loading = true;
    for (form::TextBox* t : {&txtHpos, &txtVpos, &txtHlen, &txtVlen, &txtColour, &txtThickness, &txtOpacity})
        t->SetText("");
    txtColour.SetBackColor(form::kWhite);
    chkDotted.SetValue(kCheckGrey);
    Loading = false;
}

void MainForm::FillGroupDefaultFields() {
    const MarkerRow& row0 = store.Markers.row(0);
    txtHlenGrpDef.SetText(ValueToText(row0[Hlen]));
    txtVlenGrpDef.SetText(ValueToText(row0[Vlen]));
    txtThicknessGrpDef.SetText(ValueToText(row0[Thickness]));
    txtOpacityGrpDef.SetText(ValueToText(row0[Opacity]));
    SetColourField(txtColourGrpDef, DecimalText(row0[Colour]));
    chkDottedGrpDef.SetValue(DottedToCheck(row0[Dotted]));
}

void MainForm::ClearGroupDefaults() {
    Loading = true;
    for (int column : {Hlen, Vlen, Colour, Thickness, Opacity, Dotted}) store.Markers(0, column) = kBlank;
    FillGroupDefaultFields();
    txtGroupNotes.SetText("");
    Loading = false;
}

void MainForm::EnableGroupControls(bool enable) {
    for (form::Control* c : std::initializer_list<form::Control*>{
             &cmdSaveGroup, &txtGroupNotes, &txtHlenGrpDef, &txtVlenGrpDef, &txtColourGrpDef, &txtThicknessGrpDef,
             &txtOpacityGrpDef, &chkDottedGrpDef, &mnuSaveGroup, &mnuSaveAsGroup, &mnuExportGroup})
        c->SetEnabled(enable);
    const bool groupSelected = enable && lstGroups.ListIndex() != -1;
    cmdDelGroup.SetEnabled(groupSelected);
    mnuRenGroup.SetEnabled(groupSelected);
}

void MainForm::EnableMarkerControls(bool fields, bool del) {
    cmdDelMarker.SetEnabled(del);
    mnuDelMarker.SetEnabled(del);
    mnuDupMarker.SetEnabled(del);
    for (form::Control* c : std::initializer_list<form::Control*>{&txtHpos, &txtVpos, &txtHlen, &txtVlen, &txtColour,
                                                                  &txtThickness, &txtOpacity, &chkDotted})
        c->SetEnabled(fields);
}

void MainForm::EnableNudgeMove(bool enable) {
    scrNudgeX.SetEnabled(enable);
    scrNudgeY.SetEnabled(enable);
}

void MainForm::EnableNudgeResize(bool enable) {
    scrNudgeW.SetEnabled(enable);
    scrNudgeH.SetEnabled(enable);
}

void MainForm::lstMarkers_Click() {
    if (timFlashSelected.TimerEnabled()) ShowAllMarkers();  // bring back a marker the flash has hidden
    ClearMarkerFields();
    if (lstMarkers.List(lstMarkers.ListIndex()).empty()) return;
    const int r = lstMarkers.ListIndex() + 1;
    const MarkerRow& row = store.Markers.row(r);

    txtHpos.SetText(DecimalText(row[Hpos]));
    txtVpos.SetText(DecimalText(row[Vpos]));
    txtHlen.SetText(ValueToText(row[Hlen]));
    txtVlen.SetText(ValueToText(row[Vlen]));
    txtThickness.SetText(ValueToText(row[Thickness]));
    txtOpacity.SetText(ValueToText(row[Opacity]));
    SetColourField(txtColour, DecimalText(row[Colour]));
    chkDotted.SetValue(DottedToCheck(row[Dotted]));

    // Under Loading the four Validate handlers only set the nudge bars.
    const bool wasLoading = Loading;
    Loading = true;
    bool cancel = false;
    SkipOnFailure([&] { txtHpos_Validate(cancel); });
    SkipOnFailure([&] { txtVpos_Validate(cancel); });
    SkipOnFailure([&] { txtHlen_Validate(cancel); });
    SkipOnFailure([&] { txtVlen_Validate(cancel); });
    Loading = wasLoading;

    const int selected = lstMarkers.SelCount();
    EnableMarkerControls(selected == 1, selected > 0);
    EnableNudgeMove(true);
    EnableNudgeResize(selected == 1);
}

void MainForm::chkDotted_MouseDown() {
    static bool guard = false;
    CycleThreeState(chkDotted, guard);
}

void MainForm::chkDottedGrpDef_MouseDown() {
    static bool guard = false;
    CycleThreeState(chkDottedGrpDef, guard);
}

void MainForm::chkDotted_Click() {
    if (Loading) return;
    UpdateMarkerTable();
    const int r = lstMarkers.ListIndex() + 1;
    store.Markers(r, PaintedColour) = 0;  // a change of Dotted alone would not rebuild the windows
    ShowMarker(r);
}

void MainForm::chkDottedGrpDef_Click() {
    if (Loading) return;
    UpdateMarkerTable();
    for (int r = 1; r <= store.MarkerCount; ++r) store.Markers(r, PaintedColour) = 0;
    ShowAllMarkers();
}

void MainForm::chkCopyCurrOnAdd_Click() {
    lib_ProfileWriteString(kDefaultsSection, "CopyCurrOnAdd", DecimalText(chkCopyCurrOnAdd.Value()), DataFile);
}

void MainForm::chkAllowGrabMarkers_Click() {
    lib_ProfileWriteString(kDefaultsSection, "AllowGrabMarkers", DecimalText(chkAllowGrabMarkers.Value()), DataFile);
}

}  // namespace ostrivane
