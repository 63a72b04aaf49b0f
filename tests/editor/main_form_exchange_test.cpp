// Export and import driven through the menus, with the file dialogs of a
// fake window system; checked on the files on disk, the list and the questions.
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <optional>

#include "dialogs/message_box.hpp"
#include "editor/main_form_fixture.hpp"
#include "fakes/fake_window_system.hpp"
#include "lib/path_basics.hpp"
#include "lib/window_helpers.hpp"
#include "support/file_size_limit.hpp"

namespace ostrivane::testing {
namespace {

using namespace std::string_literals;
constexpr char kInvalid[] = "This does not appear to be a valid file";

std::string Made(const std::string& res) { return "ScreenRes=" + res + "\r\nPC=elsewhere\r\n"; }
const std::string kBench =
    "[Bench]\r\nDataFormat=1\r\nDefaults=0,0,-1,-2,-1,-1,-1,1,\r\n1=512,540,-1,-2,255,1,100,0,\r\n"
    "2=513,-100,1024,-1,-1,-1,-1,-1,\r\nNotes=n\r\n";

class ExchangeTest : public MainFormTest {
protected:
    ExchangeTest() {
        lib_AttachBusyCursor(&ws);
        WriteDefaults("[Alpha]\r\nDataFormat=1\r\nDefaults=0,0,-1,-1,-1,-1,-1,-1,\r\n1=10,20,30,40,50,5,70,1,\r\n"
                      "Notes=\r\n[Beta_Tr]\r\n");
        frm.LoadGroupList();
    }
    ~ExchangeTest() override { lib_AttachBusyCursor(nullptr); }

    // An exported file with those Defaults lines, imported under the names
    // given, with or without room on the disk.
    void Import(const std::string& defaults, const std::string& sections, const Lines& names, bool full = false) {
        WriteBytes(exported, "[Defaults]\r\n" + defaults + sections);
        ws.fileAnswers = {exported};
        dialogs.asked.clear();
        dialogs.inputBoxAnswers.assign(names.begin(), names.end());
        dialogs.msgBoxAnswers = {vbOK};
        MessageText.clear();
        std::optional<FileSizeLimit> limit;
        if (full) limit.emplace();
        frm.mnuImportGroup.PerformClick();
    }

