// Groups: the list of saved groups, and loading, saving, renaming, deleting
// and deselecting the one that is loaded. A group is a section of the data
// file; CurrentGroup is the list index of the one in the table.
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "dialogs/message_box.hpp"
#include "editor/main_form.hpp"
#include "lib/errors.hpp"
#include "lib/numbers.hpp"
#include "lib/profile.hpp"
#include "lib/text.hpp"
#include "store/data_file.hpp"

namespace ostrivane {

namespace {

constexpr char kPromptToSaveText[] = "There are unsaved changes. Save now (or they will be lost)?";
constexpr char kDefaultsHeader[] = "[Defaults]";
constexpr int kInputBoxOffsetTwips = 350;
constexpr std::size_t kFormatZeroParts = 8;
constexpr std::size_t kFormatOneParts = 9;
constexpr std::size_t kFormatOneDottedPart = 7;

// Splits as the run time's Split does: an empty text has no parts at all,
// anything else one part more than it has separators.
std::vector<std::string_view> SplitText(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    if (text.empty()) return parts;
    std::size_t start = 0;
    for (;;) {
        const std::size_t at = text.find(separator, start);
        if (at == std::string_view::npos) {
            parts.push_back(text.substr(start));
            return parts;
        }
        parts.push_back(text.substr(start, at - start));
        start = at + 1;
    }
}

// The text behind the first "="; a line without one is taken whole.
std::string_view AfterEquals(std::string_view line) {
    const std::size_t at = line.find('=');
    return at == std::string_view::npos ? line : line.substr(at + 1);
}

bool StartsWith(std::string_view text, std::string_view prefix) { return text.substr(0, prefix.size()) == prefix; }

// The data file's lines, each without its CR LF or LF, and the first without
// a byte-order mark; nothing for a file that cannot be opened.
std::vector<std::string> ReadTextLines(const std::string& path) {
    std::vector<std::string> lines;
    std::ifstream in(path, std::ios::binary);
    if (!in) return lines;
    std::string line;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        lines.push_back(std::move(line));
    }
    if (!lines.empty() && lines[0].starts_with("\xEF\xBB\xBF")) lines[0].erase(0, 3);
    return lines;
}

// A group write that failed leaves the user's work unsaved: PromptToSave
// must not clear Dirty behind it, as it does after a save.
bool groupWriteFailed = false;

// Tells the user that a group operation did not reach the data file, and why.
// True when the write worked.
bool GroupWritten(MainForm& frm, bool written, std::string_view group, std::string_view operation) {
    if (written) return true;
    groupWriteFailed = true;
    lib_ShowWarning(frm.desktop(),
                    "The group \"" + std::string(group) + "\" was not " + std::string(operation) +
                        ": the data file " + frm.DataFile + " could not be written (" + lib_ProfileLastWriteError() +
                        ").",
                    0);
    return false;
}

bool LastWriteWorked() { return lib_ProfileLastWriteError().empty(); }

// Steps shared by delete and deselect once no group is loaded.
void EmptyLoadedGroup(MainForm& frm) {
    frm.lstMarkers.Clear();
    frm.store.MarkerCount = 0;
    frm.ClearMarkerFields();
    frm.ClearGroupDefaults();
    frm.cmdAddMarker.SetFocus();
    frm.EnableGroupControls(false);
    frm.EnableMarkerControls(false, false);
    frm.EnableNudgeMove(false);
    frm.EnableNudgeResize(false);
}

}  // namespace

void MainForm::WireGroupEvents() {
    lstGroups.Click.Connect([this] { LoadGroup(); });
    lstGroups.DblClick.Connect([this] { lstGroups_DblClick(); });
    cmdSaveGroup.Click.Connect([this] { SaveGroup(); });
    // The menu entries move the focus first, so that a field being edited
    // is corrected and reaches the table before the work is done.
    mnuSaveGroup.Click.Connect([this] {
        cmdAddMarker.SetFocus();
        SaveGroup();
    });
    mnuSaveAsGroup.Click.Connect([this] {
        cmdAddMarker.SetFocus();
        SaveGroupAs();
    });
    mnuRenGroup.Click.Connect([this] {
        cmdAddMarker.SetFocus();
        RenameGroup();
    });
    cmdDelGroup.Click.Connect([this] { DeleteGroup(); });
    mnuClearGroupSelection.Click.Connect([this] { ClearGroupSelection(); });
}

