// frmInputBox: the library's own prompt: a caption, a prompt, one text box
// of a chosen number of lines, optionally masked, OK and Cancel. Its
// arguments come as one keyword string in ScratchText:
//   Prompt:=Name?<255>Lines:=1<255>MaskInput:=False
// A caller fills ScratchText, loads and shows the form modally, reads
// txtInput once it has hidden, unloads it and reads InputCancelled.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "form/controls.hpp"
#include "form/event.hpp"
#include "form/form.hpp"

namespace ostrivane {

inline constexpr char kInputBoxFormName[] = "frmInputBox";
// Between the pairs of a keyword string.
inline constexpr char kParmSeparator = '\xff';

// Scratch text of the library; the keyword string of the input box.
extern std::string ScratchText;
// True when the last input box ended without OK.
extern bool InputCancelled;

// 1-based position in text of the key of a pair "key:=value", case ignored;
// 0 when either is empty or no pair starts with the key.
std::int32_t lib_FindParm(std::string_view text, std::string_view key);
// The value of the key's pair; none when the key is absent or the value empty.
std::optional<std::string> lib_GetParm(std::string_view text, std::string_view key);

class InputBoxForm : public form::Form {
public:
    InputBoxForm();

    form::Label lblPrompt;
    form::TextBox txtInput;
    form::CommandButton cmdOk, cmdCancel;

    bool CancelledFlag = false;
    bool FirstKeySeen = false;
    bool MaskInputFlag = false;
    std::int16_t Lines = 0;

    // A key the form types into itself anew, after the key handler has
    // returned; the desktop delivers it to the control with the focus.
    form::Event<int> SendKey;

    // Reads ScratchText. A keyword string without Lines or MaskInput, or
    // with a value that does not convert, raises the conversion's error.
    void Form_Load();
    // A key going down, by its key code; 0 or another code keeps it from the box.
    void Form_KeyDown(int& keyCode);
    void cmdOk_Click();
    void cmdCancel_Click();
    // Hides the form and gives InputCancelled its answer.
    void Unload();
    bool Unloaded() const { return unloaded_; }

private:
    bool unloaded_ = false;
};

}  // namespace ostrivane
