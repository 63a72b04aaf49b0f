// Group operations driven through the form, checked on the table, the
// controls, the data file on disk and the questions asked.
#include <sstream>
#include <string>
#include <vector>

#include "editor/main_form_fixture.hpp"
#include "lib/profile.hpp"
#include "store/data_file.hpp"

namespace ostrivane::testing {
namespace {

using fakes::Question;
using Lines = std::vector<std::string>;

constexpr char kSavePrompt[] = "There are unsaved changes. Save now (or they will be lost)?";

const Lines kAlpha = {"DataFormat=1", "Defaults=0,0,200,-1,65280,3,-1,1,", "1=400,300,-2,-2,65280,3,60,0,",
                      "2=100,100,50,50,-1,-1,-1,-1,", "Notes=First line\xffSecond line"};
const Lines kBeta = {"DataFormat=1", "Defaults=0,0,-1,-1,-1,-1,-1,-1,", "1=10,20,30,40,50,5,70,1,", "Notes="};

class GroupTest : public MainFormTest {
protected:
    // Writes [Defaults] and the given groups with CR LF, then lists them.
    void Setup(const std::vector<std::pair<std::string, Lines>>& groups) {
        std::string text = "[Defaults]\r\nDefaults=0,0,-2,-2,255,1,100,0,\r\n";
        for (const auto& [name, lines] : groups) {
            text += "[" + name + "]\r\n";
            for (const std::string& line : lines) text += line + "\r\n";
        }
        WriteDataFile(text);
        frm.LoadGroupList();
    }
    void SetupAlphaBeta() { Setup({{"Alpha", kAlpha}, {"Beta", kBeta}}); }
    Lines Section(const std::string& name) const {
        Lines lines;
        const std::string text = lib_ProfileGetSection(name, frm.DataFile);
        for (std::size_t start = 0, end; (end = text.find('\0', start)) != std::string::npos; start = end + 1)
            lines.push_back(text.substr(start, end - start));
        return lines;
    }
    Lines Headers() const {
        Lines names;
        std::istringstream in(ReadDataFile());
        for (std::string line; std::getline(in, line);)
            if (line.starts_with("[")) names.push_back(line.substr(1, line.find(']') - 1));
        return names;
    }
    static Lines Items(const form::ListBox& list) {
        Lines items;
        for (int i = 0; i < list.ListCount(); ++i) items.push_back(list.List(i));
        return items;
    }
    std::vector<std::int32_t> Row(int r) const {
        std::vector<std::int32_t> v;
        for (int c : {Hpos, Vpos, Hlen, Vlen, Colour, Thickness, Opacity, Dotted}) v.push_back(frm.store.Markers(r, c));
        return v;
    }
    // Loads a one-group file whose section is lines, and reports the error.
    int LoadOnly(const Lines& lines) {
        Setup({{"G", lines}});
        return ErrorOf([&] { frm.lstGroups.SetListIndex(0); });
    }
};

class GroupList : public GroupTest {};

TEST_F(GroupList, SectionsInFileOrderWithoutTheSettingsSection) {
    frm.lstGroups.AddItem("stale");
    WriteDataFile("[Zeta]\nx=1\r\n[Defaults]\r\n[defaults]\n [Indented]\r\nkey=[x]\n[Odd] \r\n[]\n[\n[Alpha]");
    frm.LoadGroupList();
    EXPECT_EQ(Items(frm.lstGroups), (Lines{"Zeta", "defaults", "Odd]", "", "", "Alpha"}));
    EXPECT_EQ(frm.store.Markers(0, Thickness), kBlank);  // the group defaults were cleared
}

TEST_F(GroupList, MissingFileGivesAnEmptyListAndFindIsExact) {
    frm.lstGroups.AddItem("stale");
    frm.LoadGroupList();
    EXPECT_EQ(frm.lstGroups.ListCount(), 0);
    for (const char* item : {"a", "B", "a", ""}) frm.lstGroups.AddItem(item);
    EXPECT_EQ(MainForm::FindInList(frm.lstGroups, "a"), 0);
    EXPECT_EQ(MainForm::FindInList(frm.lstGroups, "B"), 1);
    EXPECT_EQ(MainForm::FindInList(frm.lstGroups, "b"), -1);
    EXPECT_EQ(MainForm::FindInList(frm.lstGroups, ""), 3);
}

class GroupPrompt : public GroupTest {};

TEST_F(GroupPrompt, AnswersDecideSaveAndDirty) {
    struct Case {
        bool allowCancel;
        int answer, flags;
        bool saved, dirtyAfter;
    } cases[] = {{false, vbYes, 36, true, false},
                 {false, vbNo, 36, false, false},
                 {true, vbYes, 35, true, false},
                 {true, vbNo, 35, false, false},
                 {true, vbCancel, 35, false, true}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.answer);
        SetupAlphaBeta();
        frm.lstGroups.SetListIndex(0);
        frm.store.Markers(1, Hpos) = 999;
        frm.Dirty = true;
        dialogs.msgBoxAnswers = {c.answer};
        dialogs.asked.clear();
        frm.PromptToSave(c.allowCancel);
        ASSERT_EQ(dialogs.asked.size(), 1u);
        EXPECT_EQ(dialogs.asked[0].prompt, kSavePrompt);
        EXPECT_EQ(dialogs.asked[0].flags, c.flags);
        EXPECT_EQ(dialogs.asked[0].title, "Ostrivane");
        EXPECT_EQ(Section("Alpha")[2] == "1=999,300,-2,-2,65280,3,60,0,", c.saved);
        EXPECT_EQ(frm.Dirty, c.dirtyAfter);
    }
    frm.Dirty = false;
    frm.PromptToSave(true);  // asks nothing: no answer is scripted
}

class GroupLoad : public GroupTest {};

TEST_F(GroupLoad, FillsTableFieldsNotesAndControlsButLosesTheDottedDefault) {
    SetupAlphaBeta();
    frm.lstGroups.SetListIndex(0);
    EXPECT_EQ(frm.CurrentGroup, 0);
    EXPECT_EQ(Items(frm.lstMarkers), (Lines{"1", "2"}));
    EXPECT_EQ(Row(1), (std::vector<std::int32_t>{400, 300, -2, -2, 65280, 3, 60, 0}));
    EXPECT_EQ(Row(2), (std::vector<std::int32_t>{100, 100, 50, 50, -1, -1, -1, -1}));
    EXPECT_EQ(frm.txtHlenGrpDef.Text(), "200");
    EXPECT_EQ(frm.txtVlenGrpDef.Text(), "");
    EXPECT_EQ(frm.txtColourGrpDef.BackColor(), 65280);
    EXPECT_EQ(frm.txtThicknessGrpDef.Text(), "3");
    EXPECT_EQ(frm.txtGroupNotes.Text(), "First line\r\nSecond line");
    EXPECT_TRUE(frm.cmdSaveGroup.Enabled() && frm.cmdDelGroup.Enabled() && frm.txtHlenGrpDef.Enabled());
    EXPECT_FALSE(frm.txtHpos.Enabled() || frm.cmdDelMarker.Enabled() || frm.scrNudgeX.Enabled());
    EXPECT_EQ(frm.lstMarkers.ListIndex(), -1);
    // The eighth default lands in column 8; column 12 stays blank and is saved so.
    EXPECT_EQ(frm.store.Markers(0, HwndH), 1);
    EXPECT_EQ(frm.chkDottedGrpDef.Value(), kCheckGrey);
    frm.cmdSaveGroup.PerformClick();
    EXPECT_EQ(Section("Alpha")[1], "Defaults=0,0,200,-1,65280,3,-1,-1,");
}

TEST_F(GroupLoad, MarkerLinesByFormatAndPartCount) {
    const std::vector<std::int32_t> dottedBlank{1, 2, 3, 4, 5, 7, 9, -1}, dottedOne{1, 2, 3, 4, 5, 7, 9, 1};
    struct Case {
        Lines lines;
        std::vector<std::vector<std::int32_t>> rows;
    } cases[] = {
        {{"1=1,2,3,4,5,7,9,"}, {dottedBlank}},                  // format 0, trailing comma: 8 parts
        {{"1=1,2,3,4,5,7,9"}, {}},                              // format 0, no trailing comma
        {{"1=1,2,3,4,5,7,9,1,"}, {}},                           // format 0 with a dotted value
        {{"DataFormat=1", "1=1,2,3,4,5,7,9,1,"}, {dottedOne}},  // format 1, 9 parts
        {{"DataFormat=1", "1=1,2,3,4,5,7,9,"}, {}},             // format 1, 8 parts
        {{"DataFormat=2", "1=1,2,3,4,5,7,9,1,"}, {}},           // unknown format
        {{"1=1,2,3,4,5,7,9,", "DataFormat=1", "9=1,2,3,4,5,7,9,1,"}, {dottedBlank, dottedOne}},
        {{"DataFormat=1", "7=1,2,3,4,5,7,9,1,", "3=1,2,3,4,5,7,9,"}, {dottedOne}},  // keys are not read
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.lines.back());
        ASSERT_EQ(LoadOnly(c.lines), 0);
        ASSERT_EQ(frm.store.MarkerCount, static_cast<std::int16_t>(c.rows.size()));
        for (std::size_t r = 0; r < c.rows.size(); ++r) EXPECT_EQ(Row(static_cast<int>(r) + 1), c.rows[r]);
    }
}

