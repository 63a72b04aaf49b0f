#include "dialogs/message_box.hpp"

#include <gtest/gtest.h>

#include "dialogs/msgbox_form.hpp"
#include "fakes/fake_platform.hpp"
#include "lib/errors.hpp"
#include "support/run_time_error.hpp"

namespace ostrivane {
namespace {

TEST(TrimMessageTail, CutsAReferenceBlockOnly) {
    const std::pair<const char*, const char*> cases[] = {
        {"Failed@4711 @", "Failed"}, {"Error 42", "Error 42"},  // no "@" after the last word
        {"12 @ 34@", "12 @ 34@"},    // nothing but tail characters
        {"", ""}, {"Done.", "Done."}, {"a@b@12", "a@b"}, {"Copy failed@53\r\n", "Copy failed"}, {"x@", "x"},
        {"Path@C 12", "Path@C 12"},  // "@" before the last word does not count
    };
    for (const auto& [text, expected] : cases) EXPECT_EQ(TrimMessageTail(text), expected) << '"' << text << '"';
}

TEST(LayoutMessageText, LineEndsAndASixteenBitCount) {
    const struct { std::string text; std::int16_t width; std::string expected; std::int16_t lines; } cases[] = {
        {"", 77, "", 1}, {"First@Second", 77, "First\r\nSecond", 2}, {"a\n", 77, "a\r\n", 2},
        {"a\r\nb", 77, "a\r\nb", 2}, {"a\rb", 77, "a\rb", 2}, {"\n\n", 77, "\r\n\r\n", 3},
        {"@\n", 77, "\r\n\r\n", 3},  // LF after "@" is a line end of its own
        {"\r\r\n", 77, "\r\r\n", 3}, {std::string(77, 'x'), 77, std::string(77, 'x'), 1},
        {std::string(78, 'x'), 77, std::string(78, 'x'), 2}, {std::string(155, 'x'), 77, std::string(155, 'x'), 3},
        // The column runs on over hard line ends: 40 + 40 wraps once more.
        {std::string(40, 'x') + "@" + std::string(40, 'y'), 77, std::string(40, 'x') + "\r\n" + std::string(40, 'y'), 3},
        {"abc", 0, "abc", 4},
    };
    for (const auto& c : cases) {
        const MessageLayout got = LayoutMessageText(c.text, c.width);
        EXPECT_EQ(got.text, c.expected) << c.text;
        EXPECT_EQ(got.lines, c.lines) << c.text;
    }
    EXPECT_EQ(LayoutMessageText(std::string(32766, '@'), 77).lines, 32767);
    EXPECT_EQ(ErrorOf([] { LayoutMessageText(std::string(32767, '@'), 77); }), kOverflow);
}

class MsgBoxFormTest : public ::testing::Test {
protected:
    MsgBoxFormTest() {
        BusyState = false;
        MessageAnswer = false;
        MessageText = "1   0Text";
    }
    fakes::FakeDesktop desktop;
};

// The type digit chooses the sign, the buttons, the focus and the default
// answer. Each extra line moves everything below the text down by one line
// height; 128 lines are the most the 16-bit sizes allow. The caption names
// the window in front.
TEST_F(MsgBoxFormTest, TypeDigitAndLineCountShapeTheBox) {
    const struct { char type; const char* picture; bool yesNo; const char* focus; int answer; std::string text; int lines; }
        cases[] = {
            {'1', "picCritical", false, "cmdOk", -1, "Short", 1}, {'2', "picExclamation", false, "cmdOk", -1, "A@B", 2},
            {'3', "picInformation", false, "cmdOk", -1, std::string(80, 'w'), 2},
            {'4', "picQuestion", true, "cmdYes", 1, "a@b@c@d", 4},
            {'5', "picQuestion", true, "cmdNo", 0, std::string(127, '@'), 128},
            {'0', "", false, "cmdOk", -1, "", 1},  // -1: answer not touched
            {'x', "", false, "cmdOk", -1, "", 1}, {'7', "", true, "cmdNo", 0, "", 1},
        };
    for (const auto& c : cases) {
        for (const bool before : {false, true}) {
            SCOPED_TRACE(std::string("type ") + c.type + (before ? ", answer was True" : ", answer was False"));
            MessageAnswer = before;
            MessageText = std::string(1, c.type) + "   0" + c.text;
            MsgBoxForm design(desktop), box(desktop, "Editor - notes.txt");
            box.Form_Load();
            EXPECT_EQ(box.Caption(), "ostrivane(Editor - notes.txt)");
            for (const form::PictureBox* pic :
                 {&box.picCritical, &box.picExclamation, &box.picInformation, &box.picQuestion})
                EXPECT_EQ(pic->Visible(), pic->Name() == c.picture) << pic->Name();
            EXPECT_EQ(std::vector<bool>({box.cmdYes.Visible(), box.cmdNo.Visible(), box.cmdOk.Visible(),
                                         box.cmdCopy.Visible() && box.cmdPrint.Visible()}),
                      std::vector<bool>({c.yesNo, c.yesNo, !c.yesNo, true}));
            ASSERT_NE(box.ActiveControl(), nullptr);
            EXPECT_EQ(box.ActiveControl()->Name(), c.focus);
            EXPECT_EQ(MessageAnswer, c.answer == -1 ? before : c.answer == 1);
            EXPECT_FALSE(box.Visible());  // shown only by the desktop
            const int grow = (c.lines - 1) * 255;
            EXPECT_EQ(box.Height, design.Height + grow);
            EXPECT_EQ(box.txtMessage.Height, c.lines * 255);
            for (const auto b : {&MsgBoxForm::cmdOk, &MsgBoxForm::cmdYes, &MsgBoxForm::cmdNo, &MsgBoxForm::cmdCopy,
                                 &MsgBoxForm::cmdPrint})
                EXPECT_EQ((box.*b).Top, (design.*b).Top + grow) << (box.*b).Name();
            EXPECT_EQ(box.lblCountDown.Top, design.lblCountDown.Top + grow);
            EXPECT_EQ(box.txtMessage.Top + box.picCritical.Top, design.txtMessage.Top + design.picCritical.Top);
        }
    }
    MessageText = "3   0" + std::string(128, '@');
    MsgBoxForm box(desktop);
    EXPECT_EQ(ErrorOf([&] { box.Form_Load(); }), kOverflow);
    // Nothing is shown then.
    EXPECT_EQ(ErrorOf([&] { lib_ShowInfo(desktop, std::string(200, '@'), 0); }), kOverflow);
    EXPECT_TRUE(desktop.calls.empty());
}

// Runs a body while the box is up and notes whether the box was still up after it.
class ModalBoxTest : public MsgBoxFormTest {
protected:
    void WhileUp(std::function<void(MsgBoxForm&)> body) {
        stillUp.clear();
        desktop.whileModal = [this, body](form::Form& f) {
            auto& box = dynamic_cast<MsgBoxForm&>(f);
            body(box);
            stillUp.push_back(box.Visible());
        };
    }
    // Seconds on the clock: the timer ticks only while it is on, once a second.
    static void Wait(MsgBoxForm& box, int seconds) {
        for (int s = 0; s < seconds; ++s)
            if (box.timTimer.TimerEnabled() && box.timTimer.Interval() == 1000) box.timTimer.Tick.Raise();
    }
    std::vector<bool> stillUp;
};

// Left alone, the countdown closes the box with the default answer; a button
// closes and answers at once; Esc only stops the countdown and the box waits.
TEST_F(ModalBoxTest, CountdownButtonsAndEsc) {
    const struct { const char* type; form::CommandButton MsgBoxForm::*button; bool esc, before, after; const char* labels; }
        cases[] = {
            {"4", nullptr, false, false, true, "543210"},         {"5", nullptr, false, true, false, "543210"},
            {"1", nullptr, false, true, true, "543210"},          {"3", nullptr, false, false, false, "543210"},
            {"4", &MsgBoxForm::cmdNo, false, true, false, "540000"}, {"5", &MsgBoxForm::cmdYes, false, false, true, "540000"},
            {"1", &MsgBoxForm::cmdOk, false, true, true, "540000"},  {"1", &MsgBoxForm::cmdOk, false, false, false, "540000"},
            {"4", nullptr, true, false, true, "544444"},
        };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::Message() << c.type << " labels " << c.labels);
        std::string labels;
        WhileUp([&](MsgBoxForm& box) {
            labels += box.lblCountDown.Caption();
            Wait(box, 1);
            labels += box.lblCountDown.Caption();
            int key = 27;
            if (c.button) (box.*c.button).PerformClick();
            if (c.esc) box.KeyPress.Raise(key);
            for (int s = 0; s < 4; ++s) {
                Wait(box, 1);
                labels += box.lblCountDown.Caption();
            }
            EXPECT_EQ(box.lblCountDown.Visible(), !c.esc);
        });
        MessageAnswer = c.before;
        lib_ShowMessage(desktop, c.type, "Go on?", 5, "");
        EXPECT_EQ(labels, c.labels);
        EXPECT_EQ(stillUp, std::vector<bool>{c.esc});
        EXPECT_EQ(MessageAnswer, c.after);
    }
}

