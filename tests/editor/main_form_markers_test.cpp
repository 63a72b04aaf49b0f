#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "editor/main_form_fixture.hpp"

namespace ostrivane::testing {
namespace {

class MarkerListTest : public MainFormTest {
protected:
    // Markers told apart by Hpos 100, 200, ...
    void AddMarkers(int count) {
        for (int k = 1; k <= count; ++k) frm.AppendMarker(100 * k, 50, 300, kBlank, 255, 1, 100, 0);
    }
    // "X" selects the item at that place, "." leaves it.
    void Select(const std::string& pattern) {
        for (int i = 0; i < static_cast<int>(pattern.size()); ++i) frm.lstMarkers.SetSelected(i, pattern[i] == 'X');
    }
    std::vector<int> Hposes() const {
        std::vector<int> out;
        for (int r = 1; r <= frm.store.MarkerCount; ++r) out.push_back(frm.store.Markers(r, Hpos));
        return out;
    }
    std::vector<std::string> Items() const {
        std::vector<std::string> out;
        for (int i = 0; i < frm.lstMarkers.ListCount(); ++i) out.push_back(frm.lstMarkers.List(i));
        return out;
    }
    std::string Selection() const {
        std::string out;
        for (int i = 0; i < frm.lstMarkers.ListCount(); ++i) out += frm.lstMarkers.Selected(i) ? 'X' : '.';
        return out;
    }
    void AnswerDuplicate(std::vector<std::string> answers) {
        dialogs.inputBoxAnswers.assign(answers.begin(), answers.end());
        frm.mnuDupMarker.PerformClick();
    }
};

TEST_F(MarkerListTest, AppendWritesTheRowAndTheItemButNeitherSelectsNorDirties) {
    frm.store.Markers(1, HwndH) = 77;
    frm.AppendMarker(-5, 6, kWholeScreen, kBlank, 0, 3, 40, 2);
    EXPECT_EQ(frm.store.MarkerCount, 1);
    const MarkerRow& row = frm.store.Markers.row(1);
    EXPECT_EQ((std::vector<int>{row[Hpos], row[Vpos], row[Hlen], row[Vlen], row[Colour], row[Thickness],
                                row[Opacity], row[Dotted]}),
              (std::vector<int>{-5, 6, -2, -1, 0, 3, 40, 2}));
    EXPECT_EQ(row[HwndH], 77);  // the overlay's columns are not its business
    EXPECT_EQ(Items(), std::vector<std::string>{"1"});
    EXPECT_EQ(frm.lstMarkers.SelCount(), 0);
    EXPECT_FALSE(frm.Dirty);
    // the group row opens, but with no group selected there is nothing to delete or rename
    EXPECT_TRUE(frm.cmdSaveGroup.Enabled());
    EXPECT_TRUE(frm.txtHlenGrpDef.Enabled());
    EXPECT_FALSE(frm.cmdDelGroup.Enabled());
}

TEST_F(MarkerListTest, AppendToAFullTableFailsAfterTheCountWentUp) {
    AddMarkers(kMaxMarkers);
    EXPECT_EQ(ErrorOf([&] { frm.AppendMarker(1, 1, 1, 1, 1, 1, 1, 1); }), kSubscriptOutOfRange);
    EXPECT_EQ(frm.store.MarkerCount, 51);
    EXPECT_EQ(frm.lstMarkers.ListCount(), 50);
}

TEST_F(MarkerListTest, AddMarkerSelectsOnlyTheNewOneAndShowsIt) {
    AddMarkers(2);
    Select("XX");
    frm.lblMsg.SetCaption("Click to place the marker");
    frm.AddMarker(700, 80, kBlank, kBlank, kBlank, kBlank, kBlank, kBlank);
    EXPECT_EQ(Selection(), "..X");
    EXPECT_EQ(frm.lstMarkers.ListIndex(), 2);
    EXPECT_EQ(frm.txtHpos.Text(), "700");  // the click filled the fields
    EXPECT_EQ(overlay.calls.back(), "ShowMarker 3");
    EXPECT_EQ(frm.lblMsg.Caption(), "");
    EXPECT_TRUE(frm.Dirty);
}

// One pass that advances after a removal: of adjacent selected items every
// other one goes.
TEST_F(MarkerListTest, DeleteWalksOncePastEachRemoval) {
    struct Case {
        std::string selected;
        std::vector<int> left;
        std::string stillSelected;
    };
    const Case cases[] = {
        {"XXX.", {200, 400}, "X."},  {"XXXX", {200, 400}, "XX"}, {"...X", {100, 200, 300}, "..."},
        {"X.X.", {200, 400}, ".."},  {".XX.", {100, 300, 400}, ".X."}, {"XX", {200}, "X"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.selected);
        frm.lstMarkers.Clear();
        frm.store.MarkerCount = 0;
        AddMarkers(static_cast<int>(c.selected.size()));
        Select(c.selected);
        frm.Dirty = false;
        frm.cmdDelMarker.PerformClick();
        EXPECT_EQ(Hposes(), c.left);
        EXPECT_EQ(Selection(), c.stillSelected);
        std::vector<std::string> numbers;
        for (std::size_t k = 1; k <= c.left.size(); ++k) numbers.push_back(std::to_string(k));
        EXPECT_EQ(Items(), numbers);
        EXPECT_TRUE(frm.Dirty);
        EXPECT_TRUE(overlay.calls.empty());  // stopped: no windows to destroy
    }
}

TEST_F(MarkerListTest, DeleteLeavesNothingSelectedInTheFormAndTheFocusOnAdd) {
    AddMarkers(3);
    frm.lstMarkers.ClickItem(1);
    ASSERT_TRUE(frm.txtHpos.Enabled());
    frm.mnuDelMarker.PerformClick();
    EXPECT_EQ(Hposes(), (std::vector<int>{100, 300}));
    EXPECT_EQ(frm.txtHpos.Text(), "");
    EXPECT_EQ(frm.ActiveControl(), &frm.cmdAddMarker);
    for (const form::Control* c : std::initializer_list<const form::Control*>{
             &frm.txtHpos, &frm.cmdDelMarker, &frm.mnuDupMarker, &frm.scrNudgeX, &frm.scrNudgeW})
        EXPECT_FALSE(c->Enabled()) << c->Name();
}

TEST_F(MarkerListTest, DeletingTheLastMarkerKeepsTheGroupRowOpen) {
    AddMarkers(1);
    Select("X");
    frm.cmdDelMarker.PerformClick();
    EXPECT_EQ(frm.store.MarkerCount, 0);
    EXPECT_EQ(frm.lstMarkers.ListCount(), 0);
    EXPECT_TRUE(frm.cmdSaveGroup.Enabled());
    EXPECT_TRUE(frm.txtGroupNotes.Enabled());
}

TEST_F(MarkerListTest, DeleteWhileShowingDestroysOnlyTheDeletedWindowsAndTheRestTravel) {
    AddMarkers(4);
    for (int r = 1; r <= 4; ++r) {
        frm.store.Markers(r, HwndH) = 10 + r;
        frm.store.Markers(r, HwndV) = 20 + r;
        frm.store.Markers(r, PaintedEffective) = 30 + r;
    }
    frm.Showing = true;
    Select("XXX.");
    overlay.calls.clear();
    frm.cmdDelMarker.PerformClick();
    // the third marker had moved up to row 2 when its turn came
    EXPECT_EQ(overlay.calls, (std::vector<std::string>{"DestroyMarkerWindows 1", "DestroyMarkerWindows 2"}));
    EXPECT_EQ(frm.store.Markers(1, HwndH), 12);
    EXPECT_EQ(frm.store.Markers(2, HwndV), 24);
    EXPECT_EQ(frm.store.Markers(2, PaintedEffective), 34);
}

TEST_F(MarkerListTest, DuplicatePromptAsksAgainUntilAnOffsetWithinNinetyNine) {
    AddMarkers(1);
    Select("X");
    AnswerDuplicate({"abc", "150", "99999", "  -99  "});
    std::vector<std::string> proposals;
    for (const fakes::Question& q : dialogs.asked) proposals.push_back(q.proposal);
    EXPECT_EQ(proposals, (std::vector<std::string>{"5", "5", "150", "150"}));
    const fakes::Question& q = dialogs.asked.back();
    EXPECT_EQ(q.prompt,
              "Note: if markers are duplicated exactly, you won't see them on top of each other, and flashing "
              "will apear to stop. To help, its is recommended you offset the new markers by a small amount.");
    EXPECT_EQ(q.title, "Ostrivane");
    EXPECT_FALSE(q.position.has_value());
    EXPECT_EQ(Hposes(), (std::vector<int>{100, 1}));
    EXPECT_EQ(frm.store.Markers(2, Vpos), -49);  // no lower bound
}

TEST_F(MarkerListTest, DuplicateTakesTheLimitsAndZero) {
    for (const char* answer : {"99", "-99", "0"}) {
        SCOPED_TRACE(answer);
        frm.lstMarkers.Clear();
        frm.store.MarkerCount = 0;
        AddMarkers(1);
        Select("X");
        AnswerDuplicate({answer});
        ASSERT_EQ(frm.store.MarkerCount, 2);
        EXPECT_EQ(frm.store.Markers(2, Hpos), 100 + std::stoi(answer));
        EXPECT_EQ(frm.store.Markers(2, Vpos), 50 + std::stoi(answer));
    }
}

TEST_F(MarkerListTest, DuplicateCancelledChangesNothing) {
    AddMarkers(1);
    Select("X");
    overlay.calls.clear();
    AnswerDuplicate({"   "});
    EXPECT_EQ(frm.store.MarkerCount, 1);
    EXPECT_EQ(Selection(), "X");
    EXPECT_FALSE(frm.Dirty);
    EXPECT_EQ(overlay.calls, std::vector<std::string>{"ShowAllMarkers"});
}

TEST_F(MarkerListTest, DuplicateCopiesSentinelsAndEndsWithTheCopiesSelected) {
    AddMarkers(3);
    frm.store.Markers(1, Hlen) = kWholeScreen;
    frm.store.Markers(3, Dotted) = 2;
    frm.store.Markers(3, Colour) = kBlank;
    Select("X.X");
    frm.lblMsg.SetCaption("x");
    overlay.calls.clear();
    AnswerDuplicate({"5"});
    EXPECT_EQ(Hposes(), (std::vector<int>{100, 200, 300, 105, 305}));
    EXPECT_EQ(Items(), (std::vector<std::string>{"1", "2", "3", "4", "5"}));
    EXPECT_EQ(frm.store.Markers(4, Hlen), kWholeScreen);
    EXPECT_EQ(frm.store.Markers(4, Vlen), kBlank);
    EXPECT_EQ(frm.store.Markers(5, Colour), kBlank);
    EXPECT_EQ(frm.store.Markers(5, Dotted), 2);
    EXPECT_EQ(Selection(), "...XX");
    EXPECT_EQ(overlay.calls, (std::vector<std::string>{"ShowAllMarkers", "ShowAllMarkers"}));
    EXPECT_EQ(frm.lblMsg.Caption(), "");
    EXPECT_TRUE(frm.Dirty);
}

TEST_F(MarkerListTest, DuplicateIntoAFullTableKeepsWhatWasCopied) {
    AddMarkers(49);
    Select("XXX");
    EXPECT_EQ(ErrorOf([&] { AnswerDuplicate({"1"}); }), kSubscriptOutOfRange);
    EXPECT_EQ(frm.lstMarkers.ListCount(), 50);
    EXPECT_EQ(frm.store.Markers(50, Hpos), 101);
    EXPECT_EQ(Selection().substr(0, 3), ".XX");
    EXPECT_TRUE(frm.lstMarkers.Selected(49));
}

TEST_F(MarkerListTest, AddMarkerMenuRunsTheButton) {
    int clicks = 0;
    frm.cmdAddMarker.Click.Connect([&] { ++clicks; });
    frm.mnuAddMarker.PerformClick();
    EXPECT_EQ(clicks, 1);
}

}  // namespace
}  // namespace ostrivane::testing
