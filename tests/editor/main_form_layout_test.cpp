#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "editor/main_form_fixture.hpp"

namespace ostrivane::testing {
namespace {

struct Box {
    std::string name;
    int left, top, right, bottom;
};

Box BoxOf(const form::Control& c) { return {c.Name(), c.Left, c.Top, c.Left + c.Width, c.Top + c.Height}; }

bool Overlap(const Box& a, const Box& b) {
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

class MainFormLayout : public MainFormTest {
protected:
    // The controls a user sees: menus and timers have no place on the form.
    std::vector<const form::Control*> Placed() const {
        std::vector<const form::Control*> out;
        for (const auto& [name, c] : frm.Controls()) {
            if (dynamic_cast<const form::MenuItem*>(c) || dynamic_cast<const form::Timer*>(c)) continue;
            if (!c->Visible()) continue;
            out.push_back(c);
        }
        return out;
    }
};

TEST_F(MainFormLayout, EveryVisibleControlHasAPlaceInsideTheForm) {
    ASSERT_GT(frm.Width, 0);
    ASSERT_GT(frm.Height, 0);
    const auto placed = Placed();
    EXPECT_GE(placed.size(), 40u);
    for (const form::Control* c : placed) {
        SCOPED_TRACE(c->Name());
        EXPECT_GT(c->Width, 0);
        EXPECT_GT(c->Height, 0);
        EXPECT_GE(c->Left, 0);
        EXPECT_GE(c->Top, 0);
        EXPECT_LE(c->Left + c->Width, frm.Width);
        EXPECT_LE(c->Top + c->Height, frm.Height);
        // Whole pixels: a control never straddles a pixel.
        EXPECT_EQ(c->Left % 15, 0);
        EXPECT_EQ(c->Top % 15, 0);
        EXPECT_EQ(c->Width % 15, 0);
        EXPECT_EQ(c->Height % 15, 0);
    }
}

TEST_F(MainFormLayout, NoTwoControlsOverlap) {
    const auto placed = Placed();
    for (std::size_t i = 0; i < placed.size(); ++i)
        for (std::size_t j = i + 1; j < placed.size(); ++j)
            EXPECT_FALSE(Overlap(BoxOf(*placed[i]), BoxOf(*placed[j])))
                << placed[i]->Name() << " and " << placed[j]->Name();
}

TEST_F(MainFormLayout, ColumnHeadsStandOverTheirTwoRows) {
    struct Column {
        const form::Label& head;
        const form::Control& marker;
        const form::Control& below;
        const char* caption;
    };
    const Column columns[] = {
        {frm.lblHpos, frm.txtHpos, frm.txtHmax, "Hpos"},
        {frm.lblVpos, frm.txtVpos, frm.txtVmax, "Vpos"},
        {frm.lblHlen, frm.txtHlen, frm.txtHlenGrpDef, "Hlen"},
        {frm.lblVlen, frm.txtVlen, frm.txtVlenGrpDef, "Vlen"},
        {frm.lblColour, frm.txtColour, frm.txtColourGrpDef, "Colour"},
        {frm.lblThickness, frm.txtThickness, frm.txtThicknessGrpDef, "Thkns"},
        {frm.lblOpacity, frm.txtOpacity, frm.txtOpacityGrpDef, "Opacity"},
        {frm.lblDotted, frm.chkDotted, frm.chkDottedGrpDef, "Dotted"},
    };
    int previousLeft = -1;
    for (const Column& c : columns) {
        SCOPED_TRACE(c.caption);
        EXPECT_EQ(c.head.Caption(), c.caption);
        // The head spans its column, the marker row lies above the default row.
        EXPECT_LE(c.head.Left, c.marker.Left);
        EXPECT_GE(c.head.Left + c.head.Width, c.marker.Left + c.marker.Width);
        EXPECT_LE(c.head.Top + c.head.Height, c.marker.Top);
        EXPECT_EQ(c.marker.Left, c.below.Left);
        EXPECT_EQ(c.marker.Width, c.below.Width);
        EXPECT_LT(c.marker.Top + c.marker.Height, c.below.Top + 1);
        // Columns run left to right in the order of the table's columns.
        EXPECT_GT(c.head.Left, previousLeft);
        previousLeft = c.head.Left;
    }
    // Both rows are level across the grid.
    EXPECT_EQ(frm.txtHpos.Top, frm.chkDotted.Top);
    EXPECT_EQ(frm.txtHmax.Top, frm.txtOpacityGrpDef.Top);
}

TEST_F(MainFormLayout, ListsUnderTheirCaptionsOnTheLeft) {
    EXPECT_EQ(frm.lblGroups.Caption(), "Saved Groups");
    EXPECT_EQ(frm.lblMarkers.Caption(), "Mkrs");
    EXPECT_EQ(frm.lblGroups.Left, frm.lstGroups.Left);
    EXPECT_LE(frm.lblGroups.Top + frm.lblGroups.Height, frm.lstGroups.Top);
    EXPECT_EQ(frm.lblMarkers.Left, frm.lstMarkers.Left);
    EXPECT_LT(frm.lstGroups.Left + frm.lstGroups.Width, frm.lstMarkers.Left);
    EXPECT_LT(frm.lstMarkers.Left + frm.lstMarkers.Width, frm.txtHpos.Left);
}

TEST_F(MainFormLayout, NudgeBarsBesideTheirCaptions) {
    struct Pair {
        const form::Label& caption;
        const form::ScrollBar& horizontal;
        const form::ScrollBar& vertical;
    };
    for (const Pair& p : {Pair{frm.lblMove, frm.scrNudgeX, frm.scrNudgeY},
                          Pair{frm.lblResize, frm.scrNudgeW, frm.scrNudgeH}}) {
        SCOPED_TRACE(p.caption.Caption());
        EXPECT_GT(p.horizontal.Width, p.horizontal.Height);
        EXPECT_GT(p.vertical.Height, p.vertical.Width);
        EXPECT_LE(p.caption.Left + p.caption.Width, p.horizontal.Left);
        EXPECT_LE(p.horizontal.Left + p.horizontal.Width, p.vertical.Left);
        // The caption is level with the horizontal bar.
        EXPECT_LT(p.caption.Top, p.horizontal.Top + p.horizontal.Height);
        EXPECT_GT(p.caption.Top + p.caption.Height, p.horizontal.Top);
    }
    EXPECT_EQ(frm.lblMove.Caption(), "Move");
    EXPECT_EQ(frm.lblResize.Caption(), "Resize");
}

}  // namespace
}  // namespace ostrivane::testing
