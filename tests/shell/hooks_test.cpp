// The hooks and what they set going: hot keys, the press that grabs a line
// or fixes a placement, the deferred ticks of placing and dragging, and the
// blink of the selected markers.

#include "editor/main_form_fixture.hpp"

namespace ostrivane::testing {
namespace {

class HooksTest : public MainFormTest {
protected:
    HooksTest() { WriteDefaults(); }

    // Keys as "LC+ `+": LC/RC/LS/RS the four watched keys, ` the grave key,
    // 1 the digit, A any other key, M Alt; + down, - up; "sys" the Alt form
    // of the message.
    HookAnswer Keys(const std::string& keys) {
        std::istringstream in(keys);
        HookAnswer last = HookAnswer::PassOn;
        for (std::string k; in >> k;) {
            const bool sys = k.starts_with("sys");
            if (sys) k.erase(0, 3);
            const bool up = k.back() == '-';
            k.pop_back();
            const std::uint32_t vk = k == "LC" ? VK_LCONTROL : k == "RC" ? VK_RCONTROL : k == "LS" ? VK_LSHIFT
                                   : k == "RS" ? VK_RSHIFT  : k == "`"  ? VK_OEM_3    : k == "1"  ? VK_1
                                   : k == "M"  ? 0xA4u      : 0x41u;
            const std::uint32_t message = (sys ? WM_SYSKEYDOWN : WM_KEYDOWN) + (up ? 1u : 0u);
            last = input.keyboard(0, message, {vk, 0, up ? LLKHF_UP : 0u, 0, 0});
        }
        return last;
    }
    // Markers at (Hpos, Vpos), 21 long each way, thickness 1, listed.
    void Markers(std::initializer_list<std::pair<int, int>> at) {
        for (const auto& [h, v] : at) frm.AppendMarker(h, v, 21, 21, 255, 1, 100, 0);
    }
    HookAnswer Press(int x, int y) {
        input.cursor = {x, y};
        return input.mouse(0, WM_LBUTTONDOWN);
    }
    std::string Timers() const {
        std::string s;
        for (const form::Timer* t : {&frm.timAddMarker, &frm.timAddMarkerComplete, &frm.timMoveMarkerStart,
                                     &frm.timMoveMarker, &frm.timMoveMarkerComplete, &frm.timFlashSelected})
            s += t->TimerEnabled() ? '1' : '0';
        return s;
    }
};

// Ctrl without Shift makes the two keys hot; Alt is not looked at; only
// the press is swallowed; the flags are only as good as the events seen.
TEST_F(HooksTest, HotKeysFollowTheFourKeyFlags) {
    const struct { const char* keys; HookAnswer answer; bool showing, flashing; } rows[] = {
        {"LC+ `+", HookAnswer::Swallow, true, false},      {"RC+ `+", HookAnswer::Swallow, true, false},
        {"LC+ 1+", HookAnswer::Swallow, false, true},      {"RC+ sys1+", HookAnswer::Swallow, false, true},
        {"M+ LC+ sys`+", HookAnswer::Swallow, true, false}, {"LC+ RC+ LC- `+", HookAnswer::Swallow, true, false},
        {"LC+ `+ `+", HookAnswer::Swallow, false, false},  // the auto-repeat acts again
        {"LC+ LS+ `+", HookAnswer::PassOn, false, false},  {"RS+ RC+ 1+", HookAnswer::PassOn, false, false},
        {"LC+ LS+ LS- `+", HookAnswer::Swallow, true, false}, {"LC+ LC- `+", HookAnswer::PassOn, false, false},
        {"`+", HookAnswer::PassOn, false, false},          {"LC+ `-", HookAnswer::PassOn, false, false},
        {"LC+ A+", HookAnswer::PassOn, false, false},      {"LC+", HookAnswer::PassOn, false, false},
        {"LC+ `+ `-", HookAnswer::PassOn, true, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.keys);
        frm.LCtrlDown = frm.RCtrlDown = frm.LShiftDown = frm.RShiftDown = 0;
        if (frm.Showing) frm.Go();
        if (frm.mnuFlashSelected.Checked()) frm.ToggleFlashSelected(false);
        frm.HookKeyboard();
        EXPECT_EQ(Keys(row.keys), row.answer);
        EXPECT_EQ(frm.Showing, row.showing);
        EXPECT_EQ(frm.mnuFlashSelected.Checked(), row.flashing);
        EXPECT_EQ(frm.chkFlashSelected.Value(), row.flashing ? kCheckChecked : kCheckUnchecked);
    }
    EXPECT_EQ(frm.LCtrlDown + frm.RCtrlDown, -1);  // True is -1
    EXPECT_EQ(input.keyboard(1, WM_KEYDOWN, {VK_OEM_3, 0, 0, 0, 0}), HookAnswer::PassOn);
    EXPECT_EQ(input.keyboard(0, WM_MOUSEMOVE, {VK_OEM_3, 0, 0, 0, 0}), HookAnswer::PassOn);
    EXPECT_TRUE(frm.Showing);
}

TEST_F(HooksTest, EachHookIsInstalledOnceAndRemovedOnce) {
    frm.HookKeyboard();
    frm.HookKeyboard();
    frm.HookMouse();
    frm.MouseMode = 3;
    frm.UnhookMouse();
    frm.UnhookMouse();
    frm.UnhookKeyboard();
    frm.UnhookKeyboard();
    EXPECT_EQ(input.calls, (Lines{"SetKeyboardHook", "SetMouseHook", "Unhook 2", "Unhook 1"}));
    // One that cannot be installed stays 0 and is tried again next time; the
    // mode goes back to 0 whatever.
    input.hooksFail = true;
    frm.MouseMode = 1;
    frm.HookMouse();
    frm.UnhookMouse();
    frm.HookMouse();
    EXPECT_EQ(frm.MouseHook + frm.MouseMode, 0);
    EXPECT_EQ(input.calls.size(), 6u);
}

// What the left button does in each mode; a grab needs the box, mode 0 and
// the markers up. Moves do no work at all.
TEST_F(HooksTest, TheLeftButtonByModeAndGrabSwitch) {
    Markers({{500, 400}});
    const struct { int mode; bool allow, showing; std::uint32_t message; HookAnswer answer; int modeAfter;
                   const char* timers; } rows[] = {
        {0, true, true, WM_LBUTTONDOWN, HookAnswer::Swallow, 2, "001000"},
        {0, false, true, WM_LBUTTONDOWN, HookAnswer::PassOn, 0, "000000"},
        {0, true, false, WM_LBUTTONDOWN, HookAnswer::PassOn, 0, "000000"},
        {0, true, true, WM_LBUTTONUP, HookAnswer::PassOn, 0, "000000"},
        {0, true, true, WM_MOUSEMOVE, HookAnswer::PassOn, 0, "000000"},
        {1, true, true, WM_LBUTTONDOWN, HookAnswer::Swallow, 1, "010000"},
        {1, false, false, WM_LBUTTONDOWN, HookAnswer::Swallow, 1, "010000"},
        {1, true, true, WM_LBUTTONUP, HookAnswer::PassOn, 1, "000000"},
        {2, true, true, WM_LBUTTONDOWN, HookAnswer::PassOn, 2, "000000"},
        {2, true, true, WM_LBUTTONUP, HookAnswer::Swallow, 2, "000010"},
        {3, false, false, WM_LBUTTONUP, HookAnswer::Swallow, 3, "000010"},
        {3, true, true, WM_MOUSEMOVE, HookAnswer::PassOn, 3, "000000"},
    };
    frm.HookMouse();
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << "mode " << row.mode << " message " << row.message);
        for (form::Timer* t : {&frm.timAddMarkerComplete, &frm.timMoveMarkerStart, &frm.timMoveMarkerComplete})
            t->SetTimerEnabled(false);
        frm.MouseMode = static_cast<std::int16_t>(row.mode);
        frm.chkAllowGrabMarkers.SetValue(row.allow ? kCheckChecked : kCheckUnchecked);
        frm.Showing = row.showing;
        input.cursor = {500, 400};
        EXPECT_EQ(input.mouse(0, row.message), row.answer);
        EXPECT_EQ(frm.MouseMode, row.modeAfter);
        EXPECT_EQ(Timers(), row.timers);
    }
    frm.MouseMode = 1;
    EXPECT_EQ(input.mouse(-1, WM_LBUTTONDOWN), HookAnswer::PassOn);
    EXPECT_EQ(Timers(), "000000");
}

