// The real marker windows on fake line windows, attached to a main form on
// the fake platform.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "editor/main_form.hpp"
#include "fakes/fake_platform.hpp"
#include "overlay/marker_windows.hpp"
#include "support/run_time_error.hpp"
#include "support/temp_dir.hpp"

namespace ostrivane::testing {

using Lines = std::vector<std::string>;

class OverlayTest : public ::testing::Test {
protected:
    OverlayTest() : windows(lines, desktop), frm(dialogs, windows, desktop) {
        windows.Attach(frm);
        frm.screen = {1920, 1080, 0, 0};
        frm.DataFile = dir.file("ostrivane.ini");
        // The yield stands among the paints, and other events may run there.
        desktop.duringDoEvents = [this] {
            lines.calls.push_back("DoEvents");
            if (duringYield) duringYield();
        };
    }

    // Row 0 with the group defaults {Hlen, Vlen, Colour, Thickness, Opacity, Dotted}.
    void SetGroupDefaults(const std::array<std::int32_t, 6>& v) {
        for (std::size_t i = 0; i < 6; ++i) frm.store.Markers(0, kLook[i]) = v[i];
    }
    // A marker written straight into the table: {Hpos, Vpos, then as above}.
    int PutMarker(const std::array<std::int32_t, 8>& v) {
        const int r = ++frm.store.MarkerCount;
        frm.store.Markers(r, Hpos) = v[0];
        frm.store.Markers(r, Vpos) = v[1];
        for (std::size_t i = 0; i < 6; ++i) frm.store.Markers(r, kLook[i]) = v[i + 2];
        return r;
    }
    void WriteDefaults(const std::string& lines_of_section) {
        std::ofstream(frm.DataFile, std::ios::binary) << "[Defaults]\r\nDefaults=0,0,-2,-2,255,1,100,0,\r\n"
                                                      << lines_of_section;
    }
    std::int32_t Cell(int row, int column) const { return frm.store.Markers(row, column); }
    const fakes::FakeLineWindows::Window& WindowOf(int row, int column) const {
        return lines.windows.at(Cell(row, column));
    }

    static constexpr int kLook[6] = {Hlen, Vlen, Colour, Thickness, Opacity, Dotted};
    std::function<void()> duringYield;
    TempDir dir;
    fakes::FakeDialogs dialogs;
    fakes::FakeDesktop desktop;
    fakes::FakeLineWindows lines;
    MarkerWindows windows;
    MainForm frm;
};

}  // namespace ostrivane::testing
