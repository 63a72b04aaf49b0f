// Fakes of the platform: questions answered from a script and recorded,
// overlay calls recorded, and a manual clock for timers.
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "form/controls.hpp"
#include "form/form.hpp"
#include "platform/desktop.hpp"
#include "platform/dialogs.hpp"
#include "platform/line_windows.hpp"
#include "platform/overlay.hpp"

namespace ostrivane::fakes {

struct Question {
    enum Kind { kMsgBox, kInputBox, kChooseColor } kind;
    std::string prompt;
    int flags = 0;
    std::string title;
    std::string proposal;
    std::optional<TwipPoint> position;
    std::int32_t colour = 0;
};

class FakeDialogs final : public Dialogs {
public:
    // Scripted answers, taken in order; a question with no answer left fails the test.
    std::deque<int> msgBoxAnswers;
    std::deque<std::string> inputBoxAnswers;
    std::deque<std::int32_t> colourAnswers;
    std::vector<Question> asked;

    int MsgBox(const std::string& prompt, int flags, const std::string& title) override {
        asked.push_back({Question::kMsgBox, prompt, flags, title, {}, std::nullopt, 0});
        return Take(msgBoxAnswers, "message box: " + prompt);
    }
    std::string InputBox(const std::string& prompt, const std::string& title, const std::string& proposal,
                         std::optional<TwipPoint> position) override {
        asked.push_back({Question::kInputBox, prompt, 0, title, proposal, position, 0});
        return Take(inputBoxAnswers, "input box: " + prompt);
    }
    std::int32_t ChooseColor(std::int32_t colour) override {
        asked.push_back({Question::kChooseColor, {}, 0, {}, {}, std::nullopt, colour});
        return Take(colourAnswers, "colour chooser");
    }
    bool AllAnswersUsed() const { return msgBoxAnswers.empty() && inputBoxAnswers.empty() && colourAnswers.empty(); }

private:
    template <class T>
    static T Take(std::deque<T>& answers, const std::string& what) {
        if (answers.empty()) throw std::logic_error("unexpected question, no scripted answer: " + what);
        T answer = answers.front();
        answers.pop_front();
        return answer;
    }
};

class FakeOverlay final : public Overlay {
public:
    std::vector<std::string> calls;
    void ShowMarker(int row) override { calls.push_back("ShowMarker " + std::to_string(row)); }
    void ShowAllMarkers() override { calls.push_back("ShowAllMarkers"); }
    void DestroyMarkerWindows(int row) override { calls.push_back("DestroyMarkerWindows " + std::to_string(row)); }
    void DestroyAllMarkerWindows() override { calls.push_back("DestroyAllMarkerWindows"); }
    void UnregisterMarkerClasses() override { calls.push_back("UnregisterMarkerClasses"); }
};

// The desktop, recording what it was asked to do.
class FakeDesktop final : public Desktop {
public:
    std::int32_t metrics[4] = {0, 0, 1920, 1080};  // x, y, width, height of the virtual screen
    bool instanceFree = true;                       // no other copy holds the guard
    std::vector<std::string> calls;
    std::vector<std::string> forwarded;
    std::vector<std::string> clipboard;
    // What a modal form does while it is up; by default it closes at once.
    std::function<void(form::Form&)> whileModal;

