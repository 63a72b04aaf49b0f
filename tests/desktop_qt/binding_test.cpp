#include <gtest/gtest.h>

#include <QSvgRenderer>
#include <QtTest>
#include <QtWidgets>

#include <cctype>
#include <deque>

#include "desktop/desktop_rules.hpp"
#include "desktop/entry_point.hpp"
#include "desktop/program_icon.hpp"
#include "desktop/qt_dialogs.hpp"
#include "desktop/qt_form_binding.hpp"
#include "desktop/qt_input_box.hpp"
#include "dialogs/about_form.hpp"
#include "dialogs/input_box_form.hpp"
#include "lib/errors.hpp"
#include "platform/desktop.hpp"

namespace ostrivane::desktop {
namespace {

// A form with one control of each kind the main form uses.
struct TestForm : form::Form {
    TestForm() : form::Form("frmTest") {
        Width = 6000;
        Height = 3000;
        const struct { form::Control* control; int left, top, width, height; } layout[] = {
            {&txtA, 150, 150, 1200, 315}, {&txtB, 1500, 150, 1200, 315},
            {&chkDots, 150, 600, 1200, 300}, {&chkPlain, 1500, 600, 1200, 300},
            {&lstOne, 150, 1050, 1200, 1200}, {&lstMany, 1500, 1050, 1200, 1200},
            {&cmdGo, 3000, 150, 1200, 375}, {&scrBar, 3000, 750, 1500, 255}};
        for (const auto& at : layout) at.control->Move(at.left, at.top, at.width, at.height);
        chkDots.ThreeState = true;
        scrBar.SetRange(0, 10);
        for (form::ListBox* list : {&lstOne, &lstMany})
            for (const char* item : {"Alpha", "Beta", "Gamma"}) list->AddItem(item);
        mnuTop.Items = {&mnuCheck};
        mnuCheck.SetChecked(true);
    }
    form::TextBox txtA{this, "txtA"}, txtB{this, "txtB"};
    form::CheckBox chkDots{this, "chkDots"}, chkPlain{this, "chkPlain"};
    form::ListBox lstOne{this, "lstOne", form::ListBox::Selection::Single};
    form::ListBox lstMany{this, "lstMany", form::ListBox::Selection::Extended};
    form::CommandButton cmdGo{this, "cmdGo"};
    form::ScrollBar scrBar{this, "scrBar", form::ScrollBar::Orientation::Horizontal};
    form::Timer timTick{this, "timTick", 10};
    form::MenuItem mnuTop{this, "mnuTop", "&Top"}, mnuCheck{this, "mnuCheck", "&Check", "Ctrl+K"};
};

class Binding : public ::testing::Test {
protected:
    Binding() : binding(frm, {&frm.mnuTop}) {}

    void Show() {
        RunEntryPoint([this] { frm.SetVisible(true); });
        binding.Window()->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(binding.Window()));
    }
    template <class W>
    W* Widget(const form::Control& c) { return qobject_cast<W*>(binding.WidgetOf(c)); }
    // Lets posted work (focus moves, list clicks) run.
    static void Settle() { for (int i = 0; i < 3; ++i) QCoreApplication::processEvents(); }
    void Focus(const form::Control& c) {
        binding.WidgetOf(c)->setFocus(Qt::TabFocusReason);
        Settle();
    }
    // How often any of the events was raised.
    const int& Count(std::initializer_list<form::Event<>*> events) {
        int& n = counts.emplace_back(0);
        for (form::Event<>* event : events) event->Connect([&n] { ++n; });
        return n;
    }

