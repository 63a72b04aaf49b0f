// The line windows of the markers: the road ShowMarker takes, what it asks
// of the platform on each, and the window classes behind the lines.
#include <ostream>

#include "overlay/overlay_fixture.hpp"

namespace ostrivane {

static std::ostream& operator<<(std::ostream& os, const PixelRect& r) {
    return os << '{' << r.left << ", " << r.top << ", " << r.width << ", " << r.height << '}';
}

namespace testing {
namespace {

class MarkerWindowsTest : public OverlayTest {
protected:
    MarkerWindowsTest() { frm.Showing = true; }
};

// Foreground is no part of showing: it goes with the form's window state.
TEST_F(MarkerWindowsTest, NothingReachesTheScreenWhileStoppedOrForARowOutsideTheList) {
    PutMarker({100, 200, 21, 21, 255, 40000, 200, 0});
    frm.Showing = false;
    windows.ShowMarker(1);
    using form::WindowState;
    for (const auto& [state, calls] : {std::pair{WindowState::Normal, Lines{"SetForegroundWindow frmMain"}},
                                       {WindowState::Maximized, Lines{"SetForegroundWindow frmMain"}},
                                       {WindowState::Minimized, Lines{}}}) {
        frm.SetWindowState(state);
        desktop.calls.clear();
        windows.ShowAllMarkers();
        EXPECT_EQ(desktop.calls, calls);
    }
    frm.Showing = true;
    for (const int row : {0, 2, -1, 51}) windows.ShowMarker(row);  // a stop would never take these down
    EXPECT_TRUE(lines.calls.empty());
    EXPECT_EQ(Cell(1, PaintedColour), 0);
}

TEST_F(MarkerWindowsTest, RectanglesAndAlphaComeThroughTheCascade) {
    struct Case {
        const char* name;
        ScreenMetrics screen;
        std::array<std::int32_t, 6> group;
        std::array<std::int32_t, 8> marker;
        PixelRect horizontal, vertical;
        int alpha;  // -1: never applied
    };
    const std::array<std::int32_t, 6> none = {-1, -1, -1, -1, -1, -1};
    const Case cases[] = {
        {"own", {1920, 1080, 0, 0}, none, {100, 200, 21, 21, 255, 3, 70, 0}, {88, 199, 21, 3}, {99, 188, 3, 21}, 178},
        {"global", {1920, 1080, 0, 0}, none, {100, 200, -1, -1, -1, -1, -1, -1}, {0, 200, 1920, 1},
         {100, 0, 1, 1920}, 255},
        {"group", {1920, 1080, 0, 0}, {20, 20, -1, 3, 30, -1}, {100, 200, -1, -1, -1, -1, -1, -1},
         {89, 199, 20, 3}, {99, 189, 3, 20}, 76},
        {"S left of and above 0", {3200, 1024, -1280, -300}, none, {-500, 100, -2, -2, 255, 1, 90, 0},
         {-1280, 100, 3200, 1}, {-500, -300, 1, 3200}, 230},
        {"clamped", {3200, 1024, -1280, -300}, none, {-1270, -290, 40, 30, 255, 1, 1, 0}, {-1280, -290, 40, 1},
         {-1270, -300, 1, 30}, 3},
        // A step that fails goes alone; what it was to give stays 0.
        {"opacity 200", {1920, 1080, 0, 0}, none, {100, 200, 21, 21, 255, 1, 200, 0}, {90, 200, 21, 1},
         {100, 190, 1, 21}, -1},
        {"thickness 40000", {1920, 1080, 0, 0}, none, {100, 200, 21, 21, 255, 40000, 100, 0}, {90, 200, 21, 0},
         {100, 190, 0, 21}, 255},
        {"hlen 40000", {1920, 1080, 0, 0}, none, {100, 200, 40000, 21, 255, 1, 100, 0}, {100, 200, 1, 1},
         {100, 190, 1, 21}, 255},
        {"start beyond 16 bits", {1920, 1080, 0, 0}, none, {2000000000, 200, 21, 21, 255, 1, 100, 0}, {}, {}, 255},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        frm.screen = c.screen;
        SetGroupDefaults(c.group);
        const int r = PutMarker(c.marker);

        EXPECT_EQ(ErrorOf([&] { windows.ShowMarker(r); }), 0);

        ASSERT_NE(Cell(r, HwndH), 0);
        EXPECT_EQ(WindowOf(r, HwndH).rect, c.horizontal);
        EXPECT_EQ(WindowOf(r, HwndV).rect, c.vertical);
        EXPECT_EQ(WindowOf(r, HwndH).alpha, c.alpha);
        EXPECT_EQ(WindowOf(r, HwndV).alpha, c.alpha);
    }
}

TEST_F(MarkerWindowsTest, OneClassPerPairOfEffectiveColourAndDotted) {
    SetGroupDefaults({-1, -1, 65280, -1, -1, -1});
    for (const std::int32_t dotted : {0, 0, 1, 2}) PutMarker({10, 10, 5, 5, 255, 1, 100, dotted});
    PutMarker({50, 50, 5, 5, -1, 1, 100, -1});  // group colour, global dotted 0
    PutMarker({60, 60, 5, 5, 65280, 1, 100, 0});

    windows.ShowAllMarkers();

    EXPECT_EQ(windows.ClassCount, 4);
    const int expected[] = {1, 1, 2, 3, 4, 4};
    for (int r = 1; r <= 6; ++r) EXPECT_EQ(WindowOf(r, HwndV).className, "Ostrvane" + std::to_string(expected[r - 1]));
    const std::pair<std::int32_t, std::int32_t> pairs[] = {{255, 0}, {255, 1}, {255, 2}, {65280, 0}};
    for (int n = 1; n <= 4; ++n) {
        const auto& registered = lines.classes.at("Ostrvane" + std::to_string(n));
        EXPECT_EQ(std::make_pair(registered.colour, registered.dotted), pairs[n - 1]);
        EXPECT_EQ(std::make_pair(windows.MarkerClasses(n, 1), windows.MarkerClasses(n, 2)), pairs[n - 1]);
    }
}

// Each road from a marker shown once: windows 100 and 101 of class
// Ostrvane1, blank colour under a red group default. A road writes cells
// {row, column, value}; a column of 0 destroys the windows instead.
struct Road {
    const char* name;
    std::vector<std::array<int, 3>> cells;
    Lines calls;
};

void PrintTo(const Road& road, std::ostream* os) { *os << road.name; }

class ShowMarkerRoads : public MarkerWindowsTest, public ::testing::WithParamInterface<Road> {};

TEST_P(ShowMarkerRoads, CallsInOrder) {
    SetGroupDefaults({-1, -1, 255, -1, -1, -1});
    PutMarker({100, 200, 21, 21, -1, 1, 100, 0});
    windows.ShowMarker(1);
    ASSERT_EQ(lines.calls, (Lines{"RegisterClass Ostrvane1", "Create Ostrvane1", "Create Ostrvane1",
                                  "SetAlpha 100 255", "SetAlpha 101 255"}));
    lines.calls.clear();
    for (const auto& [row, column, value] : GetParam().cells) {
        if (column == 0) windows.DestroyMarkerWindows(row);
        else frm.store.Markers(row, column) = value;
    }
    windows.ShowMarker(1);
    EXPECT_EQ(lines.calls, GetParam().calls);
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
        // Painted over in place, with one yield before each paint; the
        // window keeps its class, so a system repaint shows red again.
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
        Road{"Opacity200", {{1, Opacity, 200}}, {"Move 100", "Move 101"}}),
    [](const ::testing::TestParamInfo<Road>& info) { return std::string(info.param.name); });

TEST_F(MarkerWindowsTest, AWindowTakenAwayDuringTheYieldIsLeftAlone) {
    SetGroupDefaults({-1, -1, 255, -1, -1, -1});
    PutMarker({100, 200, 21, 21, -1, 1, 100, 0});
    windows.ShowMarker(1);
    frm.store.Markers(0, Colour) = 65280;
    duringYield = [&] { windows.DestroyAllMarkerWindows(); };  // a stop from the hot key
    lines.calls.clear();

    EXPECT_EQ(ErrorOf([&] { windows.ShowMarker(1); }), 0);

    EXPECT_EQ(lines.calls, (Lines{"RegisterClass Ostrvane2", "DoEvents", "Destroy 100", "Destroy 101", "DoEvents"}));
    EXPECT_EQ(Cell(1, PaintedEffective), 65280);
}

TEST_F(MarkerWindowsTest, BlackKeepsItsClassWhenTheDottedBoxForcesARebuild) {
    PutMarker({100, 200, 21, 21, 0, 1, 100, 0});
    windows.ShowMarker(1);
    frm.store.Markers(1, Dotted) = 1;
    frm.store.Markers(1, PaintedColour) = 0;  // the click's way to force a rebuild, which 0 cannot
    windows.ShowMarker(1);
    EXPECT_EQ(Cell(1, HwndH), 100);
    EXPECT_EQ(lines.classes.at(WindowOf(1, HwndH).className).dotted, 0);
}

TEST_F(MarkerWindowsTest, The101stClassLeavesTheMarkerWithoutWindows) {
    for (std::int32_t colour = 0; colour < 100; ++colour) windows.GetMarkerClass(colour, 0);
    PutMarker({100, 200, 21, 21, 5000, 1, 100, 0});
    lines.calls.clear();

    EXPECT_EQ(ErrorOf([&] { windows.ShowMarker(1); }), 0);
    EXPECT_EQ(windows.ClassCount, 101);
    EXPECT_EQ(Cell(1, HwndH), 0);
    EXPECT_EQ(lines.calls, (Lines{"Create Ostrvane0", "Create Ostrvane0"}));

    // No row is reused: new pairs keep failing, old ones still serve.
    EXPECT_EQ(ErrorOf([&] { windows.GetMarkerClass(6000, 0); }), kSubscriptOutOfRange);
    EXPECT_EQ(windows.ClassCount, 101);
    frm.store.Markers(1, Colour) = 99;
    windows.ShowMarker(1);
    EXPECT_EQ(WindowOf(1, HwndH).className, "Ostrvane100");
}

TEST_F(MarkerWindowsTest, DestroyAllTakesTheCrossFirstAndUnregisterEveryClass) {
    PutMarker({100, 200, 21, 21, 255, 1, 100, 0});
    PutMarker({300, 400, 21, 21, 65280, 1, 100, 0});
    windows.ShowAllMarkers();  // windows 100 to 103
    for (std::size_t i = 1; i <= 4; ++i) windows.AddLines[i] = lines.CreateLineWindow("Ostrvane1", {});
    lines.calls.clear();

    windows.DestroyAllMarkerWindows();
    windows.UnregisterMarkerClasses();

    EXPECT_EQ(lines.calls, (Lines{"Destroy 104", "Destroy 105", "Destroy 106", "Destroy 107", "Destroy 100",
                                  "Destroy 101", "Destroy 102", "Destroy 103", "UnregisterClass Ostrvane1",
                                  "UnregisterClass Ostrvane2"}));
    EXPECT_EQ(windows.AddLines, (std::array<WindowHandle, 5>{}));
    EXPECT_TRUE(lines.windows.empty());
    EXPECT_TRUE(lines.classes.empty());
}

}  // namespace
}  // namespace testing
}  // namespace ostrivane