// Grab distance 10: the lowest row wins, a crossing takes the vertical
// line, beyond the distance the press passes. Row 3's line runs over the
// whole screen.
TEST_F(HooksTest, HitTestTakesTheFirstRowAndTheVerticalLineAtACrossing) {
    Markers({{500, 400}, {505, 400}, {900, 100}});
    frm.store.Markers(3, Hlen) = kWholeScreen;
    frm.chkAllowGrabMarkers.SetValue(kCheckChecked);
    frm.Go();
    const struct { int x, y; int mode, row; } rows[] = {
        {500, 400, 2, 1}, {507, 395, 2, 1}, {514, 400, 2, 2}, {515, 410, 2, 2},
        {100, 105, 3, 3}, {1900, 90, 3, 3}, {900, 130, 0, 0}, {100, 300, 0, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << row.x << "," << row.y);
        frm.MouseMode = 0;
        frm.GrabbedMarker = 0;
        EXPECT_EQ(Press(row.x, row.y), row.mode ? HookAnswer::Swallow : HookAnswer::PassOn);
        EXPECT_EQ(frm.MouseMode, row.mode);
        EXPECT_EQ(frm.GrabbedMarker, row.row);
    }
    frm.MouseMode = 0;
    frm.store.Markers(1, Hpos) = 2147483647;  // the test's sums overflow inside the hook
    EXPECT_EQ(ErrorOf([&] { Press(10, 10); }), kOverflow);
}

