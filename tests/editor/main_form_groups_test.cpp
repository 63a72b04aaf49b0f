// Group operations driven through the form, checked on the table, the
// controls, the data file on disk and the questions asked.
#include <cerrno>
#include <cstring>
#include <functional>
#include <tuple>

#include "dialogs/message_box.hpp"
#include "editor/main_form_fixture.hpp"
#include "store/data_file.hpp"
#include "support/file_size_limit.hpp"

namespace ostrivane::testing {
namespace {

using Row = std::vector<std::int32_t>;

const Lines kAlpha = {"DataFormat=1", "Defaults=0,0,200,-1,65280,3,-1,1,", "1=400,300,-2,-2,65280,3,60,0,",
                      "2=100,100,50,50,-1,-1,-1,-1,", "Notes=First line\xffSecond line"};
const Lines kBeta = {"DataFormat=1", "Defaults=0,0,-1,-1,-1,-1,-1,-1,", "1=10,20,30,40,50,5,70,1,", "Notes="};

class GroupTest : public MainFormTest {
protected:
    void WriteGroups(const std::vector<std::pair<std::string, Lines>>& groups) {
        std::string text = kDefaultsHead;
        for (const auto& [name, lines] : groups) {
            text += "[" + name + "]\r\n";
            for (const std::string& line : lines) text += line + "\r\n";
        }
        WriteDataFile(text);
        frm.LoadGroupList();
    }
    void LoadAlpha() {
        frm.Dirty = false;
        WriteGroups({{"Alpha", kAlpha}, {"Beta", kBeta}});
        frm.lstGroups.SetListIndex(0);
    }
    // "current group, list index, marker count, dirty"
    std::string State() const {
        return std::to_string(frm.CurrentGroup) + "," + std::to_string(frm.lstGroups.ListIndex()) + "," +
               std::to_string(frm.store.MarkerCount) + (frm.Dirty ? ",dirty" : ",clean");
    }
    void Ask(int answer, const std::string& text = "") {
        dialogs.asked.clear();
        dialogs.msgBoxAnswers = {answer};
        dialogs.inputBoxAnswers = {text};
    }
    int LoadOnly(const Lines& lines) {
        WriteGroups({{"G", lines}});
        return ErrorOf([&] { frm.lstGroups.SetListIndex(0); });
    }
};

TEST_F(GroupTest, ListHoldsTheSectionsInFileOrderWithoutTheSettingsSection) {
    frm.lstGroups.AddItem("stale");
    WriteDataFile("[Zeta]\nx=1\r\n[Defaults]\r\n[defaults]\n [Indented]\r\nkey=[x]\n[Odd] \r\n[]\n[\n[Alpha]");
    frm.LoadGroupList();
    EXPECT_EQ(Groups(), (Lines{"Zeta", "defaults", "Odd]", "", "", "Alpha"}));
    EXPECT_EQ(frm.store.Markers(0, Thickness), kBlank);  // the group defaults were cleared
    WriteDataFile("\xEF\xBB\xBF[Zeta]\r\n[Alpha]\r\n");  // a byte-order mark is no part of the first line
    frm.LoadGroupList();
    EXPECT_EQ(Groups(), (Lines{"Zeta", "Alpha"}));
}

// A load while showing rebuilds the lines and stops the flashing; the flash
// timer runs after a load only when its box is checked.
TEST_F(GroupTest, LoadFillsTableFieldsNotesControlsAndLinesButLosesTheDottedDefault) {
    WriteGroups({{"Alpha", kAlpha}, {"Beta", kBeta}});
    frm.Showing = true;
    frm.FlashPhase = true;
    frm.timFlashSelected.SetTimerEnabled(true);
    frm.lstGroups.SetListIndex(0);
    EXPECT_EQ(overlay.calls, (Lines{"ShowAllMarkers", "DestroyAllMarkerWindows", "ShowAllMarkers"}));
    EXPECT_FALSE(frm.FlashPhase || frm.timFlashSelected.TimerEnabled());
    EXPECT_EQ(State() + "," + std::to_string(frm.lstMarkers.ListIndex()), "0,0,2,clean,-1");
    EXPECT_EQ(Marker(1), (Row{400, 300, -2, -2, 65280, 3, 60, 0}));
    EXPECT_EQ(Marker(2), (Row{100, 100, 50, 50, -1, -1, -1, -1}));
    EXPECT_EQ(frm.txtHlenGrpDef.Text() + "|" + frm.txtVlenGrpDef.Text() + "|" + frm.txtThicknessGrpDef.Text() + "|" +
                  std::to_string(frm.txtColourGrpDef.BackColor()) + "|" + frm.txtGroupNotes.Text(),
              "200||3|65280|First line\r\nSecond line");
    EXPECT_TRUE(frm.cmdSaveGroup.Enabled() && frm.cmdDelGroup.Enabled() && frm.txtHlenGrpDef.Enabled());
    EXPECT_FALSE(frm.txtHpos.Enabled() || frm.cmdDelMarker.Enabled() || frm.scrNudgeX.Enabled());
    // The eighth default lands in column 8; column 12 stays blank and is saved so.
    EXPECT_EQ(std::pair(frm.store.Markers(0, HwndH), frm.chkDottedGrpDef.Value()), std::pair(1, kCheckGrey));
    frm.Showing = false;
    frm.lstMarkers.ClickItem(1);
    frm.txtHpos.SetText("555");
    frm.txtGroupNotes.SetText("One\r\nTwo");
    frm.cmdSaveGroup.PerformClick();  // fields, table and notes, under the loaded name
    EXPECT_EQ(Section("Alpha"), (Lines{"DataFormat=1", "Defaults=0,0,200,-1,65280,3,-1,-1,",
                                       "1=400,300,-2,-2,65280,3,60,0,", "2=555,100,50,50,-1,-1,-1,-1,", "Notes=One\xffTwo"}));
    EXPECT_EQ(Headers(), (Lines{"Defaults", "Alpha", "Beta"}));
    EXPECT_EQ(State(), "0,0,2,clean");
    frm.chkFlashSelected.SetValue(kCheckChecked);
    overlay.calls.clear();
    frm.lstGroups.SetListIndex(1);
    EXPECT_EQ(overlay.calls, (Lines{"ShowAllMarkers", "ShowAllMarkers"}));
    EXPECT_TRUE(frm.timFlashSelected.TimerEnabled());
}

// A load that fails leaves what it had done: the error comes out of the click.
TEST_F(GroupTest, LoadTakesMarkerLinesByFormatAndPartCountAndStopsAtAnError) {
    const Row dottedBlank{1, 2, 3, 4, 5, 7, 9, -1}, dottedOne{1, 2, 3, 4, 5, 7, 9, 1};
    const std::tuple<Lines, int, std::vector<Row>> cases[] = {
        {{"1=1,2,3,4,5,7,9,"}, 0, {dottedBlank}},                  // format 0, trailing comma: 8 parts
        {{"1=1,2,3,4,5,7,9"}, 0, {}},                              // format 0, no trailing comma
        {{"1=1,2,3,4,5,7,9,1,"}, 0, {}},                           // format 0 with a dotted value
        {{"DataFormat=1", "1=1,2,3,4,5,7,9,1,"}, 0, {dottedOne}},  // format 1, 9 parts
        {{"DataFormat=1", "1=1,2,3,4,5,7,9,"}, 0, {}},             // format 1, 8 parts
        {{"DataFormat=2", "1=1,2,3,4,5,7,9,1,"}, 0, {}},           // unknown format
        {{"1=1,2,3,4,5,7,9,", "DataFormat=1", "9=1,2,3,4,5,7,9,1,"}, 0, {dottedBlank, dottedOne}},
        {{"DataFormat=1", "7=1,2,3,4,5,7,9,1,", "3=1,2,3,4,5,7,9,"}, 0, {dottedOne}},  // keys are not read
        {{"1=1,2,3,4,5,7,9,", "2=1,2,x,4,5,7,9,"}, kTypeMismatch, {dottedBlank}},
        {{"DataFormat=one"}, kTypeMismatch, {}},
    };
    for (const auto& [lines, error, rows] : cases) {
        SCOPED_TRACE(lines.back());
        ASSERT_EQ(LoadOnly(lines), error);
        ASSERT_EQ(frm.store.MarkerCount, static_cast<std::int16_t>(rows.size()));
        for (std::size_t r = 0; r < rows.size(); ++r) EXPECT_EQ(Marker(static_cast<int>(r) + 1), rows[r]);
    }
    // an unknown format still loads the defaults and the notes; the twelfth value reaches column 12
    ASSERT_EQ(LoadOnly({"DataFormat=2", "Defaults=0,0,9,8,7,5,3,0,0,0,0,1,", "1=1,2,3,4,5,6,7,1,", "Notes=a\xff"}), 0);
    EXPECT_EQ(std::tuple(frm.GroupFormat, frm.txtVlenGrpDef.Text(), frm.chkDottedGrpDef.Value(), frm.txtGroupNotes.Text()),
              std::tuple(2, "8", kCheckChecked, "a\r\n"));
    EXPECT_EQ(LoadOnly({"DataFormat=1", "Defaults=0,0,150,x,-1,-1,-1,-1,", "1=1,2,3,4,5,7,9,1,"}), kTypeMismatch);
    EXPECT_EQ(State(), "0,0,0,clean");
    EXPECT_EQ(std::pair(frm.store.Markers(0, Hlen), frm.store.Markers(0, Vlen)), std::pair(150, kBlank));
    EXPECT_EQ(frm.txtHlenGrpDef.Text(), "");  // the fields were not filled yet
    EXPECT_EQ(LoadOnly({"Defaults=1,2,3,4,5,6,7,8,9,10,11,1,13,"}), kSubscriptOutOfRange);
    EXPECT_EQ(frm.store.Markers(0, Dotted), 1);  // written before column 13 failed
    Lines many;
    for (int i = 1; i <= 51; ++i) many.push_back(std::to_string(i) + "=" + std::to_string(i) + ",2,3,4,5,7,9,");
    EXPECT_EQ(LoadOnly(many), kSubscriptOutOfRange);
    EXPECT_EQ(std::pair(frm.lstMarkers.ListCount(), frm.store.Markers(50, Hpos)), std::pair(50, 50));
}

// Leaving a group, for another or for none, asks as the prompt does: Yes
// saves the group being left, with the field edits that leaving takes in;
// Cancel, where offered, keeps Dirty.
TEST_F(GroupTest, PromptOrLeavingAGroupAsksAndYesSavesItFirst) {
    enum How { Prompt, PromptWithCancel, Select, Deselect };
    struct Case { How how; int answer; const char* state; bool showing = false; };
    const Case cases[] = {{Prompt, vbYes, "0,0,2,clean|note"},           {Prompt, vbNo, "0,0,2,clean|note"},
                          {PromptWithCancel, vbYes, "0,0,2,clean|note"}, {PromptWithCancel, vbNo, "0,0,2,clean|note"},
                          {PromptWithCancel, vbCancel, "0,0,2,dirty|note"}, {Select, vbYes, "1,1,1,clean|"},
                          {Select, vbNo, "1,1,1,clean|"},                {Deselect, vbYes, "-1,-1,0,clean|"},
                          {Deselect, vbNo, "-1,-1,0,clean|", true}};
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.how) + " " + std::to_string(c.answer));
        LoadAlpha();
        frm.lblMsg.SetCaption("note");
        frm.txtThicknessGrpDef.SetText("7");
        frm.Dirty = true;
        frm.Showing = c.showing;
        overlay.calls.clear();
        Ask(c.answer);
        if (c.how == Select)
            frm.lstGroups.SetListIndex(1);
        else if (c.how == Deselect)
            frm.mnuClearGroupSelection.PerformClick();
        else
            frm.PromptToSave(c.how == PromptWithCancel);
        ASSERT_EQ(dialogs.asked.size(), 1u);
        EXPECT_EQ(dialogs.asked[0].prompt + "|" + dialogs.asked[0].title + "|" + std::to_string(dialogs.asked[0].flags),
                  "There are unsaved changes. Save now (or they will be lost)?|Ostrivane|" +
                      std::string(c.how == PromptWithCancel ? "35" : "36"));
        EXPECT_EQ(Section("Alpha")[1], c.answer == vbYes ? "Defaults=0,0,200,-1,65280,7,-1,-1," : kAlpha[1]);
        EXPECT_EQ(State() + "|" + frm.lblMsg.Caption(), c.state);
        EXPECT_EQ(Groups(), (Lines{"Alpha", "Beta"}));
        if (c.how != Deselect) continue;
        EXPECT_TRUE(frm.txtThicknessGrpDef.Text().empty() && !frm.cmdSaveGroup.Enabled());
        EXPECT_EQ(overlay.calls, c.showing ? Lines{"DestroyAllMarkerWindows"} : Lines{});
    }
    frm.Dirty = false;
    frm.PromptToSave(true);  // asks nothing: no answer is scripted
}

