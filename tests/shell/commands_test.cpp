// The command language of the hidden box txtChangeModeHid, and the help
// text that explains it. The clicks of cmdShow and cmdExit are counted here;
// what they do is tested with show/stop and shutdown.
#include <string>
#include <vector>

#include "dialogs/message_box.hpp"
#include "editor/main_form_fixture.hpp"

namespace ostrivane::testing {
namespace {

using Lines = std::vector<std::string>;

class CommandTest : public MainFormTest {
protected:
    CommandTest() {
        WriteGroups("[Alpha]\r\nDataFormat=1\r\n1=400,300,-2,-2,65280,3,60,0,\r\n2=10,20,30,40,50,5,70,1,\r\n"
                    "[Two Words]\r\n[Beta]\r\n");
        frm.cmdShow.Click.Connect([this] { ++showClicks; });
        frm.cmdExit.Click.Connect([this] { ++exitClicks; });
        desktop.whileModal = [this](form::Form&) { infoShown.push_back(MessageText); };
    }
    void WriteGroups(const std::string& sections) {
        WriteDataFile("[Defaults]\r\nDefaults=0,0,-2,-2,255,1,100,0,\r\n" + sections);
        frm.LoadGroupList();
    }
    // As a second start delivers it: trimmed and lower-cased by the sender.
    void Send(const std::string& text) { frm.txtChangeModeHid.SetText(text); }
    static std::string NotFound(const std::string& received) {
        return "3   0Group \"" + received + "\" requested on commandline was not found";
    }
    int showClicks = 0;
    int exitClicks = 0;
    Lines infoShown;
};

TEST_F(CommandTest, KeywordsActOnlyWhenTheyChangeTheState) {
    struct Row {
        const char* text;
        bool showing;
        int shows, exits;
    };
    // Each text differs from the one before, so each arrives as a change.
    const Row rows[] = {
        {"/show", false, 1, 0}, {"/stop", true, 1, 0}, {"/show", true, 0, 0},
        {"/stop", false, 0, 0}, {"/quit", true, 0, 1},
    };
    for (const Row& row : rows) {
        showClicks = exitClicks = 0;
        frm.Showing = row.showing;
        Send(row.text);
        EXPECT_EQ(showClicks, row.shows) << row.text << " showing " << row.showing;
        EXPECT_EQ(exitClicks, row.exits) << row.text;
    }
    EXPECT_EQ(frm.lstGroups.ListIndex(), -1);
    EXPECT_TRUE(infoShown.empty());
}

TEST_F(CommandTest, KeywordsAreExactAndHideAGroupOfTheirName) {
    Send("/SHOW");
    Send(" /stop");
    EXPECT_EQ(infoShown, (Lines{NotFound("/SHOW"), NotFound(" /stop")}));
    EXPECT_EQ(showClicks, 0);

    WriteGroups("[/show]\r\n");
    Send("/show");
    EXPECT_EQ(frm.lstGroups.ListIndex(), -1);
    EXPECT_EQ(showClicks, 1);
}

TEST_F(CommandTest, GroupInQuotesIsFoundWhateverItsCaseLoadedAndShown) {
    Send("\"alpha\"");  // a start with "ALPHA" in quotes arrives like this
    EXPECT_EQ(frm.CurrentGroup, 0);
    EXPECT_EQ(frm.store.MarkerCount, 2);
    EXPECT_EQ(showClicks, 1);
    EXPECT_TRUE(infoShown.empty());
}

TEST_F(CommandTest, WordsAndBlanksFormOneName) {
    for (const auto& [text, index] : {std::pair{"two words", 1}, {"\"  beta \"", 2}, {"  alpha", 0}}) {
        Send(text);
        EXPECT_EQ(frm.lstGroups.ListIndex(), index) << text;
    }
    Send("two  words");
    EXPECT_EQ(infoShown, (Lines{NotFound("two  words")}));
}

TEST_F(CommandTest, WhileShowingTheLoadAloneChangesTheScreen) {
    frm.Showing = true;
    Send("beta");
    overlay.calls.clear();
    Send("\"beta\"");  // the same group again
    EXPECT_EQ(frm.CurrentGroup, 2);
    EXPECT_EQ(overlay.calls, (Lines{"ShowAllMarkers", "DestroyAllMarkerWindows", "ShowAllMarkers"}));
    EXPECT_EQ(showClicks, 0);
}

TEST_F(CommandTest, NotFoundIsReportedWithTheTextAsReceivedAndChangesNothing) {
    frm.lstGroups.SetListIndex(1);
    frm.Showing = true;
    overlay.calls.clear();
    Send("\"abc\"");
    EXPECT_EQ(infoShown, (Lines{"3   0Group \"\"abc\"\" requested on commandline was not found"}));
    EXPECT_EQ(frm.lstGroups.ListIndex(), 1);
    EXPECT_TRUE(frm.Showing);
    EXPECT_TRUE(overlay.calls.empty());
    EXPECT_EQ(showClicks, 0);
}

TEST_F(CommandTest, EmptyQuotesFindOnlyAGroupWithAnEmptyName) {
    Send("\"\"");
    EXPECT_EQ(infoShown, (Lines{NotFound("\"\"")}));
    WriteGroups("[Alpha]\r\n[]\r\n");
    Send("\" \"");
    EXPECT_EQ(frm.lstGroups.ListIndex(), 1);
    EXPECT_EQ(showClicks, 1);
}

// A failure while the group loads is swallowed by the selection, which then
// counts as not found: the group stays partly loaded and is not shown.
TEST_F(CommandTest, AGroupThatFailsToLoadIsReportedAsNotFound) {
    WriteGroups("[Bad]\r\nDataFormat=1\r\n1=1,2,3,4,5,1,7,0,\r\n2=x,2,3,4,5,1,7,0,\r\n3=5,6,7,8,9,1,7,0,\r\n");
    Send("bad");
    EXPECT_EQ(frm.CurrentGroup, 0);
    EXPECT_EQ(frm.store.MarkerCount, 1);
    EXPECT_EQ(infoShown, (Lines{NotFound("bad")}));
    EXPECT_EQ(showClicks, 0);
}

TEST_F(CommandTest, HelpShowsTheLanguageInOnePlainBox) {
    dialogs.msgBoxAnswers = {vbOK};
    frm.mnuHelpHelp.PerformClick();
    ASSERT_EQ(dialogs.asked.size(), 1u);
    EXPECT_EQ(dialogs.asked[0].prompt,
              "Commandline:   ostrivane.exe  [options]\r\n\r\n"
              "\"group name\" - load and show the named group.\r\n"
              "/show - show the currently selected group.\r\n"
              "/stop - stop showing the currently selected group.\r\n"
              "/quit - unload the program.\r\n\r\n"
              "Note: if the program is already running, running again with a commandline will send these "
              "instructions to the running program.");
    EXPECT_EQ(dialogs.asked[0].flags, 0);
    EXPECT_EQ(dialogs.asked[0].title, "Ostrivane");
}

}  // namespace
}  // namespace ostrivane::testing
