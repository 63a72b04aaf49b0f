// A desktop writing to a log it shares with the dialog and overlay fakes, for
// tests of the order of calls across the three. A desktop call named in `failing` raises
// Overflow after it is logged.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "fakes/fake_platform.hpp"
#include "lib/errors.hpp"

namespace ostrivane::fakes {

class OrderedDesktop final : public Desktop {
public:
    explicit OrderedDesktop(Lines& log) : log_(log) {}
    std::int32_t metrics[4] = {0, 0, 1920, 1080};  // indexes 76 to 79: x, y, width, height
    std::set<std::string> failing;

    bool IsForegroundWindow(form::Form&) override { return Log("IsForegroundWindow"); }
    std::int32_t GetSystemMetrics(int index) override {
        Log("GetSystemMetrics " + std::to_string(index));
        return index >= 76 && index <= 79 ? metrics[index - 76] : 0;
    }
    void SetForegroundWindow(form::Form&) override { Log("SetForegroundWindow"); }
    void SetTopmost(form::Form&, bool on) override { Log(on ? "SetTopmost on" : "SetTopmost off"); }
    void ShowModal(form::Form& f) override { Log("ShowModal " + f.Name()); }
    void DoEvents() override { Log("DoEvents"); }
    void EndProgram() override { Log("EndProgram"); }
    void Beep() override { Log("Beep"); }
    bool SetClipboardText(const std::string&) override { return Log("SetClipboardText"); }
    void PrintForm(form::Form&) override { Log("PrintForm"); }
    void AddTrayIcon(const std::string& tip) override { Log("AddTrayIcon " + tip); }
    void RemoveTrayIcon() override { Log("RemoveTrayIcon"); }
    void ShowPopupMenu(form::MenuItem& menu) override { Log("ShowPopupMenu " + menu.Name()); }
    bool AcquireInstance(const std::string& name) override { return Log("AcquireInstance " + name); }
    void ReleaseInstance() override { Log("ReleaseInstance"); }
    void ForwardCommand(const std::string& name, const std::string& text) override {
        Log("ForwardCommand " + name + " " + text);
    }

private:
    bool Log(const std::string& call) {
        log_.push_back(call);
        if (failing.count(call.substr(0, call.find(' ')))) Raise(kOverflow);
        return true;
    }
    Lines& log_;
};

}  // namespace ostrivane::fakes