std::int16_t MainForm::FindInList(const form::ListBox& list, const std::string& text) {
    for (int i = 0; i < list.ListCount(); ++i)
        if (list.List(i) == text) return CheckedInt16(i);
    return -1;
}

std::int16_t MainForm::FindSectionInList(const form::ListBox& list, const std::string& text) {
    for (int i = 0; i < list.ListCount(); ++i)
        if (EqualsNoCase(list.List(i), text)) return CheckedInt16(i);
    return -1;
}

bool MainForm::GroupWriteWorked(bool written, std::string_view group, std::string_view operation) {
    return GroupWritten(*this, written, group, operation);
}

void MainForm::LoadGroupList() {
    ClearMarkerFields();
    ClearGroupDefaults();
    lstGroups.Clear();
    for (const std::string& line : ReadTextLines(DataFile)) {
        if (line == kDefaultsHeader || !StartsWith(line, "[")) continue;
        // A lone "[" has no name between its ends; it lists as an empty name.
        lstGroups.AddItem(line.size() < 2 ? std::string() : line.substr(1, line.size() - 2));
    }
}

void MainForm::PromptToSave(bool allowCancel) {
    if (!Dirty) return;
    const int buttons = allowCancel ? vbYesNoCancel : vbYesNo;
    const int answer = dialogs_.MsgBox(kPromptToSaveText, vbQuestion + buttons, kAppTitle);
    if (answer == vbCancel) return;
    groupWriteFailed = false;
    if (answer == vbYes) SaveGroup();
    if (groupWriteFailed) return;  // the changes are still only in the form
    if (answer == vbYes || answer == vbNo) Dirty = false;
}

void MainForm::SaveGroup() {
    if (CurrentGroup == -1) {
        SaveGroupAs();
        return;
    }
    UpdateMarkerTable();
    // The name comes from CurrentGroup, not the selection: a save made
    // while another group is being selected goes to the one being left.
    const std::string name = lstGroups.List(CurrentGroup);
    if (!GroupWritten(*this,
                      SaveGroupSection(name, "", DataFile, store.Markers, CheckedInt16(lstMarkers.ListCount()),
                                       txtGroupNotes.Text()),
                      name, "saved"))
        return;
    Dirty = false;
}

void MainForm::SaveGroupAs() {
    UpdateMarkerTable();
    const std::string proposal = CurrentGroup == -1 ? std::string() : lstGroups.List(CurrentGroup);
    std::optional<TwipPoint> position;
    if (Visible()) position = TwipPoint{Add32(Left, kInputBoxOffsetTwips), Add32(Top, kInputBoxOffsetTwips)};
    const std::string name = dialogs_.InputBox("Name", kAppTitle, proposal, position);
    if (name.empty()) return;

    if (!GroupWritten(*this,
                      SaveGroupSection(name, "", DataFile, store.Markers, CheckedInt16(lstMarkers.ListCount()),
                                       txtGroupNotes.Text()),
                      name, "saved"))
        return;
    Dirty = false;
    if (Unloading) return;
    // A listed group, in whatever case, was overwritten in the file; the
    // selection stays even when it names another group.
    if (FindSectionInList(lstGroups, name) != -1) return;
    lstGroups.AddItem(name);
    lstGroups.SetListIndex(lstGroups.ListCount() - 1);  // loads the section just written
}

void MainForm::RenameGroup() {
    if (CurrentGroup == -1) return;
    const std::string oldName = lstGroups.List(CurrentGroup);
    // Cancel answers the empty name, which is not listed and so is taken.
    const std::string newName = dialogs_.InputBox("New name", kAppTitle, oldName, std::nullopt);
    if (FindInList(lstGroups, newName) != -1) return;
    // Another group's section in another case would be overwritten. A change
    // of case alone is a rename like any other: the file moves the section
    // to the end under its new name.
    const std::int16_t sameSection = FindSectionInList(lstGroups, newName);
    if (sameSection != -1 && sameSection != CurrentGroup) return;
    lib_ProfileRenameSection(oldName, newName, DataFile);
    if (!GroupWritten(*this, LastWriteWorked(), oldName, "renamed")) return;
    lstGroups.SetList(CurrentGroup, newName);
}

