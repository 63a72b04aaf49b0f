#include "editor/main_form_fixture.hpp"

namespace ostrivane::testing {
namespace {

class MarkerListTest : public MainFormTest {
protected:
    // A fresh list of markers told apart by Hpos 100, 200, ...; "X" selects
    // the item at that place, "." leaves it.
    void Start(const std::string& selection) {
        frm.lstMarkers.Clear();
        frm.store.MarkerCount = 0;
        for (int k = 1; k <= static_cast<int>(selection.size()); ++k)
            frm.AppendMarker(100 * k, 50, 300, kBlank, 255, 1, 100, 0);
        for (int i = 0; i < static_cast<int>(selection.size()); ++i) frm.lstMarkers.SetSelected(i, selection[i] == 'X');
        frm.Dirty = false;
        overlay.calls.clear();
    }
    // "Hpos of each row|list items|selection", as "200,400,|1,2,|X.".
    std::string Table() const {
        std::string hposes, items;
        for (int r = 1; r <= frm.store.MarkerCount; ++r) hposes += std::to_string(frm.store.Markers(r, Hpos)) + ",";
        for (int i = 0; i < frm.lstMarkers.ListCount(); ++i) items += frm.lstMarkers.List(i) + ",";
        return hposes + "|" + items + "|" + Selection();
    }
    void Duplicate(const std::vector<std::string>& answers) {
        dialogs.inputBoxAnswers.assign(answers.begin(), answers.end());
        frm.mnuDupMarker.PerformClick();
    }
};

TEST_F(MarkerListTest, AppendWritesTheRowAndTheItemButNeitherSelectsNorDirties) {
    frm.store.Markers(1, HwndH) = 77;
    frm.AppendMarker(-5, 6, kWholeScreen, kBlank, 0, 3, 40, 2);
    // The cells show through a click (the state tests); the overlay's columns are not its business.
    EXPECT_EQ(frm.store.Markers(1, HwndH), 77);
    EXPECT_EQ(Table(), "-5,|1,|.");
    EXPECT_FALSE(frm.Dirty);
    // the group row opens, but with no group selected there is nothing to delete or rename
    EXPECT_TRUE(frm.cmdSaveGroup.Enabled() && frm.txtHlenGrpDef.Enabled() && !frm.cmdDelGroup.Enabled());
}

// One pass that advances after a removal: of adjacent selected items every
// other one goes, and the rest stay selected. The group row stays open, even
// with no marker left; the marker's own controls close.
TEST_F(MarkerListTest, DeleteWalksOncePastEachRemoval) {
    const std::pair<std::string, std::string> cases[] = {
        {"XXX.", "200,400,|1,2,|X."}, {"XXXX", "200,400,|1,2,|XX"}, {"...X", "100,200,300,|1,2,3,|..."},
        {"X.X.", "200,400,|1,2,|.."}, {".XX.", "100,300,400,|1,2,3,|.X."}, {"XX", "200,|1,|X"}, {"X", "||"}};
    for (const auto& [selected, after] : cases) {
        Start(selected);
        frm.mnuDelMarker.PerformClick();
        EXPECT_EQ(Table(), after) << selected;
        EXPECT_TRUE(frm.Dirty);
        EXPECT_TRUE(overlay.calls.empty());  // stopped: no windows to destroy
        EXPECT_TRUE(frm.cmdSaveGroup.Enabled());
        EXPECT_EQ(frm.ActiveControl(), &frm.cmdAddMarker);
        for (const form::Control* c : std::initializer_list<const form::Control*>{
                 &frm.txtHpos, &frm.cmdDelMarker, &frm.mnuDupMarker, &frm.scrNudgeX, &frm.scrNudgeW})
            EXPECT_FALSE(c->Enabled()) << c->Name();
    }
}

TEST_F(MarkerListTest, DeleteClearsTheFieldsAndWhileShowingDestroysOnlyTheDeletedWindows) {
    Start("....");
    for (int r = 1; r <= 4; ++r)
        for (int c : {HwndH, HwndV, PaintedEffective}) frm.store.Markers(r, c) = 10 * c + r;
    frm.lstMarkers.ClickItem(0);
    for (int i : {1, 2}) frm.lstMarkers.SetSelected(i, true);
    ASSERT_EQ(frm.txtHpos.Text(), "100");
    frm.Showing = true;
    overlay.calls.clear();
    frm.cmdDelMarker.PerformClick();
    EXPECT_EQ(frm.txtHpos.Text(), "");
    // the third marker had moved up to row 2 when its turn came
    EXPECT_EQ(overlay.calls, (Lines{"DestroyMarkerWindows 1", "DestroyMarkerWindows 2"}));
    EXPECT_EQ((std::vector<int>{frm.store.Markers(1, HwndH), frm.store.Markers(2, HwndV), frm.store.Markers(2, PaintedEffective)}),
              (std::vector<int>{10 * HwndH + 2, 10 * HwndV + 4, 10 * PaintedEffective + 4}));
}

// The prompt asks again, keeping the last proposal for a text that is no
// 16-bit number, until an offset within 99 or a blank (cancel) comes.
TEST_F(MarkerListTest, DuplicatePromptAsksUntilAnOffsetWithinNinetyNine) {
    struct Case { std::vector<std::string> answers; const char* proposals; const char* after; };
    const Case cases[] = {{{"abc", "150", "100", "99999", "  -99  "}, "5,5,150,100,100,", "100,1,|1,2,|.X"},
                          {{"99"}, "5,", "100,199,|1,2,|.X"},
                          {{"0"}, "5,", "100,100,|1,2,|.X"},
                          {{"   "}, "5,", "100,|1,|X"}};
    for (const Case& c : cases) {
        Start("X");
        dialogs.asked.clear();
        Duplicate(c.answers);
        std::string proposals;
        for (const fakes::Question& q : dialogs.asked) proposals += q.proposal + ",";
        EXPECT_EQ(proposals, c.proposals);
        EXPECT_EQ(Table(), c.after) << c.answers.back();
        EXPECT_EQ(frm.Dirty, c.answers.back() != "   ");
    }
    EXPECT_EQ(overlay.calls, Lines{"ShowAllMarkers"});  // a cancel after the first show
    Duplicate({"-99"});
    EXPECT_EQ(frm.store.Markers(2, Vpos), -49);  // no lower bound
    const fakes::Question& q = dialogs.asked.back();
    EXPECT_EQ(q.title, "Ostrivane");
    EXPECT_FALSE(q.position.has_value());
}

TEST_F(MarkerListTest, DuplicateCopiesSentinelsAndEndsWithTheCopiesSelected) {
    Start("X.X");
    frm.store.Markers(1, Hlen) = kWholeScreen;
    frm.store.Markers(3, Dotted) = 2;
    frm.store.Markers(3, Colour) = kBlank;
    frm.lblMsg.SetCaption("x");
    Duplicate({"5"});
    EXPECT_EQ(Table(), "100,200,300,105,305,|1,2,3,4,5,|...XX");
    EXPECT_EQ((std::vector<int>{frm.store.Markers(4, Hlen), frm.store.Markers(4, Vlen), frm.store.Markers(5, Colour),
                                frm.store.Markers(5, Dotted)}),
              (std::vector<int>{kWholeScreen, kBlank, kBlank, 2}));
    EXPECT_EQ(overlay.calls, (Lines{"ShowAllMarkers", "ShowAllMarkers"}));
    EXPECT_EQ(frm.lblMsg.Caption(), "");
    EXPECT_TRUE(frm.Dirty);

    Start("XXX" + std::string(46, '.'));  // into a full table: what was copied stays
    EXPECT_EQ(ErrorOf([&] { Duplicate({"1"}); }), kSubscriptOutOfRange);
    EXPECT_EQ(frm.store.Markers(50, Hpos), 101);
    frm.store.MarkerCount = kMaxMarkers;  // it went up to 51 before the table refused the row
    EXPECT_EQ(Table().substr(Table().rfind('|') - 3), "50,|.XX" + std::string(46, '.') + "X");
}

}  // namespace
}  // namespace ostrivane::testing
