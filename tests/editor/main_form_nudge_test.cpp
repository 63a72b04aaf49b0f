#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "editor/main_form_fixture.hpp"

namespace ostrivane::testing {
namespace {

// A loaded group with blank defaults; markers are selected with a click so
// that the Validate tails put the bars on the focused marker.
class NudgeTest : public MainFormTest {
protected:
    NudgeTest() {
        frm.SetNudgeRanges();
        for (int c : {Hlen, Vlen, Colour, Thickness, Opacity, Dotted}) frm.store.Markers(0, c) = kBlank;
        frm.CurrentGroup = 0;
    }
    static void Press(form::ScrollBar& bar, int step) { bar.SetValue(bar.Value() + step); }
    int Cell(int row, int column) const { return frm.store.Markers(row, column); }
};

TEST_F(NudgeTest, RangesFollowTheVirtualScreenAndLeaveLoadingAsItWas) {
    struct Case {
        ScreenMetrics screen;
        int xMin, xMax, yMin, yMax;
    };
    const Case cases[] = {{{1920, 1080, 0, 0}, 1, 1920, 1, 1080}, {{3840, 1200, -1920, -120}, -1919, 1920, -119, 1080}};
    for (const Case& c : cases) {
        for (bool loading : {false, true}) {
            frm.screen = c.screen;
            frm.Loading = loading;
            frm.SetNudgeRanges();
            EXPECT_EQ(frm.Loading, loading);
            EXPECT_EQ((std::vector<int>{frm.scrNudgeX.Min(), frm.scrNudgeX.Max(), frm.scrNudgeY.Min(),
                                        frm.scrNudgeY.Max(), frm.scrNudgeW.Min(), frm.scrNudgeW.Max(),
                                        frm.scrNudgeH.Min(), frm.scrNudgeH.Max()}),
                      (std::vector<int>{c.xMin, c.xMax, c.yMin, c.yMax, 1, c.screen.ScreenWidth, 0,
                                        c.screen.ScreenHeight}));
        }
    }
}

TEST_F(NudgeTest, MoveTakesEverySelectedMarkerByTheFocusedOnesStep) {
    WriteDataFile("[Main]\r\n1=100,200,50,50,,,,\r\n");
    frm.AppendMarker(100, 200, 50, 50, kBlank, kBlank, kBlank, kBlank);
    frm.AppendMarker(1915, 1075, 50, 50, kBlank, kBlank, kBlank, kBlank);
    frm.AppendMarker(700, 700, 50, 50, kBlank, kBlank, kBlank, kBlank);
    frm.lstMarkers.ClickItem(0);
    frm.lstMarkers.SetSelected(1, true);
    ASSERT_EQ(frm.scrNudgeX.Value(), 100);
    overlay.calls.clear();

    Press(frm.scrNudgeX, 1);
    Press(frm.scrNudgeY, 10);
    EXPECT_EQ(frm.txtHpos.Text(), "101");
    EXPECT_EQ(frm.txtVpos.Text(), "210");
    // the follower passes the screen's edge; the unselected marker stays
    EXPECT_EQ((std::vector<int>{Cell(1, Hpos), Cell(1, Vpos), Cell(2, Hpos), Cell(2, Vpos), Cell(3, Hpos)}),
              (std::vector<int>{101, 210, 1916, 1085, 700}));
    EXPECT_EQ(overlay.calls,
              (std::vector<std::string>{"ShowMarker 1", "ShowMarker 2", "ShowMarker 1", "ShowMarker 2"}));
    EXPECT_TRUE(frm.Dirty);
    EXPECT_EQ(ReadDataFile(), "[Main]\r\n1=100,200,50,50,,,,\r\n");  // the change waits for a save
}

TEST_F(NudgeTest, NothingHappensWhileLoading) {
    frm.AppendMarker(100, 200, 50, 50, kBlank, kBlank, kBlank, kBlank);
    frm.lstMarkers.ClickItem(0);
    frm.Loading = true;
    for (form::ScrollBar* bar : {&frm.scrNudgeX, &frm.scrNudgeY, &frm.scrNudgeW, &frm.scrNudgeH}) Press(*bar, 1);
    EXPECT_EQ((std::vector<int>{Cell(1, Hpos), Cell(1, Vpos), Cell(1, Hlen), Cell(1, Vlen)}),
              (std::vector<int>{100, 200, 50, 50}));
    EXPECT_EQ(frm.txtHpos.Text(), "100");
    EXPECT_FALSE(frm.Dirty);
}

TEST_F(NudgeTest, WholeScreenLengthBecomesANumberAtTheFirstResize) {
    frm.AppendMarker(100, 200, kWholeScreen, 300, kBlank, kBlank, kBlank, kBlank);
    frm.lstMarkers.ClickItem(0);
    ASSERT_EQ(frm.txtHlen.Text(), "S");
    Press(frm.scrNudgeW, -1);
    EXPECT_EQ(Cell(1, Hlen), 1919);
    EXPECT_EQ(frm.txtHlen.Text(), "1919");
    Press(frm.scrNudgeW, -10);
    EXPECT_EQ(Cell(1, Hlen), 1909);
}

TEST_F(NudgeTest, BlankLengthTakesTheGroupDefaultWhichStays) {
    frm.store.Markers(0, Vlen) = 40;
    frm.AppendMarker(100, 200, 50, kBlank, kBlank, kBlank, kBlank, kBlank);
    frm.lstMarkers.ClickItem(0);
    overlay.calls.clear();
    Press(frm.scrNudgeH, 1);  // the lower arrow shortens
    EXPECT_EQ(Cell(1, Vlen), 39);
    EXPECT_EQ(Cell(0, Vlen), 40);
    EXPECT_EQ(frm.txtVlen.Text(), "39");
    Press(frm.scrNudgeH, -3);
    EXPECT_EQ(Cell(1, Vlen), 42);
    EXPECT_EQ(overlay.calls, (std::vector<std::string>{"ShowMarker 1", "ShowMarker 1"}));
}

// With no group loaded a blank length skips row 0 and goes to the global
// default; a second selected marker shows the step that came of it.
TEST_F(NudgeTest, WithoutAGroupResizePassesRowZeroBy) {
    frm.CurrentGroup = -1;
    frm.store.Markers(0, Hlen) = 40;
    frm.AppendMarker(100, 200, kBlank, 50, kBlank, kBlank, kBlank, kBlank);
    frm.AppendMarker(300, 200, 1000, 50, kBlank, kBlank, kBlank, kBlank);
    frm.lstMarkers.ClickItem(0);
    frm.lstMarkers.SetSelected(1, true);
    ASSERT_EQ(frm.scrNudgeW.Value(), 40);  // the field's tail still reads row 0
    Press(frm.scrNudgeW, 1);
    EXPECT_EQ(Cell(1, Hlen), 41);
    EXPECT_EQ(Cell(2, Hlen), 1000 + 41 - 1920);
}

TEST_F(NudgeTest, VerticalResizeAtTheBarsMaximumKeepsALineOfOne) {
    frm.AppendMarker(100, 200, 50, 500, kBlank, kBlank, kBlank, kBlank);
    frm.lstMarkers.ClickItem(0);
    ASSERT_EQ(frm.scrNudgeH.Value(), 580);
    frm.scrNudgeH.SetValue(frm.scrNudgeH.Max());
    EXPECT_EQ(Cell(1, Vlen), 1);
    EXPECT_EQ(frm.txtVlen.Text(), "1");
    frm.scrNudgeH.SetValue(0);  // the upper end is the longest line
    EXPECT_EQ(Cell(1, Vlen), 1080);
}

TEST_F(NudgeTest, AStepBeyondSixteenBitsIsAnOverflow) {
    frm.AppendMarker(100000, 200, 50, 50, kBlank, kBlank, kBlank, kBlank);
    frm.lstMarkers.ClickItem(0);  // the bar cannot take 100000 and stays put
    EXPECT_EQ(ErrorOf([&] { frm.scrNudgeX.SetValue(5); }), kOverflow);
    EXPECT_EQ(Cell(1, Hpos), 100000);
}

}  // namespace
}  // namespace ostrivane::testing
