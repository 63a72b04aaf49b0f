#include "editor/main_form.hpp"
#include "lib/numbers.hpp"

namespace ostrivane {

void MainForm::WireMarkerEvents() {}

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

}  // namespace ostrivane
