#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTest>
#include <QTimer>

#include <cctype>
#include <functional>

#include "desktop/desktop_rules.hpp"
#include "desktop/entry_point.hpp"
#include "desktop/qt_dialogs.hpp"
#include "desktop/qt_form_binding.hpp"
#include "lib/errors.hpp"

namespace ostrivane::desktop {
namespace {

// A form with one control of each kind the main form uses.
struct TestForm : form::Form {
    TestForm()
        : form::Form("frmTest"),
          txtA(this, "txtA"),
          txtB(this, "txtB"),
          chkDots(this, "chkDots"),
          chkPlain(this, "chkPlain"),
          lstOne(this, "lstOne", form::ListBox::Selection::Single),
          lstMany(this, "lstMany", form::ListBox::Selection::Extended),
          cmdGo(this, "cmdGo"),
          scrBar(this, "scrBar", form::ScrollBar::Orientation::Horizontal),
          timTick(this, "timTick", 10),
          mnuTop(this, "mnuTop", "&Top"),
          mnuCheck(this, "mnuCheck", "&Check", "Ctrl+K") {
        Width = 6000;
        Height = 3000;
        txtA.Move(150, 150, 1200, 315);
        txtB.Move(1500, 150, 1200, 315);
        chkDots.Move(150, 600, 1200, 300);
        chkPlain.Move(1500, 600, 1200, 300);
        lstOne.Move(150, 1050, 1200, 1200);
        lstMany.Move(1500, 1050, 1200, 1200);
        cmdGo.Move(3000, 150, 1200, 375);
        scrBar.Move(3000, 750, 1500, 255);
        chkDots.ThreeState = true;
        scrBar.SetRange(0, 10);
        for (const char* item : {"Alpha", "Beta", "Gamma"}) {
            lstOne.AddItem(item);
            lstMany.AddItem(item);
        }
        mnuTop.Items = {&mnuCheck};
        mnuCheck.SetChecked(true);
    }
    form::TextBox txtA, txtB;
    form::CheckBox chkDots, chkPlain;
    form::ListBox lstOne, lstMany;
    form::CommandButton cmdGo;
    form::ScrollBar scrBar;
    form::Timer timTick;
    form::MenuItem mnuTop, mnuCheck;
};

class Binding : public ::testing::Test {
protected:
    Binding() : binding(frm, {&frm.mnuTop}) {}

    void Show() {
        RunEntryPoint([this] { frm.SetVisible(true); });
        QWidget* window = binding.Window();
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    }
    template <class W>
    W* Widget(const form::Control& c) {
        return qobject_cast<W*>(binding.WidgetOf(c));
    }
    // Lets posted work (focus moves, list clicks) run.
    static void Settle() {
        for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
    }
    void Focus(const form::Control& c) {
        binding.WidgetOf(c)->setFocus(Qt::TabFocusReason);
        Settle();
    }