TEST_F(GroupLoad, UnknownFormatStillLoadsDefaultsAndNotes) {
    ASSERT_EQ(LoadOnly({"DataFormat=2", "Defaults=0,0,9,8,7,5,3,0,0,0,0,1,", "1=1,2,3,4,5,6,7,1,", "Notes=a\xff"}), 0);
    EXPECT_EQ(frm.GroupFormat, 2);
    EXPECT_EQ(frm.store.MarkerCount, 0);
    EXPECT_EQ(frm.txtVlenGrpDef.Text(), "8");
    EXPECT_EQ(frm.chkDottedGrpDef.Value(), kCheckChecked);  // the twelfth value reaches column 12
    EXPECT_EQ(frm.txtGroupNotes.Text(), "a\r\n");
}

TEST_F(GroupLoad, MissingSectionLoadsEmptyAndSavesWithoutMarkerLines) {
    SetupAlphaBeta();
    frm.lstGroups.AddItem("Ghost");
    frm.lstGroups.SetListIndex(2);
    EXPECT_EQ(frm.CurrentGroup, 2);
    EXPECT_EQ(frm.store.MarkerCount, 0);
    EXPECT_TRUE(frm.cmdSaveGroup.Enabled());
    frm.cmdSaveGroup.PerformClick();
    EXPECT_EQ(Section("Ghost"), (Lines{"DataFormat=1", "Defaults=0,0,-1,-1,-1,-1,-1,-1,", "Notes="}));
}