// With no group loaded a save asks for a name. A listed name is overwritten
// and the selection stays; a new one is added at the end and loaded.
TEST_F(GroupTest, SaveAsOverwritesAListedNameOrAddsANewOneAtTheEndAndLoadsIt) {
    WriteGroups({{"Alpha", kAlpha}, {"Beta", kBeta}});
    frm.AppendMarker(5, 6, -2, -2, -1, -1, -1, -1);
    Ask(0, "Fresh");
    frm.cmdSaveGroup.PerformClick();
    EXPECT_EQ(dialogs.asked[0].prompt + "|" + dialogs.asked[0].proposal, "Name|");
    EXPECT_FALSE(dialogs.asked[0].position.has_value());  // the form is not visible
    EXPECT_EQ(Groups(), (Lines{"Alpha", "Beta", "Fresh"}));
    EXPECT_EQ(State(), "2,2,1,clean");
    EXPECT_EQ(Section("Fresh")[2], "1=5,6,-2,-2,-1,-1,-1,-1,");
    EXPECT_EQ(Marker(1), (Row{5, 6, -2, -2, -1, -1, -1, -1}));  // reloaded from the file

    frm.lstGroups.SetListIndex(0);
    frm.SetVisible(true);
    frm.Left = 1000;
    frm.Top = 2000;
    frm.Dirty = true;
    Ask(0, "beta");  // the file's [Beta], in any case
    frm.mnuSaveAsGroup.PerformClick();
    EXPECT_EQ(dialogs.asked[0].proposal, "Alpha");
    ASSERT_TRUE(dialogs.asked[0].position.has_value());
    EXPECT_EQ(std::pair(dialogs.asked[0].position->left, dialogs.asked[0].position->top), std::pair(1350, 2350));
    EXPECT_EQ(Section("Beta")[2], kAlpha[2]);
    EXPECT_EQ(State(), "0,0,2,clean");  // the selection stays on the group left behind

    dialogs.inputBoxAnswers = {"", "Delta"};  // Cancel saves nothing
    frm.Dirty = true;
    frm.SaveGroupAs();
    EXPECT_TRUE(frm.Dirty);
    frm.Unloading = true;  // a closing form writes the file and leaves the list alone
    frm.SaveGroupAs();
    EXPECT_EQ(Headers(), (Lines{"Defaults", "Alpha", "Beta", "Fresh", "Delta"}));
    EXPECT_EQ(Groups(), (Lines{"Alpha", "Beta", "Fresh"}));
}

