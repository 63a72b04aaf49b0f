#include <gtest/gtest.h>

#include "lib/errors.hpp"
#include "store/markers.hpp"

namespace ostrivane {
namespace {

TEST(MarkerValueForms, TextRoundTripsAndSentinels) {
    struct Row { std::int32_t value; const char* text; };
    const Row rows[] = {{-1, ""}, {-2, "S"}, {0, "0"}, {255, "255"}, {-3, "-3"}, {16777215, "16777215"}};
    for (const Row& r : rows) {
        EXPECT_EQ(ValueToText(r.value), r.text);
        EXPECT_EQ(TextToValue(r.text), r.value) << r.text;
    }
    EXPECT_EQ(TextToValue("s"), kWholeScreen);
    EXPECT_EQ(TextToValue("2.5"), 2);
    EXPECT_EQ(TextToValue(" 7 "), 7);
}

TEST(MarkerValueForms, BadTextRaisesTheRunTimeErrors) {
    try {
        TextToValue("SS");
        FAIL();
    } catch (const RuntimeError& e) {
        EXPECT_EQ(e.number(), kTypeMismatch);
    }
    try {
        TextToValue("99999999999");
        FAIL();
    } catch (const RuntimeError& e) {
        EXPECT_EQ(e.number(), kOverflow);
    }
}

TEST(MarkerValueForms, CheckBoxForms) {
    EXPECT_EQ(DottedToCheck(-1), 2);
    EXPECT_EQ(DottedToCheck(0), 0);
    EXPECT_EQ(DottedToCheck(1), 1);
    EXPECT_EQ(DottedToCheck(2), 2);  // a stored grey copy stays 2
    EXPECT_EQ(CheckToDotted(2), -1);
    EXPECT_EQ(CheckToDotted(1), 1);
    EXPECT_EQ(CheckToDotted(0), 0);
}

TEST(MarkerTable, ZeroFilledAndBoundsChecked) {
    MarkerStore store;
    EXPECT_EQ(store.Markers(50, 12), 0);
    EXPECT_EQ(store.Markers(0, 0), 0);
    for (auto [r, c] : {std::pair{51, 1}, {-1, 1}, {1, 13}, {1, -1}}) {
        try {
            store.Markers(r, c) = 1;
            FAIL() << r << "," << c;
        } catch (const RuntimeError& e) {
            EXPECT_EQ(e.number(), kSubscriptOutOfRange);
        }
    }
    EXPECT_THROW(store.GlobalDefaults[13], RuntimeError);
}

TEST(MarkerTable, BuiltInGlobalDefaultsAreTheNewFileLine) {
    const MarkerRow d = BuiltInGlobalDefaults();
    EXPECT_EQ(d[Hlen], -2);
    EXPECT_EQ(d[Vlen], -2);
    EXPECT_EQ(d[Colour], 255);
    EXPECT_EQ(d[Thickness], 1);
    EXPECT_EQ(d[Opacity], 100);
    EXPECT_EQ(d[Dotted], 0);
}

class Cascade : public ::testing::Test {
protected:
    void SetUp() override {
        store.GlobalDefaults[Thickness] = 5;
        store.GlobalDefaults[Colour] = 255;
        store.Markers(0, Thickness) = -1;
        store.Markers(0, Colour) = 65280;
        store.MarkerCount = 1;
    }
    MarkerStore store;
};

TEST_F(Cascade, FirstNonBlankWins) {
    store.Markers(1, Colour) = 0;  // black is a value, not a blank
    EXPECT_EQ(EffectiveValue(store, 1, Colour), 0);
    store.Markers(1, Colour) = -1;
    EXPECT_EQ(EffectiveValue(store, 1, Colour), 65280);
    store.Markers(1, Thickness) = -1;
    EXPECT_EQ(EffectiveValue(store, 1, Thickness), 5);
}

TEST_F(Cascade, ZeroLengthAndScreenSentinelAreValues) {
    store.Markers(0, Hlen) = 40;
    store.Markers(1, Hlen) = 0;
    EXPECT_EQ(EffectiveValue(store, 1, Hlen), 0);
    store.Markers(1, Hlen) = -2;
    EXPECT_EQ(EffectiveValue(store, 1, Hlen), -2);
}

TEST_F(Cascade, NudgeFormSkipsRowZeroWithNoGroupLoaded) {
    store.Markers(1, Colour) = -1;
    EXPECT_EQ(EffectiveValueForNudge(store, 1, Colour, 3), 65280);
    EXPECT_EQ(EffectiveValueForNudge(store, 1, Colour, -1), 255);
    EXPECT_EQ(EffectiveValue(store, 1, Colour), 65280);
}

}  // namespace
}  // namespace ostrivane
