// The show and stop switch, driven through the form's buttons and menus.
#include "overlay/overlay_fixture.hpp"

namespace ostrivane::testing {
namespace {

class ShowStopTest : public OverlayTest {
protected:
    ShowStopTest() { frm.SetVisible(true); }
    void Append(std::int32_t hpos) { frm.AppendMarker(hpos, 200, 21, 21, 255, 1, 100, 0); }
    void Press() { frm.cmdShow.PerformClick(); }
};

TEST_F(ShowStopTest, ShowWithNoMarkersSaysSoAndBringsTheFormBack) {
    WriteDefaults("HideOnGo=1\r\n");
    frm.mnuFileMinToTray.PerformClick();

    Press();

    EXPECT_TRUE(frm.Showing);
    EXPECT_EQ(frm.lblMsg.Caption(), "Select a group or add a marker");
    EXPECT_TRUE(frm.Visible());
    EXPECT_EQ(frm.GetWindowState(), form::WindowState::Normal);
    EXPECT_EQ(frm.cmdShow.Caption(), "&Stop");
    EXPECT_EQ(frm.mnuPopupShow.Caption(), "&Stop");
    EXPECT_TRUE(frm.MouseHooked);
    frm.AddMarker(500, 600, 21, 21, 255, 1, 100, 0);
    EXPECT_EQ(lines.windows.size(), 2u) << "still showing: a new marker goes straight up";
}

TEST_F(ShowStopTest, ShowThenStop) {
    Append(100);
    Append(300);
    frm.lstMarkers.SetListIndex(0);
    frm.txtHpos.SetText("700");  // an edit not yet in the table
    frm.FlashPhase = true;

    Press();

    EXPECT_FALSE(frm.FlashPhase);
    EXPECT_EQ(lines.windows.size(), 4u);
    EXPECT_EQ(WindowOf(1, HwndV).rect.left, 700);
    EXPECT_EQ(frm.mnuShow.Caption().substr(0, 6), "&Show ");
    EXPECT_TRUE(frm.Visible());

    // A placement and a drag under way when the stop comes.
    for (std::size_t i = 1; i <= 4; ++i) windows.AddLines[i] = lines.CreateLineWindow("Ostrvane1", {});
    frm.MouseMode = 2;
    frm.FlashPhase = true;
    frm.lblMsg.SetCaption("Left click to place marker");
    for (form::Timer* t : {&frm.timFlashSelected, &frm.timAddMarker, &frm.timAddMarkerComplete, &frm.timMoveMarker})
        t->SetTimerEnabled(true);

    Press();

    EXPECT_FALSE(frm.Showing);
    EXPECT_TRUE(lines.windows.empty());
    EXPECT_EQ(windows.AddLines[1], 0);
    EXPECT_EQ(frm.cmdShow.Caption(), "&Show");
    EXPECT_EQ(frm.mnuPopupShow.Caption(), "&Show");
    EXPECT_EQ(frm.lblMsg.Caption(), "");
    EXPECT_FALSE(frm.FlashPhase);
    EXPECT_FALSE(frm.MouseHooked);
    EXPECT_EQ(frm.MouseMode, 0);
    for (const form::Timer* t : {&frm.timFlashSelected, &frm.timAddMarker, &frm.timAddMarkerComplete})
        EXPECT_FALSE(t->TimerEnabled()) << t->Name();
    EXPECT_TRUE(frm.timMoveMarker.TimerEnabled()) << "the drag's timers are not the stop's business";
}

TEST_F(ShowStopTest, TheMenusPressTheButton) {
    frm.mnuShow.PerformClick();
    EXPECT_TRUE(frm.Showing);
    frm.mnuPopupShow.PerformClick();
    EXPECT_FALSE(frm.Showing);
    int presses = 0;
    frm.cmdShow.Click.Connect([&] { ++presses; });  // in place of Go
    frm.mnuShow.PerformClick();
    frm.mnuPopupShow.PerformClick();
    EXPECT_EQ(presses, 2);
}

// Deleting the focused marker or clearing the group moves the focus out of
// a marker field while no marker is focused: its Validate must not put up
// lines that no stop takes down.
TEST_F(ShowStopTest, NoLinesOutliveTheStopAfterTheFocusedMarkerWentAway) {
    const std::pair<form::MenuItem*, form::TextBox*> roads[] = {{&frm.mnuDelMarker, &frm.txtHpos},
                                                                {&frm.mnuClearGroupSelection, &frm.txtThickness}};
    for (const auto& [menu, field] : roads) {
        SCOPED_TRACE(menu->Name());
        Append(100);
        Append(300);
        frm.lstMarkers.ClickItem(0);
        frm.Dirty = false;
        Press();
        field->SetFocus();
        menu->PerformClick();
        Press();
        EXPECT_TRUE(lines.windows.empty());
    }
}

TEST_F(ShowStopTest, FlashTimerRunsOnlyWhenFlashSelectedIsChecked) {
    Append(100);
    for (const auto& [check, enabled] : {std::pair{0, false}, {1, true}, {2, false}}) {
        SCOPED_TRACE(check);
        frm.chkFlashSelected.SetValue(check);
        Press();
        EXPECT_EQ(frm.timFlashSelected.TimerEnabled(), enabled);
        Press();
    }
}

// Both settings are read at the moment they are needed.
TEST_F(ShowStopTest, HideOnGoAndRestoreOnStop) {
    Append(100);
    struct Case {
        const char* settings;
        bool hiddenAfterShow, visibleAfterStop;
    };
    const Case cases[] = {{"HideOnGo=1\r\n", true, false},
                          {"HideOnGo=2\r\nRestoreOnStop=0\r\n", false, true},
                          {"HideOnGo=1\r\nRestoreOnStop=1\r\n", true, true},
                          {"", false, true}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.settings);
        WriteDefaults(c.settings);
        frm.mnuPopupRestore.PerformClick();

        Press();
        EXPECT_EQ(frm.Visible(), !c.hiddenAfterShow);
        EXPECT_EQ(lines.windows.size(), 2u) << "the lines stay up whatever the form does";

        Press();
        EXPECT_EQ(frm.Visible(), c.visibleAfterStop);
        EXPECT_EQ(frm.GetWindowState() == form::WindowState::Minimized, !c.visibleAfterStop);
    }
}

TEST_F(ShowStopTest, ShowWhileMinimisedLeavesTheForegroundAlone) {
    Append(100);
    frm.mnuFileMinToTray.PerformClick();
    Press();
    EXPECT_TRUE(desktop.calls.empty());
    EXPECT_EQ(lines.windows.size(), 2u);
}

}  // namespace
}  // namespace ostrivane::testing