// A listed name, in any case but the group's own, does nothing. A new name,
// or the same in another case, moves the section to the end of the file;
// Cancel answers the empty name, which is taken.
TEST_F(GroupTest, RenameMovesTheSectionToTheEndOfTheFile) {
    LoadAlpha();
    const std::string before = ReadDataFile();
    for (const char* answer : {"Beta", "Alpha", "beta"}) {
        Ask(0, answer);
        frm.RenameGroup();  // a further question would fail: none is scripted
        EXPECT_EQ(ReadDataFile(), before);
        EXPECT_EQ(Groups(), (Lines{"Alpha", "Beta"}));
    }
    for (const auto& [answer, proposal] : {std::pair("ALPHA", "Alpha"), {"Renamed", "ALPHA"}, {"", "Renamed"}}) {
        Ask(0, answer);
        frm.mnuRenGroup.PerformClick();
        EXPECT_EQ(dialogs.asked.back().prompt + "|" + dialogs.asked.back().proposal, "New name|" + std::string(proposal));
        EXPECT_EQ(Groups(), (Lines{answer, "Beta"}));
        EXPECT_EQ(Headers(), (Lines{"Defaults", "Beta", answer}));
        EXPECT_EQ(Section(answer), kAlpha);
    }
}

// A group write that fails warns with the file and the system's reason and
// keeps the user's work: the file, the list, the lines and Dirty stay.
TEST_F(GroupTest, FailedWriteWarnsAndKeepsEverything) {
    const std::tuple<std::string, std::string, std::function<void()>> cases[] = {
        {"Alpha", "saved", [&] { frm.cmdSaveGroup.PerformClick(); }},
        {"Alpha", "saved", [&] { Ask(vbYes), frm.PromptToSave(true); }},
        {"New", "saved", [&] { Ask(0, "New"), frm.SaveGroupAs(); }},
        {"Alpha", "renamed", [&] { Ask(0, "New"), frm.RenameGroup(); }},
        {"Alpha", "deleted", [&] { frm.cmdDelGroup.PerformClick(); }},
    };
    for (const auto& [group, verb, operation] : cases) {
        SCOPED_TRACE(verb);
        LoadAlpha();
        const std::string before = ReadDataFile();
        frm.Dirty = true;
        overlay.calls.clear();
        if (const FileSizeLimit full; true) operation();
        EXPECT_EQ(MessageText, "2   0The group \"" + group + "\" was not " + verb + ": the data file " + frm.DataFile +
                                   " could not be written (" + std::strerror(EFBIG) + ").");
        EXPECT_EQ(ReadDataFile() + State(), before + "0,0,2,dirty");
        EXPECT_EQ(Groups(), (Lines{"Alpha", "Beta"}));
        EXPECT_TRUE(overlay.calls.empty());
    }
}

