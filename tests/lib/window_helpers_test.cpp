#include "lib/window_helpers.hpp"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "fakes/fake_window_system.hpp"
#include "lib/errors.hpp"
#include "lib/profile.hpp"
#include "support/run_time_error.hpp"

namespace ostrivane {
namespace {

using fakes::FakeWindowSystem;
using namespace std::string_literals;
using Handles = std::vector<WindowHandle>;

TEST(SelectFindInList, FirstMatchWithoutRegardToCaseElseTheListIsLeftAlone) {
    form::ListBox list{nullptr, "lstGroups"};
    for (const char* item : {"Alpha", "Group1", "group1", "Gr\xf6up"}) list.AddItem(item);
    std::vector<int> clicks;
    list.Click.Connect([&] { clicks.push_back(list.ListIndex()); });
    const std::pair<const char*, int> rows[] = {{"GROUP1", 1}, {"group1", 1}, {"alpha", 0}, {"GR\xd6UP", 3},
                                                {"gr\xf6up", 3}, {"Group", -1}, {"Group1 ", -1}, {"", -1}, {"*", -1}};
    for (const auto& [value, index] : rows) {
        list.SetListIndex(2);
        clicks.clear();
        EXPECT_EQ(lib_SelectFindInList(list, value, false), index >= 0) << value;
        EXPECT_EQ(clicks, index >= 0 ? std::vector<int>{index} : std::vector<int>{}) << value;
        EXPECT_EQ(list.ListIndex(), index >= 0 ? index : 2);
    }
    // The form model keeps no item data: every item's is 0.
    clicks.clear();
    EXPECT_TRUE(lib_SelectFindInList(list, " 0 ", true));
    EXPECT_EQ(clicks, std::vector<int>{0});
    EXPECT_FALSE(lib_SelectFindInList(list, "1", true));
    EXPECT_EQ(FailureOf([&] { lib_SelectFindInList(list, "Alpha", true); }), "13 Vexil.lib_SelectFindInList: Type mismatch");
    form::ListBox empty{nullptr, "empty"};
    EXPECT_FALSE(lib_SelectFindInList(empty, "Alpha", true));
    // A failing click is swallowed and gives False; the index was set before it failed.
    list.Click.Connect([] { Raise(kTypeMismatch); });
    EXPECT_FALSE(lib_SelectFindInList(list, "group1", false));
    EXPECT_EQ(list.ListIndex(), 1);
}

// A top-level window at 100,50 holding a child at 130,90. Relative subtracts
// the parent's left and top: the work area's for a top-level window, nothing
// for a client area (it starts at 0,0); setting adds them back.
TEST(WindowRects, GetAndSetRelativeToTheParentWithin32Bits) {
    FakeWindowSystem ws;
    const WindowHandle top = ws.Add(0, "Top", {100, 50, 500, 350}), child = ws.Add(top, "Child", {130, 90, 230, 140});
    ws.workArea = {10, 24, 1920, 1080};
    const struct { WindowHandle window; bool relative, client; Rectangle expected; } rows[] = {
        {0, false, false, ws.workArea},           {0, true, true, ws.workArea},
        {child, false, false, {130, 90, 230, 140}}, {child, true, false, {30, 40, 130, 90}},
        {child, false, true, {0, 0, 100, 50}},      {child, true, true, {0, 0, 100, 50}},
        {top, true, false, {90, 26, 490, 326}},     {top, true, true, {-10, -24, 390, 276}},
    };
    for (const auto& r : rows)
        EXPECT_EQ(lib_GetRect(ws, r.window, r.relative, r.client), r.expected) << r.window << " " << r.relative << r.client;
    EXPECT_EQ(lib_GetParentRect(ws, top), ws.workArea);
    EXPECT_EQ(lib_GetParentRect(ws, child), (Rectangle{100, 50, 500, 350}));
    for (const bool relative : {false, true}) lib_SetRect(ws, child, {5, 6, 105, 56}, relative);
    lib_SetRect(ws, top, {5, 6, 105, 56}, true);
    EXPECT_EQ(ws.moves, (std::vector<FakeWindowSystem::Move>{
                            {child, 5, 6, 100, 50}, {child, 105, 56, 100, 50}, {top, 15, 30, 100, 50}}));
    ws.windows.at(child).rect = {-2147483647, 0, 10, 10};
    EXPECT_EQ(ErrorOf([&] { lib_GetRect(ws, child, true, false); }), kOverflow);
    EXPECT_EQ(ErrorOf([&] { lib_SetRect(ws, child, {2147483647, 0, 0, 0}, true); }), kOverflow);
}

// A title is the foreground window's for 0, cut at 199 and at a NUL; the
// process's window is its first top-level one in stacking order.
TEST(WindowTitleAndProcess, TitlesAndTheProcesssFirstTopLevelWindow) {
    FakeWindowSystem ws;
    ws.foreground = ws.Add(0, "Editor - notes.txt", {}, 7);
    const WindowHandle b = ws.Add(0, std::string(200, 'x'), {}, 42), c = ws.Add(0, "Left\0Right"s, {}, 42);
    ws.Add(b, "Child", {}, 42);
    EXPECT_EQ(lib_GetWindowTitle(ws, 0), "Editor - notes.txt");
    EXPECT_EQ(lib_GetWindowTitle(ws, b), std::string(199, 'x'));
    EXPECT_EQ(lib_ApiResult, 199);
    EXPECT_EQ(lib_GetWindowTitle(ws, c), "Left");
    EXPECT_EQ(lib_ApiResult, 4);
    EXPECT_EQ((Handles{lib_FindProcessWindow(ws, 42), lib_FindProcessWindow(ws, 7), lib_FindProcessWindow(ws, 9)}),
              (Handles{b, ws.foreground, 0}));
}

// Desktop: A "Ostrivane" > A1 "Inner box" > A11 "Deep box";
//          B "Notes - Editor" > B1 "OSTRIVANE child"; C "ostrivane".
TEST(FindWindowLike, FirstFindOrEveryFindByPatternDepthSkipAndParent) {
    FakeWindowSystem ws;
    const WindowHandle a = ws.Add(0, "Ostrivane"), a1 = ws.Add(a, "Inner box"), a11 = ws.Add(a1, "Deep box");
    const WindowHandle b = ws.Add(0, "Notes - Editor"), b1 = ws.Add(b, "OSTRIVANE child"), c = ws.Add(0, "ostrivane");
    // Without deep only one level below the top (or below the given parent) is searched,
    // and not below the skip window, which is no match itself.
    const struct { const char* pattern; bool deep; WindowHandle skip, parent, first; Handles all; } rows[] = {
        {"ostri*", false, 0, 0, a, {0, a, b1, c}},   {"OSTRIVANE", false, 0, 0, a, {0, a, c}},
        {"nothing*", false, 0, 0, 0, {}},            {"ostrivane*", false, a, 0, b1, {0, b1, c}},
        {"inner*", false, a, 0, 0, {}},              {"inner*", true, a, 0, a1, {0, a1}},
        {"inner*", false, 0, 0, a1, {0, a1}},        {"deep*", false, 0, 0, 0, {}},
        {"deep*", true, 0, 0, a11, {0, a11}},        {"inner*", false, 0, a, a1, {0, a1}},
        {"deep*", false, 0, a, 0, {}},               {"deep*", true, 0, a, a11, {0, a11}},
        {"*box", true, 0, 0, a1, {0, a1, a11}},      {"*ostrivane*", false, c, 0, a, {0, a, b1}},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(::testing::Message() << r.pattern << " deep " << r.deep << " skip " << r.skip << " parent " << r.parent);
        std::int16_t count = 0;
        EXPECT_EQ(lib_FindWindowLike(ws, r.pattern, r.deep, r.skip, nullptr, r.parent, count), r.first);
        EXPECT_EQ(count, 0);  // without an array nothing is counted
        Handles found;
        EXPECT_EQ(lib_FindWindowLike(ws, r.pattern, r.deep, r.skip, &found, r.parent, count), r.all.empty() ? 0 : r.all.back());
        EXPECT_EQ(found, r.all);
        EXPECT_EQ(count, static_cast<int>(r.all.size()) - (r.all.empty() ? 0 : 1));
    }
    // The count goes on from what the caller gives.
    Handles found;
    std::int16_t count = 2;
    EXPECT_EQ(lib_FindWindowLike(ws, "notes*", false, 0, &found, 0, count), b);
    EXPECT_EQ(found, (Handles{0, 0, 0, b}));
}

TEST(FileDialogs, RequestFilterBufferTitleAndFlags) {
    FakeWindowSystem ws;
    ws.fileAnswers = {"/home/u/group.ini\0\0\0junk"s, "", "x"};
    std::string proposal = "Group1_Export";
    EXPECT_EQ(lib_GetSaveFile(ws, "/home/u", "INI", "ini", 77, proposal, "Save exported file"), "/home/u/group.ini");
    EXPECT_EQ(lib_GetOpenFile(ws, "/tmp", "INI", "ini", 0, "", ""), "");
    std::string longProposal(300, 'p');
    lib_GetSaveFile(ws, "", "", "", 0, longProposal, "");

    ASSERT_EQ(ws.saveRequests.size(), 2u);
    ASSERT_EQ(ws.openRequests.size(), 1u);
    const FileDialogRequest &save = ws.saveRequests[0], &open = ws.openRequests[0];
    EXPECT_EQ(save.filter, "INI (*.ini)\0*.ini\0"s);
    EXPECT_EQ(save.file, "Group1_Export" + std::string(256 - 13, '\0'));
    EXPECT_EQ(save.defaultExtension + "|" + save.initialDir + "|" + save.title, "ini|/home/u|Save exported file");
    EXPECT_EQ((std::vector<int>{save.flags, save.owner, open.flags}), (std::vector<int>{4, 77, 4100}));
    EXPECT_EQ(open.title, "Open");
    EXPECT_EQ(open.file, std::string(256, '\0'));
    // The default save title, an empty filter and a proposal that fills the whole buffer.
    EXPECT_EQ(ws.saveRequests[1].title, "Save As");
    EXPECT_EQ(ws.saveRequests[1].filter, " (*.)\0*.\0"s);
    EXPECT_EQ(ws.saveRequests[1].file, std::string(256, 'p'));
}

TEST(SetBusy, FlagFollowsAndTheAttachedCursorSwitches) {
    FakeWindowSystem ws;
    for (WindowSystem* cursor : {static_cast<WindowSystem*>(&ws), static_cast<WindowSystem*>(nullptr)}) {
        lib_AttachBusyCursor(cursor);
        lib_SetBusy(true);
        EXPECT_TRUE(BusyState);
        lib_SetBusy(false);
        EXPECT_FALSE(BusyState);
    }
    EXPECT_EQ(ws.busyCursor, (std::vector<bool>{true, false}));
}

TEST(SetTabStops, CommaListToNumbersFailuresCountZero) {
    form::TextBox box{nullptr, "txtMessage"};
    const std::pair<const char*, std::vector<std::int32_t>> rows[] = {
        {"20,40, 60", {20, 40, 60}}, {"10.5,11.5", {10, 12}},  // ties to even
        {"a,30,,9999999999", {0, 30, 0, 0}}, {"5,", {5, 0}}, {"", {}}};
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
    EXPECT_EQ(label.Caption() + button.Caption() + check.Caption() + menu.Caption() + box.Text(),
              "Reading 40%Reading 40%Reading 40%Reading 40%kept");
}

}  // namespace
}  // namespace ostrivane
