#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "editor/main_form_fixture.hpp"

namespace ostrivane::testing {
namespace {

using Calls = std::vector<std::string>;
using Ints = std::vector<int>;

// A loaded group with blank defaults; markers are selected with a click so
// that the Validate tails put the bars on the focused marker.
class NudgeTest : public MainFormTest {
protected:
    NudgeTest() {
        frm.SetNudgeRanges();
        for (int c : {Hlen, Vlen, Colour, Thickness, Opacity, Dotted}) frm.store.Markers(0, c) = kBlank;
        frm.CurrentGroup = 0;
    }
    // Markers with blank style cells; the first is clicked, the others joined to the selection.
    void Markers(std::initializer_list<std::array<std::int32_t, 4>> rows, int selected = 1) {
        for (const auto& r : rows) frm.AppendMarker(r[0], r[1], r[2], r[3], kBlank, kBlank, kBlank, kBlank);
        frm.lstMarkers.ClickItem(0);
        for (int i = 1; i < selected; ++i) frm.lstMarkers.SetSelected(i, true);
        overlay.calls.clear();
    }
    static void Press(form::ScrollBar& bar, int step) { bar.SetValue(bar.Value() + step); }
    int Cell(int row, int column) const { return frm.store.Markers(row, column); }
};

TEST_F(NudgeTest, RangesFollowTheVirtualScreenAndLeaveLoadingAsItWas) {
    for (bool loading : {false, true}) {
        frm.screen = {3840, 1200, -1920, -120};
        frm.Loading = loading;
        frm.SetNudgeRanges();
        EXPECT_EQ(frm.Loading, loading);
        EXPECT_EQ((Ints{frm.scrNudgeX.Min(), frm.scrNudgeX.Max(), frm.scrNudgeY.Min(), frm.scrNudgeY.Max(),
                        frm.scrNudgeW.Min(), frm.scrNudgeW.Max(), frm.scrNudgeH.Min(), frm.scrNudgeH.Max()}),
                  (Ints{-1919, 1920, -119, 1080, 1, 3840, 0, 1200}));
    }
}

TEST_F(NudgeTest, MoveTakesEverySelectedMarkerByTheFocusedOnesStep) {
    WriteDataFile("[Main]\r\n1=100,200,50,50,,,,\r\n");
    Markers({{100, 200, 50, 50}, {1915, 1075, 50, 50}, {700, 700, 50, 50}}, 2);
    Press(frm.scrNudgeX, 1);
    Press(frm.scrNudgeY, 10);
    EXPECT_EQ(frm.txtHpos.Text() + "," + frm.txtVpos.Text(), "101,210");
    // the follower passes the screen's edge; the unselected marker stays
    EXPECT_EQ((Ints{Cell(1, Hpos), Cell(1, Vpos), Cell(2, Hpos), Cell(2, Vpos), Cell(3, Hpos)}),
              (Ints{101, 210, 1916, 1085, 700}));
    EXPECT_EQ(overlay.calls, (Calls{"ShowMarker 1", "ShowMarker 2", "ShowMarker 1", "ShowMarker 2"}));
    EXPECT_TRUE(frm.Dirty);
    EXPECT_EQ(ReadDataFile(), "[Main]\r\n1=100,200,50,50,,,,\r\n");  // the change waits for a save

    frm.Dirty = false;
    frm.Loading = true;  // nothing happens while loading
    for (form::ScrollBar* bar : {&frm.scrNudgeX, &frm.scrNudgeY, &frm.scrNudgeW, &frm.scrNudgeH}) Press(*bar, -1);
    EXPECT_EQ((Ints{Cell(1, Hpos), Cell(1, Vpos), Cell(1, Hlen), Cell(1, Vlen)}), (Ints{101, 210, 50, 50}));
    EXPECT_EQ(frm.txtHpos.Text(), "101");
    EXPECT_FALSE(frm.Dirty);
}

TEST_F(NudgeTest, WholeScreenLengthBecomesANumberAtTheFirstResize) {
    Markers({{100, 200, kWholeScreen, 300}});
    Press(frm.scrNudgeW, -1);
    EXPECT_EQ(Cell(1, Hlen), 1919);
    EXPECT_EQ(frm.txtHlen.Text(), "1919");
    Press(frm.scrNudgeW, -10);
    EXPECT_EQ(Cell(1, Hlen), 1909);
}

TEST_F(NudgeTest, BlankLengthTakesTheGroupDefaultWhichStays) {
    frm.store.Markers(0, Vlen) = 40;
    Markers({{100, 200, 50, kBlank}});
    Press(frm.scrNudgeH, 1);  // the lower arrow shortens
    EXPECT_EQ(Cell(1, Vlen), 39);
    EXPECT_EQ(Cell(0, Vlen), 40);
    EXPECT_EQ(frm.txtVlen.Text(), "39");
    Press(frm.scrNudgeH, -3);
    EXPECT_EQ(Cell(1, Vlen), 42);
    EXPECT_EQ(overlay.calls, (Calls{"ShowMarker 1", "ShowMarker 1"}));
}

// With no group loaded a blank length skips row 0 and goes to the global
// default; a second selected marker shows the step that came of it.
TEST_F(NudgeTest, WithoutAGroupResizePassesRowZeroBy) {
    frm.CurrentGroup = -1;
    frm.store.Markers(0, Hlen) = 40;
    Markers({{100, 200, kBlank, 50}, {300, 200, 1000, 50}}, 2);
    ASSERT_EQ(frm.scrNudgeW.Value(), 40);  // the field's tail still reads row 0
    Press(frm.scrNudgeW, 1);
    EXPECT_EQ(Cell(1, Hlen), 41);
    EXPECT_EQ(Cell(2, Hlen), 1000 + 41 - 1920);
}

TEST_F(NudgeTest, VerticalResizeAtTheBarsMaximumKeepsALineOfOne) {
    Markers({{100, 200, 50, 500}});
    frm.scrNudgeH.SetValue(frm.scrNudgeH.Max());
    EXPECT_EQ(Cell(1, Vlen), 1);
    EXPECT_EQ(frm.txtVlen.Text(), "1");
    frm.scrNudgeH.SetValue(0);  // the upper end is the longest line
    EXPECT_EQ(Cell(1, Vlen), 1080);
}

// A move takes its step in 16 bits, a resize in 32: lengths from a file
// may be far beyond the screen.
TEST_F(NudgeTest, AMoveStepBeyondSixteenBitsIsAnOverflowAResizeStepIsNot) {
    Markers({{100000, 200, 100000, 100000}});  // the X bar cannot take 100000 and stays put
    EXPECT_EQ(ErrorOf([&] { frm.scrNudgeX.SetValue(5); }), kOverflow);
    Press(frm.scrNudgeW, -1);
    Press(frm.scrNudgeH, 1);
    EXPECT_EQ((Ints{Cell(1, Hpos), Cell(1, Hlen), Cell(1, Vlen)}), (Ints{100000, 1919, 1078}));
}

}  // namespace
}  // namespace ostrivane::testing