    std::deque<int> counts;
    TestForm frm;
    QtFormBinding binding;
};

TEST_F(Binding, TypingFocusAndClicksGoThroughTheModel) {
    const int& changes = Count({&frm.txtA.Change});
    const int& clicks = Count({&frm.cmdGo.Click});
    frm.txtA.KeyPress.Connect([](int& key) { key = std::isdigit(key) ? 0 : std::toupper(key); });
    int validations = 0;
    frm.txtA.Validate.Connect([&](bool& cancel) {
        ++validations;
        cancel = frm.txtA.Text() == "bad";
    });
    Show();
    Focus(frm.txtA);
    auto* edit = Widget<QLineEdit>(frm.txtA);
    QTest::keyClicks(edit, "a1b");
    EXPECT_EQ(frm.txtA.Text() + "|" + edit->text().toStdString(), "AB|AB");
    EXPECT_EQ(edit->cursorPosition(), 2);
    QTest::keyClick(edit, Qt::Key_Backspace);
    EXPECT_EQ(frm.txtA.Text() + "|" + edit->text().toStdString(), "A|A");
    edit->setSelection(0, 1);  // the user's selection is replaced
    QTest::keyClicks(edit, "x");
    EXPECT_EQ(frm.txtA.Text(), "X");
    EXPECT_EQ(changes, 4);
    RunEntryPoint([this] { frm.txtA.SetText("caf\xe9"); });  // Latin-1
    EXPECT_EQ(edit->text(), QString::fromUtf8("caf\u00e9"));
    EXPECT_EQ(changes, 5);

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
    EXPECT_TRUE(edit->hasFocus());

    // A three-state box moves only in its MouseDown: 0 -> 2 -> 1 -> 0.
    frm.chkDots.MouseDown.Connect([this] { frm.chkDots.SetValue((frm.chkDots.Value() + 2) % 3); });
    const int& checkClicks = Count({&frm.chkDots.Click, &frm.chkPlain.Click});
    const int& listClicks = Count({&frm.lstOne.Click, &frm.lstMany.Click});
    const int& barChanges = Count({&frm.scrBar.Change});
    const int& menuClicks = Count({&frm.mnuCheck.Click});
    std::string order;
    for (int i = 0; i < 8; ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        Settle();
        order += frm.ActiveControl()->Name() + " ";
    }
    EXPECT_EQ(order, "txtB cmdGo chkDots chkPlain scrBar lstOne lstMany txtA ");
    // A list view puts its cursor on the first item as it takes the focus: no selection.
    for (const form::ListBox* list : {&frm.lstOne, &frm.lstMany})
        EXPECT_EQ(list->ListIndex() + list->SelCount(), -1);
    EXPECT_EQ(listClicks, 0);

    const struct { form::CheckBox* box; Qt::CheckState shown; int value; } checks[] = {
        {&frm.chkDots, Qt::PartiallyChecked, 2}, {&frm.chkDots, Qt::Checked, 1}, {&frm.chkPlain, Qt::Checked, 1}};
    for (const auto& check : checks) {
        SCOPED_TRACE(check.box->Name() + " -> " + std::to_string(check.value));
        auto* box = Widget<QCheckBox>(*check.box);
        QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(8, box->height() / 2));
        Settle();
        EXPECT_EQ(box->checkState(), check.shown);
        EXPECT_EQ(check.box->Value(), check.value);
    }
    EXPECT_EQ(checkClicks, 3);

    // Below the items nothing is clicked; an extended list takes the shifted range.
    const struct { form::ListBox* list; int item; Qt::KeyboardModifiers keys; int index, count, clicks; } picks[] = {
        {&frm.lstOne, 1, {}, 1, 1, 1}, {&frm.lstOne, -1, {}, 1, 1, 1},
        {&frm.lstMany, 0, {}, 0, 1, 2}, {&frm.lstMany, 2, Qt::ShiftModifier, 2, 3, 3}};
    for (const auto& pick : picks) {
        SCOPED_TRACE(pick.list->Name() + " item " + std::to_string(pick.item));
        auto* list = Widget<QListWidget>(*pick.list);
        const QRect item = pick.item < 0 ? QRect(0, list->viewport()->height() - 6, 10, 6)  // below them all
                                         : list->visualItemRect(list->item(pick.item));
        QTest::mouseClick(list->viewport(), Qt::LeftButton, pick.keys, item.center());
        Settle();
        EXPECT_EQ(pick.list->ListIndex(), pick.index);
        EXPECT_EQ(pick.list->SelCount(), pick.count);
        EXPECT_EQ(list->selectedItems().size(), pick.count);
        EXPECT_EQ(listClicks, pick.clicks);
    }

    auto* bar = Widget<QScrollBar>(frm.scrBar);
    bar->triggerAction(QAbstractSlider::SliderSingleStepAdd);
    Settle();
    EXPECT_EQ(frm.scrBar.Value(), 1);
    RunEntryPoint([this] { frm.scrBar.SetValue(7); });
    EXPECT_EQ(bar->value(), 7);
    EXPECT_EQ(barChanges, 2);  // the model's own change, no echo from the widget

    QAction* action = nullptr;
    for (QAction* a : binding.Window()->findChildren<QAction*>())
        if (a->text() == "&Check") action = a;
    ASSERT_NE(action, nullptr);
    EXPECT_EQ(action->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_K));
    action->trigger();
    EXPECT_EQ(menuClicks, 1);
    EXPECT_TRUE(action->isChecked());  // only the model unchecks it
    RunEntryPoint([this] { frm.mnuCheck.SetChecked(false); });
    EXPECT_FALSE(action->isChecked());
}

