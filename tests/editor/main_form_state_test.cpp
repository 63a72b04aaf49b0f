#include "editor/main_form_fixture.hpp"

namespace ostrivane::testing {
namespace {

using form::MenuItem;

class MainFormStart : public MainFormTest {};

// Each menu entry as "caption|shortcut", with "|off" when it starts disabled;
// of the other controls only those that cannot act yet start disabled.
TEST_F(MainFormStart, MenuBarInOrderWithShortcutsAndControlsEnabledOnlyWhereTheyCanAct) {
    std::string got;
    for (MenuItem* top : frm.MenuBar()) {
        got += "\n[" + top->Caption() + "]";
        for (MenuItem* e : top->Items) got += " " + e->Caption() + "|" + e->Shortcut() + (e->Enabled() ? "" : "|off");
    }
    EXPECT_EQ(got, "\n[&File] &Minimise to system tray| &Options| E&xit|"
                   "\n[&Edit] &Add Marker|Ctrl+M &Del Markers|Ctrl+D|off D&up Markers|Ctrl+U|off -| &Save Group|Ctrl+G|off"
                   " Save Group &As|Ctrl+A|off &Rename Group||off -| &Export Group||off &Import Group| -|"
                   " &Clear Group Selection|Ctrl+E"
                   "\n[&View] &Show                                                 Ctrl+`|"
                   " &Flash Selected                                   Ctrl+1| Stay On &Top|"
                   "\n[&Help] &Help| &Check for updates| &About|");
    EXPECT_EQ(frm.MenuBar()[1]->Items[1], &frm.mnuDelMarker);
    std::string off;
    for (const auto& [name, c] : frm.Controls())
        if (!c->Enabled() && !dynamic_cast<const MenuItem*>(c) && !dynamic_cast<const form::Timer*>(c)) off += name + " ";
    EXPECT_EQ(off, "chkDotted chkDottedGrpDef cmdDelGroup cmdDelMarker cmdSaveGroup scrNudgeH scrNudgeW scrNudgeX "
                   "scrNudgeY txtColour txtColourGrpDef txtGroupNotes txtHlen txtHlenGrpDef txtHpos txtOpacity "
                   "txtOpacityGrpDef txtThickness txtThicknessGrpDef txtVlen txtVlenGrpDef txtVpos ");
}

// A group of markers loaded by hand: row 0 cleared, markers appended.
class MainFormState : public MainFormTest {
protected:
    void SetUp() override {
        frm.ClearGroupDefaults();
        frm.AppendMarker(400, 300, -2, -2, 65280, 3, 60, 0);
        frm.AppendMarker(100, 100, 50, -1, -1, -1, -1, -1);
        frm.AppendMarker(10, 20, 30, 40, 255, 5, 100, 1);
        overlay.calls.clear();
    }
    void Select(int index) { frm.lstMarkers.ClickItem(index); }
    // The marker fields as shown, the dotted box and the colour box's back colour last.
    std::string Fields() const {
        std::string out;
        for (const form::TextBox* t : {&frm.txtHpos, &frm.txtVpos, &frm.txtHlen, &frm.txtVlen, &frm.txtColour,
                                       &frm.txtThickness, &frm.txtOpacity})
            out += t->Text() + ",";
        return out + std::to_string(frm.chkDotted.Value()) + " " + std::to_string(frm.txtColour.BackColor());
    }
};

TEST_F(MainFormState, ClickOfAMarkerFillsItsFieldsAndBars) {
    frm.SetNudgeRanges();
    Select(0);
    EXPECT_EQ(Fields(), "400,300,S,S,65280,3,60,0 65280");
    EXPECT_TRUE(frm.txtHpos.Enabled() && frm.scrNudgeW.Enabled());
    overlay.calls.clear();
    Select(1);  // blanks show as empty fields and a grey box
    EXPECT_EQ(Fields(), "100,100,50,,,,,2 16777215");
    EXPECT_TRUE(overlay.calls.empty());  // the fields are cleared under Loading
    Select(2);
    EXPECT_EQ((std::vector<int>{frm.scrNudgeX.Value(), frm.scrNudgeY.Value(), frm.scrNudgeW.Value(), frm.scrNudgeH.Value()}),
              (std::vector<int>{10, 20, 30, 1080 - 40}));
    EXPECT_FALSE(frm.Dirty);
    frm.lstMarkers.SetSelected(0, true);  // several selected: the focused marker's fields, disabled
    frm.lstMarkers.SetListIndex(2);
    EXPECT_EQ(frm.txtHpos.Text(), "10");
    EXPECT_FALSE(frm.txtHpos.Enabled() || frm.scrNudgeW.Enabled());
    EXPECT_TRUE(frm.cmdDelMarker.Enabled() && frm.mnuDupMarker.Enabled() && frm.scrNudgeX.Enabled());
}

// One field at a time, so that each comparison has a case; an unchanged field raises nothing.
TEST_F(MainFormState, UpdateRaisesDirtyForEachFieldChangedAlone) {
    struct Case { form::Control& field; const char* value; int row; int column; std::int32_t cell; };
    const Case cases[] = {
        {frm.txtHpos, "401.5", 1, Hpos, 402},  // ties to even
        {frm.txtVpos, "300.5", 1, Vpos, 300},  // compared before rounding
        {frm.txtHlen, "120", 1, Hlen, 120},               {frm.txtVlen, "", 1, Vlen, kBlank},
        {frm.txtColour, "255", 1, Colour, 255},           {frm.txtThickness, "5", 1, Thickness, 5},
        {frm.txtOpacity, "", 1, Opacity, kBlank},         {frm.chkDotted, "1", 1, Dotted, 1},
        {frm.txtHlenGrpDef, "S", 0, Hlen, kWholeScreen},  {frm.txtVlenGrpDef, "40", 0, Vlen, 40},
        {frm.txtColourGrpDef, "0", 0, Colour, 0},         {frm.txtThicknessGrpDef, "3", 0, Thickness, 3},
        {frm.txtOpacityGrpDef, "50", 0, Opacity, 50},     {frm.chkDottedGrpDef, "0", 0, Dotted, 0}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.field.Name());
        Select(0);
        frm.Dirty = false;
        frm.UpdateMarkerTable();
        EXPECT_FALSE(frm.Dirty);
        if (auto* box = dynamic_cast<form::CheckBox*>(&c.field)) box->SetValue(std::stoi(c.value));
        else static_cast<form::TextBox&>(c.field).SetText(c.value);
        frm.UpdateMarkerTable();
        EXPECT_TRUE(frm.Dirty);
        EXPECT_EQ(frm.store.Markers(c.row, c.column), c.cell);
    }
    frm.store.Markers(3, Dotted) = 2;  // grey from the file: the box shows it, and it goes back as blank
    Select(2);
    frm.Dirty = false;
    frm.UpdateMarkerTable();
    EXPECT_EQ(frm.store.Markers(3, Dotted), kBlank);
    EXPECT_TRUE(frm.Dirty);
}

// A blank position suspends the marker row; group defaults stay in the fields
// of a group without markers or of a form whose row 0 was never cleared.
TEST_F(MainFormState, WhatDoesNotReachTheTable) {
    Select(0);
    frm.txtHpos.SetText("");
    frm.txtHlen.SetText("77");
    frm.store.Markers(0, Vlen) = 0;  // one length of 0 is no sign of an unready row
    frm.UpdateMarkerTable();
    EXPECT_EQ(frm.store.Markers(1, Hlen), kWholeScreen);
    MainForm fresh(dialogs, overlay, desktop, input);
    fresh.AppendMarker(1, 2, 3, 4, 5, 1, 100, 0);
    MainForm empty(dialogs, overlay, desktop, input);
    empty.ClearGroupDefaults();
    for (MainForm* f : {&frm, &fresh, &empty}) {
        f->txtHlenGrpDef.SetText("40");
        f->UpdateMarkerTable();
        EXPECT_EQ(f->store.Markers(0, Hlen) == 40, f == &frm);
        EXPECT_EQ(f->Dirty, f == &frm);
    }
    frm.txtHpos.SetText("1");
    frm.txtThickness.SetText("abc");  // pasted text that is no number
    EXPECT_EQ(ErrorOf([&] { frm.UpdateMarkerTable(); }), kTypeMismatch);
}

// 0 -> grey -> checked -> 0; each click clears the painted colour, so the windows are rebuilt.
TEST_F(MainFormState, ThreeStateBoxesCycleThroughGreyAndForceARebuild) {
    Select(0);
    overlay.calls.clear();
    std::string seen;
    for (int press = 0; press < 3; ++press) {
        frm.store.Markers(1, PaintedColour) = 7;
        frm.chkDotted.MouseDown.Raise();
        seen += std::to_string(frm.chkDotted.Value()) + std::to_string(frm.store.Markers(1, Dotted)) +
                std::to_string(frm.store.Markers(1, PaintedColour)) + " ";
    }
    EXPECT_EQ(seen, "2-10 110 000 ");
    EXPECT_EQ(overlay.calls, (Lines{"ShowMarker 1", "ShowMarker 1", "ShowMarker 1"}));
    overlay.calls.clear();
    for (int r = 1; r <= 3; ++r) frm.store.Markers(r, PaintedColour) = 7;
    frm.chkDottedGrpDef.MouseDown.Raise();  // grey -> checked
    EXPECT_EQ(frm.store.Markers(0, Dotted), 1);
    for (int r = 1; r <= 3; ++r) EXPECT_EQ(frm.store.Markers(r, PaintedColour), 0) << r;
    EXPECT_EQ(overlay.calls, (Lines{"ShowAllMarkers"}));
}

TEST_F(MainFormState, PersistingCheckBoxesWriteAtOnce) {
    frm.chkCopyCurrOnAdd.SetValue(1);
    frm.chkAllowGrabMarkers.SetValue(2);
    EXPECT_EQ(ReadDataFile(), "[Defaults]\r\nCopyCurrOnAdd=1\r\nAllowGrabMarkers=2\r\n");
}

}  // namespace
}  // namespace ostrivane::testing
