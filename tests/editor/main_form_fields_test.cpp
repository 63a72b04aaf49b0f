// The editing fields: the pure key and correction rules, the handlers, the nudge bars.

#include "editor/field_rules.hpp"
#include "editor/main_form_fixture.hpp"

namespace ostrivane::testing {
namespace {

TEST(FieldRules, KeyFilters) {
    // key, field empty, all selected, digits-only result, digits-or-S result
    struct Row { int key; bool empty; bool all; int digit; int length; };
    const Row rows[] = {
        {'0', false, false, '0', '0'}, {'9', false, false, '9', '9'}, {3, false, false, 3, 3},   {8, false, false, 8, 8},
        {22, false, false, 22, 22},    {24, false, false, 24, 24},    {'s', true, false, 0, 'S'}, {'S', false, true, 0, 'S'},
        {'s', false, false, 0, 0},     {'-', true, true, 0, 0},       {'.', true, true, 0, 0},    {13, true, true, 0, 0},
        {'0' + 256, true, true, 0, 0}, {-1, true, true, 0, 0}};
    for (const Row& r : rows) {
        EXPECT_EQ(FilterDigitKey(r.key), r.digit) << r.key;
        EXPECT_EQ(FilterLengthKey(r.key, r.empty, r.all), r.length) << r.key << ' ' << r.empty << r.all;
    }
    // The main form's length fields: "S" stands alone, also against a digit; for "S" the rows above hold.
    struct Alone { int key; const char* text; bool all; int result; };
    for (const Alone& a : {Alone{'5', "S", false, 0}, {'0', "s", false, 0}, {'9', "S", true, '9'}, {'5', "1", false, '5'},
                           {'s', "1", true, 'S'}, {8, "S", false, 8}})
        EXPECT_EQ(FilterMainLengthKey(a.key, a.text, a.all), a.result) << a.key << ' ' << a.text << a.all;
}

// "#13", "#6": Type mismatch or Overflow, as text that is no number raises where compared.
TEST(FieldRules, Corrections) {
    struct Row { std::string (*rule)(std::string_view); const char* in; const char* out; };
    const auto pos = [](std::string_view t) { return CorrectPosition(t, 1920); };
    const auto len = [](std::string_view t) { return CorrectLength(t, 1080); };
    const auto thick = CorrectThickness;
    const auto opacity = CorrectOpacity;
    const Row rows[] = {
        {pos, "", ""},        {pos, "1920", "1920"}, {pos, "1921", "1920"}, {pos, "12abc", "12"},  {pos, "abc", "0"},
        {pos, "-40", "-40"},  {pos, "7.5", "7.5"},   {pos, "1e99", "1920"}, {len, "", ""},         {len, "S", "S"},
        {len, "s", "s"},      {len, "0", "1"},       {len, "0.5", "1"},     {len, "-3", "1"},      {len, "1080", "1080"},
        {len, "1081", "1080"}, {thick, "", ""},      {thick, "0", "1"},     {thick, "2", "1"},     {thick, "3", "3"},
        {thick, "998", "997"}, {thick, "999", "999"}, {thick, "1000", "999"}, {thick, "007", "007"}, {thick, "998.5", "997.5"},
        {thick, "2.5", "1.5"},  // evenness of a fraction is that of its ties-to-even rounding
        {opacity, "", ""},    {opacity, "0", "1"},   {opacity, "100", "100"}, {opacity, "101", "100"},
        {thick, "abc", "#13"}, {opacity, "S5", "#13"}, {len, "S5", "#13"}, {len, "12abc", "#13"},
        {thick, "1e400", "#6"}};
    for (const Row& r : rows) {
        std::string got;
        const int error = ErrorOf([&] { got = r.rule(r.in); });
        EXPECT_EQ(error != 0 ? std::string("#").append(std::to_string(error)) : got, r.out) << r.in;
    }
}

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
};

// A marker field shows its own marker, a group field all of them.
TEST_F(FieldsTest, CorrectionThenUpdateThenShow) {
    struct Row { form::TextBox& field; const char* typed; const char* shown; int row; int column; };
    const Row rows[] = {
        {frm.txtThickness, "2", "1", 1, Thickness},   {frm.txtColourGrpDef, "255", "255", 0, Colour},
        {frm.txtOpacity, "101", "100", 1, Opacity},   {frm.txtHpos, "5000", "1920", 1, Hpos},
        {frm.txtVpos, "12abc", "12", 1, Vpos},        {frm.txtHlen, "0", "1", 1, Hlen},
        {frm.txtVlen, "5000", "1080", 1, Vlen},       {frm.txtThicknessGrpDef, "4", "3", 0, Thickness},
        {frm.txtOpacityGrpDef, "0", "1", 0, Opacity}, {frm.txtHlenGrpDef, "9999", "1920", 0, Hlen}};
    for (const Row& r : rows) {
        overlay.calls.clear();
        Leave(r.field, r.typed);
        EXPECT_EQ(r.field.Text(), r.shown) << r.field.Name();
        EXPECT_EQ(Cell(r.row, r.column), std::stoi(r.shown)) << r.field.Name();
        EXPECT_EQ(overlay.calls, Lines{r.row == 0 ? "ShowAllMarkers" : "ShowMarker 1"}) << r.field.Name();
    }
    EXPECT_TRUE(frm.Dirty);
}

// In order, each from the one before; the global lengths are 700 wide and the whole screen high.
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

// The bars are set quietly; under Loading a position handler runs its tail
// alone while thickness still corrects, and Loading comes back as it was.
TEST_F(FieldsTest, LoadingHoldsBackPositionsAndLengthsOnly) {
    std::vector<bool> loadingSeen;
    for (form::ScrollBar* bar : {&frm.scrNudgeX, &frm.scrNudgeW})
        bar->Change.Connect([&] { loadingSeen.push_back(frm.Loading); });
    Leave(frm.txtHpos, "10");
    Leave(frm.txtHlenGrpDef, "30");  // the marker's Validate as its tail alone: one show
    EXPECT_EQ(loadingSeen, (std::vector<bool>{true, true}));
    EXPECT_EQ(overlay.calls, (Lines{"ShowMarker 1", "ShowAllMarkers"}));

    overlay.calls.clear();
    frm.Loading = true;
    bool cancel = false;
    frm.txtHpos.SetText("3000");
    frm.txtHpos_Validate(cancel);
    EXPECT_EQ(Cell(1, Hpos), 10);
    frm.txtThickness.SetText("4");
    frm.txtThickness_Validate(cancel);
    EXPECT_EQ(frm.txtHpos.Text() + " " + frm.txtThickness.Text(), "3000 3");
    EXPECT_EQ(overlay.calls, Lines{"ShowMarker 1"});
    EXPECT_TRUE(frm.Loading);
}

TEST_F(FieldsTest, KeysAndSelection) {
    frm.txtThickness.SetFocus();
    for (char c : std::string("-1a2S.")) frm.txtThickness.TypeKey(c);
    EXPECT_EQ(frm.txtThickness.Text(), "12");
    // "S" stands alone in the four length fields, and entering selects the whole text.
    for (form::TextBox* f : {&frm.txtHlen, &frm.txtVlen, &frm.txtHlenGrpDef, &frm.txtVlenGrpDef}) {
        f->SetText("12");
        f->SetFocus();
        for (char c : std::string("s5")) f->TypeKey(c);
        EXPECT_EQ(f->Text(), "S") << f->Name();
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

// In order: "text back fore" and the cell; no 32-bit colour leaves box and table as they were.
TEST_F(FieldsTest, ColourFieldShowsItsColour) {
    const std::pair<const char*, const char*> steps[] = {
        {"0", "0 0 16777215 0"}, {"", " 16777215 0 -1"}, {"255.5", "256 256 0 256"}, {"99999999999", "99999999999 256 0 256"}};
    for (const auto& [typed, seen] : steps) {
        overlay.calls.clear();
        Leave(frm.txtColour, typed);
        EXPECT_EQ(Box(frm.txtColour) + " " + std::to_string(Cell(1, Colour)), seen);
    }
    EXPECT_TRUE(overlay.calls.empty());
}

// Cancelled, then a colour for the marker, then one for the group.
TEST_F(FieldsTest, ColourChart) {
    dialogs.colourAnswers = {-1, 16711680, 0};
    for (form::TextBox* box : {&frm.txtColour, &frm.txtColour, &frm.txtColourGrpDef}) box->DblClick.Raise();
    EXPECT_EQ(dialogs.asked[1].colour, form::kWhite);  // starts at the box's colour
    EXPECT_EQ(Box(frm.txtColour), "16711680 16711680 0");
    EXPECT_EQ(std::to_string(Cell(1, Colour)) + " " + std::to_string(Cell(0, Colour)), "16711680 0");
    EXPECT_EQ(overlay.calls, (Lines{"ShowMarker 1", "ShowAllMarkers"}));
}

using Ints = std::vector<int>;
using MarkerList = std::vector<std::array<std::int32_t, 4>>;

// A group whose default lengths are 40; a click puts the bars on the focused marker.
class NudgeTest : public FieldsTest {
protected:
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
    EXPECT_EQ(overlay.calls, (Lines{"ShowMarker 1", "ShowMarker 2", "ShowMarker 1", "ShowMarker 2"}));
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

// Each value set in turn gives the markers' length cells and the field; steps are 32-bit.
TEST_F(NudgeTest, ResizeStepsFromTheFocusedMarkersLength) {
    using Steps = std::vector<std::pair<int, const char*>>;
    const struct { const char* name; std::int16_t group; MarkerList markers; bool vertical; Steps steps; } cases[] = {
        {"whole screen turns into a number", 0, {{100, 200, kWholeScreen, 300}}, false, {{1919, "1919 1919"}, {1909, "1909 1909"}}},
        {"blank takes the group default, which stays", 0, {{100, 200, 50, kBlank}}, true, {{1041, "39 39"}, {1038, "42 42"}}},
        {"without a group row 0 is passed by", -1, {{100, 200, kBlank, 50}, {300, 200, 0, 50}}, false, {{41, "41 -1879 41"}}},
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
