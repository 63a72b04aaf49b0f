// Start-up and shutdown through the fakes: the single-instance guard, the
// order of the start, the settings of the form, the exit, stay on top.
#include <filesystem>
#include <tuple>
#include <utility>

#include "dialogs/message_box.hpp"
#include "editor/main_form_fixture.hpp"
#include "fakes/ordered_platform.hpp"

namespace ostrivane::testing {
namespace {

using namespace std::string_literals;
constexpr char kGuard[] = "AcquireInstance iOstrivanei";

// The data directory lies one level down, so that a start that touches
// nothing can be told from one that creates it.
class StartupTest : public MainFormTest {
protected:
    StartupTest() { UseDataDir(); }
    void WriteDefaults(const std::string& extraLines) {
        std::filesystem::create_directories(DataDir());
        MainFormTest::WriteDefaults("ScreenRes=1x1\r\nPC=here\r\n" + extraLines);
    }
};

// The same on fakes sharing one log, for the order of calls across them.
class StartupOrdered : public ::testing::Test {
protected:
    StartupOrdered() {
        settings.SaveSetting(kAppTitle, "Settings", "DataDir", dir.path().string());
        frm.settings = &settings;
        frm.DataFile = dir.file("ostrivane.ini");
    }
    TempDir dir;
    fakes::MemorySettingStore settings;
    Lines log;
    fakes::FakeDialogs dialogs{&log};
    fakes::FakeOverlay overlay{log};
    fakes::OrderedDesktop desktop{log};
    fakes::FakeInput input{log};
    MainForm frm{dialogs, overlay, desktop, input};
};

// "/quit" in any spelling ends the start; a second copy forwards its
// trimmed, lower-cased command line, or says sorry without one. Neither
// touches a file.
TEST_F(StartupTest, QuitOrASecondCopyEndsBeforeAnyFileIsTouched) {
    for (const char* line : {"/quit", "/QUIT  ", "  /Quit"}) EXPECT_FALSE(frm.Form_Load(line)) << line;
    EXPECT_TRUE(frm.InstanceGuard.owned && dialogs.asked.empty());
    desktop.instanceFree = false;
    dialogs.msgBoxAnswers = {vbOK};
    EXPECT_FALSE(frm.Form_Load("   \"My GROUP\" two  "));
    EXPECT_FALSE(frm.Form_Load("    "));
    EXPECT_EQ(desktop.calls, (Lines{kGuard, kGuard, kGuard, kGuard, "ForwardCommand iOstrivanei", kGuard}));
    EXPECT_EQ(desktop.forwarded, (Lines{"\"my group\" two"}));
    ASSERT_EQ(dialogs.asked.size(), 1u);
    EXPECT_EQ(dialogs.asked[0].prompt + "|" + std::to_string(dialogs.asked[0].flags) + "|" + dialogs.asked[0].title,
              "Sorry, another copy of this app is already running|64|Ostrivane");
    EXPECT_FALSE(std::filesystem::exists(DataDir()) || frm.Visible());
    EXPECT_EQ(frm.Caption(), "Ostrivane");
}

// The program's file names the data file, the help text and the message box.
TEST_F(StartupTest, FirstRunCreatesTheDataFileNamedAfterTheProgram) {
    struct Renamed {
        explicit Renamed(const char* name) { SetExecutableBaseName(name); }
        ~Renamed() { SetExecutableBaseName(kDefaultExecutableBaseName); }
    };
    {
        const Renamed running("");
        EXPECT_EQ(ExecutableBaseName(), "ostrivane_tests");
    }
    EXPECT_EQ(ProgramNameOfLink("/opt/marker-tool (deleted)") + ProgramNameOfLink(""), "marker-toolostrivane");
    const Renamed renamed("marker-tool");
    desktop.metrics[2] = 3200;
    ASSERT_TRUE(frm.Form_Load(""));
    EXPECT_EQ(frm.DataFile, DataDir() + "/marker-tool.ini");
    // The grab box starts unchecked; its default of 1 clicks it, and its click writes the key.
    EXPECT_TRUE(ReadDataFile().starts_with("[Defaults]\r\nDefaults=0,0,-2,-2,255,1,100,0,\r\nScreenRes=3200x1080\r\nPC="));
    EXPECT_TRUE(ReadDataFile().ends_with("\r\nAllowGrabMarkers=1\r\n"));
    dialogs.msgBoxAnswers = {vbOK};
    frm.mnuHelpHelp.PerformClick();
    EXPECT_TRUE(dialogs.asked.back().prompt.starts_with("Commandline:   marker-tool.exe  [options]\r\n"));
    std::string caption;
    desktop.whileModal = [&](form::Form& box) { caption = box.Caption(); };
    lib_ShowInfo(desktop, "x", 0);
    EXPECT_TRUE(caption.starts_with("marker-tool(")) << caption;
}

TEST_F(StartupOrdered, CaptionMetricsFormAndTrayInTheirOrder) {
    desktop.metrics[0] = -1280;
    desktop.metrics[1] = -24;
    ASSERT_TRUE(frm.Form_Load(""));
    EXPECT_EQ(log, (Lines{kGuard, "GetSystemMetrics 79", "GetSystemMetrics 78", "GetSystemMetrics 76",
                          "GetSystemMetrics 77", "SetTopmost off", "AddTrayIcon ", "SetKeyboardHook"}));
    EXPECT_EQ(frm.Caption(), "Ostrivane ");  // the trailing blank is what a second copy looks for
    EXPECT_EQ(std::tie(frm.screen.ScreenLeft, frm.screen.ScreenTop), std::make_tuple(-1280, -24));
    EXPECT_EQ(frm.txtHmax.Text() + "x" + frm.txtVmax.Text(), "1920x1080");
    EXPECT_EQ(frm.scrNudgeX.Min(), -1279);  // the nudge ranges follow the metrics
    EXPECT_TRUE(frm.Visible() && frm.TrayIconCreated && !frm.Showing);
    EXPECT_EQ(std::make_pair(frm.Left, frm.Top), std::make_pair(1000, 1000));
    EXPECT_EQ(frm.txtChangeModeHid.Text(), "txtChangeModeHid");  // no instruction without a command line
    desktop.metrics[3] = 32768;
    EXPECT_EQ(ErrorOf([&] { frm.ReadScreenMetrics(); }), kOverflow);
}

// Thickness, the three boxes, stay on top, proximity: as read from the file.
// The groups are listed, none is loaded.
TEST_F(StartupTest, SettingsReadFromTheDefaultsSectionAndGroupsListed) {
    const std::pair<const char*, std::vector<int>> rows[] = {
        {"", {1, 0, 0, 1, 0, 10}},
        {"AddMarkerThickness=3\r\nCopyCurrOnAdd=1\r\nFlashSelected=1\r\nAllowGrabMarkers=0\r\nStayOnTop=1\r\n"
         "GrabProximity=4\r\n",
         {3, 1, 1, 0, 1, 4}},
        {"StayOnTop=2\r\nFlashSelected=2\r\n", {1, 0, 2, 1, 0, 10}},
    };
    for (const auto& [lines, values] : rows) {
        SCOPED_TRACE(lines);
        WriteDefaults(lines + "[Zulu]\r\nDataFormat=1\r\n1=1,2,3,4,5,6,7,0,\r\n[Alpha]\r\n"s);
        fakes::FakeDesktop t;
        MainForm f(dialogs, overlay, t, input);
        f.settings = &settings;
        f.CurrentGroup = 3;
        ASSERT_TRUE(f.Form_Load(""));
        EXPECT_EQ((std::vector<int>{f.AddMarkerThickness, f.chkCopyCurrOnAdd.Value(), f.chkFlashSelected.Value(),
                                    f.chkAllowGrabMarkers.Value(), f.mnuStayOnTop.Checked(), f.GrabProximity}),
                  values);
        EXPECT_EQ(f.mnuFlashSelected.Checked(), values[2] != 0);
        EXPECT_EQ(t.calls[1], std::string("SetTopmost frmMain ") + (values[4] ? "on" : "off"));
        EXPECT_EQ(std::make_tuple(f.lstGroups.ListCount(), f.lstGroups.ListIndex(), f.CurrentGroup, f.store.MarkerCount),
                  std::make_tuple(2, -1, -1, 0));
        EXPECT_FALSE(f.Loading);
    }
    const std::tuple<const char*, int> bad[] = {
        {"CopyCurrOnAdd=yes\r\n", kTypeMismatch},
        {"AllowGrabMarkers=5\r\n", form::kInvalidPropertyValue},
        {"GrabProximity=40000\r\n", kOverflow},
    };
    for (const auto& [lines, error] : bad) {
        WriteDefaults(lines);
        EXPECT_EQ(ErrorOf([&] { frm.LoadSettings(); }), error) << lines;
    }
    frm.settings = nullptr;
    EXPECT_EQ(ErrorOf([&] { frm.LoadSettings(); }), 91);
}

TEST_F(StartupTest, GroupOnTheCommandLineIsLoadedAndShown) {
    WriteDefaults("[Alpha]\r\nDataFormat=1\r\n1=400,300,-2,-2,65280,3,60,0,\r\n");
    ASSERT_TRUE(frm.Form_Load("  \"ALPHA\" "));
    EXPECT_EQ(frm.txtChangeModeHid.Text(), "\"alpha\"");
    EXPECT_EQ(std::make_tuple(frm.CurrentGroup, frm.store.MarkerCount, frm.Showing), std::make_tuple(0, 1, true));
}

// The lines go before the question; the icon and the guard are given back
// only when held, and a step that fails does not stop the next.
TEST_F(StartupOrdered, ExitDestroysTheLinesAsksAndGivesBackWhatItHolds) {
    frm.Showing = frm.Dirty = true;
    frm.MouseMode = 2;
    frm.TrayIconCreated = frm.InstanceGuard.owned = true;
    dialogs.msgBoxAnswers = {vbNo};
    frm.mnuPopupExit.PerformClick();
    EXPECT_EQ(log, (Lines{"DestroyAllMarkerWindows",
                          "MsgBox There are unsaved changes. Save now (or they will be lost)?",
                          "UnregisterMarkerClasses", "RemoveTrayIcon", "ReleaseInstance", "EndProgram"}));
    EXPECT_TRUE(!frm.Showing && frm.Unloading && frm.MouseMode == 0 && !frm.InstanceGuard.owned);
    log.clear();
    frm.TrayIconCreated = false;
    frm.mnuExit.PerformClick();
    EXPECT_EQ(log, (Lines{"DestroyAllMarkerWindows", "UnregisterMarkerClasses", "EndProgram"}));
    log.clear();
    frm.TrayIconCreated = frm.InstanceGuard.owned = true;
    desktop.failing = {"RemoveTrayIcon", "ReleaseInstance"};
    frm.cmdExit.PerformClick();
    EXPECT_EQ(log, (Lines{"DestroyAllMarkerWindows", "UnregisterMarkerClasses", "RemoveTrayIcon", "ReleaseInstance",
                          "EndProgram"}));
}

TEST_F(StartupTest, StayOnTopFlipsSavesAndAppliesUnlessLoading) {
    WriteDefaults("");
    for (const char* expected : {"1", "0"}) {
        frm.mnuStayOnTop.PerformClick();
        EXPECT_EQ(frm.mnuStayOnTop.Checked(), expected[0] == '1');
        EXPECT_EQ(lib_ProfileGetString("Defaults", "StayOnTop", "absent", frm.DataFile), expected);
        EXPECT_EQ(desktop.calls.back(), std::string("SetTopmost frmMain ") + (expected[0] == '1' ? "on" : "off"));
        EXPECT_FALSE(frm.Loading);
    }
    frm.Loading = true;
    frm.ToggleStayOnTop(true);
    EXPECT_TRUE(!frm.mnuStayOnTop.Checked() && frm.Loading);
    EXPECT_EQ(desktop.calls.size(), 2u);
}

}  // namespace
}  // namespace ostrivane::testing
