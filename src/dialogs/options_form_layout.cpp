#include "form/pixel_grid.hpp"
#include "dialogs/options_form.hpp"

namespace ostrivane {

using form::Place;
using form::kTwipsPerPixel;

// The data directory across the top, the four switches under it, then the
// grid of the defaults: the column heads, the global default row and the
// placement cross's row under the columns it shares; at the foot the grab
// proximity and the buttons. The proximity field stands two pixels lower
// than the buttons, so that Tab (reading order) reaches it after them.
void OptionsForm::LayOutControls() {
    constexpr int kMargin = 8;
    constexpr int kCaptionWidth = 90;
    constexpr int kGridLeft = kMargin + kCaptionWidth + 6;  // 104
    constexpr int kGap = 4;
    constexpr int kRowHeight = 22;
    constexpr int kLabelHeight = 15;
    constexpr int kLabelDrop = 3;  // a caption's text on the line of its field
    constexpr int kCheckCell = 18;

    constexpr int kDataDirTop = kMargin;
    constexpr int kSwitchesTop = kDataDirTop + kRowHeight + 8;    // 38
    constexpr int kCheckHeight = 17;
    constexpr int kHeadTop = kSwitchesTop + kCheckHeight + 8;     // 63
    constexpr int kGlobalTop = kHeadTop + kLabelHeight + 2;       // 80
    constexpr int kAddTop = kGlobalTop + kRowHeight + 4;          // 106
    constexpr int kFootTop = kAddTop + kRowHeight + 12;           // 140
    constexpr int kButtonWidth = 75, kButtonHeight = 25;

    struct Column {
        form::Label& head;
        form::Control& global;
        form::Control* add;  // none under the lengths
        int width;
    };
    const Column columns[] = {
        {lblHlen, txtHlenGlbDef, nullptr, 52},
        {lblVlen, txtVlenGlbDef, nullptr, 52},
        {lblColour, txtColourGlbDef, &txtColourAddMarker, 64},
        {lblThickness, txtThicknessGlbDef, &txtThicknessAddMarker, 44},
        {lblOpacity, txtOpacityGlbDef, &txtOpacityAddMarker, 52},
        {lblDotted, chkDottedGlbDef, &chkDottedAddMarker, 44},
    };
    int x = kGridLeft;
    for (const Column& c : columns) {
        Place(c.head, x, kHeadTop, c.width, kLabelHeight);
        // A check box without a caption stands in the middle of its cell.
        const bool check = &c.global == &chkDottedGlbDef;
        const int left = check ? x + (c.width - kCheckCell) / 2 : x;
        const int width = check ? kCheckCell : c.width;
        Place(c.global, left, kGlobalTop, width, kRowHeight);
        if (c.add) Place(*c.add, left, kAddTop, width, kRowHeight);
        x += c.width + kGap;
    }
    const int right = x - kGap;  // 432
    Place(lblGlobalDefaults, kMargin, kGlobalTop + kLabelDrop, kCaptionWidth, kLabelHeight);
    Place(lblAddMarker, kMargin, kAddTop + kLabelDrop, kCaptionWidth, kLabelHeight);

    Place(lblDataDir, kMargin, kDataDirTop + kLabelDrop, kCaptionWidth, kLabelHeight);
    Place(txtDataDir, kGridLeft, kDataDirTop, right - kGridLeft, kRowHeight);

    form::CheckBox* switches[] = {&chkHideOnGo, &chkRestoreOnStop, &chkFlashSelected, &chkAllowGrabMarkers};
    constexpr int kSwitches = 4;
    const int switchWidth = (right - kMargin - (kSwitches - 1) * kGap) / kSwitches;
    for (int i = 0; i < kSwitches; ++i)
        Place(*switches[i], kMargin + i * (switchWidth + kGap), kSwitchesTop, switchWidth, kCheckHeight);

    Place(cmdCancel, right - kButtonWidth, kFootTop, kButtonWidth, kButtonHeight);
    Place(cmdOk, right - 2 * kButtonWidth - 6, kFootTop, kButtonWidth, kButtonHeight);
    Place(lblGrabProximity, kMargin, kFootTop + 2 + kLabelDrop, kCaptionWidth, kLabelHeight);
    Place(txtGrabProximity, kGridLeft, kFootTop + 2, 52, kButtonHeight - 4);

    Width = (right + kMargin) * kTwipsPerPixel;
    Height = (kFootTop + kButtonHeight + kMargin) * kTwipsPerPixel;
}

}  // namespace ostrivane
