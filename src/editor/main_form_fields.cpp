#include "editor/field_rules.hpp"
#include "editor/main_form.hpp"
#include "lib/errors.hpp"
#include "lib/numbers.hpp"

namespace ostrivane {

namespace {

// Sets a nudge bar from a tail with the bar's own Change handler quiet.
class LoadingScope {
public:
    explicit LoadingScope(bool& loading) : loading_(loading), was_(loading) { loading_ = true; }
    ~LoadingScope() { loading_ = was_; }
    LoadingScope(const LoadingScope&) = delete;
    LoadingScope& operator=(const LoadingScope&) = delete;

private:
    bool& loading_;
    bool was_;
};

}  // namespace

void MainForm::WireFieldEvents() {
    form::TextBox* const digitFields[] = {&txtHpos,      &txtVpos,           &txtColour,  &txtColourGrpDef,
                                          &txtThickness, &txtThicknessGrpDef, &txtOpacity, &txtOpacityGrpDef};
    form::TextBox* const lengthFields[] = {&txtHlen, &txtVlen, &txtHlenGrpDef, &txtVlenGrpDef};

    for (form::TextBox* field : digitFields) {
        field->GotFocus.Connect([this, field] { SelectAllText(*field); });
        field->KeyPress.Connect([](int& key) { key = FilterDigitKey(key); });
    }
    for (form::TextBox* field : lengthFields) {
        field->GotFocus.Connect([this, field] { SelectAllText(*field); });
        field->KeyPress.Connect(
            [field](int& key) { key = FilterMainLengthKey(key, field->Text(), field->AllSelected()); });
    }

    txtHpos.Validate.Connect([this](bool& cancel) { txtHpos_Validate(cancel); });
    txtVpos.Validate.Connect([this](bool& cancel) { txtVpos_Validate(cancel); });
    txtHlen.Validate.Connect([this](bool& cancel) { txtHlen_Validate(cancel); });
    txtVlen.Validate.Connect([this](bool& cancel) { txtVlen_Validate(cancel); });
    txtColour.Validate.Connect([this](bool& cancel) { txtColour_Validate(cancel); });
    txtThickness.Validate.Connect([this](bool& cancel) { txtThickness_Validate(cancel); });
    txtOpacity.Validate.Connect([this](bool& cancel) { txtOpacity_Validate(cancel); });
    txtHlenGrpDef.Validate.Connect([this](bool& cancel) { txtHlenGrpDef_Validate(cancel); });
    txtVlenGrpDef.Validate.Connect([this](bool& cancel) { txtVlenGrpDef_Validate(cancel); });
    txtColourGrpDef.Validate.Connect([this](bool& cancel) { txtColourGrpDef_Validate(cancel); });
    txtThicknessGrpDef.Validate.Connect([this](bool& cancel) { txtThicknessGrpDef_Validate(cancel); });
    txtOpacityGrpDef.Validate.Connect([this](bool& cancel) { txtOpacityGrpDef_Validate(cancel); });
    txtGroupNotes.Validate.Connect([this](bool& cancel) { txtGroupNotes_Validate(cancel); });

    txtColour.DblClick.Connect([this] { txtColour_DblClick(); });
    txtColourGrpDef.DblClick.Connect([this] { txtColourGrpDef_DblClick(); });
}

void MainForm::SelectAllText(form::TextBox& textbox) {
    textbox.SetSelection(0, static_cast<int>(textbox.Text().size()));
}

bool MainForm::SetColourField(form::TextBox& textbox, const std::string& text) {
    if (!text.empty() && text.front() != '-') {
        std::int32_t colour = 0;
        try {
            colour = TextToInt32(text);
        } catch (const RuntimeError&) {
            return false;  // the box keeps its text and colour
        }
        textbox.SetBackColor(colour);
        textbox.SetText(DecimalText(textbox.BackColor()));
    } else {
        // blank, or the -1 of a blank cell
        textbox.SetBackColor(form::kWhite);
        textbox.SetText("");
    }
    // white digits on black, black on anything else
    textbox.SetForeColor(textbox.BackColor() != 0 ? form::kBlack : form::kWhite);
    return true;
}

bool MainForm::ChartColour(form::TextBox& textbox) {
    const std::int32_t chosen = dialogs().ChooseColor(textbox.BackColor());
    if (chosen == -1) return false;
    return SetColourField(textbox, DecimalText(chosen));
}

void MainForm::UpdateAndShowMarker() {
    UpdateMarkerTable();
    ShowMarker(lstMarkers.ListIndex() + 1);
}

void MainForm::UpdateAndShowAll() {
    UpdateMarkerTable();
    ShowAllMarkers();
}

// ---- Positions and lengths: under Loading only the tail runs -------------

void MainForm::txtHpos_Validate(bool& /*cancel*/) {
    if (!Loading) {
        if (!txtHpos.Text().empty()) txtHpos.SetText(CorrectPosition(txtHpos.Text(), screen.ScreenWidth));
        UpdateAndShowMarker();
    }
    LoadingScope quiet(Loading);
    // a blank or a value beyond the bar's range leaves the bar where it was
    SkipOnFailure([&] { scrNudgeX.SetValue(TextToInt16(txtHpos.Text())); });
}

void MainForm::txtVpos_Validate(bool& /*cancel*/) {
    if (!Loading) {
        if (!txtVpos.Text().empty()) txtVpos.SetText(CorrectPosition(txtVpos.Text(), screen.ScreenHeight));
        UpdateAndShowMarker();
    }
    LoadingScope quiet(Loading);
    SkipOnFailure([&] { scrNudgeY.SetValue(TextToInt16(txtVpos.Text())); });
}

void MainForm::txtHlen_Validate(bool& /*cancel*/) {
    if (!Loading) {
        if (!txtHlen.Text().empty()) txtHlen.SetText(CorrectLength(txtHlen.Text(), screen.ScreenWidth));
        UpdateAndShowMarker();
    }
    std::int32_t v = TextToValue(txtHlen.Text());
    if (v == kBlank) v = store.Markers(0, Hlen);
    if (v == kBlank) v = store.GlobalDefaults[Hlen];
    if (v == kWholeScreen) v = screen.ScreenWidth;
    const double value = *lib_Min(v, screen.ScreenWidth);
    LoadingScope quiet(Loading);
    scrNudgeW.SetValue(RoundToInt32(value));
}

void MainForm::txtVlen_Validate(bool& /*cancel*/) {
    if (!Loading) {
        if (!txtVlen.Text().empty()) txtVlen.SetText(CorrectLength(txtVlen.Text(), screen.ScreenHeight));
        UpdateAndShowMarker();
    }
    std::int32_t v = TextToValue(txtVlen.Text());
    if (v == kBlank) v = store.Markers(0, Vlen);
    if (v == kBlank) v = store.GlobalDefaults[Vlen];
    if (v == kWholeScreen) v = screen.ScreenHeight;
    // the bar runs inverted: its top end is the longest line
    const double value = *lib_Max(scrNudgeH.Max() - *lib_Min(v, screen.ScreenHeight), 1);
    LoadingScope quiet(Loading);
    scrNudgeH.SetValue(RoundToInt32(value));
}

void MainForm::txtHlenGrpDef_Validate(bool& /*cancel*/) {
    if (!Loading) {
        if (!txtHlenGrpDef.Text().empty())
            txtHlenGrpDef.SetText(CorrectLength(txtHlenGrpDef.Text(), screen.ScreenWidth));
        UpdateAndShowAll();
    }
    // the marker's bar follows a changed default
    LoadingScope quiet(Loading);
    bool cancel = false;
    SkipOnFailure([&] { txtHlen_Validate(cancel); });
}

void MainForm::txtVlenGrpDef_Validate(bool& /*cancel*/) {
    if (!Loading) {
        if (!txtVlenGrpDef.Text().empty())
            txtVlenGrpDef.SetText(CorrectLength(txtVlenGrpDef.Text(), screen.ScreenHeight));
        UpdateAndShowAll();
    }
    LoadingScope quiet(Loading);
    bool cancel = false;
    SkipOnFailure([&] { txtVlen_Validate(cancel); });
}

// ---- Thickness, opacity, colour: they correct even under Loading ---------

void MainForm::txtThickness_Validate(bool& /*cancel*/) {
    if (!txtThickness.Text().empty()) txtThickness.SetText(CorrectThickness(txtThickness.Text()));
    UpdateAndShowMarker();
}

void MainForm::txtOpacity_Validate(bool& /*cancel*/) {
    if (!txtOpacity.Text().empty()) txtOpacity.SetText(CorrectOpacity(txtOpacity.Text()));
    UpdateAndShowMarker();
}

void MainForm::txtColour_Validate(bool& /*cancel*/) {
    if (SetColourField(txtColour, txtColour.Text())) UpdateAndShowMarker();
}

void MainForm::txtThicknessGrpDef_Validate(bool& /*cancel*/) {
    if (!txtThicknessGrpDef.Text().empty()) txtThicknessGrpDef.SetText(CorrectThickness(txtThicknessGrpDef.Text()));
    UpdateAndShowAll();
}

void MainForm::txtOpacityGrpDef_Validate(bool& /*cancel*/) {
    if (!txtOpacityGrpDef.Text().empty()) txtOpacityGrpDef.SetText(CorrectOpacity(txtOpacityGrpDef.Text()));
    UpdateAndShowAll();
}

void MainForm::txtColourGrpDef_Validate(bool& /*cancel*/) {
    if (SetColourField(txtColourGrpDef, txtColourGrpDef.Text())) UpdateAndShowAll();
}

void MainForm::txtGroupNotes_Validate(bool& /*cancel*/) { Dirty = true; }

void MainForm::txtColour_DblClick() {
    if (ChartColour(txtColour)) UpdateAndShowMarker();
}

void MainForm::txtColourGrpDef_DblClick() {
    if (ChartColour(txtColourGrpDef)) UpdateAndShowAll();
}

}  // namespace ostrivane
