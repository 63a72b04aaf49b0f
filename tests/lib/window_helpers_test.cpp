#include "lib/window_helpers.hpp"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "fakes/fake_platform.hpp"
#include "fakes/fake_window_system.hpp"
#include "lib/errors.hpp"
#include "lib/profile.hpp"
#include "support/run_time_error.hpp"

namespace ostrivane {
namespace {

class SelectFindInList : public ::testing::Test {
protected:
    SelectFindInList() {
        for (const char* item : {"Alpha", "Group1", "group1", "Gr\xf6up"}) list.AddItem(item);
        list.Click.Connect([this] { clicks.push_back(list.ListIndex()); });
    }
    form::ListBox list{nullptr, "lstGroups"};
    std::vector<int> clicks;
};

TEST_F(SelectFindInList, TextWithoutRegardToCaseFirstMatchWins) {
    const std::pair<const char*, int> rows[] = {
        {"GROUP1", 1}, {"group1", 1}, {"alpha", 0}, {"GR\xd6UP", 3}, {"gr\xf6up", 3},
    };
    for (const auto& [value, index] : rows) {
        clicks.clear();
        EXPECT_TRUE(lib_SelectFindInList(list, value, false)) << value;
        EXPECT_EQ(clicks, std::vector<int>{index}) << value;
    }
}

TEST_F(SelectFindInList, NoMatchLeavesTheListUntouched) {
    list.SetListIndex(2);
    clicks.clear();
    for (const char* value : {"Group", "Group1 ", "", "*"}) EXPECT_FALSE(lib_SelectFindInList(list, value, false));
    EXPECT_TRUE(clicks.empty());
    EXPECT_EQ(list.ListIndex(), 2);
}

TEST_F(SelectFindInList, AFailingClickIsSwallowedAndGivesFalse) {
    list.Click.Connect([this] { Raise(kTypeMismatch); });
    EXPECT_FALSE(lib_SelectFindInList(list, "alpha", false));
    EXPECT_EQ(list.ListIndex(), 0);  // the index was set before the click failed
}

// The form model keeps no item data: every item's is 0.
TEST_F(SelectFindInList, ByItemDataComparesWithZero) {
    EXPECT_TRUE(lib_SelectFindInList(list, " 0 ", true));
    EXPECT_EQ(clicks, std::vector<int>{0});
    EXPECT_FALSE(lib_SelectFindInList(list, "1", true));

    try {
        lib_SelectFindInList(list, "Alpha", true);
        ADD_FAILURE() << "no error";
    } catch (const RuntimeError& e) {
        EXPECT_EQ(e.number(), kTypeMismatch);
        EXPECT_EQ(e.source(), "Vexil.lib_SelectFindInList");
    }
    form::ListBox empty{nullptr, "empty"};
    EXPECT_FALSE(lib_SelectFindInList(empty, "Alpha", true));
}

using fakes::FakeWindowSystem;
using namespace std::string_literals;

// A top-level window at 100,50 holding a child at 130,90.
class WindowRects : public ::testing::Test {
protected:
    FakeWindowSystem ws;
    WindowHandle top = ws.Add(0, "Top", {100, 50, 500, 350});
    WindowHandle child = ws.Add(top, "Child", {130, 90, 230, 140});
};

TEST_F(WindowRects, WorkAreaForNoWindowAndForATopLevelsParent) {
    ws.workArea = {0, 24, 1920, 1080};
    EXPECT_EQ(lib_GetRect(ws, 0, false, false), ws.workArea);
    EXPECT_EQ(lib_GetRect(ws, 0, true, true), ws.workArea);
    EXPECT_EQ(lib_GetParentRect(ws, top), ws.workArea);
    EXPECT_EQ(lib_GetParentRect(ws, child), (Rectangle{100, 50, 500, 350}));
}

TEST_F(WindowRects, RelativeSubtractsTheParentsLeftAndTop) {
    ws.workArea = {10, 24, 1920, 1080};
    const struct {
        WindowHandle window;
        bool relative, client;
        Rectangle expected;
    } rows[] = {
        {child, false, false, {130, 90, 230, 140}},
        {child, true, false, {30, 40, 130, 90}},
        {child, false, true, {0, 0, 100, 50}},
        // The parent's client area starts at 0,0: nothing to subtract.
        {child, true, true, {0, 0, 100, 50}},
        // A top-level window is relative to the work area.
        {top, true, false, {90, 26, 490, 326}},
        {top, true, true, {-10, -24, 390, 276}},
    };
    for (const auto& r : rows)
        EXPECT_EQ(lib_GetRect(ws, r.window, r.relative, r.client), r.expected)
            << r.window << " " << r.relative << r.client;
}

TEST_F(WindowRects, SetRectMovesByWidthAndHeightRelativeAddsTheParents) {
    ws.workArea = {0, 24, 1920, 1080};
    lib_SetRect(ws, child, {5, 6, 105, 56}, false);
    lib_SetRect(ws, child, {5, 6, 105, 56}, true);
    lib_SetRect(ws, top, {5, 6, 105, 56}, true);
    const std::vector<FakeWindowSystem::Move> expected{
        {child, 5, 6, 100, 50}, {child, 105, 56, 100, 50}, {top, 5, 30, 100, 50}};
    EXPECT_EQ(ws.moves, expected);
}

TEST_F(WindowRects, EdgesThatOverflow32BitsRaiseOverflow) {
    ws.windows.at(child).rect = {-2147483647, 0, 10, 10};
    EXPECT_EQ(ErrorOf([&] { lib_GetRect(ws, child, true, false); }), kOverflow);
    EXPECT_EQ(ErrorOf([&] { lib_SetRect(ws, child, {2147483647, 0, 0, 0}, true); }), kOverflow);
}

TEST(WindowTitle, ZeroIsTheForegroundWindowCutAt199AndAtNul) {
    FakeWindowSystem ws;
    const WindowHandle a = ws.Add(0, "Editor - notes.txt");
    const WindowHandle b = ws.Add(0, std::string(250, 'x'));
    const WindowHandle c = ws.Add(0, "Left\0Right"s);
    ws.foreground = a;
    EXPECT_EQ(lib_GetWindowTitle(ws, 0), "Editor - notes.txt");
    EXPECT_EQ(lib_GetWindowTitle(ws, b), std::string(199, 'x'));
    EXPECT_EQ(lib_ApiResult, 199);
    EXPECT_EQ(lib_GetWindowTitle(ws, c), "Left");
    EXPECT_EQ(lib_ApiResult, 4);
}

TEST(FindProcessWindow, FirstTopLevelOfTheProcessInStackingOrder) {
    FakeWindowSystem ws;
    const WindowHandle other = ws.Add(0, "Other", {}, 7);
    const WindowHandle first = ws.Add(0, "First", {}, 42);
    ws.Add(first, "Child", {}, 42);
    ws.Add(0, "Second", {}, 42);
    EXPECT_EQ(lib_FindProcessWindow(ws, 42), first);
    EXPECT_EQ(lib_FindProcessWindow(ws, 7), other);
    EXPECT_EQ(lib_FindProcessWindow(ws, 9), 0);
}

// Desktop: A "Ostrivane" > A1 "Inner box" > A11 "Deep box";
//          B "Notes - Editor" > B1 "OSTRIVANE child"; C "ostrivane".
class FindWindowLike : public ::testing::Test {
protected:
    FakeWindowSystem ws;
    WindowHandle a = ws.Add(0, "Ostrivane");
    WindowHandle a1 = ws.Add(a, "Inner box");
    WindowHandle a11 = ws.Add(a1, "Deep box");
    WindowHandle b = ws.Add(0, "Notes - Editor");
    WindowHandle b1 = ws.Add(b, "OSTRIVANE child");
    WindowHandle c = ws.Add(0, "ostrivane");
    std::int16_t count = 0;

