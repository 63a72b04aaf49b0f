// Start-up and shutdown through the fakes: the single-instance guard, the
// order of the start, the settings of the form, the close box, the exit and
// the stay-on-top switch.
#include <filesystem>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "editor/main_form_fixture.hpp"
#include "fakes/memory_setting_store.hpp"
#include "fakes/ordered_platform.hpp"
#include "lib/profile.hpp"
#include "store/data_file.hpp"

namespace ostrivane::testing {
namespace {

using Lines = std::vector<std::string>;
constexpr char kGuard[] = "AcquireInstance iOstrivanei";

// The data directory lies one level down, so that a start that touches
// nothing can be told from one that creates it.
class StartupTest : public MainFormTest {
protected:
    StartupTest() {
        settings.SaveSetting(kAppTitle, "Settings", "DataDir", DataDir());
        frm.settings = &settings;
        frm.DataFile = DataDir() + "/ostrivane.ini";
    }
    std::string DataDir() const { return dir.file("data"); }
    void WriteDefaults(const std::string& extraLines) {
        std::filesystem::create_directories(DataDir());
        WriteDataFile("[Defaults]\r\nDefaults=0,0,-2,-2,255,1,100,0,\r\nScreenRes=1x1\r\nPC=here\r\n" + extraLines);
    }
    std::string Key(const char* key) const { return lib_ProfileGetString("Defaults", key, "absent", frm.DataFile); }
    fakes::MemorySettingStore settings;
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
    fakes::OrderedLog log;
    fakes::OrderedDialogs dialogs{log};
    fakes::OrderedOverlay overlay{log};
    fakes::OrderedDesktop desktop{log};
    MainForm frm{dialogs, overlay, desktop};
};

class StartupSecondCopy : public StartupTest {
protected:
    StartupSecondCopy() { desktop.instanceFree = false; }
};

TEST_F(StartupSecondCopy, ForwardsItsTrimmedLowerCasedCommandLineAndEnds) {
    EXPECT_FALSE(frm.Form_Load("   \"My GROUP\" two  "));
    EXPECT_EQ(desktop.calls, (Lines{kGuard, "ForwardCommand iOstrivanei"}));
    EXPECT_EQ(desktop.forwarded, (Lines{"\"my group\" two"}));
    EXPECT_TRUE(dialogs.asked.empty());
    EXPECT_FALSE(std::filesystem::exists(DataDir()));
    EXPECT_EQ(frm.Caption(), "Ostrivane");
}

TEST_F(StartupSecondCopy, WithoutCommandLineSaysSorryAndEnds) {
    dialogs.msgBoxAnswers = {vbOK};
    EXPECT_FALSE(frm.Form_Load("    "));
    ASSERT_EQ(dialogs.asked.size(), 1u);
    EXPECT_EQ(dialogs.asked[0].prompt, "Sorry, another copy of this app is already running");
    EXPECT_EQ(dialogs.asked[0].flags, 64);
    EXPECT_EQ(dialogs.asked[0].title, "Ostrivane");
    EXPECT_EQ(desktop.calls, (Lines{kGuard}));
    EXPECT_FALSE(std::filesystem::exists(DataDir()));
}

TEST_F(StartupTest, QuitInAnySpellingEndsBeforeAnyFileIsTouched) {
    for (const char* line : {"/quit", "/QUIT  ", "  /Quit"}) {
        EXPECT_FALSE(frm.Form_Load(line)) << line;
        EXPECT_TRUE(frm.InstanceGuard.owned);
    }
    EXPECT_EQ(desktop.calls, (Lines{kGuard, kGuard, kGuard}));
    EXPECT_TRUE(dialogs.asked.empty());
    EXPECT_FALSE(std::filesystem::exists(DataDir()));
    EXPECT_FALSE(frm.Visible());
}

TEST_F(StartupTest, FirstRunCreatesTheDataFile) {
    desktop.metrics[2] = 3200;
    ASSERT_TRUE(frm.Form_Load(""));
    EXPECT_EQ(frm.DataFile, DataDir() + "/ostrivane.ini");
    // The grab box starts unchecked on the form; its default of 1 clicks it,
    // and its click writes the key.
    EXPECT_TRUE(ReadDataFile().starts_with(
        "[Defaults]\r\nDefaults=0,0,-2,-2,255,1,100,0,\r\nScreenRes=3200x1080\r\nPC="))
        << ReadDataFile();
    EXPECT_TRUE(ReadDataFile().ends_with("\r\nAllowGrabMarkers=1\r\n"));
    EXPECT_EQ(frm.lstGroups.ListCount(), 0);
}

TEST_F(StartupOrdered, CaptionMetricsFormAndTrayInTheirOrder) {
    desktop.metrics[0] = -1280;
    desktop.metrics[1] = -24;
    ASSERT_TRUE(frm.Form_Load(""));
    EXPECT_EQ(log, (Lines{kGuard, "GetSystemMetrics 79", "GetSystemMetrics 78", "GetSystemMetrics 76",
                          "GetSystemMetrics 77", "SetTopmost off", "AddTrayIcon "}));
    EXPECT_EQ(frm.Caption(), "Ostrivane ");  // the trailing blank is what a second copy looks for
    EXPECT_EQ(frm.screen.ScreenLeft, -1280);
    EXPECT_EQ(frm.screen.ScreenTop, -24);
    EXPECT_EQ(frm.txtHmax.Text(), "1920");
    EXPECT_EQ(frm.txtVmax.Text(), "1080");
    EXPECT_EQ(frm.scrNudgeX.Min(), -1279);  // the nudge ranges follow the metrics
    EXPECT_TRUE(frm.Visible());
    EXPECT_EQ(std::make_pair(frm.Left, frm.Top), std::make_pair(1000, 1000));
    EXPECT_TRUE(frm.TrayIconCreated);
    EXPECT_FALSE(frm.Showing);
    EXPECT_EQ(frm.txtChangeModeHid.Text(), "txtChangeModeHid");  // no instruction without a command line

    desktop.metrics[3] = 32768;
    EXPECT_EQ(ErrorOf([&] { frm.ReadScreenMetrics(); }), kOverflow);
}

class StartupSettings : public StartupTest {};

TEST_F(StartupSettings, ReadFromTheDefaultsSection) {
    struct Row {
        const char* lines;
        int thickness, copy, flash, grab;
        bool stayOnTop;
        int proximity;
    };
    const Row rows[] = {
        {"", 1, 0, 0, 1, false, 10},
        {"AddMarkerThickness=3\r\nCopyCurrOnAdd=1\r\nFlashSelected=1\r\nAllowGrabMarkers=0\r\nStayOnTop=1\r\n"
         "GrabProximity=4\r\n",
         3, 1, 1, 0, true, 4},
        {"StayOnTop=2\r\nFlashSelected=2\r\n", 1, 0, 2, 1, false, 10},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.lines);
        WriteDefaults(row.lines);
        fakes::FakeDesktop t;
        MainForm f(dialogs, overlay, t);
        f.settings = &settings;
        ASSERT_TRUE(f.Form_Load(""));
        EXPECT_EQ(f.AddMarkerThickness, row.thickness);
        EXPECT_EQ(f.GrabProximity, row.proximity);
        EXPECT_EQ(f.chkCopyCurrOnAdd.Value(), row.copy);
        EXPECT_EQ(f.chkFlashSelected.Value(), row.flash);
        EXPECT_EQ(f.chkAllowGrabMarkers.Value(), row.grab);
        EXPECT_EQ(f.mnuFlashSelected.Checked(), row.flash != 0);
        EXPECT_EQ(f.mnuStayOnTop.Checked(), row.stayOnTop);
        EXPECT_EQ(t.calls[1], std::string("SetTopmost frmMain ") + (row.stayOnTop ? "on" : "off"));
    }
}

TEST_F(StartupSettings, GroupsListedNoneLoaded) {
    WriteDefaults("[Zulu]\r\nDataFormat=1\r\n1=1,2,3,4,5,6,7,0,\r\n[Alpha]\r\n");
    frm.CurrentGroup = 3;
    ASSERT_TRUE(frm.Form_Load(""));
    EXPECT_EQ(frm.lstGroups.ListCount(), 2);
    EXPECT_EQ(frm.lstGroups.ListIndex(), -1);
    EXPECT_EQ(frm.CurrentGroup, -1);
    EXPECT_EQ(frm.store.MarkerCount, 0);
    EXPECT_FALSE(frm.Loading);
}

TEST_F(StartupSettings, BadValuesAreUntrappedErrors) {
    const std::tuple<const char*, int> rows[] = {
        {"CopyCurrOnAdd=yes\r\n", kTypeMismatch},
        {"AllowGrabMarkers=5\r\n", form::kInvalidPropertyValue},
        {"GrabProximity=40000\r\n", kOverflow},
    };
    for (const auto& [lines, error] : rows) {
        WriteDefaults(lines);
        EXPECT_EQ(ErrorOf([&] { frm.LoadSettings(); }), error) << lines;
    }
    frm.settings = nullptr;
    EXPECT_EQ(ErrorOf([&] { frm.LoadSettings(); }), 91);
}

TEST_F(StartupSettings, ShowOnTheCommandLineWithNoGroupAsksForOne) {
    WriteDefaults("HideOnGo=1\r\n");
    ASSERT_TRUE(frm.Form_Load("/SHOW"));
    EXPECT_TRUE(frm.Showing);
    EXPECT_EQ(frm.lblMsg.Caption(), "Select a group or add a marker");
    EXPECT_TRUE(frm.Visible());
}

TEST_F(StartupSettings, GroupOnTheCommandLineIsLoadedAndShown) {
    WriteDefaults("[Alpha]\r\nDataFormat=1\r\n1=400,300,-2,-2,65280,3,60,0,\r\n");
    ASSERT_TRUE(frm.Form_Load("  \"ALPHA\" "));
    EXPECT_EQ(frm.txtChangeModeHid.Text(), "\"alpha\"");
    EXPECT_EQ(frm.CurrentGroup, 0);
    EXPECT_EQ(frm.store.MarkerCount, 1);
    EXPECT_TRUE(frm.Showing);
}

TEST_F(StartupTest, OnlyTheCloseBoxHidesToTheTrayAndCancels) {
    for (int mode = 0; mode <= 5; ++mode) {
        frm.SetVisible(true);
        frm.SetWindowState(form::WindowState::Normal);
        bool cancel = false;
        frm.Form_QueryUnload(cancel, mode);
        EXPECT_EQ(cancel, mode == 0) << mode;
        EXPECT_EQ(frm.Visible(), mode != 0) << mode;
        EXPECT_EQ(frm.GetWindowState() == form::WindowState::Minimized, mode == 0) << mode;
    }
    EXPECT_TRUE(overlay.calls.empty());
}

class Shutdown : public StartupOrdered {
protected:
    Shutdown() {
        frm.Showing = true;
        frm.MouseMode = 2;
        frm.TrayIconCreated = true;
        frm.InstanceGuard.owned = true;
    }
};

TEST_F(Shutdown, TrayExitDestroysTheLinesBeforeAskingThenEnds) {
    frm.Dirty = true;
    dialogs.msgBoxAnswers = {vbNo};
    frm.mnuPopupExit.PerformClick();
    EXPECT_EQ(log, (Lines{"DestroyAllMarkerWindows",
                          "MsgBox There are unsaved changes. Save now (or they will be lost)?",
                          "UnregisterMarkerClasses", "RemoveTrayIcon", "ReleaseInstance", "EndProgram"}));
    EXPECT_FALSE(frm.Showing);
    EXPECT_TRUE(frm.Unloading);
    EXPECT_EQ(frm.MouseMode, 0);
    EXPECT_FALSE(frm.InstanceGuard.owned);
}

TEST_F(Shutdown, NothingToGiveBackWithoutIconOrGuard) {
    frm.TrayIconCreated = false;
    frm.InstanceGuard.owned = false;
    frm.mnuExit.PerformClick();
    EXPECT_EQ(log, (Lines{"DestroyAllMarkerWindows", "UnregisterMarkerClasses", "EndProgram"}));
}

TEST_F(Shutdown, TailFailuresAreSkippedStepByStep) {
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
        EXPECT_EQ(Key("StayOnTop"), expected);
        EXPECT_EQ(desktop.calls.back(), std::string("SetTopmost frmMain ") + (expected[0] == '1' ? "on" : "off"));
        EXPECT_FALSE(frm.Loading);
    }
    frm.Loading = true;
    frm.ToggleStayOnTop(true);
    EXPECT_FALSE(frm.mnuStayOnTop.Checked());
    EXPECT_EQ(desktop.calls.size(), 2u);
    EXPECT_TRUE(frm.Loading);
}

}  // namespace
}  // namespace ostrivane::testing