    TestForm frm;
    QtFormBinding binding;
};

TEST_F(Binding, TextGoesThroughKeyPressAndTheModelsTextComesBackWithoutAnEcho) {
    int changes = 0;
    frm.txtA.Change.Connect([&] { ++changes; });
    frm.txtA.KeyPress.Connect([](int& key) {
        if (key >= '0' && key <= '9') key = 0;
        else if (key >= 'a' && key <= 'z') key = std::toupper(key);
    });
    Show();
    Focus(frm.txtA);
    auto* edit = Widget<QLineEdit>(frm.txtA);
    QTest::keyClicks(edit, "a1b");
    EXPECT_EQ(frm.txtA.Text(), "AB");
    EXPECT_EQ(edit->text(), "AB");
    EXPECT_EQ(edit->cursorPosition(), 2);
    QTest::keyClick(edit, Qt::Key_Backspace);
    EXPECT_EQ(edit->text() + QString::fromStdString(frm.txtA.Text()), "AA");
    edit->setSelection(0, 1);  // the user's selection is replaced
    QTest::keyClicks(edit, "x");
    EXPECT_EQ(frm.txtA.Text(), "X");
    EXPECT_EQ(changes, 4);
    RunEntryPoint([this] { frm.txtA.SetText("caf\xe9"); });  // Latin-1
    EXPECT_EQ(edit->text(), QString::fromUtf8("caf\u00e9"));
    EXPECT_EQ(changes, 5);
}

TEST_F(Binding, APlainBoxFlipsThroughTheModelAThreeStateBoxOnlyInItsMouseDown) {
    int clicks = 0;
    frm.chkDots.MouseDown.Connect([this] {
        static const int next[] = {2, 0, 1};  // 0 -> 2 -> 1 -> 0
        frm.chkDots.SetValue(next[frm.chkDots.Value()]);
    });
    frm.chkDots.Click.Connect([&] { ++clicks; });
    frm.chkPlain.Click.Connect([&] { ++clicks; });
    Show();
    const auto click = [this](form::CheckBox& c) {
        auto* box = Widget<QCheckBox>(c);
        QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(8, box->height() / 2));
        Settle();
        return box->checkState();
    };
    EXPECT_EQ(click(frm.chkDots), Qt::PartiallyChecked);
    EXPECT_EQ(frm.chkDots.Value(), 2);
    EXPECT_EQ(click(frm.chkDots), Qt::Checked);
    EXPECT_EQ(frm.chkDots.Value(), 1);
    EXPECT_EQ(click(frm.chkPlain), Qt::Checked);
    EXPECT_EQ(frm.chkPlain.Value(), 1);
    EXPECT_EQ(clicks, 3);
}

TEST_F(Binding, AListClickSelectsOnceAndTakingTheFocusSelectsNothing) {
    int clicks = 0;
    frm.lstOne.Click.Connect([&] { ++clicks; });
    frm.lstMany.Click.Connect([&] { ++clicks; });
    Show();
    // The view puts its cursor on the first item as it takes the focus.
    for (const form::ListBox* list : {&frm.lstOne, &frm.lstMany}) {
        Focus(frm.txtA);
        Focus(*list);
        EXPECT_EQ(frm.ActiveControl(), list);
        EXPECT_EQ(list->ListIndex() + list->SelCount(), -1);
    }
    EXPECT_EQ(clicks, 0);
    const auto click = [this](form::ListBox& l, int item, Qt::KeyboardModifiers keys = {}) {
        auto* list = Widget<QListWidget>(l);
        const QPoint below(5, list->viewport()->height() - 3);
        QTest::mouseClick(list->viewport(), Qt::LeftButton, keys,
                          item < 0 ? below : list->visualItemRect(list->item(item)).center());
        Settle();
    };
    click(frm.lstOne, 1);
    EXPECT_EQ(frm.lstOne.ListIndex(), 1);
    click(frm.lstOne, -1);  // below the items: nothing is clicked, the selection stays
    EXPECT_EQ(frm.lstOne.ListIndex(), 1);
    EXPECT_TRUE(Widget<QListWidget>(frm.lstOne)->item(1)->isSelected());
    EXPECT_EQ(clicks, 1);
    click(frm.lstMany, 0);
    click(frm.lstMany, 2, Qt::ShiftModifier);  // an extended list takes the range
    EXPECT_EQ(frm.lstMany.ListIndex(), 2);
    EXPECT_EQ(frm.lstMany.SelCount(), 3);
    EXPECT_EQ(clicks, 3);
}

TEST_F(Binding, AValidateThatCancelsKeepsTheFocusAndTheClickDoesNothing) {
    int validations = 0, clicks = 0;
    frm.txtA.Validate.Connect([&](bool& cancel) {
        ++validations;
        cancel = frm.txtA.Text() == "bad";
    });
    frm.cmdGo.Click.Connect([&] { ++clicks; });
    Show();
    auto* button = Widget<QPushButton>(frm.cmdGo);
    for (const char* text : {"bad", "good"}) {
        RunEntryPoint([&] { frm.txtA.SetText(text); });
        Focus(frm.txtA);
        QTest::mouseClick(button, Qt::LeftButton);
        Settle();
    }
    EXPECT_EQ(validations, 2);
    EXPECT_EQ(clicks, 1);  // the click the bad text kept from the button did nothing
    EXPECT_TRUE(button->hasFocus());
    RunEntryPoint([this] { frm.txtA.SetFocus(); });  // the logic's focus reaches the widget
    Settle();
    EXPECT_TRUE(Widget<QLineEdit>(frm.txtA)->hasFocus());
}

TEST_F(Binding, AScrollBarAndAMenuEntryActThroughTheModel) {
    int changes = 0, clicks = 0;
    frm.scrBar.Change.Connect([&] { ++changes; });
    frm.mnuCheck.Click.Connect([&] { ++clicks; });
    Show();
    auto* bar = Widget<QScrollBar>(frm.scrBar);
    bar->triggerAction(QAbstractSlider::SliderSingleStepAdd);
    Settle();
    EXPECT_EQ(frm.scrBar.Value(), 1);
    RunEntryPoint([this] { frm.scrBar.SetValue(7); });
    EXPECT_EQ(bar->value(), 7);
    EXPECT_EQ(changes, 2);  // the model's own change, no echo from the widget

    QAction* action = nullptr;
    for (QAction* a : binding.Window()->findChildren<QAction*>())
        if (a->text() == "&Check") action = a;
    ASSERT_NE(action, nullptr);
    EXPECT_EQ(action->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_K));
    action->trigger();
    EXPECT_EQ(clicks, 1);
    EXPECT_TRUE(action->isChecked());  // only the model unchecks it
    RunEntryPoint([this] { frm.mnuCheck.SetChecked(false); });
    EXPECT_FALSE(action->isChecked());
}

