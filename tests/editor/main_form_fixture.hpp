// A main form on the fake platform, with a data file of its own. The one
// include a main-form test needs: gtest, the form, the fakes, run-time errors.
#pragma once

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "editor/main_form.hpp"
#include "fakes/fake_platform.hpp"
#include "fakes/memory_setting_store.hpp"
#include "lib/errors.hpp"
#include "lib/profile.hpp"
#include "overlay/marker_windows.hpp"
#include "store/data_file.hpp"
#include "support/run_time_error.hpp"
#include "support/temp_dir.hpp"

namespace ostrivane::testing {

class MainFormTest : public ::testing::Test {
protected:
    // The form draws through the recording overlay, or with realOverlay
    // through the marker windows on fake line windows.
    explicit MainFormTest(bool realOverlay = false)
        : frm(dialogs, realOverlay ? static_cast<Overlay&>(markerWindows) : overlay, desktop, input) {
        if (realOverlay) markerWindows.Attach(frm);
        frm.screen = {1920, 1080, 0, 0};
        frm.DataFile = dir.file("ostrivane.ini");
    }

    // The data file in a directory one level down, named in the settings the form reads.
    void UseDataDir() {
        settings.SaveSetting(kAppTitle, "Settings", "DataDir", DataDir());
        frm.settings = &settings;
        frm.DataFile = DataDir() + "/ostrivane.ini";
    }
    std::string DataDir() const { return dir.file("data"); }
    std::int32_t Cell(int row, int column) const { return frm.store.Markers(row, column); }
    // Replaces the data file's text (CR LF is up to the caller).
    void WriteDataFile(const std::string& text) { WriteBytes(frm.DataFile, text); }
    // The settings section with the global defaults, then the given text.
    void WriteDefaults(const std::string& rest = "") { WriteDataFile(kDefaultsHead + rest); }
    std::string ReadDataFile() const { return ReadBytes(frm.DataFile); }
    // A marker's cells {Hpos, Vpos, Hlen, Vlen, Colour, Thickness, Opacity, Dotted}.
    std::vector<std::int32_t> Marker(int row) const {
        std::vector<std::int32_t> cells;
        for (int c : {Hpos, Vpos, Hlen, Vlen, Colour, Thickness, Opacity, Dotted}) cells.push_back(frm.store.Markers(row, c));
        return cells;
    }
    // The text's pieces between delimiters; with headers only the names of its "[...]" lines.
    static Lines Split(const std::string& text, char delimiter, bool headers = false) {
        Lines lines;
        std::istringstream in(text);
        for (std::string line; std::getline(in, line, delimiter);)
            if (!headers || line.starts_with("[")) lines.push_back(headers ? line.substr(1, line.find(']') - 1) : line);
        return lines;
    }
    Lines Section(const std::string& name) const { return Split(lib_ProfileGetSection(name, frm.DataFile), '\0'); }
    Lines Headers() const { return Split(ReadDataFile(), '\n', true); }
    // "X" for each selected marker item, "." for the others.
    std::string Selection() const {
        std::string s;
        for (int i = 0; i < frm.lstMarkers.ListCount(); ++i) s += frm.lstMarkers.Selected(i) ? 'X' : '.';
        return s;
    }
    Lines Groups() const {
        Lines items;
        for (int i = 0; i < frm.lstGroups.ListCount(); ++i) items.push_back(frm.lstGroups.List(i));
        return items;
    }

    static constexpr char kDefaultsHead[] = "[Defaults]\r\nDefaults=0,0,-2,-2,255,1,100,0,\r\n";
    TempDir dir;
    fakes::FakeDialogs dialogs;
    fakes::FakeOverlay overlay;
    fakes::FakeDesktop desktop;
    fakes::FakeInput input;
    fakes::MemorySettingStore settings;
    fakes::FakeLineWindows lineWindows;
    MarkerWindows markerWindows{lineWindows, desktop};
    MainForm frm;
};

}  // namespace ostrivane::testing