void MainForm::DeleteGroup() {
    if (lstGroups.ListIndex() == -1) return;
    const int index = lstGroups.ListIndex();
    // The file first: a group that stays in it stays loaded, on the screen and listed.
    lib_ProfileDeleteSection(lstGroups.List(index), DataFile);
    if (!GroupWritten(*this, LastWriteWorked(), lstGroups.List(index), "deleted")) return;
    DestroyAllMarkerWindows();
    lstGroups.RemoveItem(index);
    CurrentGroup = -1;
    EmptyLoadedGroup(*this);
    Dirty = false;
}

void MainForm::ClearGroupSelection() {
    lstGroups.SetListIndex(-1);
    lblMsg.SetCaption("");
    UpdateMarkerTable();
    PromptToSave(false);
    CurrentGroup = -1;
    if (Showing) DestroyAllMarkerWindows();
    EmptyLoadedGroup(*this);
}

void MainForm::LoadGroup() {
    FlashPhase = false;
    timFlashSelected.SetTimerEnabled(false);
    if (lstGroups.ListIndex() == -1) return;

    lblMsg.SetCaption("");
    ShowAllMarkers();  // brings back a marker that flashing has hidden
    UpdateMarkerTable();
    PromptToSave(false);  // still sees the group being left
    CurrentGroup = CheckedInt16(lstGroups.ListIndex());
    if (Showing) DestroyAllMarkerWindows();

    GroupFormat = 0;
    lstMarkers.Clear();
    store.MarkerCount = 0;
    ClearMarkerFields();
    ClearGroupDefaults();

    const std::string section = lib_ProfileGetSection(lstGroups.List(lstGroups.ListIndex()), DataFile);
    for (std::string_view line : SplitText(section, '\0')) {
        if (StartsWith(line, "Defaults")) {
            // Every part but the last goes one column above its index, so the
            // dotted default lands in column 8 and column 12 stays blank.
            const std::vector<std::string_view> parts = SplitText(AfterEquals(line), ',');
            for (std::size_t k = 0; k + 1 < parts.size(); ++k) {
                const std::int32_t value = TextToInt32(parts[k]);
                store.Markers(0, static_cast<int>(k) + 1) = value;
            }
            const bool wasLoading = Loading;
            Loading = true;
            FillGroupDefaultFields();
            Loading = wasLoading;
        } else if (StartsWith(line, "Notes=")) {
            txtGroupNotes.SetText(FileTextToNotes(line.substr(6)));
        } else if (StartsWith(line, "DataFormat=")) {
            GroupFormat = TextToInt16(AfterEquals(line));
        } else {
            // A marker line; its key is not read, rows follow the lines.
            const std::vector<std::string_view> parts = SplitText(AfterEquals(line), ',');
            const bool formatZero = GroupFormat == 0 && parts.size() == kFormatZeroParts;
            const bool formatOne = GroupFormat == 1 && parts.size() == kFormatOneParts;
            if (!formatZero && !formatOne) continue;
            // Converted left to right, so the first bad value is the one reported.
            std::int32_t v[7];
            for (std::size_t p = 0; p < 7; ++p) v[p] = TextToInt32(parts[p]);
            const std::int32_t dotted = formatOne ? TextToInt32(parts[kFormatOneDottedPart]) : kBlank;
            AppendMarker(v[0], v[1], v[2], v[3], v[4], v[5], v[6], dotted);
        }
    }

    EnableGroupControls(true);
    EnableMarkerControls(false, false);
    EnableNudgeMove(false);
    EnableNudgeResize(false);
    ShowAllMarkers();
    timFlashSelected.SetTimerEnabled(chkFlashSelected.Value() == kCheckChecked);
}

void MainForm::lstGroups_DblClick() {
    if (!Showing) cmdShow.PerformClick();
}

}  // namespace ostrivane
