#include "dialogs/options_form.hpp"

#include <vector>

#include "dialogs/data_dir_move.hpp"
#include "editor/field_rules.hpp"
#include "editor/main_form.hpp"
#include "lib/numbers.hpp"
#include "lib/profile.hpp"
#include "lib/text.hpp"
#include "platform/setting_store.hpp"
#include "store/data_file.hpp"
#include "store/markers.hpp"

namespace ostrivane {

namespace {

// A key of the data file that the dialog edits, besides the global defaults.
struct Setting {
    const char* key;
    const char* defaultText;
    form::CheckBox* check;  // or
    form::TextBox* text;
};

// In the order OK writes them.
std::vector<Setting> Settings(OptionsForm& f) {
    return {
        {"HideOnGo", "0", &f.chkHideOnGo, nullptr},
        {"RestoreOnStop", "0", &f.chkRestoreOnStop, nullptr},
        {"FlashSelected", "0", &f.chkFlashSelected, nullptr},
        {"AllowGrabMarkers", "1", &f.chkAllowGrabMarkers, nullptr},
        {"AddMarkerColour", "65535", nullptr, &f.txtColourAddMarker},
        {"AddMarkerThickness", "1", nullptr, &f.txtThicknessAddMarker},
        {"AddMarkerOpacity", "100", nullptr, &f.txtOpacityAddMarker},
        {"AddMarkerDotted", "0", &f.chkDottedAddMarker, nullptr},
        {"GrabProximity", "10", nullptr, &f.txtGrabProximity},
    };
}

std::string DataFileKey(const MainForm& frm, const char* key, const char* defaultText) {
    return lib_ProfileGetString(kDefaultsSection, key, defaultText, frm.DataFile);
}

// A length default: blank and "S" are the whole screen.
std::int32_t LengthValue(const std::string& text) {
    return text.empty() || UCase(text) == "S" ? kWholeScreen : TextToInt32(text);
}

std::int32_t NumberOr(const std::string& text, std::int32_t blank) {
    return text.empty() ? blank : TextToInt32(text);
}

}  // namespace

std::string ValidateField(OptionRule rule, std::string_view text, std::int32_t extent) {
    switch (rule) {
        case OptionRule::Colour: return text.empty() ? "255" : std::string(text);
        case OptionRule::Length: return CorrectLength(text, extent);
        case OptionRule::Thickness: return CorrectThickness(text.empty() ? "1" : text);
        case OptionRule::Opacity: return CorrectOpacity(text.empty() ? "100" : text);
        // The same bounds as the opacity, with its own blank.
        case OptionRule::GrabProximity: return CorrectOpacity(text.empty() ? "10" : text);
    }
    return std::string(text);
}

OptionsForm::OptionsForm(MainForm& frm, SettingStore& settings)
    : form::Form(kOptionsFormName),
      txtDataDir(this, "txtDataDir"),
      chkHideOnGo(this, "chkHideOnGo"),
      chkRestoreOnStop(this, "chkRestoreOnStop"),
      chkFlashSelected(this, "chkFlashSelected"),
      chkAllowGrabMarkers(this, "chkAllowGrabMarkers"),
      txtHlenGlbDef(this, "txtHlenGlbDef"),
      txtVlenGlbDef(this, "txtVlenGlbDef"),
      txtColourGlbDef(this, "txtColourGlbDef"),
      txtThicknessGlbDef(this, "txtThicknessGlbDef"),
      txtOpacityGlbDef(this, "txtOpacityGlbDef"),
      chkDottedGlbDef(this, "chkDottedGlbDef"),
      txtColourAddMarker(this, "txtColourAddMarker"),
      txtThicknessAddMarker(this, "txtThicknessAddMarker"),
      txtOpacityAddMarker(this, "txtOpacityAddMarker"),
      chkDottedAddMarker(this, "chkDottedAddMarker"),
      cmdOk(this, "cmdOk"),
      cmdCancel(this, "cmdCancel"),
      txtGrabProximity(this, "txtGrabProximity"),
      lblDataDir(this, "lblDataDir"),
      lblHlen(this, "lblHlen"),
      lblVlen(this, "lblVlen"),
      lblColour(this, "lblColour"),
      lblThickness(this, "lblThickness"),
      lblOpacity(this, "lblOpacity"),
      lblDotted(this, "lblDotted"),
      lblGlobalDefaults(this, "lblGlobalDefaults"),
      lblAddMarker(this, "lblAddMarker"),
      lblGrabProximity(this, "lblGrabProximity"),
      frm_(frm),
      settings_(settings) {
    SetCaption("Options");

    struct Tip {
        form::Control& control;
        const char* text;
    };
    // Some tips repeat another control's text; they are shown as they stand.
    const Tip tips[] = {
        {txtDataDir, "Dir where the data file of saved groups and markers will be stored"},
        {chkHideOnGo, "Hide the main form when Show is pressed"},
        {chkRestoreOnStop, "Hide the main form when Show is pressed"},
        {chkFlashSelected, "Flash the selected marker to help identify it"},
        {chkAllowGrabMarkers, "Allow grabbing markers and drag/drop to new location"},
        {txtHlenGlbDef, "Global default horizontal length of markers (S for whole screen)"},
        {txtVlenGlbDef, "Global default vertical length of markers (S for whole screen)"},
        {txtColourGlbDef, "Global default colour of markers :: Dbl-click for chart"},
        {txtThicknessGlbDef, "Global default thickness of markers (must be odd no)"},
        {txtOpacityGlbDef, "Global default opacity of markers (1=see through, 100=opaque)"},
        {chkDottedGlbDef, "Global default are markers to be dotted"},
        {txtColourAddMarker, "Colour of the lines showing while adding a marker :: Dbl-click for chart"},
        {txtThicknessAddMarker, "Are the lines showing while adding a marker to be dotted"},
        {txtOpacityAddMarker, "Opacity of the lines showing while adding a marker (1=see through, 100=opaque)"},
        {chkDottedAddMarker, "Hide the main form when Show is pressed"},
        {txtGrabProximity,
         "When grabing markers for move, how close to the line do you need to be to grab it"},
    };
    for (const Tip& tip : tips) tip.control.SetToolTipText(tip.text);

    chkHideOnGo.SetCaption("Hide on Go");
    chkRestoreOnStop.SetCaption("Restore on Stop");
    chkFlashSelected.SetCaption("Flash Selected");
    chkAllowGrabMarkers.SetCaption("Allow Grab Mkrs");
    cmdOk.SetCaption("&Ok");
    cmdOk.Default = true;
    cmdCancel.SetCaption("&Cancel");
    lblDataDir.SetCaption("Data Dir");
    lblHlen.SetCaption("Hlen");
    lblVlen.SetCaption("Vlen");
    lblColour.SetCaption("Colour");
    lblThickness.SetCaption("Thkns");
    lblOpacity.SetCaption("Opacity");
    lblDotted.SetCaption("Dotted");
    lblGlobalDefaults.SetCaption("Global Defaults");
    lblAddMarker.SetCaption("Add Marker Col.");
    lblGrabProximity.SetCaption("Grab Proximity");

    LayOutControls();
    WireFieldEvents();
    cmdOk.Click.Connect([this] { cmdOk_Click(); });
    cmdCancel.Click.Connect([this] { cmdCancel_Click(); });
}

std::int32_t OptionsForm::PrimaryWidth() const { return frm_.desktop().GetSystemMetrics(SM_CXSCREEN); }
std::int32_t OptionsForm::PrimaryHeight() const { return frm_.desktop().GetSystemMetrics(SM_CYSCREEN); }

void OptionsForm::WireFieldEvents() {
    struct Field {
        form::TextBox& box;
        OptionRule rule;
    };
    const Field fields[] = {
        {txtHlenGlbDef, OptionRule::Length},           {txtVlenGlbDef, OptionRule::Length},
        {txtColourGlbDef, OptionRule::Colour},         {txtThicknessGlbDef, OptionRule::Thickness},
        {txtOpacityGlbDef, OptionRule::Opacity},       {txtColourAddMarker, OptionRule::Colour},
        {txtThicknessAddMarker, OptionRule::Thickness}, {txtOpacityAddMarker, OptionRule::Opacity},
        {txtGrabProximity, OptionRule::GrabProximity},
    };
    for (const Field& f : fields) {
        form::TextBox* box = &f.box;
        const OptionRule rule = f.rule;
        box->GotFocus.Connect([this, box] { frm_.SelectAllText(*box); });
        if (rule == OptionRule::Length) {
            // The plain rule: "S" alone, but digits may follow it.
            box->KeyPress.Connect(
                [box](int& key) { key = FilterLengthKey(key, box->Text().empty(), box->AllSelected()); });
        } else {
            box->KeyPress.Connect([](int& key) { key = FilterDigitKey(key); });
        }
        const bool vertical = box == &txtVlenGlbDef;
        box->Validate.Connect([this, box, rule, vertical](bool&) {
            Correct(*box, rule, rule != OptionRule::Length ? 0 : vertical ? PrimaryHeight() : PrimaryWidth());
        });
        if (rule == OptionRule::Colour) box->DblClick.Connect([this, box] { frm_.ChartColour(*box); });
    }
}

void OptionsForm::Correct(form::TextBox& field, OptionRule rule, std::int32_t extent) {
    const std::string corrected = ValidateField(rule, field.Text(), extent);
    if (rule == OptionRule::Colour)
        frm_.SetColourField(field, corrected);
    else
        field.SetText(corrected);
}

void OptionsForm::Form_Load() {
    txtDataDir.SetText(settings_.GetSetting(kAppTitle, "Settings", "DataDir", DefaultDataDir()));
    std::vector<Setting> settings = Settings(*this);
    for (const Setting& s : settings) {
        const std::string text = DataFileKey(frm_, s.key, s.defaultText);
        if (s.check)
            s.check->SetValue(TextToInt16(text));
        else if (s.text == &txtColourAddMarker)
            frm_.SetColourField(txtColourAddMarker, text);
        else if (s.text != &txtGrabProximity)
            s.text->SetText(text);
    }
    // The proximity in force, which a start read from the file.
    txtGrabProximity.SetText(DecimalText(frm_.GrabProximity));

    const MarkerRow& g = frm_.store.GlobalDefaults;
    txtHlenGlbDef.SetText(ValueToText(g[Hlen]));
    txtVlenGlbDef.SetText(ValueToText(g[Vlen]));
    frm_.SetColourField(txtColourGlbDef, DecimalText(g[Colour]));
    txtThicknessGlbDef.SetText(ValueToText(g[Thickness]));
    txtOpacityGlbDef.SetText(ValueToText(g[Opacity]));
    chkDottedGlbDef.SetValue(g[Dotted]);
}

void OptionsForm::cmdOk_Click() {
    if (!MoveDataDirectory(*this, frm_, settings_)) return;
    frm_.DataFile = InitDataFile(settings_);

    MarkerRow& g = frm_.store.GlobalDefaults;
    g[Hlen] = LengthValue(txtHlenGlbDef.Text());
    g[Vlen] = LengthValue(txtVlenGlbDef.Text());
    g[Colour] = NumberOr(txtColourGlbDef.Text(), 255);
    g[Thickness] = NumberOr(txtThicknessGlbDef.Text(), 1);
    g[Opacity] = NumberOr(txtOpacityGlbDef.Text(), 100);
    g[Dotted] = chkDottedGlbDef.Value();
    // No blank rule here: Enter in an empty field reaches OK unvalidated.
    frm_.GrabProximity = TextToInt16(txtGrabProximity.Text());

    const std::string& file = frm_.DataFile;
    lib_ProfileWriteString(kDefaultsSection, "Defaults", GroupLineValues(g), file);
    lib_ProfileWriteString(kDefaultsSection, "DataFormat", "1", file);
    for (const Setting& s : Settings(*this))
        lib_ProfileWriteString(kDefaultsSection, s.key, s.check ? DecimalText(s.check->Value()) : s.text->Text(), file);
    Unload();
}

void OptionsForm::cmdCancel_Click() { Unload(); }

void OptionsForm::Unload() {
    unloaded_ = true;
    SetVisible(false);
}

}  // namespace ostrivane
