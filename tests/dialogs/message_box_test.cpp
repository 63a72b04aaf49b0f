#include "dialogs/message_box.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "dialogs/msgbox_form.hpp"
#include "fakes/fake_platform.hpp"
#include "lib/errors.hpp"
#include "support/run_time_error.hpp"

namespace ostrivane {
namespace {

// ---- Text preparation -------------------------------------------------------

TEST(TrimMessageTail, CutsAReferenceBlockOnly) {
    const struct {
        const char* text;
        const char* expected;
    } cases[] = {
        {"Failed@4711 @", "Failed"},
        {"Error 42", "Error 42"},            // no "@" after the last word
        {"12 @ 34@", "12 @ 34@"},            // nothing but tail characters
        {"", ""},
        {"Done.", "Done."},                  // last character is the word itself
        {"a@b@12", "a@b"},                   // the "@" after the last word counts
        {"Copy failed@53\r\n", "Copy failed"},
        {"x@", "x"},
        {"Path@C 12", "Path@C 12"},          // "@" before the last word does not
    };
    for (const auto& c : cases) EXPECT_EQ(TrimMessageTail(c.text), c.expected) << '"' << c.text << '"';
}

TEST(LayoutMessageText, LineEndsAndCount) {
    const struct {
        std::string text;
        std::int16_t width;
        std::string expected;
        std::int16_t lines;
    } cases[] = {
        {"", 77, "", 1},
        {"First@Second", 77, "First\r\nSecond", 2},
        {"a\n", 77, "a\r\n", 2},
        {"a\r\nb", 77, "a\r\nb", 2},
        {"a\rb", 77, "a\rb", 2},
        {"\n\n", 77, "\r\n\r\n", 3},
        {"@\n", 77, "\r\n\r\n", 3},          // LF after "@" is a line end of its own
        {"\r\r\n", 77, "\r\r\n", 3},
        {std::string(77, 'x'), 77, std::string(77, 'x'), 1},
        {std::string(78, 'x'), 77, std::string(78, 'x'), 2},
        {std::string(80, 'x'), 77, std::string(80, 'x'), 2},
        {std::string(155, 'x'), 77, std::string(155, 'x'), 3},
        // The column runs on over hard line ends: 40 + 40 wraps once more.
        {std::string(40, 'x') + "@" + std::string(40, 'y'), 77, std::string(40, 'x') + "\r\n" + std::string(40, 'y'), 3},
        {"abc", 0, "abc", 4},
    };
    for (const auto& c : cases) {
        const MessageLayout got = LayoutMessageText(c.text, c.width);
        EXPECT_EQ(got.text, c.expected) << c.text;
        EXPECT_EQ(got.lines, c.lines) << c.text;
    }
}

TEST(LayoutMessageText, LineCountIsSixteenBit) {
    EXPECT_EQ(LayoutMessageText(std::string(32766, '@'), 77).lines, 32767);
    EXPECT_EQ(ErrorOf([] { LayoutMessageText(std::string(32767, '@'), 77); }), kOverflow);
}

// ---- The form ---------------------------------------------------------------

class MsgBoxFormTest : public ::testing::Test {
protected:
    MsgBoxFormTest() {
        BusyState = false;
        MessageAnswer = false;
    }
    fakes::FakeDesktop desktop;
};

TEST_F(MsgBoxFormTest, DesignLayout) {
    MsgBoxForm box(desktop);
    EXPECT_EQ(box.Name(), "frmMsgBox");
    EXPECT_EQ(box.Width, 7155);
    EXPECT_EQ(box.Height, 1455);
    const struct {
        const form::Control& control;
        int left, top, width, height;
    } expected[] = {
        {box.picCritical, 255, 180, 510, 510},   {box.picExclamation, 255, 180, 510, 510},
        {box.picInformation, 255, 180, 510, 510}, {box.picQuestion, 240, 180, 510, 510},
        {box.txtMessage, 840, 360, 6135, 255},   {box.cmdYes, 2880, 960, 675, 375},
        {box.cmdOk, 3240, 960, 675, 375},        {box.cmdNo, 3720, 960, 675, 375},
        {box.cmdCopy, 240, 1080, 315, 255},      {box.cmdPrint, 6720, 1080, 315, 255},
        {box.lblCountDown, 6120, 1020, 555, 315},
    };
    for (const auto& e : expected) {
        const auto& c = e.control;
        EXPECT_EQ((std::vector<int>{c.Left, c.Top, c.Width, c.Height}),
                  (std::vector<int>{e.left, e.top, e.width, e.height}))
            << c.Name();
    }
    EXPECT_EQ(box.picQuestion.Picture(), "picQuestion");
    EXPECT_TRUE(box.txtMessage.MultiLine);
    EXPECT_FALSE(box.txtMessage.TabStop);
    EXPECT_EQ(box.cmdYes.Caption() + box.cmdOk.Caption() + box.cmdNo.Caption(), "YesOkNo");
    EXPECT_EQ(box.cmdCopy.ToolTipText(), "Copy message to clipboard");
    EXPECT_EQ(box.timTimer.Interval(), 1000);
    EXPECT_FALSE(box.timTimer.TimerEnabled());
    for (const form::Control* c : {&box.picCritical, &box.picExclamation, &box.picInformation, &box.picQuestion})
        EXPECT_FALSE(c->Visible()) << c->Name();
}

TEST_F(MsgBoxFormTest, TypeTable) {
    const struct {
        char type;
        const char* picture;  // nullptr: none
        bool yesNo;
        const char* focus;
        int answer;  // -1: not touched
    } cases[] = {
        {'1', "picCritical", false, "cmdOk", -1},
        {'2', "picExclamation", false, "cmdOk", -1},
        {'3', "picInformation", false, "cmdOk", -1},
        {'4', "picQuestion", true, "cmdYes", 1},
        {'5', "picQuestion", true, "cmdNo", 0},
        {'0', nullptr, false, "cmdOk", -1},
        {'x', nullptr, false, "cmdOk", -1},
        {'7', nullptr, true, "cmdNo", 0},
    };
    for (const auto& c : cases) {
        for (const bool before : {false, true}) {
            SCOPED_TRACE(std::string("type ") + c.type + (before ? ", answer was True" : ", answer was False"));
            MessageAnswer = before;
            MessageText = std::string(1, c.type) + "   0Question";
            MsgBoxForm box(desktop);
            box.Form_Load();
            for (const form::PictureBox* pic :
                 {&box.picCritical, &box.picExclamation, &box.picInformation, &box.picQuestion})
                EXPECT_EQ(pic->Visible(), c.picture != nullptr && pic->Name() == c.picture) << pic->Name();
            EXPECT_EQ(box.cmdYes.Visible(), c.yesNo);
            EXPECT_EQ(box.cmdNo.Visible(), c.yesNo);
            EXPECT_EQ(box.cmdOk.Visible(), !c.yesNo);
            EXPECT_TRUE(box.cmdCopy.Visible());
            EXPECT_TRUE(box.cmdPrint.Visible());
            ASSERT_NE(box.ActiveControl(), nullptr);
            EXPECT_EQ(box.ActiveControl()->Name(), c.focus);
            EXPECT_EQ(MessageAnswer, c.answer == -1 ? before : c.answer == 1);
            EXPECT_FALSE(box.Visible());  // shown only by the desktop
            EXPECT_EQ(box.txtMessage.Text(), "Question");
        }
    }
}

TEST_F(MsgBoxFormTest, CaptionAndTrimmedText) {
    MessageText = "1   0Copy failed@First line@4711 @";
    MsgBoxForm box(desktop, "Editor - notes.txt");
    box.Form_Load();
    EXPECT_EQ(box.Caption(), "ostrivane(Editor - notes.txt)");
    // The tail starts at the first "@" after the last word.
    EXPECT_EQ(box.txtMessage.Text(), "Copy failed\r\nFirst line");
    EXPECT_EQ(box.Height, 1455 + 255);
}

// ---- Height growth ----------------------------------------------------------

TEST_F(MsgBoxFormTest, GrowsByOneLineHeightPerExtraLine) {
    const struct {
        std::string message;
        int lines;
    } cases[] = {
        {"Short", 1},
        {"First@Second", 2},
        {std::string(80, 'w'), 2},
        {"a@b@c@d", 4},
        {std::string(127, '@'), 128},  // the most the 16-bit sizes allow
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.lines);
        MessageText = "3   0" + c.message;
        MsgBoxForm box(desktop);
        box.Form_Load();
        const int grow = (c.lines - 1) * 255;
        EXPECT_EQ(box.Height, 1455 + grow);
        EXPECT_EQ(box.txtMessage.Height, c.lines * 255);
        EXPECT_EQ(box.txtMessage.Top, 360);
        for (const form::Control* c : {&box.cmdOk, &box.cmdYes, &box.cmdNo})
            EXPECT_EQ(c->Top, 960 + grow) << c->Name();
        EXPECT_EQ(box.cmdCopy.Top + box.cmdPrint.Top, 2 * (1080 + grow));
        EXPECT_EQ(box.lblCountDown.Top, 1020 + grow);
        EXPECT_EQ(box.picCritical.Top, 180);
    }
}

TEST_F(MsgBoxFormTest, OneHundredAndTwentyNineLinesOverflow) {
    MessageText = "3   0" + std::string(128, '@');
    MsgBoxForm box(desktop);
    EXPECT_EQ(ErrorOf([&] { box.Form_Load(); }), kOverflow);
    // Nothing is shown then.
    EXPECT_EQ(ErrorOf([&] { lib_ShowInfo(desktop, std::string(200, '@'), 0); }), kOverflow);
    EXPECT_TRUE(desktop.calls.empty());
}

// ---- Showing, countdown, buttons ---------------------------------------------

// Runs a body while the box is up, with its timer on a manual clock, and
// notes whether the box was still up after it.
class ModalBoxTest : public MsgBoxFormTest {
protected:
    void WhileUp(std::function<void(MsgBoxForm&, fakes::ManualClock&)> body) {
        desktop.whileModal = [this, body](form::Form& f) {
            auto& box = dynamic_cast<MsgBoxForm&>(f);
            fakes::ManualClock clock;
            clock.Watch(box.timTimer);
            body(box, clock);
            stillUp.push_back(box.Visible());
        };
    }
    std::vector<bool> stillUp;
};

TEST_F(ModalBoxTest, CountdownClosesWithTheDefaultAnswer) {
    const struct {
        const char* type;
        bool before;
        bool after;
    } cases[] = {
        {"4", false, true},
        {"5", true, false},
        {"1", true, true},  // not touched
        {"3", false, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.type);
        stillUp.clear();
        std::vector<std::string> labels;
        WhileUp([&](MsgBoxForm& box, fakes::ManualClock& clock) {
            EXPECT_TRUE(box.lblCountDown.Visible());
            EXPECT_TRUE(box.timTimer.TimerEnabled());
            labels.push_back(box.lblCountDown.Caption());
            for (int s = 0; s < 4; ++s) {
                clock.Advance(1000);
                labels.push_back(box.lblCountDown.Caption());
                EXPECT_TRUE(box.Visible());
            }
            clock.Advance(1000);
            labels.push_back(box.lblCountDown.Caption());
            EXPECT_FALSE(box.timTimer.TimerEnabled());
        });
        MessageAnswer = c.before;
        lib_ShowMessage(desktop, c.type, "Continue?", 5, "");
        EXPECT_EQ(labels, (std::vector<std::string>{"5", "4", "3", "2", "1", "0"}));
        EXPECT_EQ(stillUp, std::vector<bool>{false});
        EXPECT_EQ(MessageAnswer, c.after);
    }
}

TEST_F(ModalBoxTest, NoCountdownWithoutSeconds) {
    WhileUp([](MsgBoxForm& box, fakes::ManualClock& clock) {
        EXPECT_FALSE(box.lblCountDown.Visible());
        clock.Advance(60000);
    });
    lib_ShowInfo(desktop, "Saved", 0);
    EXPECT_EQ(stillUp, std::vector<bool>{true});
}

TEST_F(ModalBoxTest, EscStopsTheCountdownAndTheBoxWaits) {
    WhileUp([](MsgBoxForm& box, fakes::ManualClock& clock) {
        clock.Advance(2000);
        int key = 27;
        box.KeyPress.Raise(key);
        EXPECT_FALSE(box.lblCountDown.Visible());
        EXPECT_FALSE(box.timTimer.TimerEnabled());
        clock.Advance(30000);
        EXPECT_EQ(box.lblCountDown.Caption(), "3");
        EXPECT_TRUE(box.Visible());
    });
    lib_ShowWarning(desktop, "Careful", 5);
    EXPECT_EQ(stillUp, std::vector<bool>{true});
}

TEST_F(ModalBoxTest, ButtonsCloseAndAnswer) {
    const struct {
        const char* type;
        form::CommandButton MsgBoxForm::*button;
        bool before;
        bool after;
    } cases[] = {
        {"4", &MsgBoxForm::cmdNo, true, false},
        {"5", &MsgBoxForm::cmdYes, false, true},
        {"1", &MsgBoxForm::cmdOk, true, true},
        {"1", &MsgBoxForm::cmdOk, false, false},
    };
    for (const auto& c : cases) {
        stillUp.clear();
        std::string label;
        WhileUp([&](MsgBoxForm& box, fakes::ManualClock& clock) {
            clock.Advance(1000);
            (box.*c.button).PerformClick();
            label = box.lblCountDown.Caption();
            EXPECT_FALSE(box.timTimer.TimerEnabled());
        });
        MessageAnswer = c.before;
        lib_ShowMessage(desktop, c.type, "Go on?", 10, "");
        EXPECT_EQ(stillUp, std::vector<bool>{false});
        EXPECT_EQ(label, "0");
        EXPECT_EQ(MessageAnswer, c.after);
    }
}

TEST_F(ModalBoxTest, CopyAndPrintLeaveTheBoxOpen) {
    WhileUp([](MsgBoxForm& box, fakes::ManualClock&) {
        box.cmdCopy.PerformClick();
        box.cmdPrint.PerformClick();
    });
    lib_ShowInfo(desktop, "First@Second@12 @", 0);
    EXPECT_EQ(desktop.clipboard, std::vector<std::string>{"First\r\nSecond"});
    EXPECT_EQ(desktop.calls, (std::vector<std::string>{"ShowModal frmMsgBox", "PrintForm frmMsgBox"}));
    EXPECT_EQ(stillUp, std::vector<bool>{true});
}

TEST_F(ModalBoxTest, BusyStateOffWhileUpAndGivenBack) {
    for (const bool busy : {true, false}) {
        BusyState = busy;
        std::vector<bool> during;
        WhileUp([&](MsgBoxForm&, fakes::ManualClock&) { during.push_back(BusyState); });
        lib_ShowInfo(desktop, "Working", 0);  // closed by the desktop, not a button
        EXPECT_EQ(during, std::vector<bool>{false});
        EXPECT_EQ(BusyState, busy);
    }
}

// ---- The entries and the split ------------------------------------------------

class ShowMessageTest : public MsgBoxFormTest {
protected:
    ShowMessageTest() {
        desktop.whileModal = [this](form::Form&) { requests.push_back(MessageText); };
    }
    std::vector<std::string> requests;
};

TEST_F(ShowMessageTest, EntriesBeepAndType) {
    lib_ShowCritical(desktop, "Bad", 0);
    lib_ShowWarning(desktop, "Odd", 12);
    lib_ShowInfo(desktop, "Fine", 0);
    EXPECT_EQ(requests, (std::vector<std::string>{"1   0Bad", "2  12Odd", "3   0Fine"}));
    EXPECT_EQ(desktop.calls, (std::vector<std::string>{"Beep", "ShowModal frmMsgBox", "Beep", "ShowModal frmMsgBox",
                                                       "ShowModal frmMsgBox"}));
}

TEST_F(ShowMessageTest, SplitAtTwelveHundredFifty) {
    lib_ShowInfo(desktop, std::string(1249, 'a'), 0);
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(requests[0], "3   0" + std::string(1249, 'a'));

    requests.clear();
    lib_ShowInfo(desktop, std::string(1250, 'a'), 7);
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(requests[0], "3   7" + std::string(1240, 'a') + "...(contd)");
    EXPECT_EQ(requests[1], "3   7" + std::string(10, 'a'));

    // The second part is not split again.
    requests.clear();
    lib_ShowInfo(desktop, std::string(4000, 'z'), 0);
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(requests[1], "3   0" + std::string(2760, 'z'));
}

TEST_F(ShowMessageTest, CutsAtTheLastBreakUpToPosition990) {
    const struct {
        std::vector<std::size_t> breaks;  // 1-based positions of blanks
        char breakChar;
        std::size_t cut;
    } cases[] = {
        {{500, 990, 1000}, ' ', 990},
        {{10}, '\n', 10},
        {{10, 700}, '\r', 700},
        {{1}, ' ', 1},
        {{991, 1200}, ' ', 1240},  // beyond the search: the fixed cut
        {{}, ' ', 1240},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.cut);
        std::string message(1300, 'm');
        for (std::size_t i = 0; i < message.size(); ++i) message[i] = static_cast<char>('a' + i % 26);
        for (const std::size_t b : c.breaks) message[b - 1] = c.breakChar;
        requests.clear();
        lib_ShowCritical(desktop, message, 0);
        ASSERT_EQ(requests.size(), 2u);
        EXPECT_EQ(requests[0], "1   0" + message.substr(0, c.cut) + "...(contd)");
        EXPECT_EQ(requests[1], "1   0" + message.substr(c.cut));
    }
}

}  // namespace
}  // namespace ostrivane
