#include "store/markers.hpp"

#include "lib/errors.hpp"
#include "lib/numbers.hpp"
#include "lib/text.hpp"

namespace ostrivane {

namespace {

std::size_t CheckedIndex(int index, int count) {
    if (index < 0 || index >= count) Raise(kSubscriptOutOfRange);
    return static_cast<std::size_t>(index);
}

std::int32_t Cascade(const MarkerStore& store, int row, int column, bool consult_group_defaults) {
    const std::int32_t own = store.Markers(row, column);
    if (own != kBlank) return own;
    if (consult_group_defaults) {
        const std::int32_t group = store.Markers(0, column);
        if (group != kBlank) return group;
    }
    return store.GlobalDefaults[column];
}

}  // namespace

std::int32_t& MarkerRow::operator[](int column) { return cells_[CheckedIndex(column, kMarkerColumns)]; }
std::int32_t MarkerRow::operator[](int column) const { return cells_[CheckedIndex(column, kMarkerColumns)]; }

std::int32_t& MarkerTable::operator()(int r, int column) { return row(r)[column]; }
std::int32_t MarkerTable::operator()(int r, int column) const { return row(r)[column]; }
MarkerRow& MarkerTable::row(int r) { return rows_[CheckedIndex(r, kMarkerRows)]; }
const MarkerRow& MarkerTable::row(int r) const { return rows_[CheckedIndex(r, kMarkerRows)]; }

MarkerRow BuiltInGlobalDefaults() {
    MarkerRow row;
    row[Hlen] = kWholeScreen;
    row[Vlen] = kWholeScreen;
    row[Colour] = 255;
    row[Thickness] = 1;
    row[Opacity] = 100;
    row[Dotted] = 0;
    return row;
}

std::string ValueToText(std::int32_t value) {
    if (value == kBlank) return "";
    if (value == kWholeScreen) return "S";
    return DecimalText(value);
}

std::int32_t TextToValue(std::string_view text) {
    if (text.empty()) return kBlank;
    if (UCase(text) == "S") return kWholeScreen;
    return TextToInt32(text);
}

int DottedToCheck(std::int32_t value) { return value == kBlank ? kCheckGrey : value; }

std::int32_t CheckToDotted(int check) { return check == kCheckGrey ? kBlank : check; }

std::int32_t EffectiveValue(const MarkerStore& store, int row, int column) {
    return Cascade(store, row, column, true);
}

std::int32_t EffectiveValueForNudge(const MarkerStore& store, int row, int column, std::int16_t CurrentGroup) {
    return Cascade(store, row, column, CurrentGroup != -1);
}

}  // namespace ostrivane
