#include "form/pixel_grid.hpp"
#include "editor/main_form.hpp"

namespace ostrivane {

using form::Place;
using form::kTwipsPerPixel;

// Two lists on the left; to their right the field grid (marker row over the
// group default row, the screen size under the position columns), the nudge
// bars with the check boxes, the buttons, the notes; the message line at the
// foot. Sizes in pixels of the grid.
void MainForm::LayOutControls() {
    constexpr int kMargin = 8;
    constexpr int kHeadTop = 6, kHeadHeight = 15;
    constexpr int kRowHeight = 22;
    constexpr int kMarkerRow = kHeadTop + kHeadHeight + 2;           // 23
    constexpr int kDefaultRow = kMarkerRow + kRowHeight + 4;         // 49
    constexpr int kBarsTop = kDefaultRow + kRowHeight + 10;          // 81
    constexpr int kBarThickness = 17;
    constexpr int kButtonsTop = kBarsTop + 60;                       // 141
    constexpr int kButtonHeight = 25;
    constexpr int kNotesTop = kButtonsTop + kButtonHeight + 8;       // 174
    constexpr int kNotesHeight = 56;
    constexpr int kListBottom = kNotesTop + kNotesHeight;            // 230
    constexpr int kMessageTop = kListBottom + 6;
    constexpr int kMessageHeight = 17;

    // The lists.
    constexpr int kGroupsLeft = kMargin, kGroupsWidth = 136;
    constexpr int kMarkersLeft = kGroupsLeft + kGroupsWidth + 6, kMarkersWidth = 44;
    Place(lblGroups, kGroupsLeft, kHeadTop, kGroupsWidth, kHeadHeight);
    Place(lstGroups, kGroupsLeft, kMarkerRow, kGroupsWidth, kListBottom - kMarkerRow);
    Place(lblMarkers, kMarkersLeft, kHeadTop, kMarkersWidth, kHeadHeight);
    Place(lstMarkers, kMarkersLeft, kMarkerRow, kMarkersWidth, kListBottom - kMarkerRow);

    // The field grid: one column per value, its head above both rows.
    constexpr int kGridLeft = kMarkersLeft + kMarkersWidth + 8;  // 202
    constexpr int kGap = 4;
    constexpr int kCheckCell = 18;
    struct Column {
        form::Label& head;
        form::Control* marker;
        form::Control* below;  // the group default, or the screen size under a position
        int width;
    };
    const Column columns[] = {
        {lblHpos, &txtHpos, &txtHmax, 52},
        {lblVpos, &txtVpos, &txtVmax, 52},
        {lblHlen, &txtHlen, &txtHlenGrpDef, 52},
        {lblVlen, &txtVlen, &txtVlenGrpDef, 52},
        {lblColour, &txtColour, &txtColourGrpDef, 64},
        {lblThickness, &txtThickness, &txtThicknessGrpDef, 44},
        {lblOpacity, &txtOpacity, &txtOpacityGrpDef, 52},
        {lblDotted, &chkDotted, &chkDottedGrpDef, 44},
    };
    int x = kGridLeft;
    for (const Column& c : columns) {
        Place(c.head, x, kHeadTop, c.width, kHeadHeight);
        // A check box without a caption stands in the middle of its cell.
        const bool check = c.marker == &chkDotted;
        const int left = check ? x + (c.width - kCheckCell) / 2 : x;
        const int width = check ? kCheckCell : c.width;
        Place(*c.marker, left, kMarkerRow, width, kRowHeight);
        Place(*c.below, left, kDefaultRow, width, kRowHeight);
        x += c.width + kGap;
    }
    const int gridRight = x - kGap;  // 642

    // The nudge bars, each pair beside its caption: the horizontal bar, then
    // the vertical one at its right end.
    constexpr int kBlockHeight = kButtonsTop - 8 - kBarsTop;  // 52
    constexpr int kBarLength = 84;
    constexpr int kMiddle = kBarsTop + (kBlockHeight - kBarThickness) / 2;
    struct Pair {
        form::Label& caption;
        form::ScrollBar& horizontal;
        form::ScrollBar& vertical;
        int captionWidth;
    };
    const Pair pairs[] = {{lblMove, scrNudgeX, scrNudgeY, 38}, {lblResize, scrNudgeW, scrNudgeH, 44}};
    x = kGridLeft;
    for (const Pair& p : pairs) {
        Place(p.caption, x, kMiddle + 1, p.captionWidth, kHeadHeight);
        x += p.captionWidth + 2;
        Place(p.horizontal, x, kMiddle, kBarLength, kBarThickness);
        x += kBarLength + 2;
        Place(p.vertical, x, kBarsTop, kBarThickness, kBlockHeight);
        x += kBarThickness + 16;
    }

    // The three settings beside the bars.
    const int checksLeft = x + 4;
    constexpr int kCheckHeight = 17;
    const int checksWidth = gridRight - checksLeft;
    Place(chkFlashSelected, checksLeft, kBarsTop, checksWidth, kCheckHeight);
    Place(chkCopyCurrOnAdd, checksLeft, kBarsTop + kCheckHeight + 1, checksWidth, kCheckHeight);
    Place(chkAllowGrabMarkers, checksLeft, kBarsTop + 2 * (kCheckHeight + 1), checksWidth, kCheckHeight);

    // The buttons in one row across the grid.
    form::CommandButton* buttons[] = {&cmdAddMarker, &cmdDelMarker, &cmdSaveGroup, &cmdDelGroup, &cmdShow};
    constexpr int kButtonCount = 5;
    const int buttonWidth = (gridRight - kGridLeft - (kButtonCount - 1) * kGap) / kButtonCount;
    for (int i = 0; i < kButtonCount; ++i)
        Place(*buttons[i], kGridLeft + i * (buttonWidth + kGap), kButtonsTop, buttonWidth, kButtonHeight);

    Place(txtGroupNotes, kGridLeft, kNotesTop, gridRight - kGridLeft, kNotesHeight);
    Place(lblMsg, kMargin, kMessageTop, gridRight - kMargin, kMessageHeight);

    Width = (gridRight + kMargin) * kTwipsPerPixel;
    Height = (kMessageTop + kMessageHeight + 4) * kTwipsPerPixel;
}

}  // namespace ostrivane
