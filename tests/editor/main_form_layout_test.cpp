#include <tuple>

#include "dialogs/options_form.hpp"
#include "editor/main_form_fixture.hpp"

namespace ostrivane::testing {
namespace {

using MainFormLayout = MainFormTest;

int Right(const form::Control& c) { return c.Left + c.Width; }
int Bottom(const form::Control& c) { return c.Top + c.Height; }

// Every control a user sees (menus and timers have no place) lies inside the
// form on whole pixels, and no two overlap; the same holds for the options dialog.
TEST_F(MainFormLayout, EveryVisibleControlHasItsOwnPlaceInsideTheForm) {
    const OptionsForm options(frm, settings);
    for (const auto& [form, count] : {std::pair<const form::Form*, std::size_t>{&frm, 40u}, {&options, 27u}}) {
        std::vector<const form::Control*> placed;
        for (const auto& [name, c] : form->Controls())
            if (!dynamic_cast<const form::MenuItem*>(c) && !dynamic_cast<const form::Timer*>(c) && c->Visible())
                placed.push_back(c);
        EXPECT_GE(placed.size(), count) << form->Name();
        for (const form::Control* c : placed) {
            SCOPED_TRACE(form->Name() + "." + c->Name());
            EXPECT_TRUE(c->Width > 0 && c->Height > 0 && c->Left >= 0 && c->Top >= 0);
            EXPECT_LE(Right(*c), form->Width);
            EXPECT_LE(Bottom(*c), form->Height);
            EXPECT_EQ(std::vector<int>({c->Left % 15, c->Top % 15, c->Width % 15, c->Height % 15}), std::vector<int>(4, 0));
            for (const form::Control* d : placed)
                EXPECT_FALSE(c != d && c->Left < Right(*d) && d->Left < Right(*c) && c->Top < Bottom(*d) && d->Top < Bottom(*c))
                    << "overlaps " << d->Name();
        }
    }
}

// Each column's head spans it over the marker row, which lies over the
// default row; columns run left to right in the order of the table's columns.
TEST_F(MainFormLayout, ColumnHeadsStandOverTheirTwoRowsListsAndBarsBesideTheirCaptions) {
    const struct { const form::Label& head; const form::Control& marker; const form::Control& below; } columns[] = {
        {frm.lblHpos, frm.txtHpos, frm.txtHmax},           {frm.lblVpos, frm.txtVpos, frm.txtVmax},
        {frm.lblHlen, frm.txtHlen, frm.txtHlenGrpDef},     {frm.lblVlen, frm.txtVlen, frm.txtVlenGrpDef},
        {frm.lblColour, frm.txtColour, frm.txtColourGrpDef}, {frm.lblThickness, frm.txtThickness, frm.txtThicknessGrpDef},
        {frm.lblOpacity, frm.txtOpacity, frm.txtOpacityGrpDef}, {frm.lblDotted, frm.chkDotted, frm.chkDottedGrpDef},
    };
    int previousLeft = Right(frm.lstMarkers);
    for (const auto& c : columns) {
        SCOPED_TRACE(c.head.Caption());
        EXPECT_TRUE(c.head.Left <= c.marker.Left && Right(c.head) >= Right(c.marker) && Bottom(c.head) <= c.marker.Top);
        EXPECT_EQ(c.marker.Left, c.below.Left);
        EXPECT_EQ(c.marker.Width, c.below.Width);
        EXPECT_LE(Bottom(c.marker), c.below.Top);
        EXPECT_GT(c.head.Left, previousLeft);
        previousLeft = c.head.Left;
        // Both rows are level across the grid.
        EXPECT_EQ(c.marker.Top, frm.txtHpos.Top);
        EXPECT_EQ(c.below.Top, frm.txtHmax.Top);
    }
    // The lists under their captions on the left.
    EXPECT_EQ(frm.lblGroups.Left, frm.lstGroups.Left);
    EXPECT_LE(Bottom(frm.lblGroups), frm.lstGroups.Top);
    EXPECT_EQ(frm.lblMarkers.Left, frm.lstMarkers.Left);
    EXPECT_LT(Right(frm.lstGroups), frm.lstMarkers.Left);
    // Each pair of nudge bars right of its caption, level with the horizontal bar.
    for (const auto& [caption, horizontal, vertical] :
         {std::tie(frm.lblMove, frm.scrNudgeX, frm.scrNudgeY), std::tie(frm.lblResize, frm.scrNudgeW, frm.scrNudgeH)}) {
        SCOPED_TRACE(caption.Caption());
        EXPECT_TRUE(horizontal.Width > horizontal.Height && vertical.Height > vertical.Width);
        EXPECT_LE(Right(caption), horizontal.Left);
        EXPECT_LE(Right(horizontal), vertical.Left);
        EXPECT_TRUE(caption.Top < Bottom(horizontal) && Bottom(caption) > horizontal.Top);
    }
}

}  // namespace
}  // namespace ostrivane::testing
