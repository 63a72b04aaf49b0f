#include "dialogs/input_box_form.hpp"

#include "lib/errors.hpp"
#include "lib/numbers.hpp"
#include "lib/text.hpp"

namespace ostrivane {

std::string ScratchText;
bool InputCancelled = false;

namespace {

constexpr std::int32_t kInvalidUseOfNull = 94;
constexpr int kTwipsPerPixel = 15;

// The library's unit conversions, in single precision as it computes them.
float CmToTwips(float centimetres) { return centimetres * 567.0f; }
std::int32_t TwipsToPixels(double twips) { return RoundToInt32(twips / kTwipsPerPixel); }

std::string IfBlank(const std::optional<std::string>& value, std::string_view fallback) {
    return value && !value->empty() ? *value : std::string(fallback);
}

const std::string& NotNull(const std::optional<std::string>& value) {
    if (!value) Raise(kInvalidUseOfNull);
    return *value;
}

// The run time's conversion of text to a Boolean: "True" and "False" in any
// case, or a number, which is True unless 0.
bool TextToBool(const std::string& text) {
    if (EqualsNoCase(Trim(text), "True")) return true;
    if (EqualsNoCase(Trim(text), "False")) return false;
    return TextToNumber(text) != 0;
}

}  // namespace

std::int32_t lib_FindParm(std::string_view text, std::string_view key) {
    if (text.empty() || key.empty()) return 0;
    const std::string haystack = kParmSeparator + std::string(text);
    const std::size_t at = FindNoCase(haystack, kParmSeparator + std::string(key) + ":=");
    // The separator in front stands where the key stands in text.
    return at == std::string::npos ? 0 : static_cast<std::int32_t>(at + 1);
}

std::optional<std::string> lib_GetParm(std::string_view text, std::string_view key) {
    const std::int32_t at = lib_FindParm(text, key);
    if (at == 0) return std::nullopt;
    const std::size_t start = static_cast<std::size_t>(at) - 1 + key.size() + 2;
    const std::size_t end = std::min(text.find(kParmSeparator, start), text.size());
    if (start >= end) return std::nullopt;
    return std::string(text.substr(start, end - start));
}

InputBoxForm::InputBoxForm()
    : form::Form(kInputBoxFormName),
      lblPrompt(this, "lblPrompt"),
      txtInput(this, "txtInput"),
      cmdOk(this, "cmdOk"),
      cmdCancel(this, "cmdCancel") {
    // The client area; a fixed single border without minimise or maximise box.
    Width = 5655;
    Height = 1635;
    lblPrompt.Move(120, 120, 5460, 495);
    txtInput.Move(120, 720, 5460, 285);
    txtInput.MultiLine = true;
    cmdOk.Move(2070, 1200, 675, 375);
    cmdOk.SetCaption("&Ok");
    cmdOk.Default = true;
    cmdCancel.Move(2910, 1200, 675, 375);
    cmdCancel.SetCaption("&Cancel");
    cmdCancel.Cancel = true;

    cmdOk.Click.Connect([this] { cmdOk_Click(); });
    cmdCancel.Click.Connect([this] { cmdCancel_Click(); });
}

void InputBoxForm::Form_Load() {
    const std::string args = ScratchText;
    lblPrompt.SetCaption(IfBlank(lib_GetParm(args, "Prompt"), ""));
    txtInput.SetText(IfBlank(lib_GetParm(args, "Default"), ""));
    // Never an empty caption.
    SetCaption(IfBlank(lib_GetParm(args, "Title"), " "));
    Lines = TextToInt16(NotNull(lib_GetParm(args, "Lines")));
    MaskInputFlag = TextToBool(NotNull(lib_GetParm(args, "MaskInput")));
    if (MaskInputFlag) txtInput.PasswordChar = '*';
    // Enter makes new lines in a box of several.
    cmdOk.Default = Lines < 2;

    const std::int16_t boxHeight = RoundToInt16(static_cast<float>(Lines) * CmToTwips(0.45f));
    const std::int32_t total =
        RoundToInt32(static_cast<float>(boxHeight + txtInput.Top + cmdOk.Height) + CmToTwips(0.387f));
    // The window is Total in pixels and 30 pixels of frame high; the form
    // keeps its client area, which is what lies inside that frame.
    Height = TwipsToPixels(total) * kTwipsPerPixel;
    const int buttonsTop = RoundToInt32(static_cast<float>(txtInput.Top + boxHeight) + CmToTwips(0.242f));
    cmdOk.Move(cmdOk.Left, buttonsTop, cmdOk.Width, cmdOk.Height);
    cmdCancel.Move(cmdCancel.Left, cmdOk.Top, cmdCancel.Width, cmdCancel.Height);
    txtInput.Move(txtInput.Left, txtInput.Top, txtInput.Width, boxHeight);
    CancelledFlag = true;
}

void InputBoxForm::Form_KeyDown(int& keyCode) {
    const form::Control* active = ActiveControl();
    if (active == nullptr || !EqualsNoCase(active->Name(), "txtInput")) return;
    constexpr int kF2 = 113;
    if (keyCode == kF2) {
        keyCode = 0;
        return;
    }
    if (FirstKeySeen) return;
    FirstKeySeen = true;
    switch (keyCode) {
        case 13: cmdOk_Click(); break;
        case 35:  // End
        case 39:  // Right
            keyCode = kF2;  // the box sees no movement
            break;
        case 37:  // Left: typed anew once this handler is done
            keyCode = kF2;
            SendKey.Raise(37);
            break;
        default: break;
    }
}

void InputBoxForm::cmdOk_Click() {
    CancelledFlag = false;
    SetVisible(false);
}

void InputBoxForm::cmdCancel_Click() {
    txtInput.SetText("");
    SetVisible(false);
}

void InputBoxForm::Unload() {
    if (unloaded_) return;
    unloaded_ = true;
    SetVisible(false);
    InputCancelled = CancelledFlag;
}

}  // namespace ostrivane
