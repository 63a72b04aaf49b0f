// The show and stop switch, driven through the form's buttons and menus.
#include "overlay/overlay_fixture.hpp"

namespace ostrivane::testing {
namespace {

class ShowStopTest : public OverlayTest {
protected:
    ShowStopTest() { frm.SetVisible(true); }
    void Append(std::int32_t hpos) { frm.AppendMarker(hpos, 200, 21, 21, 255, 1, 100, 0); }
    void Press() { frm.cmdShow.PerformClick(); }
    // Showing, the captions of the button and the popup entry, the message;
    // flash phase, mouse hook, mouse mode; the timers flash, add, add
    // complete, move; the windows up; the form.
    std::string State() const {
        std::string timers;
        for (const form::Timer* t :
             {&frm.timFlashSelected, &frm.timAddMarker, &frm.timAddMarkerComplete, &frm.timMoveMarker})
            timers += t->TimerEnabled() ? '1' : '0';
        return std::to_string(frm.Showing) + " " + frm.cmdShow.Caption() + " " + frm.mnuPopupShow.Caption() + " [" +
               frm.lblMsg.Caption() + "] " + std::to_string(frm.FlashPhase) + std::to_string(frm.MouseHooked) +
               std::to_string(frm.MouseMode) + " " + timers + " " + std::to_string(lines.windows.size()) +
               (frm.Visible() ? " up" : " hidden") +
               (frm.GetWindowState() == form::WindowState::Minimized ? " minimised" : "");
    }
};

TEST_F(ShowStopTest, ShowWithNoMarkersSaysSoAndBringsTheFormBack) {
    WriteDefaults("HideOnGo=1\r\n");
    frm.mnuFileMinToTray.PerformClick();
    Press();
    EXPECT_EQ(State(), "1 &Stop &Stop [Select a group or add a marker] 010 0000 0 up");
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
    EXPECT_EQ(State(), "1 &Stop &Stop [] 010 0000 4 up");
    EXPECT_EQ(WindowOf(1, HwndV).rect.left, 700);
    EXPECT_EQ(frm.mnuShow.Caption().substr(0, 6), "&Show ");

    // A placement and a drag under way when the stop comes.
    for (std::size_t i = 1; i <= 4; ++i) windows.AddLines[i] = lines.CreateLineWindow("Ostrvane1", {});
    frm.MouseMode = 2;
    frm.FlashPhase = true;
    frm.lblMsg.SetCaption("Left click to place marker");
    for (form::Timer* t : {&frm.timFlashSelected, &frm.timAddMarker, &frm.timAddMarkerComplete, &frm.timMoveMarker})
        t->SetTimerEnabled(true);
    Press();
    // the drag's timer is not the stop's business
    EXPECT_EQ(State(), "0 &Show &Show [] 000 0001 0 up");
    EXPECT_EQ(windows.AddLines[1], 0);
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

// Both settings are read at the moment they are needed; the lines stay up
// whatever the form does. The flash timer follows its check box.
TEST_F(ShowStopTest, HideOnGoRestoreOnStopAndFlash) {
    Append(100);
    const struct { const char* settings; int flash; const char* shown; const char* stopped; } cases[] = {
        {"HideOnGo=1\r\n", 1, "1000 2 hidden minimised", "0000 0 hidden minimised"},
        {"HideOnGo=2\r\nRestoreOnStop=0\r\n", 2, "0000 2 up", "0000 0 up"},
        {"HideOnGo=1\r\nRestoreOnStop=1\r\n", 0, "0000 2 hidden minimised", "0000 0 up"},
        {"", 1, "1000 2 up", "0000 0 up"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.settings);
        WriteDefaults(c.settings);
        frm.mnuPopupRestore.PerformClick();
        frm.chkFlashSelected.SetValue(c.flash);
        Press();
        EXPECT_EQ(State().substr(State().find("] ") + 6), c.shown);
        Press();
        EXPECT_EQ(State().substr(State().find("] ") + 6), c.stopped);
    }
}

}  // namespace
}  // namespace ostrivane::testing
