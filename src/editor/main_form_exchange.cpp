// Export of the loaded group to a file of its own, and import of such a file
// with a rescaled copy when it was made on a screen of another size.
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "dialogs/message_box.hpp"
#include "editor/main_form.hpp"
#include "lib/errors.hpp"
#include "lib/file_test.hpp"
#include "lib/numbers.hpp"
#include "lib/path_basics.hpp"
#include "lib/profile.hpp"
#include "lib/window_helpers.hpp"
#include "store/data_file.hpp"

namespace ostrivane {

namespace {

constexpr char kFileDescription[] = "INI";
constexpr char kFileExtension[] = "ini";
constexpr char kExportSuffix[] = "_Export";
constexpr char kTranslatedSuffix[] = "_Tr";
constexpr char kInvalidFileText[] = "This does not appear to be a valid file";
constexpr std::int16_t kInvalidFileSeconds = 5;

// Only the header lines are kept: a file from outside may be of any size.
std::vector<std::string> ReadHeaderLines(const std::string& path) {
    std::vector<std::string> headers;
    std::ifstream in(path, std::ios::binary);
    std::string line;
    for (bool first = true; std::getline(in, line); first = false) {
        if (first && line.starts_with("\xEF\xBB\xBF")) line.erase(0, 3);
        if (!line.starts_with("[")) continue;
        if (line.back() == '\r') line.pop_back();
        headers.push_back(std::move(line));
    }
    return headers;
}

// ScreenRes split on "x": a part missing is a subscript error, a part that is
// no number a type mismatch.
std::pair<double, double> ResolutionOf(std::string_view screenRes) {
    const std::size_t x = screenRes.find('x');
    if (x == std::string_view::npos) Raise(kSubscriptOutOfRange);
    std::string_view height = screenRes.substr(x + 1);
    height = height.substr(0, height.find('x'));
    return {TextToNumber(screenRes.substr(0, x)), TextToNumber(height)};
}

// Int(cell * screen / from): the product in 32 bits, the division in floating
// point, rounded down; blanks and "S" are scaled like any length.
std::int32_t Rescaled(std::int32_t cell, std::int16_t screen, double from) {
    const std::int32_t product = Mul32(cell, screen);
    if (from == 0) Raise(kDivisionByZero);
    return RoundToInt32(Int(product / from));
}

}  // namespace

void MainForm::WireExchangeEvents() {
    mnuExportGroup.Click.Connect([this] { ExportGroup(); });
    mnuImportGroup.Click.Connect([this] { ImportGroup(); });
}

void MainForm::ExportGroup() {
    cmdAddMarker.SetFocus();
    UpdateMarkerTable();
    if (CurrentGroup == -1) return;
    const std::string name = lstGroups.List(CurrentGroup);
    if (name.empty()) return;

    // The dialog is modal; the flashing would go on under it.
    timFlashSelected.SetTimerEnabled(false);
    std::string file;
    std::string proposal = name + kExportSuffix;
    if (WindowSystem* ws = lib_AttachedWindowSystem())
        file = lib_GetSaveFile(*ws, "", kFileDescription, kFileExtension, ws->FormHandle(*this), proposal,
                               "Save exported file");
    timFlashSelected.SetTimerEnabled(chkFlashSelected.Value() == kCheckChecked);
    if (file.empty()) return;

    // Key and section writes: a file that is there keeps its other sections.
    const bool written =
        lib_ProfileWriteString(kDefaultsSection, "ScreenRes",
                               DecimalText(screen.ScreenWidth) + "x" + DecimalText(screen.ScreenHeight), file) &&
        lib_ProfileWriteString(kDefaultsSection, "PC", lib_GetComputerName(), file) &&
        SaveGroupSection(name, file, DataFile, store.Markers, CheckedInt16(lstMarkers.ListCount()),
                         txtGroupNotes.Text());
    if (!written)
        lib_ShowWarning(desktop(),
                        "The group \"" + name + "\" was not exported: the file " + file + " could not be written (" +
                            lib_ProfileLastWriteError() + ").",
                        0);
}

void MainForm::ImportGroup() {
    cmdAddMarker.SetFocus();
    UpdateMarkerTable();
    PromptToSave(false);

    timFlashSelected.SetTimerEnabled(false);
    std::string file;
    if (WindowSystem* ws = lib_AttachedWindowSystem())
        file = lib_GetOpenFile(*ws, "", kFileDescription, kFileExtension, ws->FormHandle(*this), "",
                               "Select exported file");
    timFlashSelected.SetTimerEnabled(chkFlashSelected.Value() == kCheckChecked);
    if (file.empty()) return;

    // These two keys are what marks a file as an export.
    const std::string screenRes = lib_ProfileGetString(kDefaultsSection, "ScreenRes", "", file);
    const std::string pc = lib_ProfileGetString(kDefaultsSection, "PC", "", file);
    if (screenRes.empty() || pc.empty()) {
        lib_ShowWarning(desktop(), kInvalidFileText, kInvalidFileSeconds);
        return;
    }

    // Every group section is asked about; the last one is taken.
    std::string section;
    std::string answer;
    for (const std::string& line : ReadHeaderLines(file)) {
        if (!line.starts_with("[")) continue;
        section = line.size() < 2 ? std::string() : line.substr(1, line.size() - 2);
        if (section == kDefaultsSection) continue;
        std::string proposal = section;
        for (;;) {
            answer = dialogs().InputBox("Name for imported group", kAppTitle, proposal, std::nullopt);
            if (answer.empty()) return;  // nothing imported, the file is kept
            // The file cannot hold two names that differ only in case.
            if (FindSectionInList(lstGroups, answer) == -1 &&
                FindSectionInList(lstGroups, answer + kTranslatedSuffix) == -1)
                break;
            proposal = answer;
        }
    }
    // A file with no group section has nothing to bring in.
    if (answer.empty()) return;

    if (!GroupWriteWorked(lib_ProfileWriteSection(answer, lib_ProfileGetSection(section, file), DataFile), answer,
                          "imported"))
        return;
    lib_KillFile(file, false);
    lstGroups.AddItem(answer);
    lstGroups.SetListIndex(lstGroups.ListCount() - 1);

    const auto [w, h] = ResolutionOf(screenRes);
    if (w == screen.ScreenWidth && h == screen.ScreenHeight) return;

    const std::string translated = answer + kTranslatedSuffix;
    for (int r = 0; r <= store.MarkerCount; ++r) {
        MarkerRow& row = store.Markers.row(r);
        row[Hpos] = Rescaled(row[Hpos], screen.ScreenWidth, w);
        row[Vpos] = Rescaled(row[Vpos], screen.ScreenHeight, h);
        row[Hlen] = Rescaled(row[Hlen], screen.ScreenWidth, w);
        row[Vlen] = Rescaled(row[Vlen], screen.ScreenHeight, h);
    }
    if (!GroupWriteWorked(SaveGroupSection(translated, "", DataFile, store.Markers,
                                           CheckedInt16(lstMarkers.ListCount()), txtGroupNotes.Text()),
                          translated, "saved")) {
        // The rescaled table is unsaved work of no listed group: a save asks
        // for its name instead of writing over the plain copy.
        lstGroups.SetListIndex(-1);
        CurrentGroup = -1;
        Dirty = true;
        ShowAllMarkers();
        return;
    }
    lstMarkers.Clear();
    store.MarkerCount = 0;
    Dirty = false;
    ClearMarkerFields();
    ClearGroupDefaults();
    lstGroups.AddItem(translated);
    lstGroups.SetListIndex(lstGroups.ListCount() - 1);

    dialogs().MsgBox("The imported group is from a PC with screen resolution " + screenRes +
                         " whereas this PC has a screen resolution of " + DecimalText(screen.ScreenWidth) + "x" +
                         DecimalText(screen.ScreenHeight) +
                         ". To assist with lining up on this PC, an extra group (" + translated +
                         ") has been created with line start positions and lengths adjusted.",
                     vbInformation, kAppTitle);
}

}  // namespace ostrivane
