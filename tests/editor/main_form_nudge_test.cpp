#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "editor/main_form_fixture.hpp"

namespace ostrivane::testing {
namespace {

using Calls = std::vector<std::string>;
using Ints = std::vector<int>;
using MarkerList = std::vector<std::array<std::int32_t, 4>>;

// A loaded group whose default lengths are 40; markers are selected with a
// click so that the Validate tails put the bars on the focused marker.
class NudgeTest : public MainFormTest {
protected:
    NudgeTest() { frm.SetNudgeRanges(); }
    // Markers {Hpos, Vpos, Hlen, Vlen} with blank style cells, all selected, the first focused.
    void Load(const MarkerList& rows, std::int16_t group = 0) {
        frm.lstMarkers.Clear();
        frm.store.MarkerCount = 0;
        frm.CurrentGroup = group;
        frm.store.Markers(0, Hlen) = frm.store.Markers(0, Vlen) = 40;
        for (const auto& r : rows) frm.AppendMarker(r[0], r[1], r[2], r[3], kBlank, kBlank, kBlank, kBlank);
        frm.lstMarkers.ClickItem(0);
        for (int i = 1; i < static_cast<int>(rows.size()); ++i) frm.lstMarkers.SetSelected(i, true);
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
    Load({{100, 200, 50, 50}, {1915, 1075, 50, 50}});
    frm.AppendMarker(700, 700, 50, 50, kBlank, kBlank, kBlank, kBlank);  // not selected
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

    frm.Loading = false;  // a move takes its step in 16 bits
    frm.store.Markers(1, Hpos) = 100000;
    EXPECT_EQ(ErrorOf([&] { Press(frm.scrNudgeX, 1); }), kOverflow);
}

// The bar is set to each value in turn; after each, the length cells of the
// markers and the field read as given. A resize step is 32-bit.
TEST_F(NudgeTest, ResizeStepsFromTheFocusedMarkersLength) {
    using Steps = std::vector<std::pair<int, const char*>>;
    const struct { const char* name; std::int16_t group; MarkerList markers; bool vertical; Steps steps; } cases[] = {
        {"whole screen turns into a number", 0, {{100, 200, kWholeScreen, 300}}, false, {{1919, "1919 1919"}, {1909, "1909 1909"}}},
        {"blank takes the group default, which stays", 0, {{100, 200, 50, kBlank}}, true, {{1041, "39 39"}, {1038, "42 42"}}},
        {"without a group row 0 is passed by", -1, {{100, 200, kBlank, 50}, {300, 200, 1000, 50}}, false, {{41, "41 -879 41"}}},
        {"the bar's maximum keeps a line of 1", 0, {{100, 200, 50, 500}}, true, {{1080, "1 1"}, {0, "1080 1080"}}},
        {"a length from the file", 0, {{100, 200, 100000, 100000}}, false, {{1919, "1919 1919"}}},
        {"a length from the file", 0, {{100, 200, 100000, 100000}}, true, {{2, "1078 1078"}}}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Load(c.markers, c.group);
        const int column = c.vertical ? Vlen : Hlen;
        for (const auto& [value, seen] : c.steps) {
            (c.vertical ? frm.scrNudgeH : frm.scrNudgeW).SetValue(value);
            std::string got;
            for (int r = 1; r <= frm.store.MarkerCount; ++r) got += std::to_string(Cell(r, column)) + " ";
            EXPECT_EQ(got + (c.vertical ? frm.txtVlen : frm.txtHlen).Text(), seen) << value;
        }
        EXPECT_EQ(Cell(0, column), 40);
    }
}

}  // namespace
}  // namespace ostrivane::testing
