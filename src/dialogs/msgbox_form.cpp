#include "dialogs/msgbox_form.hpp"

#include "dialogs/message_box.hpp"
#include "lib/errors.hpp"
#include "lib/numbers.hpp"
#include "store/data_file.hpp"

namespace ostrivane {

namespace {

// Mid$ of the run time: 1-based, never past the end.
std::string_view Mid(std::string_view text, std::size_t start, std::size_t length = std::string_view::npos) {
    if (start < 1 || start > text.size()) return {};
    return text.substr(start - 1, length);
}

void MoveDown(form::Control& control, int by) { control.Move(control.Left, control.Top + by, control.Width, control.Height); }

}  // namespace

MsgBoxForm::MsgBoxForm(Desktop& desktop, std::string title)
    : form::Form(kMsgBoxFormName),
      picCritical(this, "picCritical", "picCritical"),
      picExclamation(this, "picExclamation", "picExclamation"),
      picInformation(this, "picInformation", "picInformation"),
      picQuestion(this, "picQuestion", "picQuestion"),
      txtMessage(this, "txtMessage"),
      cmdYes(this, "cmdYes"),
      cmdOk(this, "cmdOk"),
      cmdNo(this, "cmdNo"),
      cmdCopy(this, "cmdCopy"),
      cmdPrint(this, "cmdPrint"),
      lblCountDown(this, "lblCountDown"),
      timTimer(this, "timTimer", 1000),
      desktop_(desktop),
      title_(std::move(title)) {
    Width = kMsgBoxDesignWidth;
    Height = kMsgBoxDesignHeight;

    for (form::PictureBox* pic : {&picCritical, &picExclamation, &picInformation}) {
        pic->Move(255, 180, 510, 510);
        pic->SetVisible(false);
    }
    picQuestion.Move(240, 180, 510, 510);
    picQuestion.SetVisible(false);

    txtMessage.Move(840, 360, 6135, kMsgBoxLineHeight);
    txtMessage.MultiLine = true;
    txtMessage.TabStop = false;
    txtMessage.SetBackColor(kSystemMenuColour);

    cmdYes.Move(2880, 960, 675, 375);
    cmdYes.SetCaption("Yes");
    cmdOk.Move(3240, 960, 675, 375);
    cmdOk.SetCaption("Ok");
    cmdNo.Move(3720, 960, 675, 375);
    cmdNo.SetCaption("No");
    cmdCopy.Move(240, 1080, 315, 255);
    cmdCopy.SetToolTipText("Copy message to clipboard");
    cmdPrint.Move(6720, 1080, 315, 255);
    lblCountDown.Move(6120, 1020, 555, 315);
    timTimer.SetTimerEnabled(false);

    timTimer.Tick.Connect([this] { timTimer_Timer(); });
    KeyPress.Connect([this](int& key) { Form_KeyPress(key); });
    cmdOk.Click.Connect([this] { cmdOk_Click(); });
    cmdYes.Click.Connect([this] { cmdYes_Click(); });
    cmdNo.Click.Connect([this] { cmdNo_Click(); });
    cmdCopy.Click.Connect([this] { cmdCopy_Click(); });
    cmdPrint.Click.Connect([this] { cmdPrint_Click(); });
}

void MsgBoxForm::Form_Load() {
    SavedBusy = BusyState;
    lib_SetBusy(false);

    // The title of the window in front, unless the caller named one.
    SetCaption(ExecutableBaseName() + "(" + (title_.empty() ? ForegroundWindowTitle() : title_) + ")");

    const std::string_view request = MessageText;
    const std::int16_t type = RoundToInt16(Val(Mid(request, 1, 1)));
    switch (type) {
        case 1: picCritical.SetVisible(true); break;
        case 2: picExclamation.SetVisible(true); break;
        case 3: picInformation.SetVisible(true); break;
        case 4:
        case 5: picQuestion.SetVisible(true); break;
        default: break;  // no sign; the buttons still follow the digit
    }

    // The focus can only go to a control of a visible form.
    SetVisible(true);
    if (type >= 4) {
        cmdYes.SetVisible(true);
        cmdNo.SetVisible(true);
        cmdOk.SetVisible(false);
        if (type == 4) {
            MessageAnswer = true;
            cmdYes.SetFocus();
        } else {
            MessageAnswer = false;
            cmdNo.SetFocus();
        }
    } else {
        cmdYes.SetVisible(false);
        cmdNo.SetVisible(false);
        cmdOk.SetVisible(true);
        cmdOk.SetFocus();
    }
    SetVisible(false);

    const std::int16_t charsPerLine = RoundToInt16(txtMessage.Width / 80.0);
    const MessageLayout layout = LayoutMessageText(TrimMessageTail(Mid(request, 6)), charsPerLine);
    txtMessage.SetText(layout.text);

    // 16-bit arithmetic, as the form always had: 129 lines overflow here.
    const std::int16_t grow = Mul16(Sub16(layout.lines, 1), kMsgBoxLineHeight);
    Height += grow;
    txtMessage.Move(txtMessage.Left, txtMessage.Top, txtMessage.Width, Mul16(layout.lines, kMsgBoxLineHeight));
    for (form::Control* c : std::initializer_list<form::Control*>{&cmdOk, &cmdPrint, &cmdCopy, &cmdYes, &cmdNo,
                                                                 &lblCountDown})
        MoveDown(*c, grow);

    const std::int16_t seconds = RoundToInt16(Val(Mid(request, 2, 4)));
    if (seconds != 0) {
        timTimer.SetInterval(1000);
        timTimer.SetTimerEnabled(true);
        lblCountDown.SetCaption(DecimalText(seconds));
        lblCountDown.SetVisible(true);
    } else {
        timTimer.SetTimerEnabled(false);
        lblCountDown.SetVisible(false);
    }
}

void MsgBoxForm::Unload() {
    if (unloaded_) return;
    unloaded_ = true;
    SetVisible(false);
    Form_Unload();
}

void MsgBoxForm::Form_Unload() {
    // A form that is gone has no running timer.
    timTimer.SetTimerEnabled(false);
    lib_SetBusy(SavedBusy);
}

void MsgBoxForm::timTimer_Timer() {
    const std::int16_t left = Sub16(TextToInt16(lblCountDown.Caption()), 1);
    lblCountDown.SetCaption(DecimalText(left));
    if (left < 1) Unload();
}

void MsgBoxForm::Form_KeyPress(int& key) {
    if (key != 27) return;
    timTimer.SetTimerEnabled(false);
    lblCountDown.SetVisible(false);
}

void MsgBoxForm::cmdOk_Click() {
    SkipOnFailure([&] { lblCountDown.SetCaption("0"); });
    SkipOnFailure([&] { SetVisible(false); });
    SkipOnFailure([&] { Unload(); });
}

void MsgBoxForm::cmdYes_Click() {
    MessageAnswer = true;
    cmdOk_Click();
}

void MsgBoxForm::cmdNo_Click() {
    MessageAnswer = false;
    cmdOk_Click();
}

void MsgBoxForm::cmdCopy_Click() { desktop_.SetClipboardText(txtMessage.Text()); }

void MsgBoxForm::cmdPrint_Click() {
    SkipOnFailure([&] { desktop_.PrintForm(*this); });
}

void SetMessageTabStops(MsgBoxForm& form, std::string_view tabStops) {
    std::vector<std::int32_t> stops;
    std::size_t start = 0;
    for (;;) {
        const std::size_t comma = tabStops.find(',', start);
        const std::string_view item = tabStops.substr(start, comma == std::string_view::npos ? comma : comma - start);
        std::int32_t value = 0;
        SkipOnFailure([&] { value = TextToInt32(item); });
        stops.push_back(value);
        if (comma == std::string_view::npos) break;
        start = comma + 1;
    }
    form.MessageTabStops = std::move(stops);
}

}  // namespace ostrivane
