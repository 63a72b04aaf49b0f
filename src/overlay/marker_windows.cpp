#include "overlay/marker_windows.hpp"

#include <cstddef>

#include "editor/main_form.hpp"
#include "lib/errors.hpp"
#include "lib/numbers.hpp"
#include "overlay/geometry.hpp"
#include "store/markers.hpp"

namespace ostrivane {

namespace {

constexpr char kClassPrefix[] = "Ostrvane";
constexpr int kClassColour = 1;
constexpr int kClassDotted = 2;

std::size_t CheckedIndex(int index, int count) {
    if (index < 0 || index >= count) Raise(kSubscriptOutOfRange);
    return static_cast<std::size_t>(index);
}

PixelRect ToPixels(const LineRect& r) { return {r.left, r.top, r.width, r.height}; }

}  // namespace

std::int32_t& MarkerClassTable::operator()(int row, int column) {
    return cells_[CheckedIndex(row, kRows)][CheckedIndex(column, kColumns)];
}

std::int32_t MarkerClassTable::operator()(int row, int column) const {
    return cells_[CheckedIndex(row, kRows)][CheckedIndex(column, kColumns)];
}

MarkerWindows::MarkerWindows(LineWindows& lines, Desktop& desktop) : lines_(lines), desktop_(desktop) {
    for (std::size_t n = 0; n < names_.size(); ++n) names_[n] = kClassPrefix + std::to_string(n);
}

const std::string& MarkerWindows::ClassName(std::int16_t index) {
    if (index >= 0 && index < MarkerClassTable::kRows) return names_[static_cast<std::size_t>(index)];
    otherName_ = kClassPrefix + std::to_string(index);
    return otherName_;
}

std::int16_t MarkerWindows::GetMarkerClass(std::int32_t colour, std::int32_t dotted) {
    for (int n = 1; n <= ClassCount; ++n)
        if (MarkerClasses(n, kClassColour) == colour && MarkerClasses(n, kClassDotted) == dotted)
            return static_cast<std::int16_t>(n);
    // The count goes up before the row is written: the 101st pair fails
    // after it, and every later new pair fails in the search above.
    ClassCount = Add16(ClassCount, 1);
    MarkerClasses(ClassCount, kClassColour) = colour;
    MarkerClasses(ClassCount, kClassDotted) = dotted;
    // Column 3 (the brush) stays 0: the desktop makes the background from
    // the colour and the dotted value and keeps it with the class.
    lines_.RegisterClass(ClassName(ClassCount), colour, dotted);
    return ClassCount;
}

void MarkerWindows::Destroy(WindowHandle window) {
    if (window != 0) lines_.DestroyWindow(window);
}

WindowHandle MarkerWindows::LiveHwndV(int row) const {
    const MarkerTable& m = form_->store.Markers;
    return m(row, HwndH) != 0 ? m(row, HwndV) : 0;
}

void MarkerWindows::DestroyMarkerWindows(int row) {
    if (form_ == nullptr) return;
    MarkerTable& m = form_->store.Markers;
    if (m(row, HwndH) == 0) return;
    Destroy(m(row, HwndH));
    Destroy(m(row, HwndV));
    // HwndV keeps its stale value; nothing reads it while HwndH is 0.
    m(row, HwndH) = 0;
}

// The alpha calls go out also to a null or destroyed window: they fail
// without effect, as a tick while stopped does.
void MarkerWindows::MakeMarkerInvisible(int row) {
    if (form_ == nullptr) return;
    const MarkerTable& m = form_->store.Markers;
    lines_.SetAlpha(m(row, HwndH), 0);
    lines_.SetAlpha(m(row, HwndV), 0);
}

// Plain windows: solid and in the way of the click that fixes the marker.
// The alpha goes to them all the same, and does nothing there.
void MarkerWindows::CreateAddLines(std::int32_t colour, std::int32_t dotted, std::uint8_t alpha) {
    const std::int16_t classIndex = GetMarkerClass(colour, dotted);
    for (std::size_t i = 1; i <= 4; ++i) {
        AddLines[i] = lines_.CreateLineWindow(ClassName(classIndex), {}, LineStyle::Plain);
        lines_.SetAlpha(AddLines[i], alpha);
    }
}

void MarkerWindows::MoveAddLines(std::int32_t x, std::int32_t y, std::int16_t thickness) {
    if (form_ == nullptr) return;
    const ScreenMetrics& s = form_->screen;
    std::array<LineRect, 4> arms{};
    // Through a local: g++ -O3 may build a returned value in the assigned
    // object itself, which a throw then leaves half written.
    SkipOnFailure([&] {
        const auto computed = AddLineRects(x, y, thickness, s.ScreenLeft, s.ScreenTop, s.ScreenWidth, s.ScreenHeight);
        arms = computed;
    });
    for (std::size_t i = 1; i <= 4; ++i) {
        SkipOnFailure([&] { lines_.MoveWindow(AddLines[i], ToPixels(arms[i - 1])); });
    }
}

void MarkerWindows::DestroyAddLines() {
    if (AddLines[1] == 0) return;
    for (std::size_t i = 1; i <= 4; ++i) {
        Destroy(AddLines[i]);
        AddLines[i] = 0;
    }
}

void MarkerWindows::DestroyAllMarkerWindows() {
    DestroyAddLines();
    if (form_ == nullptr) return;
    const int count = form_->store.MarkerCount;
    for (int row = 1; row <= count; ++row) DestroyMarkerWindows(row);
}

void MarkerWindows::UnregisterMarkerClasses() {
    for (int n = 1; n <= ClassCount; ++n) lines_.UnregisterClass(ClassName(static_cast<std::int16_t>(n)));
}

void MarkerWindows::ShowAllMarkers() {
    if (form_ == nullptr) return;
    if (form_->Showing) {
        const int count = form_->store.MarkerCount;
        for (int row = 1; row <= count; ++row) ShowMarker(row);
    }
    if (form_->GetWindowState() != form::WindowState::Minimized) desktop_.SetForegroundWindow(*form_);
}

// Each statement below is one step: a run-time error ends that step alone,
// and what it was to produce keeps its initial value (0, an empty rect).
// Nothing on the road where nothing changed builds text or allocates.
void MarkerWindows::ShowMarker(int row) {
    if (form_ == nullptr || !form_->Showing) return;
    MarkerStore& store = form_->store;
    // Only listed markers get windows: a stop takes down rows 1 to
    // MarkerCount, and lines of any other row would stay up for good.
    if (row < 1 || row > store.MarkerCount) return;
    MarkerTable& m = store.Markers;
    const ScreenMetrics& screen = form_->screen;

    std::int16_t thickness = 0;
    std::int16_t opacity = 0;
    std::int32_t dotted = 0;
    std::int16_t hlen = 0;
    std::int16_t vlen = 0;
    std::int32_t colour = 0;
    SkipOnFailure([&] { thickness = CheckedInt16(EffectiveValue(store, row, Thickness)); });
    SkipOnFailure([&] { opacity = CheckedInt16(EffectiveValue(store, row, Opacity)); });
    SkipOnFailure([&] { dotted = EffectiveValue(store, row, Dotted); });
    SkipOnFailure([&] { hlen = CheckedInt16(EffectiveValue(store, row, Hlen)); });
    SkipOnFailure([&] { vlen = CheckedInt16(EffectiveValue(store, row, Vlen)); });
    SkipOnFailure([&] { colour = EffectiveValue(store, row, Colour); });

    MarkerLineRects rects;
    SkipOnFailure([&] {  // through a local, as in MoveAddLines
        const auto computed = MarkerLines(m(row, Hpos), m(row, Vpos), hlen, vlen, thickness, screen.ScreenLeft,
                                          screen.ScreenTop, screen.ScreenWidth);
        rects = computed;
    });
    const PixelRect horizontal = ToPixels(rects.horizontal);
    const PixelRect vertical = ToPixels(rects.vertical);

    std::int16_t classIndex = 0;
    const auto createWindows = [&] {
        SkipOnFailure([&] { m(row, HwndH) = lines_.CreateLineWindow(ClassName(classIndex), horizontal, LineStyle::Layered); });
        SkipOnFailure([&] { m(row, HwndV) = lines_.CreateLineWindow(ClassName(classIndex), vertical, LineStyle::Layered); });
        SkipOnFailure([&] { m(row, PaintedColour) = m(row, Colour); });
        SkipOnFailure([&] { m(row, PaintedEffective) = colour; });
    };

    // A count beyond the table (an append that failed) reads as "no windows
    // yet", as the failed test of the cell falls through into creation.
    WindowHandle existing = 0;
    SkipOnFailure([&] { existing = m(row, HwndH); });

    if (existing == 0) {
        SkipOnFailure([&] { classIndex = GetMarkerClass(colour, dotted); });
        createWindows();
    } else {
        // The marker's own colour changed: a window's look lies in its
        // class, so the windows are built anew.
        if (m(row, Colour) != m(row, PaintedColour)) {
            SkipOnFailure([&] { classIndex = GetMarkerClass(colour, dotted); });
            SkipOnFailure([&] { DestroyMarkerWindows(row); });
            createWindows();
        }
        // Only the inherited colour changed: paint over in place. The window
        // keeps its old class, so a later system repaint shows that again.
        if (colour != m(row, PaintedEffective)) {
            SkipOnFailure([&] { classIndex = GetMarkerClass(colour, dotted); });
            for (const bool vertical_line : {false, true}) {
                WindowHandle window = 0;
                const auto current = [&] { return vertical_line ? LiveHwndV(row) : m(row, HwndH); };
                SkipOnFailure([&] { window = current(); });
                // Other events of the program run here, timer ticks included;
                // one of them may take the window away.
                SkipOnFailure([&] { desktop_.DoEvents(); });
                SkipOnFailure([&] {
                    if (window != 0 && window == current()) lines_.PaintWithClass(window, ClassName(classIndex));
                });
            }
            SkipOnFailure([&] { m(row, PaintedEffective) = colour; });
        }
        SkipOnFailure([&] {
            if (m(row, HwndH) != 0) lines_.MoveWindow(m(row, HwndH), horizontal);
        });
        SkipOnFailure([&] {
            if (const WindowHandle v = LiveHwndV(row); v != 0) lines_.MoveWindow(v, vertical);
        });
    }

    // Every call, so that a marker a flash tick hid comes back.
    SkipOnFailure([&] {
        const std::uint8_t alpha = AlphaFromOpacity(opacity);
        if (m(row, HwndH) != 0) lines_.SetAlpha(m(row, HwndH), alpha);
    });
    SkipOnFailure([&] {
        const std::uint8_t alpha = AlphaFromOpacity(opacity);
        if (const WindowHandle v = LiveHwndV(row); v != 0) lines_.SetAlpha(v, alpha);
    });
}

}  // namespace ostrivane
