// The marker table: one group's defaults and markers as 32-bit cells, the
// sentinels, the text and check box forms of a cell, and the cascade.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace ostrivane {

enum MarkerColumn : int {
    Hpos = 1,
    Vpos = 2,
    Hlen = 3,
    Vlen = 4,
    Colour = 5,
    Thickness = 6,
    Opacity = 7,
    HwndH = 8,
    HwndV = 9,
    PaintedColour = 10,
    PaintedEffective = 11,
    Dotted = 12,
};

inline constexpr int kMarkerRows = 51;     // row 0 and 50 markers
inline constexpr int kMarkerColumns = 13;  // column 0 is never used
inline constexpr int kMaxMarkers = kMarkerRows - 1;

inline constexpr std::int32_t kBlank = -1;        // inherit from the next level
inline constexpr std::int32_t kWholeScreen = -2;  // "S", lengths only

inline constexpr int kCheckUnchecked = 0;
inline constexpr int kCheckChecked = 1;
inline constexpr int kCheckGrey = 2;

// A row of 13 cells; an index outside 0..12 is Subscript out of range (9).
class MarkerRow {
public:
    std::int32_t& operator[](int column);
    std::int32_t operator[](int column) const;
    std::array<std::int32_t, kMarkerColumns>& cells() { return cells_; }
    const std::array<std::int32_t, kMarkerColumns>& cells() const { return cells_; }

private:
    std::array<std::int32_t, kMarkerColumns> cells_{};
};

// Markers: 51 rows by 13 columns, zero-filled; any cell outside the table is
// Subscript out of range (9), which is how appending to a full table fails.
class MarkerTable {
public:
    std::int32_t& operator()(int row, int column);
    std::int32_t operator()(int row, int column) const;
    MarkerRow& row(int row);
    const MarkerRow& row(int row) const;

private:
    std::array<MarkerRow, kMarkerRows> rows_{};
};

// The virtual screen over all monitors, read once at start.
struct ScreenMetrics {
    std::int16_t ScreenWidth = 0;
    std::int16_t ScreenHeight = 0;
    std::int16_t ScreenLeft = 0;
    std::int16_t ScreenTop = 0;
};

// The built-in global defaults: those of the first line of a new data file.
MarkerRow BuiltInGlobalDefaults();

// The table with its count and the global defaults behind row 0.
struct MarkerStore {
    MarkerTable Markers;
    std::int16_t MarkerCount = 0;
    MarkerRow GlobalDefaults = BuiltInGlobalDefaults();
};

std::string ValueToText(std::int32_t value);
// "" is blank, "S" in either case is the whole screen, anything else goes
// through the run time's integer conversion (Type mismatch, Overflow).
std::int32_t TextToValue(std::string_view text);
int DottedToCheck(std::int32_t value);
std::int32_t CheckToDotted(int check);

// The cascade as the line geometry and the field rules use it: the marker's
// cell, then row 0, then the global defaults; the first that is not blank.
// A -2 is left to the caller, which knows the axis.
std::int32_t EffectiveValue(const MarkerStore& store, int row, int column);

// The nudge bars' form: row 0 is consulted only while a group is loaded
// (CurrentGroup is not -1).
std::int32_t EffectiveValueForNudge(const MarkerStore& store, int row, int column, std::int16_t CurrentGroup);

}  // namespace ostrivane