// Without seconds there is no countdown; copy and print leave the box up, the
// busy state is off while it is up and given back after, whoever closes it.
TEST_F(ModalBoxTest, WithoutSecondsTheBoxWaitsCopiesAndPrints) {
    for (const bool busy : {true, false}) {
        BusyState = busy;
        desktop.calls.clear();
        desktop.clipboard.clear();
        std::vector<bool> during;
        WhileUp([&](MsgBoxForm& box) {
            during.push_back(BusyState);
            EXPECT_FALSE(box.lblCountDown.Visible());
            Wait(box, 60);
            box.cmdCopy.PerformClick();
            box.cmdPrint.PerformClick();
        });
        lib_ShowInfo(desktop, "First@Second@12 @", 0);
        EXPECT_EQ(desktop.clipboard, Lines{"First\r\nSecond"});
        EXPECT_EQ(desktop.calls, (Lines{"ShowModal frmMsgBox", "PrintForm frmMsgBox"}));
        EXPECT_EQ(stillUp, std::vector<bool>{true});
        EXPECT_EQ(during, std::vector<bool>{false});
        EXPECT_EQ(BusyState, busy);
    }
}

// Critical and warning beep first. From 1250 characters on, two boxes: cut
// after the last break up to position 990, else at 1240; the second part is
// not split again.
TEST_F(MsgBoxFormTest, EntriesBeepTypeAndSplitLongMessagesInTwo) {
    Lines requests;
    desktop.whileModal = [&](form::Form&) { requests.push_back(MessageText); };
    using Entry = void (*)(Desktop&, std::string_view, std::int16_t);
    const std::pair<Entry, std::string> entries[] = {{lib_ShowCritical, "1  12"}, {lib_ShowWarning, "2  12"},
                                                     {lib_ShowInfo, "3  12"}};
    const struct { std::size_t length; std::vector<std::size_t> breaks; char breakChar; std::size_t cut; } cases[] = {
        {1249, {}, ' ', 0}, {1250, {}, ' ', 1240}, {4000, {}, ' ', 1240}, {1300, {500, 990, 1000}, ' ', 990},
        {1300, {10}, '\n', 10}, {1300, {10, 700}, '\r', 700}, {1300, {1}, ' ', 1}, {1300, {991, 1200}, ' ', 1240},
        {3, {}, ' ', 0}};
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        const auto& c = cases[i];
        const auto& [show, head] = entries[i % 3];
        SCOPED_TRACE(::testing::Message() << c.length << " cut " << c.cut << " type " << head);
        std::string message(c.length, ' ');
        for (std::size_t k = 0; k < message.size(); ++k) message[k] = static_cast<char>('a' + k % 26);
        for (const std::size_t b : c.breaks) message[b - 1] = c.breakChar;
        requests.clear();
        desktop.calls.clear();
        show(desktop, message, 12);
        Lines boxes(c.cut == 0 ? 1 : 2, "ShowModal frmMsgBox");
        if (head[0] != '3') boxes.insert(boxes.begin(), "Beep");
        EXPECT_EQ(desktop.calls, boxes);
        EXPECT_EQ(requests, c.cut == 0 ? Lines{head + message}
                                       : Lines({head + message.substr(0, c.cut) + "...(contd)", head + message.substr(c.cut)}));
    }
}

}  // namespace
}  // namespace ostrivane
