#include <gtest/gtest.h>

#include "editor/main_form_fixture.hpp"
#include "lib/profile.hpp"

namespace ostrivane::testing {
namespace {

using form::MenuItem;

class MainFormStart : public MainFormTest {};

TEST_F(MainFormStart, MenuBarInOrderWithShortcutsAndStartStates) {
    struct Row { const MenuItem* item; const char* caption; const char* shortcut; bool enabled; };
    const Row rows[] = {
        {&frm.mnuFileMinToTray, "&Minimise to system tray", "", true},
        {&frm.mnuOptions, "&Options", "", true},
        {&frm.mnuExit, "E&xit", "", true},
        {&frm.mnuAddMarker, "&Add Marker", "Ctrl+M", true},
        {&frm.mnuDelMarker, "&Del Markers", "Ctrl+D", false},
        {&frm.mnuDupMarker, "D&up Markers", "Ctrl+U", false},
        {&frm.mnuSep2, "-", "", true},
        {&frm.mnuSaveGroup, "&Save Group", "Ctrl+G", false},
        {&frm.mnuSaveAsGroup, "Save Group &As", "Ctrl+A", false},
        {&frm.mnuRenGroup, "&Rename Group", "", false},
        {&frm.mnuSep3, "-", "", true},
        {&frm.mnuExportGroup, "&Export Group", "", false},
        {&frm.mnuImportGroup, "&Import Group", "", true},
        {&frm.mnuSep4, "-", "", true},
        {&frm.mnuClearGroupSelection, "&Clear Group Selection", "Ctrl+E", true},
        {&frm.mnuShow, "&Show                                                 Ctrl+`", "", true},
        {&frm.mnuFlashSelected, "&Flash Selected                                   Ctrl+1", "", true},
        {&frm.mnuStayOnTop, "Stay On &Top", "", true},
        {&frm.mnuHelpHelp, "&Help", "", true},
        {&frm.mnuHelpCheckOnlineForUpdates, "&Check for updates", "", true},
        {&frm.mnuHelpAbout, "&About", "", true},
    };
    std::vector<const MenuItem*> flattened;
    std::vector<std::string> tops;
    for (MenuItem* top : frm.MenuBar()) {
        tops.push_back(top->Caption());
        for (MenuItem* entry : top->Items) flattened.push_back(entry);
    }
    EXPECT_EQ(tops, (std::vector<std::string>{"&File", "&Edit", "&View", "&Help"}));
    ASSERT_EQ(flattened.size(), std::size(rows));
    for (std::size_t i = 0; i < flattened.size(); ++i) {
        EXPECT_EQ(flattened[i], rows[i].item) << i;
        EXPECT_EQ(rows[i].item->Caption(), rows[i].caption);
        EXPECT_EQ(rows[i].item->Shortcut(), rows[i].shortcut) << rows[i].caption;
        EXPECT_EQ(rows[i].item->Enabled(), rows[i].enabled) << rows[i].caption;
    }
}

TEST_F(MainFormStart, ControlsEnabledOnlyWhereTheyCanAct) {
    for (const form::Control* c : std::initializer_list<const form::Control*>{
             &frm.lstGroups, &frm.lstMarkers, &frm.txtHmax, &frm.txtVmax, &frm.cmdAddMarker, &frm.cmdShow,
             &frm.chkFlashSelected, &frm.chkCopyCurrOnAdd, &frm.chkAllowGrabMarkers})
        EXPECT_TRUE(c->Enabled()) << c->Name();
    for (const form::Control* c : std::initializer_list<const form::Control*>{
             &frm.txtHpos, &frm.txtVpos, &frm.txtHlen, &frm.txtVlen, &frm.txtColour, &frm.txtThickness,
             &frm.txtOpacity, &frm.chkDotted, &frm.txtHlenGrpDef, &frm.txtVlenGrpDef, &frm.txtColourGrpDef,
             &frm.txtThicknessGrpDef, &frm.txtOpacityGrpDef, &frm.chkDottedGrpDef, &frm.txtGroupNotes,
             &frm.cmdDelMarker, &frm.cmdSaveGroup, &frm.cmdDelGroup, &frm.scrNudgeX, &frm.scrNudgeY, &frm.scrNudgeW,
             &frm.scrNudgeH})
        EXPECT_FALSE(c->Enabled()) << c->Name();
    EXPECT_EQ(frm.lstMarkers.MultiSelect(), form::ListBox::Selection::Extended);
    EXPECT_EQ(frm.lstGroups.MultiSelect(), form::ListBox::Selection::Single);
    EXPECT_FALSE(frm.txtChangeModeHid.Visible());
    EXPECT_EQ(frm.txtChangeModeHid.Text(), "txtChangeModeHid");
    EXPECT_EQ(frm.cmdAddMarker.Caption(), "Add &Marker");
    EXPECT_EQ(frm.cmdShow.ToolTipText(), "Display the listed markers");
    EXPECT_EQ(frm.txtThickness.ToolTipText(), "Thickness of marker (must be odd no)(blank to use group default)");
    EXPECT_EQ(frm.lblThickness.Caption(), "Thkns");
    for (const form::Timer* t : {&frm.timAddMarker, &frm.timAddMarkerComplete, &frm.timMoveMarkerStart,
                                 &frm.timMoveMarker, &frm.timMoveMarkerComplete, &frm.timFlashSelected})
        EXPECT_FALSE(t->TimerEnabled()) << t->Name();
    EXPECT_EQ(frm.timAddMarker.Interval(), 5);
    EXPECT_EQ(frm.timMoveMarker.Interval(), 200);
    EXPECT_EQ(frm.timFlashSelected.Interval(), 200);
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
};

TEST_F(MainFormState, ClickOfAMarkerFillsItsFields) {
    Select(0);
    EXPECT_EQ(frm.txtHpos.Text(), "400");
    EXPECT_EQ(frm.txtVpos.Text(), "300");
    EXPECT_EQ(frm.txtHlen.Text(), "S");
    EXPECT_EQ(frm.txtVlen.Text(), "S");
    EXPECT_EQ(frm.txtColour.Text(), "65280");
    EXPECT_EQ(frm.txtColour.BackColor(), 65280);
    EXPECT_EQ(frm.txtThickness.Text(), "3");
    EXPECT_EQ(frm.txtOpacity.Text(), "60");
    EXPECT_EQ(frm.chkDotted.Value(), 0);
    EXPECT_TRUE(frm.txtHpos.Enabled());
    EXPECT_TRUE(frm.scrNudgeW.Enabled());
    EXPECT_FALSE(frm.Dirty);

    Select(1);  // blanks show as empty fields and a grey box
    EXPECT_EQ(frm.txtVlen.Text(), "");
    EXPECT_EQ(frm.txtColour.Text(), "");
    EXPECT_EQ(frm.txtColour.BackColor(), form::kWhite);
    EXPECT_EQ(frm.chkDotted.Value(), 2);
}

TEST_F(MainFormState, ClickSetsTheBarsToTheMarker) {
    frm.SetNudgeRanges();
    Select(2);
    EXPECT_EQ(frm.scrNudgeX.Value(), 10);
    EXPECT_EQ(frm.scrNudgeY.Value(), 20);
    EXPECT_EQ(frm.scrNudgeW.Value(), 30);
    EXPECT_EQ(frm.scrNudgeH.Value(), 1080 - 40);
}

TEST_F(MainFormState, SeveralSelectedKeepTheFocusedFieldsButDisableThem) {
    Select(0);
    frm.lstMarkers.SetSelected(2, true);
    frm.lstMarkers.SetListIndex(2);
    EXPECT_EQ(frm.txtHpos.Text(), "10");
    EXPECT_FALSE(frm.txtHpos.Enabled());
    EXPECT_TRUE(frm.cmdDelMarker.Enabled());
    EXPECT_TRUE(frm.mnuDupMarker.Enabled());
    EXPECT_TRUE(frm.scrNudgeX.Enabled());
    EXPECT_FALSE(frm.scrNudgeW.Enabled());
}

TEST_F(MainFormState, UpdateWritesChangedFieldsAndRaisesDirty) {
    Select(0);
    frm.UpdateMarkerTable();
    EXPECT_FALSE(frm.Dirty);  // leaving a field unchanged changes nothing

    frm.txtHlen.SetText("120");
    frm.txtOpacity.SetText("");
    frm.txtHpos.SetText("401.5");
    frm.UpdateMarkerTable();
    EXPECT_TRUE(frm.Dirty);
    EXPECT_EQ(frm.store.Markers(1, Hlen), 120);
    EXPECT_EQ(frm.store.Markers(1, Opacity), -1);
    EXPECT_EQ(frm.store.Markers(1, Hpos), 402);  // ties to even
}

TEST_F(MainFormState, BlankPositionSuspendsTheWholeRow) {
    Select(0);
    frm.txtHpos.SetText("");
    frm.txtHlen.SetText("77");
    frm.UpdateMarkerTable();
    EXPECT_EQ(frm.store.Markers(1, Hlen), -2);
    EXPECT_EQ(frm.store.Markers(1, Hpos), 400);
    EXPECT_FALSE(frm.Dirty);
}

TEST_F(MainFormState, PastedTextThatIsNoNumberIsATypeMismatch) {
    Select(0);
    frm.txtThickness.SetText("abc");
    EXPECT_EQ(ErrorOf([&] { frm.UpdateMarkerTable(); }), kTypeMismatch);
}

TEST_F(MainFormState, GroupDefaultsReachRowZeroOnlyWithMarkersAndAClearedRow) {
    frm.txtHlenGrpDef.SetText("40");
    frm.chkDottedGrpDef.SetValue(1);
    frm.UpdateMarkerTable();
    EXPECT_EQ(frm.store.Markers(0, Hlen), 40);
    EXPECT_EQ(frm.store.Markers(0, Dotted), 1);
    EXPECT_TRUE(frm.Dirty);

    MainForm fresh(dialogs, overlay, desktop);  // row 0 still all 0: the form is not ready
    fresh.AppendMarker(1, 2, 3, 4, 5, 1, 100, 0);
    fresh.txtHlenGrpDef.SetText("40");
    fresh.UpdateMarkerTable();
    EXPECT_EQ(fresh.store.Markers(0, Hlen), 0);
    EXPECT_FALSE(fresh.Dirty);
}

TEST_F(MainFormState, EmptyGroupKeepsTypedDefaultsOutOfTheTable) {
    MainForm empty(dialogs, overlay, desktop);
    empty.ClearGroupDefaults();
    empty.txtHlenGrpDef.SetText("40");
    empty.UpdateMarkerTable();
    EXPECT_EQ(empty.store.Markers(0, Hlen), -1);
    EXPECT_FALSE(empty.Dirty);
}

TEST_F(MainFormState, StoredGreyDottedTurnsBlankAtTheNextUpdate) {
    frm.AppendMarker(1, 1, 1, 1, 1, 1, 1, 2);
    Select(3);
    EXPECT_EQ(frm.chkDotted.Value(), 2);
    frm.UpdateMarkerTable();
    EXPECT_EQ(frm.store.Markers(4, Dotted), -1);
    EXPECT_TRUE(frm.Dirty);
}

TEST_F(MainFormState, ThreeStateBoxCyclesThroughGreyAndForcesARebuild) {
    Select(0);
    overlay.calls.clear();
    frm.store.Markers(1, PaintedColour) = 65280;
    std::vector<int> seen;
    for (int press = 0; press < 3; ++press) {
        frm.chkDotted.MouseDown.Raise();
        seen.push_back(frm.chkDotted.Value());
    }
    EXPECT_EQ(seen, (std::vector<int>{2, 1, 0}));
    EXPECT_EQ(frm.store.Markers(1, PaintedColour), 0);
    EXPECT_EQ(frm.store.Markers(1, Dotted), 0);
    EXPECT_EQ(overlay.calls, (std::vector<std::string>{"ShowMarker 1", "ShowMarker 1", "ShowMarker 1"}));
}

TEST_F(MainFormState, GroupDottedClickRebuildsEveryMarker) {
    for (int r = 1; r <= 3; ++r) frm.store.Markers(r, PaintedColour) = 7;
    frm.chkDottedGrpDef.MouseDown.Raise();  // grey -> checked
    EXPECT_EQ(frm.store.Markers(0, Dotted), 1);
    for (int r = 1; r <= 3; ++r) EXPECT_EQ(frm.store.Markers(r, PaintedColour), 0);
    EXPECT_EQ(overlay.calls, (std::vector<std::string>{"ShowAllMarkers"}));
}

TEST_F(MainFormState, ClearingUnderLoadingDoesNotReachTheTable) {
    Select(2);
    overlay.calls.clear();
    frm.ClearMarkerFields();
    EXPECT_EQ(frm.chkDotted.Value(), 2);
    EXPECT_EQ(frm.store.Markers(3, Dotted), 1);
    EXPECT_TRUE(overlay.calls.empty());
    EXPECT_FALSE(frm.Loading);
}

TEST_F(MainFormState, EnableGroupControlsNeedsASelectedGroupForDeleteAndRename) {
    frm.EnableGroupControls(true);
    EXPECT_TRUE(frm.cmdSaveGroup.Enabled());
    EXPECT_TRUE(frm.txtGroupNotes.Enabled());
    EXPECT_FALSE(frm.cmdDelGroup.Enabled());
    EXPECT_FALSE(frm.mnuRenGroup.Enabled());
    frm.lstGroups.AddItem("Bench");
    frm.Loading = true;  // keep the click from loading anything
    frm.lstGroups.Click.Connect([] {});
    frm.lstGroups.SetListIndex(0);
    frm.EnableGroupControls(true);
    EXPECT_TRUE(frm.cmdDelGroup.Enabled());
    EXPECT_TRUE(frm.mnuRenGroup.Enabled());
    frm.EnableGroupControls(false);
    EXPECT_FALSE(frm.mnuExportGroup.Enabled());
    EXPECT_FALSE(frm.cmdDelGroup.Enabled());
}

TEST_F(MainFormState, PersistingCheckBoxesWriteAtOnce) {
    frm.chkCopyCurrOnAdd.SetValue(1);
    frm.chkAllowGrabMarkers.SetValue(1);
    frm.chkAllowGrabMarkers.SetValue(0);
    EXPECT_EQ(lib_ProfileGetString("Defaults", "CopyCurrOnAdd", "", frm.DataFile), "1");
    EXPECT_EQ(lib_ProfileGetString("Defaults", "AllowGrabMarkers", "", frm.DataFile), "0");
}

}  // namespace
}  // namespace ostrivane::testing