TEST_F(GroupTest, DeleteRemovesTheSectionAndDisablesTheControls) {
    LoadAlpha();
    frm.lstMarkers.ClickItem(0);
    frm.Showing = true;
    frm.Dirty = true;
    overlay.calls.clear();
    frm.cmdDelGroup.PerformClick();
    frm.cmdDelGroup.PerformClick();  // nothing selected: nothing happens
    EXPECT_EQ(Headers(), (Lines{"Defaults", "Beta"}));
    EXPECT_EQ(Groups(), (Lines{"Beta"}));
    EXPECT_EQ(State() + "," + std::to_string(frm.lstMarkers.ListCount()), "-1,-1,0,clean,0");
    EXPECT_EQ(overlay.calls, (Lines{"DestroyAllMarkerWindows"}));  // and still showing
    EXPECT_TRUE(frm.Showing && frm.ActiveControl() == &frm.cmdAddMarker);
    EXPECT_FALSE(frm.cmdSaveGroup.Enabled() || frm.txtHpos.Enabled() || frm.cmdDelMarker.Enabled() ||
                 frm.scrNudgeX.Enabled() || frm.scrNudgeW.Enabled() || frm.mnuRenGroup.Enabled());
}

TEST_F(GroupTest, MenuEntriesValidateTheFocusedFieldBeforeTheirWork) {
    int shows = 0;  // a double click on the list shows only when stopped
    frm.cmdShow.Click.Connect([&] { ++shows; });
    for (bool showing : {false, true}) frm.Showing = showing, frm.lstGroups.DblClick.Raise();
    EXPECT_EQ(shows, 1);
    frm.Showing = false;
    for (form::MenuItem* menu : {&frm.mnuSaveGroup, &frm.mnuSaveAsGroup, &frm.mnuRenGroup}) {
        SCOPED_TRACE(menu->Name());
        LoadAlpha();
        frm.txtHpos.SetFocus();
        std::string atValidation;  // questions asked and file text
        frm.txtHpos.Validate.Connect([&](bool&) { atValidation = std::to_string(dialogs.asked.size()) + ReadDataFile(); });
        Ask(0, "Other");
        menu->PerformClick();
        EXPECT_EQ(atValidation.substr(0, 1), "0");
        EXPECT_NE(atValidation.substr(1), ReadDataFile());  // the work came after
        EXPECT_EQ(frm.ActiveControl(), &frm.cmdAddMarker);
    }
}

}  // namespace
}  // namespace ostrivane::testing
