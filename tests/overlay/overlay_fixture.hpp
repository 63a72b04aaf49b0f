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

// The fake desktop with its yield written into the line windows' call list,
// where its place among the paints shows, and able to run events there.
class YieldingDesktop final : public Desktop {
public:
    YieldingDesktop(fakes::FakeDesktop& inner, fakes::FakeLineWindows& lines) : in_(inner), lines_(lines) {}
    std::function<void()> duringYield;

    void DoEvents() override {
        lines_.calls.push_back("DoEvents");
        in_.DoEvents();
        if (duringYield) duringYield();
    }
    std::int32_t GetSystemMetrics(int index) override { return in_.GetSystemMetrics(index); }
    void SetForegroundWindow(form::Form& f) override { in_.SetForegroundWindow(f); }
    void SetTopmost(form::Form& f, bool on) override { in_.SetTopmost(f, on); }
    void ShowModal(form::Form& f) override { in_.ShowModal(f); }
    void EndProgram() override { in_.EndProgram(); }
    void Beep() override { in_.Beep(); }
    bool SetClipboardText(const std::string& text) override { return in_.SetClipboardText(text); }
    void PrintForm(form::Form& f) override { in_.PrintForm(f); }
    void AddTrayIcon(const std::string& tip) override { in_.AddTrayIcon(tip); }
    void RemoveTrayIcon() override { in_.RemoveTrayIcon(); }
    void ShowPopupMenu(form::MenuItem& menu) override { in_.ShowPopupMenu(menu); }
    bool AcquireInstance(const std::string& name) override { return in_.AcquireInstance(name); }
    void ReleaseInstance() override { in_.ReleaseInstance(); }
    void ForwardCommand(const std::string& name, const std::string& text) override { in_.ForwardCommand(name, text); }

private:
    fakes::FakeDesktop& in_;
    fakes::FakeLineWindows& lines_;
};

class OverlayTest : public ::testing::Test {
protected:
    OverlayTest() : yielding(desktop, lines), windows(lines, yielding), frm(dialogs, windows, yielding) {
        windows.Attach(frm);
        frm.screen = {1920, 1080, 0, 0};
        frm.DataFile = dir.file("ostrivane.ini");
    }

    // Row 0 with the group defaults {Hlen, Vlen, Colour, Thickness, Opacity, Dotted}.
    void SetGroupDefaults(const std::array<std::int32_t, 6>& v) {
        for (int i = 0; i < 6; ++i) frm.store.Markers(0, kLook[i]) = v[static_cast<std::size_t>(i)];
    }
    // A marker written straight into the table: {Hpos, Vpos, then as above}.
    int PutMarker(const std::array<std::int32_t, 8>& v) {
        const int r = ++frm.store.MarkerCount;
        frm.store.Markers(r, Hpos) = v[0];
        frm.store.Markers(r, Vpos) = v[1];
        for (int i = 0; i < 6; ++i) frm.store.Markers(r, kLook[i]) = v[static_cast<std::size_t>(i) + 2];
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
    TempDir dir;
    fakes::FakeDialogs dialogs;
    fakes::FakeDesktop desktop;
    fakes::FakeLineWindows lines;
    YieldingDesktop yielding;
    MarkerWindows windows;
    MainForm frm;
};

}  // namespace ostrivane::testing
