#include <algorithm>

#include "editor/main_form.hpp"
#include "lib/numbers.hpp"
#include "lib/text.hpp"

namespace ostrivane {

namespace {

// A move bar's step is 16-bit: a gap too wide for it is an Overflow. A
// resize step is 32-bit, as a length from the file may be far off screen.
std::int16_t Delta16(std::int64_t to, std::int64_t from) { return CheckedInt16(to - from); }

}  // namespace

void MainForm::WireNudgeEvents() {
    scrNudgeX.Change.Connect([this] { scrNudgeX_Change(); });
    scrNudgeY.Change.Connect([this] { scrNudgeY_Change(); });
    scrNudgeW.Change.Connect([this] { scrNudgeW_Change(); });
    scrNudgeH.Change.Connect([this] { scrNudgeH_Change(); });
}

void MainForm::SetNudgeRanges() {
    const bool wasLoading = Loading;
    Loading = true;
    const ScreenMetrics& s = screen;
    scrNudgeX.SetRange(Add16(s.ScreenLeft, 1), Add16(s.ScreenWidth, s.ScreenLeft));
    scrNudgeY.SetRange(Add16(s.ScreenTop, 1), Add16(s.ScreenHeight, s.ScreenTop));
    scrNudgeW.SetRange(1, s.ScreenWidth);
    // Inverted: the value is the maximum minus the length.
    scrNudgeH.SetRange(0, s.ScreenHeight);
    Loading = wasLoading;
}

namespace {

// The focused marker sets the step; every selected one takes the same step,
// so the others may pass the screen's edge.
void NudgePosition(MainForm& frm, const form::ScrollBar& bar, form::TextBox& field, int column) {
    if (frm.Loading) return;
    const int a = frm.lstMarkers.ListIndex() + 1;
    const std::int16_t delta = Delta16(bar.Value(), frm.store.Markers(a, column));
    field.SetText(DecimalText(bar.Value()));
    for (int i = 0; i < frm.lstMarkers.ListCount(); ++i) {
        if (!frm.lstMarkers.Selected(i)) continue;
        frm.store.Markers(i + 1, column) = Add32(frm.store.Markers(i + 1, column), delta);
        frm.ShowMarker(i + 1);
    }
    frm.Dirty = true;
}

}  // namespace

void MainForm::scrNudgeX_Change() { NudgePosition(*this, scrNudgeX, txtHpos, Hpos); }

void MainForm::scrNudgeY_Change() { NudgePosition(*this, scrNudgeY, txtVpos, Vpos); }

namespace {

// The length the focused marker has now: the field when it holds one, else
// the cascade as the bars see it (row 0 only with a group loaded).
std::int32_t CurrentLength(const std::string& text, const MarkerStore& store, int row, int column,
                           std::int16_t CurrentGroup, std::int16_t wholeScreen) {
    if (!text.empty()) return UCase(text) == "S" ? wholeScreen : TextToInt32(text);
    const std::int32_t value = EffectiveValueForNudge(store, row, column, CurrentGroup);
    return value == kWholeScreen ? wholeScreen : value;
}

// A cell with a length moves by the step; a blank or "S" cell becomes the
// new length itself.
void ResizeCell(std::int32_t& cell, std::int32_t cur, std::int32_t delta) {
    cell = cell >= 0 ? Add32(cell, delta) : Add32(cur, delta);
}

}  // namespace

void MainForm::scrNudgeW_Change() {
    if (Loading) return;
    const int a = lstMarkers.ListIndex() + 1;
    const std::int32_t cur = CurrentLength(txtHlen.Text(), store, a, Hlen, CurrentGroup, screen.ScreenWidth);
    const std::int32_t delta = Sub32(scrNudgeW.Value(), cur);
    txtHlen.SetText(DecimalText(scrNudgeW.Value()));
    for (int i = 0; i < lstMarkers.ListCount(); ++i) {
        if (!lstMarkers.Selected(i)) continue;
        ResizeCell(store.Markers(i + 1, Hlen), cur, delta);
        ShowMarker(i + 1);
    }
    Dirty = true;
}

// The bar runs inverted; at its maximum the line keeps a length of 1.
void MainForm::scrNudgeH_Change() {
    if (Loading) return;
    const int a = lstMarkers.ListIndex() + 1;
    const std::int16_t length = std::max<std::int16_t>(
        Sub16(CheckedInt16(scrNudgeH.Max()), CheckedInt16(scrNudgeH.Value())), 1);
    const std::int32_t cur = CurrentLength(txtVlen.Text(), store, a, Vlen, CurrentGroup, screen.ScreenHeight);
    const std::int32_t delta = Sub32(length, cur);
    txtVlen.SetText(DecimalText(length));
    for (int i = 0; i < lstMarkers.ListCount(); ++i) {
        if (!lstMarkers.Selected(i)) continue;
        ResizeCell(store.Markers(i + 1, Vlen), cur, delta);
        ShowMarker(i + 1);
    }
    Dirty = true;
}

}  // namespace ostrivane
