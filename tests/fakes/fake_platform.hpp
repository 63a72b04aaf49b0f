// Fakes of the platform: questions answered from a script and recorded,
// overlay calls and line windows recorded. With them come the form model,
// the platform interfaces, std::string, std::vector and std::function.
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
#include "platform/input.hpp"
#include "platform/line_windows.hpp"
#include "platform/overlay.hpp"

namespace ostrivane {

// What a fake records: one line per call.
using Lines = std::vector<std::string>;

}  // namespace ostrivane

namespace ostrivane::fakes {

struct Question {
    std::string prompt;
    int flags = 0;
    std::string title;
    std::string proposal;
    std::optional<TwipPoint> position;
    std::int32_t colour = 0;
};

// Message boxes are also noted in a log shared with other fakes, if given.
class FakeDialogs final : public Dialogs {
public:
    explicit FakeDialogs(Lines* log = nullptr) : log_(log) {}
    // Scripted answers, taken in order; a question with no answer left fails the test.
    std::deque<int> msgBoxAnswers;
    std::deque<std::string> inputBoxAnswers;
    std::deque<std::int32_t> colourAnswers;
    std::vector<Question> asked;

    int MsgBox(const std::string& prompt, int flags, const std::string& title) override {
        asked.push_back({prompt, flags, title, {}, std::nullopt, 0});
        if (log_) log_->push_back("MsgBox " + prompt);
        return Take(msgBoxAnswers, "message box: " + prompt);
    }
    std::string InputBox(const std::string& prompt, const std::string& title, const std::string& proposal,
                         std::optional<TwipPoint> position) override {
        asked.push_back({prompt, 0, title, proposal, position, 0});
        return Take(inputBoxAnswers, "input box: " + prompt);
    }
    std::int32_t ChooseColor(std::int32_t colour) override {
        asked.push_back({{}, 0, {}, {}, std::nullopt, colour});
        return Take(colourAnswers, "colour chooser");
    }

private:
    Lines* log_;
    template <class T>
    static T Take(std::deque<T>& answers, const std::string& what) {
        if (answers.empty()) throw std::logic_error("unexpected question, no scripted answer: " + what);
        T answer = answers.front();
        answers.pop_front();
        return answer;
    }
};

// Records into its own list of calls or into a log shared with other fakes.
class FakeOverlay final : public Overlay {
public:
    FakeOverlay() = default;
    explicit FakeOverlay(std::vector<std::string>& log) : calls(log) {}
    std::vector<std::string> ownCalls;
    std::vector<std::string>& calls = ownCalls;
    void ShowMarker(int row) override { calls.push_back("ShowMarker " + std::to_string(row)); }
    void ShowAllMarkers() override { calls.push_back("ShowAllMarkers"); }
    void MakeMarkerInvisible(int row) override { calls.push_back("MakeMarkerInvisible " + std::to_string(row)); }
    void DestroyMarkerWindows(int row) override { calls.push_back("DestroyMarkerWindows " + std::to_string(row)); }
    void CreateAddLines(std::int32_t colour, std::int32_t dotted, std::uint8_t alpha) override {
        calls.push_back("CreateAddLines " + std::to_string(colour) + " " + std::to_string(dotted) + " " +
                        std::to_string(alpha));
    }
    void MoveAddLines(std::int32_t x, std::int32_t y, std::int16_t thickness) override {
        calls.push_back("MoveAddLines " + std::to_string(x) + " " + std::to_string(y) + " " +
                        std::to_string(thickness));
    }
    void DestroyAddLines() override { calls.push_back("DestroyAddLines"); }
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

    std::int32_t primary[2] = {1600, 900};          // width, height of the primary screen
    std::int32_t GetSystemMetrics(int index) override {
        if (index == SM_CXSCREEN || index == SM_CYSCREEN) return primary[index];
        return index >= SM_XVIRTUALSCREEN && index <= SM_CYVIRTUALSCREEN ? metrics[index - SM_XVIRTUALSCREEN] : 0;
    }
    bool foreground = false;  // whether a form's window is in front
    bool IsForegroundWindow(form::Form&) override { return foreground; }
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
    WindowHandle CreateLineWindow(const std::string& className, const PixelRect& rect, LineStyle style) override {
        calls.push_back((style == LineStyle::Plain ? "CreatePlain " : "Create ") + className);
        if (!classes.count(className)) return 0;
        const WindowHandle h = nextHandle++;
        windows[h] = {className, rect, -1};
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
    }
    void DestroyWindow(WindowHandle w) override {
        calls.push_back("Destroy " + std::to_string(w));
        windows.erase(w);
    }
};

// The keyboard and the mouse: hooks kept for the test to call, a cursor
// the test moves, the display counter and the pointer shape.
class FakeInput final : public Input {
public:
    FakeInput() = default;
    explicit FakeInput(std::vector<std::string>& log) : calls(log) {}
    KeyboardProc keyboard;
    MouseProc mouse;
    bool hooksFail = false;
    PixelPoint cursor;
    int displayCounter = 0;
    int pointer = vbDefault;
    std::vector<std::string> ownCalls;
    std::vector<std::string>& calls = ownCalls;

    HookHandle SetKeyboardHook(KeyboardProc proc) override {
        calls.push_back("SetKeyboardHook");
        if (hooksFail) return 0;
        keyboard = std::move(proc);
        return 1;
    }
    HookHandle SetMouseHook(MouseProc proc) override {
        calls.push_back("SetMouseHook");
        if (hooksFail) return 0;
        mouse = std::move(proc);
        return 2;
    }
    void Unhook(HookHandle hook) override {
        calls.push_back("Unhook " + std::to_string(hook));
        if (hook == 1) keyboard = nullptr;
        if (hook == 2) mouse = nullptr;
    }
    PixelPoint GetCursorPos() override { return cursor; }
    int ShowCursor(bool show) override { return displayCounter += show ? 1 : -1; }
    void SetMousePointer(int p) override { pointer = p; }
};

}  // namespace ostrivane::fakes