TEST_F(Binding, TheModelComesOverAfterTheEventAndOnlyTheUsersWindowStateComesBack) {
    int ticks = 0;
    frm.timTick.Tick.Connect([&] { frm.timTick.SetTimerEnabled(++ticks < 3); });
    RunEntryPoint([this] { frm.timTick.SetTimerEnabled(true); });
    EXPECT_TRUE(QTest::qWaitFor([&] { return ticks >= 3; }, 2000));
    QTest::qWait(50);
    EXPECT_EQ(ticks, 3);

    Show();
    RunEntryPoint([this] {
        frm.Left = 1500;
        frm.Top = 750;
        frm.txtB.Left = 1515;  // no event: brought over after the handler
    });
    EXPECT_EQ(binding.Window()->frameGeometry().topLeft(), QPoint(100, 50));
    EXPECT_EQ(Widget<QLineEdit>(frm.txtB)->geometry(), QRect(101, 10, 80, 21));

    auto* widget = Widget<QListWidget>(frm.lstOne);
    QSignalSpy inserts(widget->model(), &QAbstractItemModel::rowsInserted);
    RunEntryPoint([this] { for (int i = 0; i < 1000; ++i) frm.lstOne.AddItem(std::to_string(i)); });
    EXPECT_EQ(inserts.count(), 1);
    void (*const edits[])(form::ListBox&) = {
        [](form::ListBox& l) { l.AddItem("first", 0); },
        [](form::ListBox& l) { l.RemoveItem(500); },
        [](form::ListBox& l) { l.SetList(2, "renamed"); },
        [](form::ListBox& l) { l.SetList(l.ListCount() - 1, "0"); },
        [](form::ListBox& l) { l.Clear(); for (const char* t : {"A", "A", "B", "A"}) l.AddItem(t); },
        [](form::ListBox& l) { l.RemoveItem(1); },
        [](form::ListBox& l) { l.RemoveItem(0); },
    };
    for (const auto& edit : edits) {
        RunEntryPoint([&] { edit(frm.lstOne); });
        QStringList want, got;
        for (int i = 0; i < frm.lstOne.ListCount(); ++i) want << QString::fromLatin1(frm.lstOne.List(i));
        for (int i = 0; i < widget->count(); ++i) got << widget->item(i)->text();
        EXPECT_EQ(got, want);
    }

    QWidget* window = binding.Window();
    // Sent away as the close box does, and back before the minimise was reported.
    for (const auto state : {form::WindowState::Minimized, form::WindowState::Normal})
        RunEntryPoint([this, state] {
            frm.SetWindowState(state);
            frm.SetVisible(state == form::WindowState::Normal);
        });
    // The first minimise is that late report, the second the user's.
    for (const auto want : {form::WindowState::Normal, form::WindowState::Minimized}) {
        window->setWindowState(Qt::WindowMinimized);
        Settle();
        EXPECT_EQ(frm.GetWindowState(), want);
        EXPECT_EQ(window->isMinimized(), want == form::WindowState::Minimized);
    }

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

TEST(InputBox, HasOneWidthWrapsItsPromptAndStandsWhereItsCallerPutsIt) {
    const std::string prompt = QString("word ").repeated(40).toStdString();
    const QPoint centre = QGuiApplication::primaryScreen()->geometry().center();
    for (const auto& at : {std::optional<TwipPoint>{}, std::optional<TwipPoint>{TwipPoint{1850, 1100}}}) {
        QTimer::singleShot(0, [&] {
            QWidget* box = QApplication::activeModalWidget();
            ASSERT_NE(box, nullptr);
            const QLabel* label = box->findChild<QLabel*>();
            EXPECT_EQ(box->width(), kInputBoxWidthPixels);
            EXPECT_GT(label->height(), 2 * label->fontMetrics().height());  // wrapped
            const QPoint off = at ? box->frameGeometry().topLeft() - QPoint(123, 73)  // where it was put
                                  : box->frameGeometry().center() - centre;
            EXPECT_LE(off.manhattanLength(), at ? 0 : 2);
            box->close();
        });
        QtDialogs().InputBox(prompt, "Title", "", at);
    }
}

// The library's input box: masked, its keys going straight to the box (the
// form previews none), Enter pressing the default button, Esc the cancel one.
TEST(LibraryInputBox, KeysReachTheBoxAndTheButtonsByEnterAndEsc) {
    for (const Qt::Key last : {Qt::Key_Return, Qt::Key_Escape}) {
        ScratchText = std::string("Default:=abc\xffLines:=1\xffMaskInput:=True");
        InputBoxForm box;
        box.Form_Load();
        QtFormBinding binding(box);
        AttachInputBox(binding, box);
        RunEntryPoint([&] { box.SetVisible(true); });
        auto* edit = qobject_cast<QLineEdit*>(binding.WidgetOf(box.txtInput));
        ASSERT_NE(edit, nullptr);
        EXPECT_EQ(edit->style()->styleHint(QStyle::SH_LineEdit_PasswordCharacter, nullptr, edit), '*');
        binding.Window()->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(binding.Window()));
        edit->setFocus(Qt::TabFocusReason);
        QCoreApplication::processEvents();
        edit->selectAll();
        QTest::keyClick(edit, Qt::Key_Left);
        EXPECT_FALSE(edit->hasSelectedText() || box.FirstKeySeen);
        QTest::keyClick(edit, last);
        EXPECT_FALSE(box.Visible());
        box.Unload();
        EXPECT_EQ(box.txtInput.Text() + (InputCancelled ? "|cancelled" : ""),
                  last == Qt::Key_Return ? "abc" : "|cancelled");
        DetachInputBox(binding, box);
    }
}