    std::int32_t GetSystemMetrics(int index) override {
        switch (index) {
            case SM_XVIRTUALSCREEN: return metrics[0];
            case SM_YVIRTUALSCREEN: return metrics[1];
            case SM_CXVIRTUALSCREEN: return metrics[2];
            case SM_CYVIRTUALSCREEN: return metrics[3];
            default: return 0;
        }
    }
    void SetForegroundWindow(form::Form& f) override { calls.push_back("SetForegroundWindow " + f.Name()); }
    void SetTopmost(form::Form& f, bool on) override {
        calls.push_back(std::string("SetTopmost ") + f.Name() + (on ? " on" : " off"));
        f.SetVisible(true);
    }
    void ShowModal(form::Form& f) override {
        calls.push_back("ShowModal " + f.Name());
        f.SetVisible(true);
        if (whileModal) whileModal(f);
        f.SetVisible(false);
    }
    // What other events run at a yield; none by default.
    std::function<void()> duringDoEvents;
    void DoEvents() override {
        calls.push_back("DoEvents");
        if (duringDoEvents) duringDoEvents();
    }
    void EndProgram() override { calls.push_back("EndProgram"); }
    void Beep() override { calls.push_back("Beep"); }
    bool SetClipboardText(const std::string& text) override {
        clipboard.push_back(text);
        return true;
    }
    void PrintForm(form::Form& f) override { calls.push_back("PrintForm " + f.Name()); }
    void AddTrayIcon(const std::string& tip) override { calls.push_back("AddTrayIcon " + tip); }
    void RemoveTrayIcon() override { calls.push_back("RemoveTrayIcon"); }
    void ShowPopupMenu(form::MenuItem& menu) override { calls.push_back("ShowPopupMenu " + menu.Name()); }
    bool AcquireInstance(const std::string& name) override {
        calls.push_back("AcquireInstance " + name);
        return instanceFree;
    }
    void ReleaseInstance() override { calls.push_back("ReleaseInstance"); }
    void ForwardCommand(const std::string& name, const std::string& commandText) override {
        calls.push_back("ForwardCommand " + name);
        forwarded.push_back(commandText);
    }
};

// Line windows kept as records: class, rectangle, alpha, painted class.
class FakeLineWindows final : public LineWindows {
public:
    struct Window {
        std::string className;
        PixelRect rect;
        int alpha = -1;
        std::string paintedWith;
    };
    struct Class {
        std::int32_t colour;
        std::int32_t dotted;
    };
    std::map<std::string, Class> classes;
    std::map<WindowHandle, Window> windows;
    std::vector<std::string> calls;
    WindowHandle nextHandle = 100;

    void RegisterClass(const std::string& name, std::int32_t colour, std::int32_t dotted) override {
        classes[name] = {colour, dotted};
        calls.push_back("RegisterClass " + name);
    }
    void UnregisterClass(const std::string& name) override {
        classes.erase(name);
        calls.push_back("UnregisterClass " + name);
    }
    WindowHandle CreateLineWindow(const std::string& className, const PixelRect& rect) override {
        calls.push_back("Create " + className);
        if (!classes.count(className)) return 0;
        const WindowHandle h = nextHandle++;
        windows[h] = {className, rect, -1, {}};
        return h;
    }
    void SetAlpha(WindowHandle w, std::uint8_t alpha) override {
        calls.push_back("SetAlpha " + std::to_string(w) + " " + std::to_string(alpha));
        if (windows.count(w)) windows[w].alpha = alpha;
    }
    void MoveWindow(WindowHandle w, const PixelRect& rect) override {
        calls.push_back("Move " + std::to_string(w));
        if (windows.count(w)) windows[w].rect = rect;
    }
    void PaintWithClass(WindowHandle w, const std::string& className) override {
        calls.push_back("Paint " + std::to_string(w) + " " + className);
        if (windows.count(w)) windows[w].paintedWith = className;
    }
    void DestroyWindow(WindowHandle w) override {
        calls.push_back("Destroy " + std::to_string(w));
        windows.erase(w);
    }
};

// Fires due timer ticks in time order. A timer enabled at time t first
// ticks at t + Interval; disabling it forgets its schedule.
class ManualClock {
public:
    void Watch(form::Timer& timer) { timers_.push_back({&timer, -1}); }

    long Now() const { return now_; }

    // Advances the clock by ms, ticking each enabled timer whenever it is due.
    void Advance(long ms) {
        const long end = now_ + ms;
        for (;;) {
            Schedule();
            Entry* next = nullptr;
            for (Entry& e : timers_)
                if (e.due >= 0 && e.due <= end && (!next || e.due < next->due)) next = &e;
            if (!next) break;
            now_ = next->due;
            next->due = now_ + Interval(*next->timer);
            next->timer->Tick.Raise();
        }
        now_ = end;
        Schedule();
    }

private:
    struct Entry {
        form::Timer* timer;
        long due;
    };
    static long Interval(const form::Timer& t) { return t.Interval() > 0 ? t.Interval() : 1; }
    void Schedule() {
        for (Entry& e : timers_) {
            if (!e.timer->TimerEnabled())
                e.due = -1;
            else if (e.due < 0)
                e.due = now_ + Interval(*e.timer);
        }
    }
    std::vector<Entry> timers_;
    long now_ = 0;
};

}  // namespace ostrivane::fakes
