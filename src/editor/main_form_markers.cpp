#include "editor/main_form.hpp"
#include "lib/errors.hpp"
#include "lib/numbers.hpp"
#include "lib/text.hpp"
#include "store/data_file.hpp"

namespace ostrivane {

namespace {

constexpr char kDuplicatePrompt[] =
    "Note: if markers are duplicated exactly, you won't see them on top of each other, and flashing will apear to "
    "stop. To help, its is recommended you offset the new markers by a small amount.";

constexpr std::int16_t kFirstOffset = 5;
constexpr std::int16_t kOffsetLimit = 99;

}  // namespace

void MainForm::WireMarkerEvents() {
    cmdDelMarker.Click.Connect([this] { cmdDelMarker_Click(); });
    mnuDelMarker.Click.Connect([this] { cmdDelMarker.PerformClick(); });
    mnuDupMarker.Click.Connect([this] { mnuDupMarker_Click(); });
    mnuAddMarker.Click.Connect([this] { cmdAddMarker.PerformClick(); });
}

// No bound is checked: a 51st marker fails on the table's subscript after
// the count has already gone up, and nothing traps it.
void MainForm::AppendMarker(std::int32_t hpos, std::int32_t vpos, std::int32_t hlen, std::int32_t vlen,
                            std::int32_t colour, std::int32_t thickness, std::int32_t opacity, std::int32_t dotted) {
    store.MarkerCount = Add16(store.MarkerCount, 1);
    const int n = store.MarkerCount;
    MarkerRow& row = store.Markers.row(n);
    row[Hpos] = hpos;
    row[Vpos] = vpos;
    row[Hlen] = hlen;
    row[Vlen] = vlen;
    row[Colour] = colour;
    row[Thickness] = thickness;
    row[Opacity] = opacity;
    row[Dotted] = dotted;
    lstMarkers.AddItem(DecimalText(n), n - 1);
    EnableGroupControls(true);
}

// One pass that advances after a removal too: the item that slides into
// place i is not looked at, so of adjacent selected markers every other one
// goes and the rest stay selected for the next click.
void MainForm::cmdDelMarker_Click() {
    if (lstMarkers.SelCount() == 0) return;

    const int end = lstMarkers.ListCount() - 1;
    for (int i = 0; i <= end; ++i) {
        if (lstMarkers.Selected(i)) {
            if (Showing) DestroyMarkerWindows(i + 1);
            // The window and paint columns travel with their marker.
            for (int r = i + 2; r <= store.MarkerCount; ++r)
                for (int c = Hpos; c <= Dotted; ++c) store.Markers(r - 1, c) = store.Markers(r, c);
            store.MarkerCount = Sub16(store.MarkerCount, 1);
            lstMarkers.RemoveItem(i);
            for (int j = i; j < lstMarkers.ListCount(); ++j) lstMarkers.SetList(j, DecimalText(j + 1));
        }
        if (i >= lstMarkers.ListCount() - 1) break;
    }

    ClearMarkerFields();
    cmdAddMarker.SetFocus();
    EnableMarkerControls(false, false);
    EnableNudgeMove(false);
    EnableNudgeResize(false);
    Dirty = true;
}

void MainForm::mnuDupMarker_Click() {
    if (lstMarkers.SelCount() == 0) return;

    std::int16_t offset = kFirstOffset;
    ShowAllMarkers();
    for (;;) {
        const std::string answer =
            Trim(dialogs_.InputBox(kDuplicatePrompt, kAppTitle, DecimalText(offset), std::nullopt));
        if (answer.empty()) return;
        // A text that is no 16-bit number leaves the last proposal standing.
        if (!SkipOnFailure([&] { offset = TextToInt16(answer); })) continue;
        if (offset >= -kOffsetLimit && offset <= kOffsetLimit) break;
    }

    // New rows land behind the end fixed here and are not copied again.
    const int end = lstMarkers.ListCount() - 1;
    for (int i = 0; i <= end; ++i) {
        if (!lstMarkers.Selected(i)) continue;
        const MarkerRow source = store.Markers.row(i + 1);
        AppendMarker(Add32(source[Hpos], offset), Add32(source[Vpos], offset), source[Hlen], source[Vlen],
                     source[Colour], source[Thickness], source[Opacity], source[Dotted]);
        lstMarkers.SetSelected(i, false);
        lstMarkers.SetSelected(lstMarkers.ListCount() - 1, true);
    }

    ShowAllMarkers();
    lblMsg.SetCaption("");
    Dirty = true;
}

}  // namespace ostrivane