TEST_F(GroupLoad, SwitchingAsksAndYesSavesTheGroupBeingLeft) {
    for (int answer : {vbYes, vbNo}) {
        SCOPED_TRACE(answer);
        SetupAlphaBeta();
        frm.lstGroups.SetListIndex(0);
        frm.txtThicknessGrpDef.SetText("7");  // reaches row 0, and Dirty, in the load's update
        dialogs.msgBoxAnswers = {answer};
        dialogs.asked.clear();
        frm.lstGroups.SetListIndex(1);
        EXPECT_EQ(dialogs.asked.size(), 1u);
        EXPECT_EQ(Section("Alpha")[1], answer == vbYes ? "Defaults=0,0,200,-1,65280,7,-1,-1," : kAlpha[1]);
        EXPECT_EQ(Section("Beta"), kBeta);
        EXPECT_EQ(frm.CurrentGroup, 1);
        EXPECT_EQ(Row(1), (std::vector<std::int32_t>{10, 20, 30, 40, 50, 5, 70, 1}));
        EXPECT_FALSE(frm.Dirty);
    }
}

TEST_F(GroupLoad, OverlayCallsAndTheFlashTimer) {
    SetupAlphaBeta();
    frm.Showing = true;
    frm.FlashPhase = true;
    frm.timFlashSelected.SetTimerEnabled(true);
    frm.lstGroups.SetListIndex(0);
    EXPECT_EQ(overlay.calls, (Lines{"ShowAllMarkers", "DestroyAllMarkerWindows", "ShowAllMarkers"}));
    EXPECT_FALSE(frm.FlashPhase);
    EXPECT_FALSE(frm.timFlashSelected.TimerEnabled());  // chkFlashSelected is unchecked

    frm.Showing = false;
    frm.chkFlashSelected.SetValue(kCheckChecked);
    overlay.calls.clear();
    frm.lstGroups.SetListIndex(1);
    EXPECT_EQ(overlay.calls, (Lines{"ShowAllMarkers", "ShowAllMarkers"}));
    EXPECT_TRUE(frm.timFlashSelected.TimerEnabled());
}

