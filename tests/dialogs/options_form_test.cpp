// The options dialog through the fakes: every setting's key, default and
// limit, OK and Cancel, and what a running display takes over afterwards.
#include <filesystem>
#include <map>

#include "dialogs/options_form.hpp"
#include "editor/main_form_fixture.hpp"

namespace ostrivane::testing {
namespace {

using namespace std::string_literals;

class OptionsTest : public MainFormTest {
protected:
    OptionsTest() {
        std::filesystem::create_directories(DataDir());
        UseDataDir();
        WriteDefaults();
    }
};

std::string ValueOf(form::Control& c) {
    if (auto* check = dynamic_cast<form::CheckBox*>(&c)) return std::to_string(check->Value());
    return dynamic_cast<form::TextBox&>(c).Text();
}

void Set(form::Control& c, const std::string& value) {
    if (auto* check = dynamic_cast<form::CheckBox*>(&c)) return check->SetValue(std::stoi(value));
    dynamic_cast<form::TextBox&>(c).SetText(value);
}

TEST(OptionRules, EachFieldIsCorrectedAsItIsLeft) {
    const struct {
        OptionRule rule;
        const char* text;
        const char* corrected;
    } rows[] = {
        {OptionRule::Thickness, "4", "3"},      {OptionRule::Thickness, "2", "1"},
        {OptionRule::Thickness, "1000", "999"}, {OptionRule::Thickness, "999", "999"},
        {OptionRule::Thickness, "", "1"},       {OptionRule::Thickness, "0", "1"},
        {OptionRule::Opacity, "0", "1"},        {OptionRule::Opacity, "", "100"},
        {OptionRule::Opacity, "101", "100"},    {OptionRule::GrabProximity, "", "10"},
        {OptionRule::GrabProximity, "0", "1"},  {OptionRule::GrabProximity, "150", "100"},
        {OptionRule::GrabProximity, "7", "7"},  {OptionRule::Colour, "", "255"},
        {OptionRule::Colour, "70", "70"},       {OptionRule::Length, "", ""},
        {OptionRule::Length, "s", "s"},         {OptionRule::Length, "0", "1"},
        {OptionRule::Length, "2000", "1600"},   {OptionRule::Length, "1599", "1599"},
    };
    for (const auto& r : rows)
        EXPECT_EQ(ValidateField(r.rule, r.text, 1600), r.corrected) << static_cast<int>(r.rule) << " " << r.text;
    EXPECT_EQ(ErrorOf([] { ValidateField(OptionRule::Length, "S1", 1600); }), kTypeMismatch);
}

TEST_F(OptionsTest, ReadingOrderIsTheTabOrder) {
    OptionsForm o(frm, settings);
    std::map<std::pair<int, int>, std::string> stops;  // by top, then left
    for (const auto& [name, c] : o.Controls())
        if (!dynamic_cast<const form::Label*>(c)) stops[{c->Top, c->Left}] = name;
    std::string order;
    for (const auto& [at, name] : stops) order += name + " ";
    EXPECT_EQ(order, "txtDataDir chkHideOnGo chkRestoreOnStop chkFlashSelected chkAllowGrabMarkers txtHlenGlbDef "
                     "txtVlenGlbDef txtColourGlbDef txtThicknessGlbDef txtOpacityGlbDef chkDottedGlbDef "
                     "txtColourAddMarker txtThicknessAddMarker txtOpacityAddMarker chkDottedAddMarker cmdOk cmdCancel "
                     "txtGrabProximity ");
}

// Each key's default as the dialog shows it, and OK writing every key in
// its order after the global default line.
TEST_F(OptionsTest, EverySettingShowsItsDefaultAndOkWritesThemInOrder) {
    OptionsForm o(frm, settings);
    const struct { const char* key; form::Control& control; const char *shown, *typed; } rows[] = {
        {"HideOnGo", o.chkHideOnGo, "0", "1"},           {"RestoreOnStop", o.chkRestoreOnStop, "0", "1"},
        {"FlashSelected", o.chkFlashSelected, "0", "1"}, {"AllowGrabMarkers", o.chkAllowGrabMarkers, "1", "0"},
        {"AddMarkerColour", o.txtColourAddMarker, "65535", "4080"},
        {"AddMarkerThickness", o.txtThicknessAddMarker, "1", "5"},
        {"AddMarkerOpacity", o.txtOpacityAddMarker, "100", "40"},
        {"AddMarkerDotted", o.chkDottedAddMarker, "0", "1"}, {"GrabProximity", o.txtGrabProximity, "10", "25"},
    };
    o.Form_Load();
    EXPECT_EQ(o.txtDataDir.Text(), DataDir());
    std::string written = kDefaultsHead + "DataFormat=1\r\n"s;
    for (const auto& r : rows) {
        EXPECT_EQ(ValueOf(r.control), r.shown) << r.key;
        Set(r.control, r.typed);
        written += r.key + "="s + r.typed + "\r\n";
    }
    o.cmdOk.PerformClick();
    EXPECT_TRUE(o.Unloaded() && !o.Visible());
    EXPECT_EQ(ReadDataFile(), written);
    EXPECT_EQ(frm.GrabProximity, 25);
}

// The global default row: blanks become the whole screen, 255, 1 and 100;
// a length is held to the primary screen; "S" only stands alone.
TEST_F(OptionsTest, TheGlobalDefaultRowIsNeverBlank) {
    OptionsForm o(frm, settings);
    o.Form_Load();
    EXPECT_EQ(o.txtHlenGlbDef.Text() + o.txtColourGlbDef.Text() + o.txtOpacityGlbDef.Text(), "S255100");
    o.SetFocusTo(o.txtVlenGlbDef);
    for (int key : {'1', '2', 's'}) o.txtVlenGlbDef.TypeKey(key);
    EXPECT_EQ(o.txtVlenGlbDef.Text(), "12");  // behind the digits the S is dropped...
    o.SetFocusTo(o.txtHlenGlbDef);
    o.txtHlenGlbDef.SetText("5000");
    o.SetFocusTo(o.txtVlenGlbDef);  // ...but with all selected it replaces them
    o.txtVlenGlbDef.TypeKey('s');
    EXPECT_EQ(o.txtHlenGlbDef.Text() + o.txtVlenGlbDef.Text(), "1600S");  // the primary screen, not the virtual one
    for (form::TextBox* box : {&o.txtHlenGlbDef, &o.txtColourGlbDef, &o.txtThicknessGlbDef, &o.txtOpacityGlbDef})
        box->SetText("");  // no field left: OK alone supplies the blanks
    o.chkDottedGlbDef.SetValue(1);
    o.cmdOk.PerformClick();
    EXPECT_TRUE(ReadDataFile().starts_with("[Defaults]\r\nDefaults=0,0,-2,-2,255,1,100,1,\r\n"));
    OptionsForm again(frm, settings);
    again.Form_Load();
    EXPECT_EQ(again.txtHlenGlbDef.Text() + again.txtVlenGlbDef.Text() + again.txtColourGlbDef.Text(), "SS255");

    // Enter in an empty proximity field reaches OK without its blank rule.
    again.txtGrabProximity.SetText("");
    EXPECT_EQ(ErrorOf([&] { again.cmdOk.PerformClick(); }), kTypeMismatch);
}

// After OK or Cancel the display reloads: settings and list read again, the
// group in use loaded anew, every marker shown; stay on top follows the file.
TEST_F(OptionsTest, ARunningDisplayTakesOverWhatTheDialogLeft) {
    WriteDefaults("StayOnTop=1\r\n[One]\r\nDataFormat=1\r\n1=100,100,-1,-1,-1,-1,-1,0,\r\n"s);
    frm.LoadSettings();
    const std::string before = ReadDataFile();
    for (const bool ok : {false, true}) {
        SCOPED_TRACE(ok ? "OK" : "Cancel");
        frm.lstGroups.SetListIndex(0);
        desktop.calls.clear();
        desktop.whileModal = [ok](form::Form& f) {
            auto& o = dynamic_cast<OptionsForm&>(f);
            o.txtGrabProximity.SetText("40");
            o.txtThicknessAddMarker.SetText("5");
            (ok ? o.cmdOk : o.cmdCancel).PerformClick();
        };
        frm.mnuOptions.PerformClick();
        EXPECT_EQ(desktop.calls, (std::vector<std::string>{"SetTopmost frmMain off", "ShowModal frmOptions",
                                                           "SetTopmost frmMain on", "SetTopmost frmMain on"}));
        EXPECT_EQ(std::vector<int>(
                      {frm.lstGroups.ListIndex(), frm.CurrentGroup, frm.GrabProximity, frm.AddMarkerThickness}),
                  std::vector<int>({0, 0, ok ? 40 : 10, ok ? 5 : 1}));
        EXPECT_EQ(frm.store.MarkerCount, 1);
        EXPECT_EQ(overlay.calls.back(), "ShowAllMarkers");
        EXPECT_TRUE(ok || ReadDataFile() == before) << "Cancel wrote to the file";
    }

    // Unsaved changes and Cancel to the question: no dialog.
    frm.Dirty = true;
    dialogs.msgBoxAnswers = {vbCancel};
    desktop.calls.clear();
    frm.mnuOptions.PerformClick();
    EXPECT_TRUE(desktop.calls.empty());
}

}  // namespace
}  // namespace ostrivane::testing