// Takes the addresses the desktop opens, so that no program starts.
class UrlCatcher : public QObject {
    Q_OBJECT
public slots:
    void Open(const QUrl& url) { opened << url.toString(); }

public:
    QStringList opened;
};

// A click on a link opens its address; the caption shows as Latin-1; the
// window's icon and the picture are the SVG's own drawing; Esc presses OK,
// which closes the box.
TEST(AboutBox, LinksOpenTheirAddressIconsAreTheSvgAndEscCloses) {
    QImage svg(32, 32, QImage::Format_ARGB32_Premultiplied);
    svg.fill(Qt::transparent);
    { QPainter painter(&svg); QSvgRenderer(QString::fromLatin1(kProgramIconResource)).render(&painter); }
    AboutForm about;
    about.Icon = kProgramIcon;
    about.imgIcon.SetPicture(kProgramIcon);
    about.lblCopyright.SetCaption("Copyright \xA9" "2026");
    about.hlkHome.SetCaption("www.example");
    about.hlkHome.SetAddress("http://www.example");
    about.hlkEmail.SetCaption("a_b@example");
    about.hlkEmail.SetAddress("mailto:a_b@example?Subject=Hi there");
    QtFormBinding binding(about);
    RunEntryPoint([&] { about.SetVisible(true); });
    UrlCatcher catcher;
    for (const char* scheme : {"http", "mailto"}) QDesktopServices::setUrlHandler(scheme, &catcher, "Open");
    for (const form::HyperLinkLabel* link : {&about.hlkEmail, &about.hlkHome})
        QTest::mouseClick(binding.WidgetOf(*link), Qt::LeftButton, {}, QPoint(4, 4));
    for (const char* scheme : {"http", "mailto"}) QDesktopServices::unsetUrlHandler(scheme);
    EXPECT_EQ(catcher.opened, QStringList({"mailto:a_b@example?Subject=Hi there", "http://www.example"}));
    EXPECT_EQ(qobject_cast<QLabel*>(binding.WidgetOf(about.hlkEmail))->text(), "a_b@example");
    EXPECT_EQ(qobject_cast<QLabel*>(binding.WidgetOf(about.lblCopyright))->text(), QString::fromUtf8("Copyright \u00a92026"));
    EXPECT_EQ(binding.Window()->windowIcon().pixmap(32).toImage().convertToFormat(svg.format()), svg);
    const QLabel* picture = qobject_cast<QLabel*>(binding.WidgetOf(about.imgIcon));
    EXPECT_EQ(picture->pixmap().toImage().convertToFormat(svg.format()), svg);
    binding.Window()->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(binding.Window()));
    QTest::keyClick(binding.WidgetOf(about.cmdOk), Qt::Key_Escape);
    EXPECT_TRUE(about.Unloaded());
    EXPECT_FALSE(about.Visible() || binding.Window()->isVisible());
}

TEST(ProgramIcon, TheThemeHasItsPngAtEverySize) {
    for (const int size : {16, 22, 24, 32, 48, 64, 128, 256}) {
        SCOPED_TRACE(size);
        const QImage png(QStringLiteral(OSTRIVANE_ICON_THEME "/%1x%1/apps/org.ostrivane.Ostrivane.png").arg(size));
        ASSERT_EQ(png.size(), QSize(size, size));
        // Clear in the corner, the marker red where the lines cross.
        EXPECT_EQ(qAlpha(png.pixel(0, 0)), 0);
        EXPECT_EQ(png.pixel(120 * size / 256, 120 * size / 256), qRgb(230, 20, 20));
    }
}

TEST(EntryPoint, AnUntrappedRunTimeErrorShowsTheBoxAndEndsTheProgram) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    // The box is dismissed as a user would; the program then ends.
    const auto run = [] {
        QTimer::singleShot(200, [] {
            if (QWidget* box = QApplication::activeModalWidget()) box->close();
        });
        RunEntryPoint([] { Raise(kOverflow); });
    };
    EXPECT_EXIT(run(), ::testing::ExitedWithCode(1), "Run-time error '6':\n\nOverflow");
}

}  // namespace
}  // namespace ostrivane::desktop

#include "binding_test.moc"
