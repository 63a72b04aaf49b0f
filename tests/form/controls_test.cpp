#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "form/controls.hpp"
#include "form/form.hpp"
#include "lib/errors.hpp"
#include "support/run_time_error.hpp"

namespace ostrivane::form {
namespace {

using Log = std::vector<std::string>;

TEST(FormModelEvents, PropertyWritesAndKeysRaiseTheEventsTheLogicReliesOnAndBadValuesFail) {
    Form f("frmTest");
    TextBox txt(&f, "txt");
    ListBox lst(&f, "lst");
    CheckBox chk(&f, "chk");
    ScrollBar scr(&f, "scr", ScrollBar::Orientation::Horizontal);
    Log log;
    txt.Change.Connect([&] { log.push_back("Change " + txt.Text()); });
    lst.Click.Connect([&] { log.push_back("Click " + std::to_string(lst.ListIndex())); });
    chk.Click.Connect([&] { log.push_back("chk " + std::to_string(chk.Value())); });
    scr.Change.Connect([&] { log.push_back("scr " + std::to_string(scr.Value())); });
    lst.AddItem("a");
    lst.AddItem("b");
    // a second write of the same value is quiet, but for the list index, which fires again
    for (int twice = 0; twice < 2; ++twice) txt.SetText("12"), lst.SetListIndex(1), chk.SetValue(1);
    lst.SetListIndex(-1);
    scr.SetRange(0, 100);
    scr.SetValue(5);
    scr.SetValue(5);
    EXPECT_EQ(log, (Log{"Change 12", "Click 1", "chk 1", "Click 1", "Click -1", "scr 5"}));

    for (int bad : {101, -1}) EXPECT_EQ(ErrorOf([&] { scr.SetValue(bad); }), kInvalidPropertyValue) << bad;
    EXPECT_EQ(scr.Value(), 5);
    EXPECT_EQ(ErrorOf([&] { lst.SetListIndex(2); }), kInvalidPropertyValue);
    EXPECT_EQ(ErrorOf([&] { lst.List(2); }), kInvalidPropertyValue);
    EXPECT_EQ(ErrorOf([&] { chk.SetValue(3); }), kInvalidPropertyValue);
    scr.SetRange(20, 30);  // a new range pulls the value in without an event
    EXPECT_EQ(scr.Value(), 20);
    EXPECT_EQ(log.size(), 6u);

    // KeyPress hands the key by reference; typing replaces the selection.
    txt.KeyPress.Connect([](int& key) { key = key == 'x' ? 0 : key == 's' ? 'S' : key; });
    EXPECT_EQ(std::vector<int>({txt.TypeKey('1'), txt.TypeKey('x'), txt.TypeKey('s')}), std::vector<int>({'1', 0, 'S'}));
    EXPECT_EQ(txt.Text(), "1S12");  // at the caret, which SetText left at the start
    txt.TypeKey(8);
    EXPECT_EQ(txt.Text(), "112");
    txt.SetSelection(0, 3);
    EXPECT_TRUE(txt.AllSelected());
    txt.TypeKey('7');
    EXPECT_EQ(txt.Text(), "7");
    txt.TypeKey(8);  // the caret on the first character
    EXPECT_EQ(txt.Text(), "");
    txt.Locked = true;  // a locked box hands the key on and keeps its text
    EXPECT_EQ(txt.TypeKey('5'), '5');
    EXPECT_EQ(txt.Text(), "");
}

TEST(FormModelFocus, ValidateRunsWhenTheFocusLeavesAndCanCancel) {
    Form f("frmTest");
    TextBox a(&f, "a");
    TextBox b(&f, "b");
    CommandButton noValidate(&f, "cmd");
    noValidate.CausesValidation = false;
    Log log;
    bool refuse = false;
    a.Validate.Connect([&](bool& cancel) { log.push_back("validate a"), cancel = refuse; });
    a.LostFocus.Connect([&] { log.push_back("lost a"); });
    b.GotFocus.Connect([&] { log.push_back("got b"); });
    ASSERT_TRUE(a.SetFocus());
    refuse = true;
    EXPECT_TRUE(noValidate.SetFocus());  // no validation towards it, so nothing to refuse
    EXPECT_TRUE(a.SetFocus());
    log.clear();
    EXPECT_FALSE(b.SetFocus());
    EXPECT_EQ(f.ActiveControl(), &a);
    refuse = false;
    EXPECT_TRUE(b.SetFocus());
    EXPECT_EQ(log, (Log{"validate a", "validate a", "lost a", "got b"}));
    EXPECT_EQ(f.Find("b"), &b);
}

// "X" for each selected item, "." for the others.
std::string Selection(const ListBox& list) {
    std::string out;
    for (int i = 0; i < list.ListCount(); ++i) out += list.Selected(i) ? 'X' : '.';
    return out;
}

TEST(FormModelLists, ExtendedSelectionAndItemEdits) {
    Form f("frmTest");
    ListBox lst(&f, "lst", ListBox::Selection::Extended);
    for (const char* t : {"1", "2", "3", "4"}) lst.AddItem(t);
    lst.SetSelected(0, true);
    lst.SetSelected(2, true);
    lst.SetListIndex(3);
    EXPECT_EQ(Selection(lst), "X.XX");
    lst.ClickItem(1);  // a plain click selects only that item
    EXPECT_EQ(Selection(lst), ".X..");
    lst.RemoveItem(1);
    EXPECT_EQ(lst.ListIndex(), -1);
    EXPECT_EQ(Selection(lst), "...");
    lst.SetListIndex(2);
    lst.AddItem("x", 2);  // an insert at or before the focus moves it along
    EXPECT_EQ(lst.ListIndex(), 3);
    EXPECT_EQ(lst.List(2), "x");

    ListBox single(&f, "single");
    for (const char* t : {"a", "b"}) single.AddItem(t);
    single.SetListIndex(0);
    single.SetListIndex(1);
    EXPECT_EQ(Selection(single), ".X");
}

}  // namespace
}  // namespace ostrivane::form
