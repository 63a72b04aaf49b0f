// The real marker windows on fake line windows under a main form on the fake
// platform: the roads of ShowMarker, the classes, the show and stop switch.
#include <array>
#include <functional>

#include "editor/main_form_fixture.hpp"

namespace ostrivane::testing {
namespace {

class OverlayTest : public MainFormTest {
protected:
    OverlayTest() : MainFormTest(true) {
        // The yield stands among the paints, and other events may run there.
        desktop.duringDoEvents = [this] {
            lineWindows.calls.push_back("DoEvents");
            if (duringYield) duringYield();
        };
    }

    // Row 0 with the group defaults {Hlen, Vlen, Colour, Thickness, Opacity, Dotted}.
    void SetGroupDefaults(const std::array<std::int32_t, 6>& v) {
        for (std::size_t i = 0; i < 6; ++i) frm.store.Markers(0, kCells[i + 2]) = v[i];
    }
    // A marker written straight into the table: {Hpos, Vpos, then as above}.
    int PutMarker(const std::array<std::int32_t, 8>& v) {
        const int r = ++frm.store.MarkerCount;
        for (std::size_t i = 0; i < 8; ++i) frm.store.Markers(r, kCells[i]) = v[i];
        return r;
    }
    const fakes::FakeLineWindows::Window& WindowOf(int row, int column) const {
        return lineWindows.windows.at(Cell(row, column));
    }
    // A window as "left top width height alpha".
    std::string Seen(int row, int column) const {
        const auto& w = WindowOf(row, column);
        return std::to_string(w.rect.left) + " " + std::to_string(w.rect.top) + " " + std::to_string(w.rect.width) +
               " " + std::to_string(w.rect.height) + " " + std::to_string(w.alpha);
    }

