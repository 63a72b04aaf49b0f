// frmOptions: the modal dialog over every setting of the program. It is
// made afresh for each opening, so each starts from the stores again; OK
// writes the settings, Cancel writes nothing, and both hide it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "form/controls.hpp"
#include "form/form.hpp"

namespace ostrivane {

class MainForm;
class SettingStore;

inline constexpr char kOptionsFormName[] = "frmOptions";

// How a field of the dialog is corrected when it is left.
enum class OptionRule { Colour, Length, Thickness, Opacity, GrabProximity };

// Text in, text out. extent: the primary screen's size along the field's
// axis (lengths only). A blank length stays blank; the other rules give
// their default for a blank ("255", "1", "100", "10"). Text that is no
// number raises Type mismatch (13).
std::string ValidateField(OptionRule rule, std::string_view text, std::int32_t extent);

class OptionsForm : public form::Form {
public:
    OptionsForm(MainForm& frm, SettingStore& settings);

    form::TextBox txtDataDir;
    form::CheckBox chkHideOnGo, chkRestoreOnStop, chkFlashSelected, chkAllowGrabMarkers;
    form::TextBox txtHlenGlbDef, txtVlenGlbDef, txtColourGlbDef, txtThicknessGlbDef, txtOpacityGlbDef;
    form::CheckBox chkDottedGlbDef;
    form::TextBox txtColourAddMarker, txtThicknessAddMarker, txtOpacityAddMarker;
    form::CheckBox chkDottedAddMarker;
    form::CommandButton cmdOk, cmdCancel;
    form::TextBox txtGrabProximity;
    form::Label lblDataDir, lblHlen, lblVlen, lblColour, lblThickness, lblOpacity, lblDotted;
    form::Label lblGlobalDefaults, lblAddMarker, lblGrabProximity;

    // Fills the controls from the stores; no validation runs.
    void Form_Load();
    void cmdOk_Click();
    void cmdCancel_Click();
    // Hides the form; it is not to be shown again.
    void Unload();
    bool Unloaded() const { return unloaded_; }

    // The primary screen in pixels, the limit of the two length fields.
    std::int32_t PrimaryWidth() const;
    std::int32_t PrimaryHeight() const;

private:
    void LayOutControls();
    void WireFieldEvents();
    void Correct(form::TextBox& field, OptionRule rule, std::int32_t extent);

    MainForm& frm_;
    SettingStore& settings_;
    bool unloaded_ = false;
};

}  // namespace ostrivane
