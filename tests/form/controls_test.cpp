#include <gtest/gtest.h>

#include "support/run_time_error.hpp"

#include <string>
#include <vector>

#include "form/controls.hpp"
#include "fakes/fake_platform.hpp"
#include "form/form.hpp"
#include "lib/errors.hpp"

namespace ostrivane::form {
namespace {


TEST(FormModelEvents, PropertyWritesRaiseTheEventsTheLogicRelyOn) {
    Form f("frmTest");
    TextBox txt(&f, "txt");
    ListBox lst(&f, "lst");
    CheckBox chk(&f, "chk");
    ScrollBar scr(&f, "scr", ScrollBar::Orientation::Horizontal);
    std::vector<std::string> log;
    txt.Change.Connect([&] { log.push_back("Change " + txt.Text()); });
    lst.Click.Connect([&] { log.push_back("Click " + std::to_string(lst.ListIndex())); });
    chk.Click.Connect([&] { log.push_back("chk " + std::to_string(chk.Value())); });
    scr.Change.Connect([&] { log.push_back("scr " + std::to_string(scr.Value())); });
    lst.AddItem("a");
    lst.AddItem("b");

    txt.SetText("12");
    txt.SetText("12");  // no change, no event
    lst.SetListIndex(1);
    lst.SetListIndex(1);  // the same index fires again
    lst.SetListIndex(-1);
    chk.SetValue(1);
    chk.SetValue(1);
    scr.SetRange(0, 100);
    scr.SetValue(5);
    scr.SetValue(5);
    EXPECT_EQ(log, (std::vector<std::string>{"Change 12", "Click 1", "Click 1", "Click -1", "chk 1", "scr 5"}));
}

TEST(FormModelEvents, OutOfRangeValuesAreInvalidPropertyValues) {
    Form f("frmTest");
    ListBox lst(&f, "lst");
    ScrollBar scr(&f, "scr", ScrollBar::Orientation::Vertical);
    CheckBox chk(&f, "chk");
    scr.SetRange(1, 10);
    scr.SetValue(3);
    EXPECT_EQ(ErrorOf([&] { scr.SetValue(11); }), kInvalidPropertyValue);
    EXPECT_EQ(scr.Value(), 3);
    EXPECT_EQ(ErrorOf([&] { lst.SetListIndex(0); }), kInvalidPropertyValue);
    EXPECT_EQ(ErrorOf([&] { lst.List(0); }), kInvalidPropertyValue);
    EXPECT_EQ(ErrorOf([&] { chk.SetValue(3); }), kInvalidPropertyValue);
    scr.SetRange(20, 30);  // a new range pulls the value in without an event
    EXPECT_EQ(scr.Value(), 20);
}

TEST(FormModelEvents, KeyPressHandsTheKeyByReference) {
    Form f("frmTest");
    TextBox txt(&f, "txt");
    txt.KeyPress.Connect([](int& key) {
        if (key == 'x') key = 0;
        if (key == 's') key = 'S';
    });
    EXPECT_EQ(txt.TypeKey('1'), '1');
    EXPECT_EQ(txt.TypeKey('x'), 0);
    EXPECT_EQ(txt.TypeKey('s'), 'S');
    EXPECT_EQ(txt.Text(), "1S");
    txt.TypeKey(8);
    EXPECT_EQ(txt.Text(), "1");
    txt.SetSelection(0, 1);
    EXPECT_TRUE(txt.AllSelected());
    txt.TypeKey('7');  // typing replaces the selection
    EXPECT_EQ(txt.Text(), "7");
}

TEST(FormModelFocus, ValidateRunsWhenTheFocusLeavesAndCanCancel) {
    Form f("frmTest");
    TextBox a(&f, "a");
    TextBox b(&f, "b");
    CommandButton noValidate(&f, "cmd");
    noValidate.CausesValidation = false;
    std::vector<std::string> log;
    bool refuse = false;
    a.Validate.Connect([&](bool& cancel) {
        log.push_back("validate a");
        cancel = refuse;
    });
    a.LostFocus.Connect([&] { log.push_back("lost a"); });
    b.GotFocus.Connect([&] { log.push_back("got b"); });

    ASSERT_TRUE(a.SetFocus());
    log.clear();
    EXPECT_TRUE(noValidate.SetFocus());  // no validation towards it
    EXPECT_TRUE(a.SetFocus());
    log.clear();
    refuse = true;
    EXPECT_FALSE(b.SetFocus());
    EXPECT_EQ(f.ActiveControl(), &a);
    refuse = false;
    EXPECT_TRUE(b.SetFocus());
    EXPECT_EQ(log, (std::vector<std::string>{"validate a", "validate a", "lost a", "got b"}));
    EXPECT_EQ(f.Find("b"), &b);
}

TEST(FormModelLists, ExtendedSelectionAndItemEdits) {
    Form f("frmTest");
    ListBox lst(&f, "lst", ListBox::Selection::Extended);
    for (const char* t : {"1", "2", "3", "4"}) lst.AddItem(t);
    lst.SetSelected(0, true);
    lst.SetSelected(2, true);
    lst.SetListIndex(3);
    EXPECT_EQ(lst.SelCount(), 3);
    lst.ClickItem(1);  // a plain click selects only that item
    EXPECT_EQ(lst.SelCount(), 1);
    EXPECT_TRUE(lst.Selected(1));
    lst.RemoveItem(1);
    EXPECT_EQ(lst.ListIndex(), -1);
    EXPECT_EQ(lst.ListCount(), 3);
    lst.SetListIndex(2);
    lst.AddItem("x", 0);  // an insert before the focus moves it along
    EXPECT_EQ(lst.ListIndex(), 3);
    EXPECT_EQ(lst.List(0), "x");

    ListBox single(&f, "single");
    single.AddItem("a");
    single.AddItem("b");
    single.SetListIndex(0);
    single.SetListIndex(1);
    EXPECT_EQ(single.SelCount(), 1);
    EXPECT_TRUE(single.Selected(1));
}

TEST(FormModelBinding, PropertyChangesAreReported) {
    Form f("frmTest");
    CommandButton cmd(&f, "cmd");
    Timer tim(&f, "tim", 200);
    std::vector<Property> seen;
    cmd.PropertyChanged.Connect([&](Control&, Property p) { seen.push_back(p); });
    tim.PropertyChanged.Connect([&](Control&, Property p) { seen.push_back(p); });
    cmd.SetCaption("&Stop");
    cmd.SetEnabled(false);
    cmd.SetEnabled(false);
    tim.SetTimerEnabled(true);
    EXPECT_EQ(seen, (std::vector<Property>{Property::Caption, Property::Enabled, Property::TimerEnabled}));
    EXPECT_EQ(tim.Interval(), 200);
}

}  // namespace
}  // namespace ostrivane::form

namespace ostrivane::fakes {
namespace {

TEST(ManualClockTest, FiresDueTicksInTimeOrder) {
    form::Form f("frmTest");
    form::Timer fast(&f, "fast", 5);
    form::Timer slow(&f, "slow", 200);
    form::Timer once(&f, "once", 1);
    ManualClock clock;
    clock.Watch(fast);
    clock.Watch(slow);
    clock.Watch(once);
    std::vector<std::string> log;
    fast.Tick.Connect([&] { log.push_back("fast@" + std::to_string(clock.Now())); });
    slow.Tick.Connect([&] { log.push_back("slow@" + std::to_string(clock.Now())); });
    once.Tick.Connect([&] {  // a deferred call: one tick, then it switches itself off
        log.push_back("once@" + std::to_string(clock.Now()));
        once.SetTimerEnabled(false);
        fast.SetTimerEnabled(false);
    });
    fast.SetTimerEnabled(true);
    clock.Advance(12);
    once.SetTimerEnabled(true);
    slow.SetTimerEnabled(true);
    clock.Advance(300);
    EXPECT_EQ(log, (std::vector<std::string>{"fast@5", "fast@10", "once@13", "slow@212"}));
}

}  // namespace
}  // namespace ostrivane::fakes
