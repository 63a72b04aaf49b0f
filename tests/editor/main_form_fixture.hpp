// A main form on the fake platform, with a data file of its own.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

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
    void WriteDataFile(const std::string& text) {
        std::ofstream out(frm.DataFile, std::ios::binary);
        out << text;
    }
    std::string ReadDataFile() const {
        std::ifstream in(frm.DataFile, std::ios::binary);
        std::stringstream s;
        s << in.rdbuf();
        return s.str();
    }

    TempDir dir;
    fakes::FakeDialogs dialogs;
    fakes::FakeOverlay overlay;
    fakes::FakeDesktop desktop;
    fakes::FakeInput input;
    MainForm frm;
};

}  // namespace ostrivane::testing
