// The library's input box through its calling convention: the keyword
// string, the sizing by lines, OK and Cancel, the first key's treatment.
#include <gtest/gtest.h>

#include "dialogs/input_box_form.hpp"
#include "fakes/fake_platform.hpp"
#include "lib/errors.hpp"
#include "support/run_time_error.hpp"

namespace ostrivane::testing {
namespace {

std::string Args(std::vector<std::string> pairs) {
    std::string text;
    for (const std::string& p : pairs) text += (text.empty() ? "" : std::string(1, kParmSeparator)) + p;
    return text;
}

TEST(InputBoxParms, KeysMatchAtTheStartOfAPairIgnoringCase) {
    const std::string args = Args({"Prompt:=", "Lines:=3", "Title:=Name?"});
    EXPECT_EQ(lib_FindParm(args, "lines"), 10);
    EXPECT_EQ(lib_FindParm(args, "ines"), 0);
    EXPECT_EQ(lib_FindParm("", "Lines") + lib_FindParm(args, ""), 0);
    EXPECT_EQ(lib_GetParm(args, "LINES"), "3");
    EXPECT_EQ(lib_GetParm(args, "Title"), "Name?");
    EXPECT_FALSE(lib_GetParm(args, "Prompt").has_value());  // empty is no value
    EXPECT_FALSE(lib_GetParm(args, "Default").has_value());
}

// Lines 1 gives a box of 255 twips, 3 of 765; Total (in pixels) and the
// buttons follow.
TEST(InputBoxForm, LoadSizesTheBoxByItsLines) {
    const struct {
        std::vector<std::string> args;
        const char* caption;
        int boxHeight, buttonsTop, height;
        bool okIsDefault;
    } rows[] = {
        {{"Prompt:=Name?", "Lines:=1", "MaskInput:=False"}, " ", 255, 1112, 105 * 15, true},
        {{"Title:=Notes", "Lines:=3", "MaskInput:=0", "Default:=abc"}, "Notes", 765, 1622, 139 * 15, false},
    };
    for (const auto& r : rows) {
        ScratchText = Args(r.args);
        InputBoxForm box;
        box.Form_Load();
        EXPECT_EQ(box.Caption(), r.caption);
        EXPECT_EQ(
            std::vector<int>({box.txtInput.Height, box.cmdOk.Top, box.cmdCancel.Top, box.Height, box.cmdOk.Default}),
                  std::vector<int>({r.boxHeight, r.buttonsTop, r.buttonsTop, r.height, r.okIsDefault}));
        EXPECT_EQ(box.txtInput.PasswordChar, '\0');
    }
    for (const auto& [args, error] : std::vector<std::pair<std::string, int>>{
             {"MaskInput:=True", 94}, {Args({"Lines:=x", "MaskInput:=1"}), 13},
             {Args({"Lines:=1", "MaskInput:=no"}), 13}}) {
        ScratchText = args;
        EXPECT_EQ(ErrorOf([] { InputBoxForm().Form_Load(); }), error) << args;
    }
}

// OK keeps the text; Cancel empties it; a box closed some other way counts
// as cancelled. The caller reads the text before the unload.
TEST(InputBoxForm, TheCallerReadsTheTextThenUnloads) {
    fakes::FakeDesktop desktop;
    for (const char* button : {"cmdOk", "cmdCancel", ""}) {
        ScratchText = Args({"Default:=secret", "Lines:=1", "MaskInput:=True"});
        InputBoxForm box;
        box.Form_Load();
        EXPECT_EQ(box.txtInput.PasswordChar, '*');
        desktop.whileModal = [&](form::Form&) {
            if (auto* b = dynamic_cast<form::CommandButton*>(box.Find(button))) b->PerformClick();
        };
        desktop.ShowModal(box);
        const std::string text = box.txtInput.Text();
        box.Unload();
        EXPECT_EQ(text + (InputCancelled ? " cancelled" : ""),
                  button == std::string("cmdOk") ? "secret" : button[0] ? " cancelled" : "secret cancelled");
    }
}

// F2 is swallowed; the first key is special; later keys pass.
TEST(InputBoxForm, TheFirstKeyIsTreatedApart) {
    const struct { int first, becomes; bool closes; std::vector<int> sent; } rows[] = {
        {13, 13, true, {}}, {35, 113, false, {}}, {39, 113, false, {}}, {37, 113, false, {37}}, {65, 65, false, {}},
    };
    for (const auto& r : rows) {
        ScratchText = Args({"Lines:=1", "MaskInput:=False"});
        InputBoxForm box;
        box.Form_Load();
        std::vector<int> sent;
        box.SendKey.Connect([&](int key) { sent.push_back(key); });
        box.SetVisible(true);
        box.SetFocusTo(box.txtInput);
        int key = 113;
        box.Form_KeyDown(key);
        EXPECT_EQ(key, 0);
        key = r.first;
        box.Form_KeyDown(key);
        EXPECT_EQ(key, r.becomes) << r.first;
        EXPECT_TRUE((!box.Visible() && !box.CancelledFlag) == r.closes && sent == r.sent) << r.first;
        key = 37;
        box.Form_KeyDown(key);
        EXPECT_EQ(key, 37);
    }
}

}  // namespace
}  // namespace ostrivane::testing
