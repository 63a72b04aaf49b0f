#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "editor/main_form_fixture.hpp"

namespace ostrivane::testing {
namespace {

using Calls = std::vector<std::string>;

// One marker at 100,200 with every other cell blank, selected, in a group
// whose defaults are blank; the bars have the ranges of a 1920x1080 screen.
class FieldsTest : public MainFormTest {
protected:
    void SetUp() override {
        frm.SetNudgeRanges();
        frm.ClearGroupDefaults();
        frm.AppendMarker(100, 200, kBlank, kBlank, kBlank, kBlank, kBlank, kBlank);
        frm.lstMarkers.ClickItem(0);
        overlay.calls.clear();
        frm.Dirty = false;
    }

    // Pastes text into a field (round the key filter) and leaves it.
    void Leave(form::TextBox& field, const std::string& text) {
        field.SetFocus();
        field.SetText(text);
        frm.cmdAddMarker.SetFocus();
    }
    std::int32_t Cell(int row, int column) const { return frm.store.Markers(row, column); }
};

// A marker field shows its own marker, a group field all of them.
TEST_F(FieldsTest, CorrectionThenUpdateThenShow) {
    struct Row { form::TextBox& field; const char* typed; const char* shown; int row; int column; };
    const Row rows[] = {
        {frm.txtThickness, "2", "1", 1, Thickness},   {frm.txtThickness, "1000", "999", 1, Thickness},
        {frm.txtOpacity, "101", "100", 1, Opacity},   {frm.txtHpos, "5000", "1920", 1, Hpos},
        {frm.txtVpos, "12abc", "12", 1, Vpos},        {frm.txtHlen, "0", "1", 1, Hlen},
        {frm.txtVlen, "5000", "1080", 1, Vlen},       {frm.txtThicknessGrpDef, "4", "3", 0, Thickness},
        {frm.txtOpacityGrpDef, "0", "1", 0, Opacity}, {frm.txtHlenGrpDef, "9999", "1920", 0, Hlen}};
    for (const Row& r : rows) {
        overlay.calls.clear();
        Leave(r.field, r.typed);
        EXPECT_EQ(r.field.Text(), r.shown) << r.field.Name();
        EXPECT_EQ(Cell(r.row, r.column), std::stoi(r.shown)) << r.field.Name();
        EXPECT_EQ(overlay.calls, Calls{r.row == 0 ? "ShowAllMarkers" : "ShowMarker 1"}) << r.field.Name();
    }
    EXPECT_TRUE(frm.Dirty);
}

// In order: each step starts from the one before; the global lengths are
// 700 wide and the whole screen high.
TEST_F(FieldsTest, BarsFollowTheFieldsAndTheDefaults) {
    struct Step { form::TextBox& field; const char* text; form::ScrollBar& bar; int value; };
    const Step steps[] = {
        {frm.txtHlen, "s", frm.scrNudgeW, 1920},     // pasted in either case: the whole screen
        {frm.txtHpos, "-40", frm.scrNudgeX, 100},    // no lower bound: the cell takes it, the bar cannot
        {frm.txtVlen, "40", frm.scrNudgeH, 1040},    // inverted
        {frm.txtVlen, "1080", frm.scrNudgeH, 1},     // never 0: the line cannot nudge away
        {frm.txtHlen, "", frm.scrNudgeW, 700},       {frm.txtVlen, "", frm.scrNudgeH, 1},
        {frm.txtHlenGrpDef, "300", frm.scrNudgeW, 300},  // the marker's bar follows its new default
        {frm.txtVlenGrpDef, "400", frm.scrNudgeH, 680},  {frm.txtHpos, "", frm.scrNudgeX, 100}};
    frm.store.GlobalDefaults[Hlen] = 700;
    for (const Step& s : steps) {
        Leave(s.field, s.text);
        EXPECT_EQ(s.bar.Value(), s.value) << s.field.Name() << " " << s.text;
    }
    EXPECT_EQ(frm.txtHlen.Text() + frm.txtVlen.Text(), "");
}

TEST_F(FieldsTest, LoadingHoldsBackPositionsAndLengthsOnly) {
    std::vector<bool> loadingSeen;
    for (form::ScrollBar* bar : {&frm.scrNudgeX, &frm.scrNudgeW})
        bar->Change.Connect([&] { loadingSeen.push_back(frm.Loading); });
    Leave(frm.txtHpos, "10");
    Leave(frm.txtHlenGrpDef, "30");
    EXPECT_EQ(loadingSeen, (std::vector<bool>{true, true}));  // bars set quietly
    EXPECT_FALSE(frm.Loading);
    // the group field ran the marker's Validate as its tail alone: one show
    EXPECT_EQ(overlay.calls, (Calls{"ShowMarker 1", "ShowAllMarkers"}));

    overlay.calls.clear();
    frm.Loading = true;
    bool cancel = false;
    frm.txtHpos.SetText("300");
    frm.txtHpos_Validate(cancel);
    EXPECT_EQ(Cell(1, Hpos), 10);
    EXPECT_EQ(frm.scrNudgeX.Value(), 300);
    EXPECT_TRUE(overlay.calls.empty());
    frm.txtThickness.SetText("4");
    frm.txtThickness_Validate(cancel);
    EXPECT_EQ(frm.txtThickness.Text(), "3");
    EXPECT_EQ(overlay.calls, Calls{"ShowMarker 1"});
    EXPECT_TRUE(frm.Loading);  // restored, not cleared
}

TEST_F(FieldsTest, KeysAndSelection) {
    frm.txtThickness.SetFocus();
    for (char c : std::string("-1a2S.")) frm.txtThickness.TypeKey(c);
    EXPECT_EQ(frm.txtThickness.Text(), "12");
    // "S" stands alone in the four length fields: nothing joins it, nor it anything.
    for (form::TextBox* f : {&frm.txtHlen, &frm.txtVlen, &frm.txtHlenGrpDef, &frm.txtVlenGrpDef}) {
        f->SetText("12");
        f->SetFocus();  // entering selects the whole text
        for (char c : std::string("s5")) f->TypeKey(c);
        f->SetSelection(0, 0);
        f->TypeKey('7');
        EXPECT_EQ(f->Text(), "S") << f->Name();
        f->SetText("s");  // pasted
        f->TypeKey('4');
        EXPECT_EQ(f->Text(), "s") << f->Name();
        frm.SelectAllText(*f);
        f->TypeKey('9');
        EXPECT_EQ(f->Text(), "9") << f->Name();
    }
    frm.txtGroupNotes.SetText("notes");
    frm.txtGroupNotes.SetFocus();
    EXPECT_EQ(frm.txtGroupNotes.SelLength(), 0);
    frm.Dirty = false;
    frm.cmdAddMarker.SetFocus();  // left with no edit
    EXPECT_TRUE(frm.Dirty);
}

// The colour box as "text back fore".
std::string Box(const form::TextBox& t) {
    return t.Text() + " " + std::to_string(t.BackColor()) + " " + std::to_string(t.ForeColor());
}

// Left in order, each as "text back fore" of the box and the cell after it;
// a text that is no 32-bit colour leaves box and table as they were.
TEST_F(FieldsTest, ColourFieldShowsItsColour) {
    const std::pair<const char*, const char*> steps[] = {
        {"0", "0 0 16777215 0"}, {"", " 16777215 0 -1"}, {"255.5", "256 256 0 256"}, {"99999999999", "99999999999 256 0 256"}};
    for (const auto& [typed, seen] : steps) {
        overlay.calls.clear();
        Leave(frm.txtColour, typed);
        EXPECT_EQ(Box(frm.txtColour) + " " + std::to_string(Cell(1, Colour)), seen);
    }
    EXPECT_TRUE(overlay.calls.empty());
    EXPECT_TRUE(frm.SetColourField(frm.txtColour, "-1"));
    EXPECT_EQ(Box(frm.txtColour), " 16777215 0");
}

TEST_F(FieldsTest, ColourChart) {
    dialogs.colourAnswers = {-1, 16711680, 0};
    frm.txtColour.DblClick.Raise();  // cancelled
    EXPECT_EQ(Box(frm.txtColour), " 16777215 0");
    EXPECT_TRUE(overlay.calls.empty());
    frm.txtColour.DblClick.Raise();
    EXPECT_EQ(dialogs.asked[1].colour, form::kWhite);  // starts at the box's colour
    EXPECT_EQ(frm.txtColour.Text(), "16711680");
    EXPECT_EQ(Cell(1, Colour), 16711680);
    frm.txtColourGrpDef.DblClick.Raise();
    EXPECT_EQ(Cell(0, Colour), 0);
    EXPECT_EQ(overlay.calls, (Calls{"ShowMarker 1", "ShowAllMarkers"}));
}

}  // namespace
}  // namespace ostrivane::testing