TEST_F(HooksTest, PlacingFollowsTheCursorAndTheNextPressFixesTheMarker) {
    WriteDefaults("AddMarkerOpacity=40\r\nAddMarkerColour=255\r\nAddMarkerDotted=1\r\n");
    Markers({{100, 100}});
    frm.lstMarkers.SetSelected(0, true);
    frm.SetVisible(true);
    frm.AddMarkerThickness = 3;
    input.displayCounter = 2;
    frm.mnuPopupAddMarker.PerformClick();
    EXPECT_EQ(overlay.calls, (Lines{"CreateAddLines 255 1 102"}));
    EXPECT_EQ(std::make_tuple(frm.MouseMode, frm.MouseHook != 0, frm.Visible(), input.displayCounter),
              std::make_tuple(1, true, false, -1));
    EXPECT_EQ(Timers(), "100000");

    overlay.calls.clear();
    for (const PixelPoint at : {PixelPoint{0, 0}, PixelPoint{300, 200}, PixelPoint{300, 200}, PixelPoint{301, 200}}) {
        input.cursor = at;
        frm.timAddMarker.Tick.Raise();
    }
    EXPECT_EQ(overlay.calls, (Lines{"MoveAddLines 300 200 3", "MoveAddLines 301 200 3"}));

    overlay.calls.clear();
    input.cursor = {640, 480};
    EXPECT_EQ(input.mouse(0, WM_LBUTTONDOWN), HookAnswer::Swallow);
    input.pointer = vbCrosshair;
    frm.timAddMarkerComplete.Tick.Raise();
    EXPECT_EQ(overlay.calls, (Lines{"DestroyAddLines", "ShowMarker 2"}));
    EXPECT_EQ(Timers(), "000000");
    EXPECT_EQ(std::make_tuple(frm.MouseMode, frm.Visible(), input.displayCounter, input.pointer),
              std::make_tuple(0, true, 0, 0));
    EXPECT_EQ(Selection(), ".X");
    EXPECT_EQ(frm.txtHpos.Text() + "," + frm.txtVpos.Text(), "640,480");  // the list's click filled the fields
    EXPECT_TRUE(frm.Dirty && frm.lblMsg.Caption().empty());
    EXPECT_EQ(input.mouse(0, WM_LBUTTONUP), HookAnswer::PassOn);  // the release goes to the window beneath
}