class GroupLoadFailure : public GroupTest {};

TEST_F(GroupLoadFailure, NonNumberInDefaultsLeavesTheGroupPartlyLoaded) {
    EXPECT_EQ(LoadOnly({"DataFormat=1", "Defaults=0,0,150,x,-1,-1,-1,-1,", "1=1,2,3,4,5,7,9,1,"}), kTypeMismatch);
    EXPECT_EQ(frm.CurrentGroup, 0);
    EXPECT_EQ(frm.store.Markers(0, Hlen), 150);
    EXPECT_EQ(frm.store.Markers(0, Vlen), kBlank);
    EXPECT_EQ(frm.txtHlenGrpDef.Text(), "");  // the fields were not filled yet
    EXPECT_EQ(frm.store.MarkerCount, 0);
}

TEST_F(GroupLoadFailure, SubscriptAndConversionErrors) {
    EXPECT_EQ(LoadOnly({"Defaults=1,2,3,4,5,6,7,8,9,10,11,1,13,"}), kSubscriptOutOfRange);
    EXPECT_EQ(frm.store.Markers(0, Dotted), 1);  // written before column 13 failed
    EXPECT_EQ(LoadOnly({"1=1,2,3,4,5,7,9,", "2=1,2,x,4,5,7,9,"}), kTypeMismatch);
    EXPECT_EQ(frm.store.MarkerCount, 1);
    EXPECT_EQ(LoadOnly({"DataFormat=one"}), kTypeMismatch);

    Lines many;
    for (int i = 1; i <= 51; ++i) many.push_back(std::to_string(i) + "=" + std::to_string(i) + ",2,3,4,5,7,9,");
    EXPECT_EQ(LoadOnly(many), kSubscriptOutOfRange);
    EXPECT_EQ(frm.lstMarkers.ListCount(), 50);
    EXPECT_EQ(frm.store.Markers(50, Hpos), 50);
}

class GroupSave : public GroupTest {};

TEST_F(GroupSave, WritesFieldsTableAndNotesUnderTheLoadedName) {
    SetupAlphaBeta();
    frm.lstGroups.SetListIndex(0);
    frm.lstMarkers.ClickItem(1);
    frm.txtHpos.SetText("555");
    frm.txtGroupNotes.SetText("One\r\nTwo");
    frm.cmdSaveGroup.PerformClick();
    EXPECT_EQ(Section("Alpha"),
              (Lines{"DataFormat=1", "Defaults=0,0,200,-1,65280,3,-1,-1,", "1=400,300,-2,-2,65280,3,60,0,",
                     "2=555,100,50,50,-1,-1,-1,-1,", "Notes=One\xffTwo"}));
    EXPECT_EQ(Headers(), (Lines{"Defaults", "Alpha", "Beta"}));
    EXPECT_FALSE(frm.Dirty);
}

TEST_F(GroupSave, WithNoGroupLoadedAsksForANameAndLoadsIt) {
    SetupAlphaBeta();
    frm.AppendMarker(5, 6, -2, -2, -1, -1, -1, -1);
    frm.Dirty = true;
    dialogs.inputBoxAnswers = {"Fresh"};
    frm.cmdSaveGroup.PerformClick();
    ASSERT_EQ(dialogs.asked.size(), 1u);
    EXPECT_EQ(dialogs.asked[0].prompt, "Name");
    EXPECT_EQ(dialogs.asked[0].proposal, "");
    EXPECT_EQ(Items(frm.lstGroups), (Lines{"Alpha", "Beta", "Fresh"}));
    EXPECT_EQ(frm.CurrentGroup, 2);
    EXPECT_EQ(Section("Fresh")[2], "1=5,6,-2,-2,-1,-1,-1,-1,");
    EXPECT_EQ(Row(1), (std::vector<std::int32_t>{5, 6, -2, -2, -1, -1, -1, -1}));  // reloaded from the file
}