    WindowHandle First(const char* pattern, bool deep, WindowHandle skip = 0, WindowHandle parent = 0) {
        return lib_FindWindowLike(ws, pattern, deep, skip, nullptr, parent, count);
    }
    std::vector<WindowHandle> All(const char* pattern, bool deep, WindowHandle skip = 0) {
        std::vector<WindowHandle> found;
        count = 0;
        lib_FindWindowLike(ws, pattern, deep, skip, &found, 0, count);
        return found;
    }
};

TEST_F(FindWindowLike, PatternMatchesWhateverTheCaseFirstFindStops) {
    EXPECT_EQ(First("ostri*", false), a);
    EXPECT_EQ(First("OSTRIVANE", false), a);
    EXPECT_EQ(First("*editor", false), b);
    EXPECT_EQ(First("nothing*", false), 0);
    EXPECT_EQ(count, 0);  // without an array nothing is counted
}

TEST_F(FindWindowLike, TheSkipWindowIsNoMatchAndNotSearchedWithoutDeep) {
    EXPECT_EQ(First("ostrivane*", false, a), b1);
    EXPECT_EQ(First("inner*", false, a), 0);
    EXPECT_EQ(First("inner*", true, a), a1);
}

TEST_F(FindWindowLike, WithoutDeepOnlyOneLevelBelowTheTop) {
    const std::pair<const char*, WindowHandle> rows[] = {
        {"inner*", a1}, {"deep*", 0}, {"*child", b1}};
    for (const auto& [pattern, expected] : rows) EXPECT_EQ(First(pattern, false), expected) << pattern;
    EXPECT_EQ(First("deep*", true), a11);
    // Below a given parent the search does not go further down without deep.
    EXPECT_EQ(First("inner*", false, 0, a), a1);
    EXPECT_EQ(First("deep*", false, 0, a), 0);
    EXPECT_EQ(First("deep*", true, 0, a), a11);
}

TEST_F(FindWindowLike, ResultArrayTakesEveryFindAtItsCount) {
    EXPECT_EQ(All("*ostrivane*", false), (std::vector<WindowHandle>{0, a, b1, c}));
    EXPECT_EQ(count, 3);
    EXPECT_EQ(All("*box", true), (std::vector<WindowHandle>{0, a1, a11}));
    EXPECT_EQ(All("*box", false), (std::vector<WindowHandle>{0, a1}));
    EXPECT_EQ(All("*ostrivane*", false, c), (std::vector<WindowHandle>{0, a, b1}));
    // The count goes on from what the caller gives.
    std::vector<WindowHandle> found;
    count = 2;
    EXPECT_EQ(lib_FindWindowLike(ws, "notes*", false, 0, &found, 0, count), b);
    EXPECT_EQ(found, (std::vector<WindowHandle>{0, 0, 0, b}));
}

TEST(FileDialogs, RequestFilterBufferTitleAndFlags) {
    FakeWindowSystem ws;
    ws.fileAnswers = {"/home/u/group.ini\0\0\0junk"s, ""};
    std::string proposal = "Group1_Export";
    EXPECT_EQ(lib_GetSaveFile(ws, "/home/u", "INI", "ini", 77, proposal, "Save exported file"), "/home/u/group.ini");
    EXPECT_EQ(lib_GetOpenFile(ws, "/tmp", "INI", "ini", 0, "", ""), "");

    ASSERT_EQ(ws.saveRequests.size(), 1u);
    const FileDialogRequest& save = ws.saveRequests[0];
    EXPECT_EQ(save.filter, "INI (*.ini)\0*.ini\0"s);
    EXPECT_EQ(save.file, "Group1_Export" + std::string(256 - 13, '\0'));
    EXPECT_EQ(save.defaultExtension, "ini");
    EXPECT_EQ(save.initialDir, "/home/u");
    EXPECT_EQ(save.title, "Save exported file");
    EXPECT_EQ(save.flags, 4);
    EXPECT_EQ(save.owner, 77);
    ASSERT_EQ(ws.openRequests.size(), 1u);
    EXPECT_EQ(ws.openRequests[0].title, "Open");
    EXPECT_EQ(ws.openRequests[0].flags, 4100);
    EXPECT_EQ(ws.openRequests[0].file, std::string(256, '\0'));
}

TEST(FileDialogs, DefaultSaveTitleEmptyFilterAndLongProposal) {
    FakeWindowSystem ws;
    ws.fileAnswers = {"x"};
    std::string proposal(300, 'p');
    lib_GetSaveFile(ws, "", "", "", 0, proposal, "");
    EXPECT_EQ(ws.saveRequests[0].title, "Save As");
    EXPECT_EQ(ws.saveRequests[0].filter, " (*.)\0*.\0"s);
    EXPECT_EQ(ws.saveRequests[0].file, std::string(256, 'p'));
}

TEST(ChooseColor, CancelGivesMinusOneAndTheStartColourIsPassed) {
    fakes::FakeDialogs dialogs;
    dialogs.colourAnswers = {-1, 255};
    EXPECT_EQ(lib_ChooseColor(dialogs, 0x00ff00, 5), -1);
    EXPECT_EQ(lib_ChooseColor(dialogs, 0x123456, 5), 255);
    ASSERT_EQ(dialogs.asked.size(), 2u);
    EXPECT_EQ(dialogs.asked[0].colour, 0x00ff00);
    EXPECT_EQ(dialogs.asked[1].colour, 0x123456);
}

TEST(SetBusy, FlagFollowsAndTheAttachedCursorSwitches) {
    FakeWindowSystem ws;
    lib_AttachBusyCursor(&ws);
    lib_SetBusy(true);
    EXPECT_TRUE(BusyState);
    lib_SetBusy(false);
    EXPECT_FALSE(BusyState);
    lib_AttachBusyCursor(nullptr);
    lib_SetBusy(true);
    EXPECT_TRUE(BusyState);
    lib_SetBusy(false);
    EXPECT_EQ(ws.busyCursor, (std::vector<bool>{true, false}));
}

TEST(SetTabStops, CommaListToNumbersFailuresCountZero) {
    form::TextBox box{nullptr, "txtMessage"};
    const std::pair<const char*, std::vector<std::int32_t>> rows[] = {
        {"20,40, 60", {20, 40, 60}},
        {"10.5,11.5", {10, 12}},  // ties to even
        {"a,30,,9999999999", {0, 30, 0, 0}},
        {"5,", {5, 0}},
        {"", {}},
    };
    for (const auto& [list, expected] : rows) {
        lib_SetTabStops(box, list);
        EXPECT_EQ(box.TabStops, expected) << list;
    }
}

TEST(SetCaption, ControlsWithACaptionTakeItOthersAreLeftAlone) {
    form::Label label{nullptr, "lblStatus"};
    form::CommandButton button{nullptr, "cmdGo"};
    form::CheckBox check{nullptr, "chkOn"};
    form::MenuItem menu{nullptr, "mnuFile", "&File"};
    form::TextBox box{nullptr, "txtValue"};
    box.SetText("kept");
    for (form::Control* c : std::initializer_list<form::Control*>{&label, &button, &check, &menu, &box})
        lib_SetCaption("Reading 40%", *c);
    EXPECT_EQ(label.Caption(), "Reading 40%");
    EXPECT_EQ(button.Caption(), "Reading 40%");
    EXPECT_EQ(check.Caption(), "Reading 40%");
    EXPECT_EQ(menu.Caption(), "Reading 40%");
    EXPECT_EQ(box.Text(), "kept");
}

TEST(ShowWindow, TheCommandReachesThePlatform) {
    FakeWindowSystem ws;
    lib_ShowWindow(ws, 123, SW_MINIMIZE);
    EXPECT_EQ(ws.shown, (std::vector<std::pair<WindowHandle, int>>{{123, 6}}));
}

}  // namespace
}  // namespace ostrivane