// What the new marker takes from the fields: nothing, or their values as
// they stand ("S" the whole screen, a blank inherits, grey dotted is 2,
// where the table's own cell says -1). A full table fails after the cross
// is gone, with the pointer still hidden.
TEST_F(HooksTest, CopyCurrentOnAddTakesTheFieldsAsTheyStandAndAFullTableFails) {
    Markers({{100, 100}});
    frm.lstMarkers.SetListIndex(0);
    const std::vector<std::int32_t> added[] = {{7, 8, -1, -1, -1, -1, -1, -1}, {7, 8, -2, -1, 65280, 3, -1, 2}};
    for (const int copy : {kCheckUnchecked, kCheckChecked}) {
        frm.txtHlen.SetText("s");
        frm.txtVlen.SetText("");
        frm.txtColour.SetText("65280");
        frm.txtThickness.SetText("3");
        frm.chkDotted.SetValue(kCheckGrey);
        frm.chkCopyCurrOnAdd.SetValue(copy);
        frm.cmdAddMarker.PerformClick();
        input.cursor = {7, 8};
        frm.timAddMarkerComplete.Tick.Raise();
        EXPECT_EQ(Marker(frm.store.MarkerCount), added[copy]);
    }
    EXPECT_EQ(Marker(2), (std::vector<std::int32_t>{7, 8, -2, -1, 65280, 3, -1, -1})) << "the edits went to the shown marker first";
    while (frm.store.MarkerCount < 50) Markers({{1, 1}});
    frm.cmdAddMarker.PerformClick();
    EXPECT_EQ(ErrorOf([&] { frm.timAddMarkerComplete.Tick.Raise(); }), kSubscriptOutOfRange);
    EXPECT_EQ(overlay.calls.back(), "DestroyAddLines");
    EXPECT_EQ(input.displayCounter, -1);
}

// A drag writes the cursor into the position field each tick; the form
// comes back only if it was in front.
TEST_F(HooksTest, DraggingALineGoesThroughItsFieldAndEndsAtTheRelease) {
    for (const bool foreground : {true, false}) {
        SCOPED_TRACE(foreground);
        frm.lstMarkers.Clear();
        frm.store.MarkerCount = 0;
        Markers({{100, 100}, {500, 400}, {900, 700}});
        frm.lstMarkers.SetSelected(0, true);
        frm.lstMarkers.SetSelected(2, true);
        frm.chkAllowGrabMarkers.SetValue(kCheckChecked);
        if (!frm.Showing) frm.Go();
        frm.SetVisible(true);
        desktop.foreground = foreground;
        input.displayCounter = -3;
        EXPECT_EQ(Press(495, 410), HookAnswer::Swallow);
        frm.timMoveMarkerStart.Tick.Raise();
        EXPECT_EQ(Selection(), ".X.");
        EXPECT_EQ(frm.txtVpos.Text(), "400");
        EXPECT_EQ(std::make_tuple(frm.Visible(), input.pointer), std::make_tuple(false, 2));
        EXPECT_EQ(Timers(), "000100");
        overlay.calls.clear();
        for (const PixelPoint at : {PixelPoint{700, 50}, PixelPoint{700, 50}, PixelPoint{2500, 60}}) {
            input.cursor = at;
            frm.timMoveMarker.Tick.Raise();
        }
        EXPECT_EQ(overlay.calls, (Lines{"ShowMarker 2", "ShowMarker 2"}));
        EXPECT_EQ(frm.store.Markers(2, Hpos), 1920);  // held to the screen by the field's own rule
        EXPECT_EQ(frm.store.Markers(2, Vpos), 400);
        input.cursor = {30, 30};  // the release is not sampled
        EXPECT_EQ(input.mouse(0, WM_LBUTTONUP), HookAnswer::Swallow);
        frm.timMoveMarkerComplete.Tick.Raise();
        EXPECT_EQ(frm.store.Markers(2, Hpos), 1920);
        EXPECT_EQ(std::make_tuple(frm.MouseMode, frm.Visible(), input.pointer, input.displayCounter),
                  std::make_tuple(0, foreground, 0, 0));
        EXPECT_EQ(Timers(), "000000");
        EXPECT_TRUE(frm.Dirty);
    }
    // A horizontal line moves the crossing point up and down only.
    frm.store.Markers(2, Hpos) = 500;
    frm.store.Markers(2, Hlen) = kWholeScreen;
    EXPECT_EQ(Press(450, 401), HookAnswer::Swallow);
    frm.timMoveMarkerStart.Tick.Raise();
    input.cursor = {10, 20};
    frm.timMoveMarker.Tick.Raise();
    EXPECT_EQ(std::make_pair(frm.store.Markers(2, Hpos), frm.store.Markers(2, Vpos)), std::make_pair(500, 20));
}

