#include <gtest/gtest.h>

#include "lib/errors.hpp"
#include "store/markers.hpp"
#include "support/run_time_error.hpp"

namespace ostrivane {
namespace {

TEST(MarkerValueForms, TextAndCheckBoxForms) {
    const std::pair<std::int32_t, const char*> rows[] = {{-1, ""}, {-2, "S"}, {0, "0"}, {-3, "-3"}, {16777215, "16777215"}};
    for (const auto& [value, text] : rows) {
        EXPECT_EQ(ValueToText(value), text);
        EXPECT_EQ(TextToValue(text), value) << text;
    }
    EXPECT_EQ(TextToValue("s"), kWholeScreen);
    EXPECT_EQ(TextToValue(" 2.5 "), 2);
    EXPECT_EQ(ErrorOf([] { TextToValue("SS"); }), kTypeMismatch);
    EXPECT_EQ(ErrorOf([] { TextToValue("99999999999"); }), kOverflow);
    // a stored grey copy stays 2
    for (const auto& [dotted, check] : {std::pair{-1, 2}, {0, 0}, {1, 1}, {2, 2}}) EXPECT_EQ(DottedToCheck(dotted), check);
    for (const auto& [check, dotted] : {std::pair{2, -1}, {1, 1}, {0, 0}}) EXPECT_EQ(CheckToDotted(check), dotted);
}

TEST(MarkerTable, ZeroFilledAndBoundsChecked) {
    MarkerStore store;
    EXPECT_EQ(store.Markers(50, 12), 0);
    for (auto [r, c] : {std::pair{51, 1}, {-1, 1}, {1, 13}, {1, -1}})
        EXPECT_EQ(ErrorOf([&, r = r, c = c] { store.Markers(r, c) = 1; }), kSubscriptOutOfRange) << r << "," << c;
    EXPECT_EQ(ErrorOf([&] { (void)store.GlobalDefaults[13]; }), kSubscriptOutOfRange);
}

TEST(Cascade, FirstNonBlankWinsAndTheNudgeFormSkipsRowZeroWithoutAGroup) {
    MarkerStore store;
    store.GlobalDefaults[Thickness] = 5;
    store.GlobalDefaults[Colour] = 255;
    store.Markers(0, Thickness) = -1;
    store.Markers(0, Colour) = 65280;
    store.Markers(0, Hlen) = 40;
    // black, zero length and the screen sentinel are values, not blanks
    for (const auto& [column, own] : {std::pair{Colour, 0}, {Hlen, 0}, {Hlen, -2}}) {
        store.Markers(1, column) = own;
        EXPECT_EQ(EffectiveValue(store, 1, column), own);
    }
    store.Markers(1, Colour) = -1;
    store.Markers(1, Thickness) = -1;
    EXPECT_EQ(EffectiveValue(store, 1, Colour), 65280);
    EXPECT_EQ(EffectiveValue(store, 1, Thickness), 5);
    EXPECT_EQ(EffectiveValueForNudge(store, 1, Colour, 3), 65280);
    EXPECT_EQ(EffectiveValueForNudge(store, 1, Colour, -1), 255);
}

}  // namespace
}  // namespace ostrivane
