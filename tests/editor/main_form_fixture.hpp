// A main form on the fake platform, with a data file of its own.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "editor/main_form.hpp"
#include "fakes/fake_platform.hpp"
#include "lib/errors.hpp"
#include "support/run_time_error.hpp"
#include "support/temp_dir.hpp"

namespace ostrivane::testing {

class MainFormTest : public ::testing::Test {
protected:
    MainFormTest() : frm(dialogs, overlay, desktop, input) {
        frm.screen = {1920, 1080, 0, 0};
        frm.DataFile = dir.file("ostrivane.ini");
    }

    // Replaces the data file's text (CR LF is up to the caller).
    void WriteDataFile(const std::string& text) { WriteBytes(frm.DataFile, text); }
    std::string ReadDataFile() const { return ReadBytes(frm.DataFile); }
    // A marker's cells {Hpos, Vpos, Hlen, Vlen, Colour, Thickness, Opacity, Dotted}.
    std::vector<std::int32_t> Marker(int row) const {
        std::vector<std::int32_t> cells;
        for (int c : {Hpos, Vpos, Hlen, Vlen, Colour, Thickness, Opacity, Dotted}) cells.push_back(frm.store.Markers(row, c));
        return cells;
    }

    TempDir dir;
    fakes::FakeDialogs dialogs;
    fakes::FakeOverlay overlay;
    fakes::FakeDesktop desktop;
    fakes::FakeInput input;
    MainForm frm;
};

}  // namespace ostrivane::testing