// A tick shows the selected markers, the next makes them invisible; nothing
// selected, nothing moves on. The check box and the menu entry stay in step.
TEST_F(HooksTest, FlashBlinksTheSelectedMarkersInPhase) {
    Markers({{1, 1}, {2, 2}, {3, 3}});
    frm.Go();
    frm.chkFlashSelected.SetValue(kCheckChecked);  // the user's click
    EXPECT_TRUE(frm.mnuFlashSelected.Checked() && frm.timFlashSelected.TimerEnabled());
    EXPECT_TRUE(ReadDataFile().ends_with("FlashSelected=1\r\n"));
    overlay.calls.clear();
    frm.timFlashSelected.Tick.Raise();
    EXPECT_TRUE(overlay.calls.empty() && !frm.FlashPhase);
    frm.lstMarkers.SetSelected(0, true);
    frm.lstMarkers.SetSelected(2, true);
    for (int tick = 0; tick < 3; ++tick) frm.timFlashSelected.Tick.Raise();
    EXPECT_EQ(overlay.calls, (Lines{"ShowMarker 1", "ShowMarker 3", "MakeMarkerInvisible 1", "MakeMarkerInvisible 3",
                                    "ShowMarker 1", "ShowMarker 3"}));
    EXPECT_TRUE(frm.FlashPhase);
    // Off from the menu: the box follows, all lines come back.
    overlay.calls.clear();
    frm.mnuFlashSelected.PerformClick();
    EXPECT_EQ(std::make_tuple(frm.chkFlashSelected.Value(), frm.timFlashSelected.TimerEnabled(), frm.FlashPhase),
              std::make_tuple(kCheckUnchecked, false, false));
    EXPECT_EQ(overlay.calls, (Lines{"ShowAllMarkers"}));
    EXPECT_TRUE(ReadDataFile().ends_with("FlashSelected=0\r\n"));
    // Every road back to phase False: the toggle, both halves of Go.
    for (const auto& reset : std::vector<std::function<void()>>{
             [&] { frm.chkFlashSelected.SetValue(kCheckChecked); }, [&] { frm.Go(); }, [&] { frm.Go(); }}) {
        frm.FlashPhase = true;
        reset();
        EXPECT_FALSE(frm.FlashPhase);
    }
    EXPECT_TRUE(frm.timFlashSelected.TimerEnabled());  // the box was on again at the show
    frm.Loading = true;
    frm.ToggleFlashSelected(false);
    EXPECT_TRUE(frm.mnuFlashSelected.Checked()) << "re-entry under Loading does nothing";
}

}  // namespace
}  // namespace ostrivane::testing