TEST_F(Binding, ATimerTicksWhileTheModelHasItEnabled) {
    int ticks = 0;
    frm.timTick.Tick.Connect([&] {
        if (++ticks == 3) frm.timTick.SetTimerEnabled(false);
    });
    RunEntryPoint([this] { frm.timTick.SetTimerEnabled(true); });
    EXPECT_TRUE(QTest::qWaitFor([&] { return ticks >= 3; }, 2000));
    QTest::qWait(50);
    EXPECT_EQ(ticks, 3);
}

TEST_F(Binding, TheFormsPlaceAndSizeFollowTheModelAfterAnEvent) {
    Show();
    RunEntryPoint([this] {
        frm.Left = 1500;
        frm.Top = 750;
        frm.txtB.Left = 1515;  // no event: brought over after the handler
    });
    EXPECT_EQ(binding.Window()->frameGeometry().topLeft(), QPoint(100, 50));
    EXPECT_EQ(Widget<QLineEdit>(frm.txtB)->geometry(), QRect(101, 10, 80, 21));
}

TEST_F(Binding, AListComesOverInOnePassAfterTheEvent) {
    Show();
    auto* widget = Widget<QListWidget>(frm.lstOne);
    int inserts = 0;
    QObject::connect(widget->model(), &QAbstractItemModel::rowsInserted, [&] { ++inserts; });
    RunEntryPoint([this] {
        for (int i = 0; i < 1000; ++i) frm.lstOne.AddItem(std::to_string(i));
    });
    EXPECT_EQ(inserts, 1);
    using Edit = std::function<void(form::ListBox&)>;
    const Edit edits[] = {
        [](form::ListBox& l) { l.AddItem("first", 0); },
        [](form::ListBox& l) { l.RemoveItem(500); },
        [](form::ListBox& l) { l.SetList(2, "renamed"); },
        [](form::ListBox& l) { l.SetList(l.ListCount() - 1, "0"); },
        [](form::ListBox& l) { l.Clear(); for (const char* t : {"A", "A", "B", "A"}) l.AddItem(t); },
        [](form::ListBox& l) { l.RemoveItem(1); },
        [](form::ListBox& l) { l.RemoveItem(0); },
    };
    for (const Edit& edit : edits) {
        RunEntryPoint([&] { edit(frm.lstOne); });
        QStringList want, got;
        for (int i = 0; i < frm.lstOne.ListCount(); ++i) want << QString::fromLatin1(frm.lstOne.List(i));
        for (int i = 0; i < widget->count(); ++i) got << widget->item(i)->text();
        EXPECT_EQ(got, want);
    }
}

