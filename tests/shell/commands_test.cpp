// The command language of the hidden box txtChangeModeHid, and the help
// text that explains it. The clicks of cmdShow and cmdExit are counted here;
// what they do is tested with show/stop and shutdown.

#include "dialogs/about_form.hpp"
#include "dialogs/message_box.hpp"
#include "shell/deployment.hpp"
#include "store/data_file.hpp"
#include "editor/main_form_fixture.hpp"

namespace ostrivane::testing {
namespace {

class CommandTest : public MainFormTest {
protected:
    CommandTest() {
        // Bad fails to load at its second marker.
        WriteDefaults("[Alpha]\r\nDataFormat=1\r\n1=400,300,-2,-2,65280,3,60,0,\r\n2=10,20,30,40,50,5,70,1,\r\n"
                      "[Two Words]\r\n[Beta]\r\n[/show]\r\n[]\r\n[Bad]\r\nDataFormat=1\r\n1=1,2,3,4,5,1,7,0,\r\n2=x,2,3,4,5,1,7,0,\r\n");
        frm.LoadGroupList();
        frm.cmdShow.Click.Connect([this] { ++showClicks; });
        frm.cmdExit.Click.Connect([this] { ++exitClicks; });
        desktop.whileModal = [this](form::Form&) { infoShown.push_back(MessageText); };
    }
    // As a second start delivers it: trimmed and lower-cased by the sender.
    void Send(const std::string& text) { frm.txtChangeModeHid.SetText(text); }
    int showClicks = 0;
    int exitClicks = 0;
    Lines infoShown;
};

struct Command {
    const char* text;
    bool showing;
    int group, shows, exits;  // group: the list index after it, -1 none
    bool notFound;
};

class Commands : public CommandTest, public ::testing::WithParamInterface<Command> {};

// Keywords are exact, act only when they change the state and hide a group
// of their name; anything else is one group name, bare or in quotes, blanks
// and all, found whatever its case, loaded and shown. A group that fails to
// load counts as not found and stays partly loaded. Not found is reported
// with the text as received and changes nothing.
TEST_P(Commands, ActOnTheStateOrTheNamedGroup) {
    const Command& c = GetParam();
    frm.Showing = c.showing;
    overlay.calls.clear();
    Send(c.text);
    EXPECT_EQ(frm.lstGroups.ListIndex(), c.group);
    EXPECT_EQ(showClicks, c.shows);
    EXPECT_EQ(exitClicks, c.exits);
    EXPECT_EQ(infoShown, c.notFound ? Lines{"3   0Group \"" + std::string(c.text) + "\" requested on commandline was not found"}
                                    : Lines{});
    EXPECT_TRUE(!c.notFound || c.group != -1 || (frm.Showing == c.showing && overlay.calls.empty()));
    if (c.group == 0 || c.group == 5) {
        EXPECT_EQ(frm.store.MarkerCount, c.group == 0 ? 2 : 1);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Commands,
    ::testing::Values(Command{"/show", false, -1, 1, 0, false}, Command{"/stop", true, -1, 1, 0, false},
                      Command{"/show", true, -1, 0, 0, false}, Command{"/stop", false, -1, 0, 0, false},
                      Command{"/quit", true, -1, 0, 1, false}, Command{"/SHOW", false, 3, 1, 0, false},
                      Command{" /stop", true, -1, 0, 0, true}, Command{"\"alpha\"", false, 0, 1, 0, false},
                      Command{"two words", false, 1, 1, 0, false}, Command{"\"  beta \"", false, 2, 1, 0, false},
                      Command{"  alpha", false, 0, 1, 0, false}, Command{"two  words", false, -1, 0, 0, true},
                      Command{"\"abc\"", true, -1, 0, 0, true}, Command{"\" \"", false, 4, 1, 0, false},
                      Command{"bad", false, 5, 0, 0, true}, Command{"beta", true, 2, 0, 0, false}));

TEST_F(CommandTest, HelpShowsTheLanguageInOnePlainBox) {
    dialogs.msgBoxAnswers = {vbOK};
    frm.mnuHelpHelp.PerformClick();
    ASSERT_EQ(dialogs.asked.size(), 1u);
    EXPECT_NE(dialogs.asked[0].prompt.find("/quit - unload the program."), std::string::npos);
    EXPECT_EQ(dialogs.asked[0].flags, 0);
    EXPECT_EQ(dialogs.asked[0].title, "Ostrivane");
}

// The program's own name, version, addresses and icon, over the main form.
TEST_F(CommandTest, AboutShowsTheProgramOverTheMainForm) {
    Lines shown;
    desktop.whileModal = [&](form::Form& f) {
        auto& a = dynamic_cast<AboutForm&>(f);
        shown = {a.Caption(), a.lblVersion.Caption(), a.lblCopyright.Caption().substr(15), a.hlkHome.Caption(),
                 a.hlkEmail.Address(), a.imgIcon.Picture(), a.CentreOwner == &frm ? "over frmMain" : "elsewhere"};
    };
    frm.mnuHelpAbout.PerformClick();
    const std::string name = ExecutableBaseName();
    EXPECT_EQ(shown, (Lines{"About " + name, name + "  v" + VersionText(), " Tarnwick", HomePage(),
                            "mailto:" + SupportEmail(), frm.Icon, "over frmMain"}));
    EXPECT_FALSE(frm.Icon.empty());
}

}  // namespace
}  // namespace ostrivane::testing