    fakes::FakeWindowSystem ws;
    const std::string exported = dir.file("Bench_Export.ini");
};

// The file holds the table as it stands; the data file and Dirty are left
// alone, and a file that is there keeps its other sections.
TEST_F(ExchangeTest, ExportWritesTheUnsavedTableBesideTheScreenAndComputer) {
    frm.mnuExportGroup.PerformClick();
    EXPECT_TRUE(ws.saveRequests.empty()) << "no group loaded";
    frm.lstGroups.SetListIndex(0);
    frm.lstMarkers.ClickItem(0);
    frm.txtHpos.SetText("555");
    frm.chkFlashSelected.SetValue(kCheckChecked);
    const std::string dataFile = ReadDataFile();
    WriteBytes(exported, "[Other]\r\nk=v\r\n");
    ws.fileAnswers = {exported};
    frm.mnuExportGroup.PerformClick();
    ASSERT_EQ(ws.saveRequests.size(), 1u);
    const FileDialogRequest& r = ws.saveRequests[0];
    EXPECT_EQ(r.title + "|" + r.file.substr(0, r.file.find('\0')) + "|" + r.defaultExtension + "|" + r.filter,
              "Save exported file|Alpha_Export|ini|INI (*.ini)\0*.ini\0"s);
    EXPECT_EQ(ReadBytes(exported), "[Other]\r\nk=v\r\n[Defaults]\r\nScreenRes=1920x1080\r\nPC=" + lib_GetComputerName() +
                                       "\r\n[Alpha]\r\nDataFormat=1\r\nDefaults=0,0,-1,-1,-1,-1,-1,-1,\r\n"
                                       "1=555,20,30,40,50,5,70,1,\r\nNotes=\r\n");
    EXPECT_EQ(ReadDataFile(), dataFile);
    EXPECT_TRUE(frm.Dirty && frm.timFlashSelected.TimerEnabled());
}

// From a screen of another size the plain copy keeps the foreign numbers and
// a "_Tr" copy, loaded last, has Int(v * screen / from): rounded down, the
// blank and "S" lengths included; the dotted default is lost on the way.
TEST_F(ExchangeTest, ImportMakesARescaledCopyRoundedDown) {
    const struct {
        ScreenMetrics screen;
        std::string res;
        Lines translated;  // Defaults and the two markers; empty: no copy
    } cases[] = {
        {{1280, 1024, 0, 0}, "1024x768",
         {"Defaults=0,0,-2,-3,-1,-1,-1,-1,", "1=640,720,-2,-3,255,1,100,0,", "2=641,-134,1280,-2,-1,-1,-1,-1,"}},
        {{1024, 768, 0, 0}, "1280x1024",
         {"Defaults=0,0,-1,-2,-1,-1,-1,-1,", "1=409,405,-1,-2,255,1,100,0,", "2=410,-75,819,-1,-1,-1,-1,-1,"}},
        {{1600, 900, -1600, -200}, "1920x1080",
         {"Defaults=0,0,-1,-2,-1,-1,-1,-1,", "1=426,450,-1,-2,255,1,100,0,", "2=427,-84,853,-1,-1,-1,-1,-1,"}},
        {{1920, 1080, 0, 0}, "1920x1080", {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.res);
        frm.screen = c.screen;
        const std::string size = std::to_string(c.screen.ScreenWidth) + "x" + std::to_string(c.screen.ScreenHeight);
        const std::string name = "G" + size, tr = name + "_Tr";
        Import(Made(c.res), kBench, {name});
        EXPECT_FALSE(std::filesystem::exists(exported));
        EXPECT_EQ(Section(name), (Lines{"DataFormat=1", "Defaults=0,0,-1,-2,-1,-1,-1,1,",
                                        "1=512,540,-1,-2,255,1,100,0,", "2=513,-100,1024,-1,-1,-1,-1,-1,", "Notes=n"}));
        Lines expected = c.translated;
        if (!expected.empty()) expected.insert(expected.begin(), "DataFormat=1"), expected.push_back("Notes=n");
        EXPECT_EQ(Section(tr), expected);
        EXPECT_EQ(Groups().back() + "|" + frm.lstGroups.List(frm.CurrentGroup) + "|" + std::to_string(frm.Dirty),
                  expected.empty() ? name + "|" + name + "|0" : tr + "|" + tr + "|0");
        EXPECT_EQ(dialogs.msgBoxAnswers.empty() ? std::to_string(dialogs.asked.back().flags) + dialogs.asked.back().prompt
                                                : "none",
                  expected.empty() ? "none"
                                   : "64The imported group is from a PC with screen resolution " + c.res +
                                         " whereas this PC has a screen resolution of " + size +
                                         ". To assist with lining up on this PC, an extra group (" + tr +
                                         ") has been created with line start positions and lengths adjusted.");
    }
    EXPECT_EQ(ws.openRequests.at(0).title + "|" + ws.openRequests[0].defaultExtension, "Select exported file|ini");
}

// Each group section is asked about, a name the file would take for a listed
// group's, or for its "_Tr", is asked again; the last section comes in.
TEST_F(ExchangeTest, ImportAsksPerSectionAgainOnClashesAndTakesTheLast) {
    Import(Made("1920x1080"), "[First]\r\nNotes=one\r\n" + kBench, {"One", "alpha", "beta_tr", "BETA", "Gamma"});
    Lines proposals;
    for (const auto& q : dialogs.asked) proposals.push_back(q.prompt + ": " + q.proposal);
    EXPECT_EQ(proposals, (Lines{"Name for imported group: First", "Name for imported group: Bench",
                                "Name for imported group: alpha", "Name for imported group: beta_tr",
                                "Name for imported group: BETA"}));
    EXPECT_EQ(Groups(), (Lines{"Alpha", "Beta_Tr", "Gamma"}));
    EXPECT_EQ(Section("Gamma").back() + std::to_string(Section("One").size()), "Notes=n0");
}

// Whatever stops an import before it lists a group leaves the file and the
// list; a data file that cannot take the copy is named in a warning.
TEST_F(ExchangeTest, ImportThatStopsKeepsTheFile) {
    const std::string valid = Made("1024x768"), invalid = "2   5" + std::string(kInvalid);
    const struct {
        std::string defaults;
        Lines names;
        std::string warning;  // "full": the write fails
    } cases[] = {
        {"ScreenRes=1024x768\r\n", {}, invalid}, {"PC=elsewhere\r\n", {}, invalid},
        {valid, {""}, ""}, {valid, {"Two", ""}, ""}, {valid, {"Gamma", "Gamma"}, "full"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.defaults + c.warning);
        Import(c.defaults, kBench + kBench, c.names, c.warning == "full");
        EXPECT_EQ(MessageText, c.warning != "full" ? c.warning
                                                   : "2   0The group \"Gamma\" was not imported: the data file " +
                                                         frm.DataFile + " could not be written (" + std::strerror(EFBIG) + ").");
        EXPECT_TRUE(std::filesystem::exists(exported));
        EXPECT_EQ(Groups(), (Lines{"Alpha", "Beta_Tr"}));
    }
    ws.fileAnswers = {""};
    MessageText.clear();
    frm.mnuImportGroup.PerformClick();  // cancelled: no file is read
    EXPECT_EQ(MessageText, "");
}

}  // namespace
}  // namespace ostrivane::testing