TEST_F(Binding, OnlyAWindowStateTheUserChoseReachesTheModelAndTheCloseBoxAsksIt) {
    Show();
    QWidget* window = binding.Window();
    // Sent away as the close box does, and brought back before the window
    // system reported the minimise it was asked for.
    RunEntryPoint([this] {
        frm.SetWindowState(form::WindowState::Minimized);
        frm.SetVisible(false);
    });
    RunEntryPoint([this] {
        frm.SetWindowState(form::WindowState::Normal);
        frm.SetVisible(true);
    });
    window->setWindowState(Qt::WindowMinimized);  // the late report
    Settle();
    EXPECT_EQ(frm.GetWindowState(), form::WindowState::Normal);
    EXPECT_FALSE(window->isMinimized());
    window->setWindowState(Qt::WindowMinimized);  // the user's
    Settle();
    EXPECT_EQ(frm.GetWindowState(), form::WindowState::Minimized);

    // The close box asks the model; without a hook the form hides.
    binding.OnQueryUnload = [](bool& cancel) { cancel = true; };
    RunEntryPoint([this] { frm.SetWindowState(form::WindowState::Normal); });
    window->close();
    EXPECT_TRUE(frm.Visible() && window->isVisible());
    binding.OnQueryUnload = nullptr;
    window->close();
    EXPECT_FALSE(frm.Visible() || window->isVisible());
    // The states a handler passes through never reach the window.
    int changes = 0;
    binding.OnVisibleChanged = [&] { ++changes; };
    RunEntryPoint([this] {
        frm.SetVisible(true);
        frm.SetVisible(false);
    });
    EXPECT_EQ(changes, 0);
    RunEntryPoint([this, window] {  // brought forward inside a handler, it maps with its caption
        frm.SetCaption("Shown");
        frm.SetVisible(true);
        binding.ApplyFormState();
        EXPECT_TRUE(window->isVisible() && window->windowTitle() == "Shown");
    });
}

TEST_F(Binding, TabGoesInReadingOrder) {
    Show();
    Focus(frm.txtA);
    std::vector<std::string> order;
    for (int i = 0; i < 8; ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        Settle();
        order.push_back(frm.ActiveControl()->Name());
    }
    EXPECT_EQ(order, (std::vector<std::string>{"txtB", "cmdGo", "chkDots", "chkPlain", "scrBar", "lstOne",
                                               "lstMany", "txtA"}));
}

TEST(InputBox, HasOneWidthWrapsItsPromptAndStandsWhereItsCallerPutsIt) {
    std::string prompt;
    for (int i = 0; i < 40; ++i) prompt += "word ";
    const QPoint centre = QGuiApplication::primaryScreen()->geometry().center();
    for (const auto& at : {std::optional<TwipPoint>{}, std::optional<TwipPoint>{TwipPoint{1850, 1100}}}) {
        QTimer::singleShot(0, [&] {
            QWidget* box = QApplication::activeModalWidget();
            ASSERT_NE(box, nullptr);
            const QLabel* label = box->findChild<QLabel*>();
            EXPECT_EQ(box->width(), kInputBoxWidthPixels);
            EXPECT_GT(label->height(), 2 * label->fontMetrics().height());  // wrapped
            if (at)
                EXPECT_EQ(box->frameGeometry().topLeft(), QPoint(123, 73));
            else
                EXPECT_LE((box->frameGeometry().center() - centre).manhattanLength(), 2);
            box->close();
        });
        QtDialogs().InputBox(prompt, "Title", "", at);
    }
}

TEST(EntryPoint, AnUntrappedRunTimeErrorShowsTheBoxAndEndsTheProgram) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            // The box is dismissed as a user would; the program then ends.
            QTimer::singleShot(200, [] {
                if (QWidget* box = QApplication::activeModalWidget()) box->close();
            });
            RunEntryPoint([] { Raise(kOverflow); });
        },
        ::testing::ExitedWithCode(1), "Run-time error '6':\n\nOverflow");
}

}  // namespace
}  // namespace ostrivane::desktop