    static constexpr int kCells[8] = {Hpos, Vpos, Hlen, Vlen, Colour, Thickness, Opacity, Dotted};
    std::function<void()> duringYield;
};

class MarkerWindowsTest : public OverlayTest {
protected:
    MarkerWindowsTest() { frm.Showing = true; }
};

// Foreground is no part of showing: it goes with the form's window state.
TEST_F(MarkerWindowsTest, NothingReachesTheScreenWhileStoppedOrForARowOutsideTheList) {
    PutMarker({100, 200, 21, 21, 255, 40000, 200, 0});
    frm.Showing = false;
    markerWindows.ShowMarker(1);
    using form::WindowState;
    for (const auto& [state, calls] : {std::pair{WindowState::Maximized, Lines{"SetForegroundWindow frmMain"}},
                                       {WindowState::Minimized, Lines{}}}) {
        frm.SetWindowState(state);
        desktop.calls.clear();
        markerWindows.ShowAllMarkers();
        EXPECT_EQ(desktop.calls, calls);
    }
    frm.Showing = true;
    for (const int row : {0, 2, -1, 51}) markerWindows.ShowMarker(row);  // a stop would never take these down
    EXPECT_TRUE(lineWindows.calls.empty());
}

// A failing step goes alone: what it was to give stays 0, an alpha never applied is -1.
TEST_F(MarkerWindowsTest, RectanglesAndAlphaComeThroughTheCascade) {
    const struct { std::array<std::int32_t, 8> marker; const char* horizontal; const char* vertical; } cases[] = {
        {{100, 200, -1, -1, -1, -1, -1, -1}, "89 199 20 3 76", "99 189 3 20 76"},  // the group's
        {{-500, 100, -2, -2, 255, 1, 90, 0}, "0 100 1920 1 230", "-500 0 1 1920 230"},
        {{100, 200, 21, 21, 255, 1, 200, 0}, "90 200 21 1 -1", "100 190 1 21 -1"},
        {{100, 200, 21, 21, 255, 40000, 100, 0}, "90 200 21 0 255", "100 190 0 21 255"},
        {{100, 200, 40000, 21, 255, 1, 100, 0}, "100 200 1 1 255", "100 190 1 21 255"},
        {{2000000000, 200, 21, 21, 255, 1, 100, 0}, "0 0 0 0 255", "0 0 0 0 255"}};
    SetGroupDefaults({20, 20, -1, 3, 30, -1});
    for (const auto& c : cases) {
        const int r = PutMarker(c.marker);
        EXPECT_EQ(ErrorOf([&] { markerWindows.ShowMarker(r); }), 0);
        EXPECT_EQ(Seen(r, HwndH), c.horizontal);
        EXPECT_EQ(Seen(r, HwndV), c.vertical);
    }
}

// Same colour and dotted value share a class; the dotted value is kept as
// given, so 2 is a class of its own beside 1.
TEST_F(MarkerWindowsTest, OneClassPerPairOfEffectiveColourAndDotted) {
    SetGroupDefaults({-1, -1, 65280, -1, -1, -1});
    for (const std::int32_t dotted : {0, 0, 2, 1}) PutMarker({10, 10, 5, 5, 255, 1, 100, dotted});
    PutMarker({50, 50, 5, 5, -1, 1, 100, -1});  // group colour, global dotted 0
    PutMarker({60, 60, 5, 5, 65280, 1, 100, 0});
    markerWindows.ShowAllMarkers();
    std::string got;
    for (int r = 1; r <= 6; ++r) {
        const auto& c = lineWindows.classes.at(WindowOf(r, HwndV).className);
        got += WindowOf(r, HwndV).className + "=" + std::to_string(c.colour) + "/" + std::to_string(c.dotted) + " ";
    }
    EXPECT_EQ(got, "Ostrvane1=255/0 Ostrvane1=255/0 Ostrvane2=255/2 Ostrvane3=255/1 Ostrvane4=65280/0 Ostrvane4=65280/0 ");
    EXPECT_EQ(markerWindows.ClassCount, 4);
}

// Each road from a marker shown once: windows 100 and 101 of class Ostrvane1,
// blank colour under a red group default. A road writes cells {row, column,
// value}; column 0 destroys the windows, -1 has a stop run during the yield.
struct Road {
    const char* name;
    std::vector<std::array<int, 3>> cells;
    Lines calls;
};

class ShowMarkerRoads : public MarkerWindowsTest, public ::testing::WithParamInterface<Road> {};

TEST_P(ShowMarkerRoads, CallsInOrder) {
    SetGroupDefaults({-1, -1, 255, -1, -1, -1});
    PutMarker({100, 200, 21, 21, -1, 1, 100, 0});
    markerWindows.ShowMarker(1);
    ASSERT_EQ(lineWindows.calls, (Lines{"RegisterClass Ostrvane1", "Create Ostrvane1", "Create Ostrvane1",
                                  "SetAlpha 100 255", "SetAlpha 101 255"}));
    lineWindows.calls.clear();
    for (const auto& [row, column, value] : GetParam().cells) {
        if (column == 0) markerWindows.DestroyMarkerWindows(row);
        else if (column < 0) duringYield = [&] { markerWindows.DestroyAllMarkerWindows(); };
        else frm.store.Markers(row, column) = value;
    }
    markerWindows.ShowMarker(1);
    EXPECT_EQ(lineWindows.calls, GetParam().calls);
    // The painted cells follow the raw and the effective colour.
    EXPECT_EQ(Cell(1, PaintedColour), Cell(1, Colour));
    EXPECT_EQ(Cell(1, PaintedEffective), EffectiveValue(frm.store, 1, Colour));
}

const Lines kQuiet = {"Move 100", "Move 101", "SetAlpha 100 255", "SetAlpha 101 255"};
const Lines kRebuilt = {"RegisterClass Ostrvane2", "Destroy 100", "Destroy 101", "Create Ostrvane2",
                        "Create Ostrvane2", "Move 102", "Move 103", "SetAlpha 102 255", "SetAlpha 103 255"};

INSTANTIATE_TEST_SUITE_P(
    MarkerWindows, ShowMarkerRoads,
    ::testing::Values(
        Road{"Nothing", {}, kQuiet},
        Road{"PlaceAndOpacity", {{1, Hpos, 300}, {1, Opacity, 50}},
             {"Move 100", "Move 101", "SetAlpha 100 128", "SetAlpha 101 128"}},
        // Painted in place, a yield before each paint; the class stays (a repaint shows red).
        Road{"GroupColour", {{0, Colour, 65280}},
             {"RegisterClass Ostrvane2", "DoEvents", "Paint 100 Ostrvane2", "DoEvents", "Paint 101 Ostrvane2",
              "Move 100", "Move 101", "SetAlpha 100 255", "SetAlpha 101 255"}},
        Road{"OwnColour", {{1, Colour, 65280}}, kRebuilt},
        Road{"DottedAlone", {{1, Dotted, 1}}, kQuiet},
        // What the click of the dotted box does to force the rebuild.
        Road{"DottedWithPaintedColourCleared", {{1, Dotted, 1}, {1, PaintedColour, 0}}, kRebuilt},
        // The painted cells still match; creation all the same.
        Road{"Destroyed", {{1, 0, 0}},
             {"Destroy 100", "Destroy 101", "Create Ostrvane1", "Create Ostrvane1", "SetAlpha 102 255",
              "SetAlpha 103 255"}},
        // A window taken away while other events run is left alone.
        Road{"StopDuringTheYield", {{0, Colour, 65280}, {1, -1, 0}},
             {"RegisterClass Ostrvane2", "DoEvents", "Destroy 100", "Destroy 101", "DoEvents"}}),
    [](const ::testing::TestParamInfo<Road>& info) { return std::string(info.param.name); });

TEST_F(MarkerWindowsTest, BlackKeepsItsClassWhenTheDottedBoxForcesARebuild) {
    PutMarker({100, 200, 21, 21, 0, 1, 100, 0});
    markerWindows.ShowMarker(1);
    frm.store.Markers(1, Dotted) = 1;
    frm.store.Markers(1, PaintedColour) = 0;  // the click's way to force a rebuild, which 0 cannot
    markerWindows.ShowMarker(1);
    EXPECT_EQ(Cell(1, HwndH), 100);
    EXPECT_EQ(lineWindows.classes.at(WindowOf(1, HwndH).className).dotted, 0);
}

TEST_F(MarkerWindowsTest, The101stClassLeavesTheMarkerWithoutWindows) {
    for (std::int32_t colour = 0; colour < 100; ++colour) markerWindows.GetMarkerClass(colour, 0);
    PutMarker({100, 200, 21, 21, 5000, 1, 100, 0});
    lineWindows.calls.clear();
    EXPECT_EQ(ErrorOf([&] { markerWindows.ShowMarker(1); }), 0);
    EXPECT_EQ(markerWindows.ClassCount, 101);
    EXPECT_EQ(Cell(1, HwndH), 0);
    EXPECT_EQ(lineWindows.calls, (Lines{"Create Ostrvane0", "Create Ostrvane0"}));
    // No row is reused: new pairs keep failing, old ones still serve.
    EXPECT_EQ(ErrorOf([&] { markerWindows.GetMarkerClass(6000, 0); }), kSubscriptOutOfRange);
    EXPECT_EQ(markerWindows.ClassCount, 101);
    frm.store.Markers(1, Colour) = 99;
    markerWindows.ShowMarker(1);
    EXPECT_EQ(WindowOf(1, HwndH).className, "Ostrvane100");
}

// The cross: four plain windows of the class of its colour, at size 0
// until the cursor moves; an arm that overflows skips the moves. A flash
// tick's alpha 0 goes to the horizontal line, then the vertical one.
TEST_F(MarkerWindowsTest, CrossArmsAndTheInvisibleHalfOfABlink) {
    markerWindows.CreateAddLines(65535, 1, 77);
    EXPECT_EQ(lineWindows.calls, (Lines{"RegisterClass Ostrvane1", "CreatePlain Ostrvane1", "SetAlpha 100 77", "CreatePlain Ostrvane1",
                                  "SetAlpha 101 77", "CreatePlain Ostrvane1", "SetAlpha 102 77", "CreatePlain Ostrvane1",
                                  "SetAlpha 103 77"}));
    EXPECT_EQ(lineWindows.classes.at("Ostrvane1").dotted, 1);
    markerWindows.MoveAddLines(500, 300, 3);
    const std::array<PixelRect, 4> arms{{{0, 299, 494, 3}, {506, 299, 1414, 3}, {499, 0, 3, 294}, {499, 306, 3, 774}}};
    for (std::size_t i = 1; i <= 4; ++i) EXPECT_EQ(lineWindows.windows.at(markerWindows.AddLines[i]).rect, arms[i - 1]) << i;
    lineWindows.calls.clear();
    markerWindows.MoveAddLines(100000, 300, 3);
    EXPECT_EQ(lineWindows.calls, (Lines{"Move 100", "Move 101", "Move 102", "Move 103"}));
    EXPECT_EQ(lineWindows.windows.at(100).rect, PixelRect{}) << "an arm that overflows moves to nothing";

    PutMarker({100, 200, 21, 21, 255, 1, 100, 0});
    markerWindows.ShowMarker(1);
    lineWindows.calls.clear();
    markerWindows.MakeMarkerInvisible(1);
    EXPECT_EQ(lineWindows.calls, (Lines{"SetAlpha 104 0", "SetAlpha 105 0"}));
}

TEST_F(MarkerWindowsTest, DestroyAllTakesTheCrossFirstAndUnregisterEveryClass) {
    PutMarker({100, 200, 21, 21, 255, 1, 100, 0});
    PutMarker({300, 400, 21, 21, 65280, 1, 100, 0});
    markerWindows.ShowAllMarkers();  // windows 100 to 103
    markerWindows.CreateAddLines(255, 0, 255);
    lineWindows.calls.clear();
    markerWindows.DestroyAllMarkerWindows();
    markerWindows.UnregisterMarkerClasses();
    EXPECT_EQ(lineWindows.calls, (Lines{"Destroy 104", "Destroy 105", "Destroy 106", "Destroy 107", "Destroy 100",
                                  "Destroy 101", "Destroy 102", "Destroy 103", "UnregisterClass Ostrvane1",
                                  "UnregisterClass Ostrvane2"}));
    EXPECT_EQ(markerWindows.AddLines, (std::array<WindowHandle, 5>{}));
    EXPECT_TRUE(lineWindows.windows.empty() && lineWindows.classes.empty());
}

class ShowStopTest : public OverlayTest {
protected:
    ShowStopTest() { frm.SetVisible(true); }
    void Append(std::int32_t hpos) { frm.AppendMarker(hpos, 200, 21, 21, 255, 1, 100, 0); }
    void Press() { frm.cmdShow.PerformClick(); }
    // Showing, captions of button and popup entry, message; flash phase, hook, mouse
    // mode; timers flash, add, add complete, move; windows up; the form.
    std::string State() const {
        std::string timers;
        for (const form::Timer* t :
             {&frm.timFlashSelected, &frm.timAddMarker, &frm.timAddMarkerComplete, &frm.timMoveMarker})
            timers += t->TimerEnabled() ? '1' : '0';
        return std::to_string(frm.Showing) + " " + frm.cmdShow.Caption() + " " + frm.mnuPopupShow.Caption() + " [" +
               frm.lblMsg.Caption() + "] " + std::to_string(frm.FlashPhase) + std::to_string((frm.MouseHook != 0)) +
               std::to_string(frm.MouseMode) + " " + timers + " " + std::to_string(lineWindows.windows.size()) +
               (frm.Visible() ? " up" : " hidden") +
               (frm.GetWindowState() == form::WindowState::Minimized ? " minimised" : "");
    }
};

TEST_F(ShowStopTest, ShowWithNoMarkersSaysSoAndBringsTheFormBack) {
    WriteDefaults("HideOnGo=1\r\n");
    frm.mnuFileMinToTray.PerformClick();
    frm.mnuShow.PerformClick();  // the menus press the button
    EXPECT_EQ(State(), "1 &Stop &Stop [Select a group or add a marker] 010 0000 0 up");
    input.cursor = {500, 600};
    frm.AddMarker();
    EXPECT_EQ(lineWindows.windows.size(), 2u) << "still showing: a new marker goes straight up";
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

    // A placement and a drag under way when the stop comes.
    markerWindows.CreateAddLines(255, 0, 255);
    frm.MouseMode = 2;
    frm.FlashPhase = true;
    frm.lblMsg.SetCaption("Left click to place marker");
    for (form::Timer* t : {&frm.timFlashSelected, &frm.timAddMarker, &frm.timAddMarkerComplete, &frm.timMoveMarker})
        t->SetTimerEnabled(true);
    frm.mnuPopupShow.PerformClick();
    EXPECT_EQ(State(), "0 &Show &Show [] 000 0001 0 up");  // the drag's timer is not the stop's business
}

// Deleting the focused marker or clearing the group moves the focus out of a marker
// field with no marker focused: its Validate must not put up lines no stop takes down.
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
        EXPECT_TRUE(lineWindows.windows.empty());
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