TEST_F(GroupSave, SaveAsOverAListedNameOverwritesAndKeepsTheSelection) {
    SetupAlphaBeta();
    frm.lstGroups.SetListIndex(0);
    frm.Dirty = true;
    dialogs.inputBoxAnswers = {"Beta"};
    frm.mnuSaveAsGroup.PerformClick();
    EXPECT_EQ(dialogs.asked[0].proposal, "Alpha");
    EXPECT_FALSE(dialogs.asked[0].position.has_value());  // the form is not visible
    EXPECT_EQ(Section("Beta")[2], kAlpha[2]);
    EXPECT_EQ(frm.lstGroups.ListIndex(), 0);
    EXPECT_EQ(frm.CurrentGroup, 0);
    EXPECT_FALSE(frm.Dirty);
}

TEST_F(GroupSave, SaveAsANewNameAddsItAtTheEndAndLoadsIt) {
    SetupAlphaBeta();
    frm.lstGroups.SetListIndex(0);
    frm.SetVisible(true);
    frm.Left = 1000;
    frm.Top = 2000;
    frm.txtGroupNotes.SetText("changed");
    dialogs.inputBoxAnswers = {"Gamma"};
    frm.SaveGroupAs();
    ASSERT_TRUE(dialogs.asked[0].position.has_value());
    EXPECT_EQ(dialogs.asked[0].position->left, 1350);
    EXPECT_EQ(dialogs.asked[0].position->top, 2350);
    EXPECT_EQ(frm.lstGroups.ListIndex(), 2);
    EXPECT_EQ(frm.CurrentGroup, 2);
    EXPECT_EQ(Section("Alpha"), kAlpha);
    EXPECT_EQ(Section("Gamma").back(), "Notes=changed");
    EXPECT_EQ(frm.txtGroupNotes.Text(), "changed");

    dialogs.inputBoxAnswers = {"", "Delta"};  // Cancel saves nothing
    frm.Dirty = true;
    frm.SaveGroupAs();
    EXPECT_TRUE(frm.Dirty);
    frm.Unloading = true;  // a closing form writes the file and leaves the list alone
    frm.SaveGroupAs();
    EXPECT_EQ(Headers(), (Lines{"Defaults", "Alpha", "Beta", "Gamma", "Delta"}));
    EXPECT_EQ(Items(frm.lstGroups), (Lines{"Alpha", "Beta", "Gamma"}));
}

class GroupRename : public GroupTest {};

TEST_F(GroupRename, MovesTheSectionToTheEndOfTheFile) {
    SetupAlphaBeta();
    frm.lstGroups.SetListIndex(0);
    dialogs.inputBoxAnswers = {"Renamed"};
    frm.mnuRenGroup.PerformClick();
    EXPECT_EQ(dialogs.asked[0].prompt, "New name");
    EXPECT_EQ(dialogs.asked[0].proposal, "Alpha");
    EXPECT_EQ(Items(frm.lstGroups), (Lines{"Renamed", "Beta"}));
    EXPECT_EQ(Headers(), (Lines{"Defaults", "Beta", "Renamed"}));
    EXPECT_EQ(Section("Renamed"), kAlpha);
    frm.LoadGroupList();
    EXPECT_EQ(Items(frm.lstGroups), (Lines{"Beta", "Renamed"}));
}

TEST_F(GroupRename, ListedNameDoesNothingAndCancelEmptiesTheName) {
    SetupAlphaBeta();
    frm.lstGroups.SetListIndex(0);
    const std::string before = ReadDataFile();
    for (const char* answer : {"Beta", "Alpha"}) {
        dialogs.inputBoxAnswers = {answer};
        frm.RenameGroup();  // a further question would fail: none is scripted
        EXPECT_EQ(ReadDataFile(), before);
        EXPECT_EQ(Items(frm.lstGroups), (Lines{"Alpha", "Beta"}));
    }
    dialogs.inputBoxAnswers = {""};
    frm.RenameGroup();
    EXPECT_EQ(Items(frm.lstGroups), (Lines{"", "Beta"}));
    EXPECT_EQ(Headers(), (Lines{"Defaults", "Beta", ""}));
}

class GroupDelete : public GroupTest {};

