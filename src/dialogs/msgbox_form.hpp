// frmMsgBox as a model: the library's message box. Made fresh for every
// message (so it starts from its design sizes), loaded from MessageText, shown
// modally by the desktop, and unloaded when a button or the countdown closes it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "form/controls.hpp"
#include "form/event.hpp"
#include "form/form.hpp"
#include "platform/desktop.hpp"

namespace ostrivane {

inline constexpr char kMsgBoxFormName[] = "frmMsgBox";
// The system's menu colour, behind the message text.
inline constexpr std::int32_t kSystemMenuColour = 0xF0F0F0;
// The design client area; the form grows downwards with the text.
inline constexpr int kMsgBoxDesignWidth = 7155;
inline constexpr int kMsgBoxDesignHeight = 1455;
inline constexpr int kMsgBoxLineHeight = 255;

class MsgBoxForm : public form::Form {
public:
    // title: the title of the window in front, shown in the caption.
    explicit MsgBoxForm(Desktop& desktop, std::string title = {});

    // A fixed dialog without a task bar entry, centred on the screen; the
    // form-level KeyPress sees every key before the control with the focus.
    // Width and Height are those of the client area.
    static constexpr bool kKeyPreview = true;

    form::PictureBox picCritical, picExclamation, picInformation, picQuestion;
    form::TextBox txtMessage;
    form::CommandButton cmdYes, cmdOk, cmdNo;
    form::CommandButton cmdCopy, cmdPrint;  // picture buttons
    form::Label lblCountDown;
    form::Timer timTimer;

    // Key preview: the binding raises this for every typed key first.
    form::Event<int&> KeyPress;

    // BusyState at load, given back at unload.
    bool SavedBusy = false;
    // Tab stops of txtMessage from lib_ShowMessage, in dialog units; empty
    // for the default ones.
    std::vector<std::int32_t> MessageTabStops;

    // Reads MessageText. Overflow (6) when the text runs to 129 lines or more.
    void Form_Load();
    // Hides the form and ends its life: the countdown stops, the busy state
    // goes back. Nothing happens the second time.
    void Unload();
    bool Unloaded() const { return unloaded_; }

    // The handlers, as the events call them.
    void timTimer_Timer();
    void Form_KeyPress(int& key);
    void cmdOk_Click();
    void cmdYes_Click();
    void cmdNo_Click();
    void cmdCopy_Click();
    void cmdPrint_Click();
    void Form_Unload();

private:
    Desktop& desktop_;
    std::string title_;
    bool unloaded_ = false;
};

// lib_SetTabStops on the box's text: each item of the comma list as a 32-bit
// number; an item that is no number counts as 0.
void SetMessageTabStops(MsgBoxForm& form, std::string_view tabStops);

}  // namespace ostrivane