TEST_F(GroupDelete, RemovesTheSectionAndDisablesTheControls) {
    SetupAlphaBeta();
    frm.lstGroups.SetListIndex(0);
    frm.lstMarkers.ClickItem(0);
    frm.Showing = true;
    frm.Dirty = true;
    overlay.calls.clear();
    frm.cmdDelGroup.PerformClick();
    EXPECT_EQ(Headers(), (Lines{"Defaults", "Beta"}));
    EXPECT_EQ(Items(frm.lstGroups), (Lines{"Beta"}));
    EXPECT_EQ(frm.CurrentGroup, -1);
    EXPECT_EQ(frm.store.MarkerCount, 0);
    EXPECT_EQ(frm.lstMarkers.ListCount(), 0);
    EXPECT_EQ(overlay.calls, (Lines{"DestroyAllMarkerWindows"}));
    EXPECT_TRUE(frm.Showing);
    EXPECT_FALSE(frm.Dirty);
    EXPECT_EQ(frm.ActiveControl(), &frm.cmdAddMarker);
    EXPECT_FALSE(frm.cmdSaveGroup.Enabled() || frm.txtHpos.Enabled() || frm.cmdDelMarker.Enabled() ||
                 frm.scrNudgeX.Enabled() || frm.scrNudgeW.Enabled() || frm.mnuRenGroup.Enabled());
    frm.cmdDelGroup.PerformClick();  // nothing selected: nothing happens
    EXPECT_EQ(Items(frm.lstGroups), (Lines{"Beta"}));
}

TEST_F(GroupDelete, DeselectAsksSavesToTheOldGroupAndEmptiesTheForm) {
    for (bool showing : {false, true}) {
        SetupAlphaBeta();
        frm.lstGroups.SetListIndex(0);
        frm.lblMsg.SetCaption("note");
        const std::string thickness = showing ? "9" : "11";
        frm.txtThicknessGrpDef.SetText(thickness);
        frm.Showing = showing;
        overlay.calls.clear();
        dialogs.msgBoxAnswers = {vbYes};
        frm.mnuClearGroupSelection.PerformClick();
        EXPECT_EQ(Section("Alpha")[1], "Defaults=0,0,200,-1,65280," + thickness + ",-1,-1,");
        EXPECT_EQ(frm.lstGroups.ListIndex(), -1);
        EXPECT_EQ(frm.CurrentGroup, -1);
        EXPECT_EQ(frm.lblMsg.Caption(), "");
        EXPECT_EQ(frm.store.MarkerCount, 0);
        EXPECT_EQ(frm.txtThicknessGrpDef.Text(), "");
        EXPECT_FALSE(frm.cmdSaveGroup.Enabled());
        EXPECT_EQ(overlay.calls, showing ? Lines{"DestroyAllMarkerWindows"} : Lines{});
        EXPECT_EQ(Items(frm.lstGroups), (Lines{"Alpha", "Beta"}));
    }
}

class GroupMenus : public GroupTest {};

TEST_F(GroupMenus, MenuEntriesValidateTheFocusedFieldBeforeTheirWork) {
    for (form::MenuItem* menu : {&frm.mnuSaveGroup, &frm.mnuSaveAsGroup, &frm.mnuRenGroup}) {
        SCOPED_TRACE(menu->Name());
        SetupAlphaBeta();
        frm.lstGroups.SetListIndex(0);
        frm.txtHpos.SetFocus();
        std::size_t askedAtValidation = 99;
        std::string fileAtValidation;
        frm.txtHpos.Validate.Connect([&](bool&) {
            askedAtValidation = dialogs.asked.size();
            fileAtValidation = ReadDataFile();
        });
        dialogs.asked.clear();
        dialogs.inputBoxAnswers = {"Other"};
        menu->PerformClick();
        EXPECT_EQ(askedAtValidation, 0u);
        EXPECT_NE(fileAtValidation, ReadDataFile());  // the work came after
        EXPECT_EQ(frm.ActiveControl(), &frm.cmdAddMarker);
    }
}

TEST_F(GroupMenus, DoubleClickShowsOnlyWhenStopped) {
    int shows = 0;
    frm.cmdShow.Click.Connect([&] { ++shows; });
    frm.lstGroups.DblClick.Raise();
    EXPECT_EQ(shows, 1);
    frm.Showing = true;
    frm.lstGroups.DblClick.Raise();
    EXPECT_EQ(shows, 1);
}

}  // namespace
}  // namespace ostrivane::testing
