// A desktop of windows held in a table: a tree in stacking order, each with
// a title, a process and a rectangle. Moves, show commands, the busy cursor
// and the file dialogs are recorded; dialog answers are scripted.
#pragma once

#include <algorithm>
#include <deque>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/window_system.hpp"

namespace ostrivane::fakes {

class FakeWindowSystem final : public WindowSystem {
public:
    struct Window {
        WindowHandle parent = 0;
        std::string title;
        std::int32_t processId = 0;
        Rectangle rect;  // screen coordinates
        std::vector<WindowHandle> children;
    };
    struct Move {
        WindowHandle window;
        std::int32_t left, top, width, height;
        bool operator==(const Move&) const = default;
    };

    static constexpr WindowHandle kDesktop = 1;

    FakeWindowSystem() { windows[kDesktop].rect = {0, 0, 1920, 1080}; }

    // Adds a window as the last child of parent (the desktop for 0).
    WindowHandle Add(WindowHandle parent, std::string title, Rectangle rect = {}, std::int32_t processId = 0) {
        const WindowHandle handle = next_++;
        const WindowHandle owner = parent == 0 ? kDesktop : parent;
        windows[handle] = Window{parent, std::move(title), processId, rect, {}};
        windows.at(owner).children.push_back(handle);
        return handle;
    }

    std::map<WindowHandle, Window> windows;
    Rectangle workArea{0, 0, 1920, 1040};
    WindowHandle foreground = 0;
    std::vector<Move> moves;
    std::vector<bool> busyCursor;
    std::vector<FileDialogRequest> openRequests;
    std::vector<FileDialogRequest> saveRequests;
    std::deque<std::string> fileAnswers;

    Rectangle GetWorkArea() override { return workArea; }
    Rectangle GetWindowRect(WindowHandle window) override { return Find(window).rect; }
    Rectangle GetClientRect(WindowHandle window) override {
        const Rectangle& r = Find(window).rect;
        return {0, 0, r.Right - r.Left, r.Bottom - r.Top};
    }
    WindowHandle GetParent(WindowHandle window) override { return Find(window).parent; }
    void MoveWindow(WindowHandle window, std::int32_t left, std::int32_t top, std::int32_t width,
                    std::int32_t height) override {
        moves.push_back({window, left, top, width, height});
    }
    std::string GetWindowText(WindowHandle window) override {
        const auto it = windows.find(window);
        return it == windows.end() ? std::string() : it->second.title;
    }
    WindowHandle GetForegroundWindow() override { return foreground; }
    WindowHandle GetDesktopWindow() override { return kDesktop; }
    WindowHandle GetWindow(WindowHandle window, int command) override {
        if (command == GW_CHILD) {
            const auto& children = Find(window).children;
            return children.empty() ? 0 : children.front();
        }
        if (command != GW_HWNDNEXT) throw std::logic_error("GetWindow command");
        const Window& w = Find(window);
        const auto& siblings = Find(w.parent == 0 ? kDesktop : w.parent).children;
        auto it = std::find(siblings.begin(), siblings.end(), window);
        return ++it == siblings.end() ? 0 : *it;
    }
    std::int32_t GetWindowProcessId(WindowHandle window) override { return Find(window).processId; }
    void ShowWindow(WindowHandle, int) override {}
    void SetBusyCursor(bool on) override { busyCursor.push_back(on); }
    std::string GetOpenFileName(const FileDialogRequest& request) override {
        openRequests.push_back(request);
        return Answer();
    }
    std::string GetSaveFileName(const FileDialogRequest& request) override {
        saveRequests.push_back(request);
        return Answer();
    }
    WindowHandle FormHandle(form::Form&) override { return 0; }

private:
    const Window& Find(WindowHandle window) const {
        const auto it = windows.find(window);
        if (it == windows.end()) throw std::logic_error("no window " + std::to_string(window));
        return it->second;
    }
    std::string Answer() {
        if (fileAnswers.empty()) throw std::logic_error("file dialog without a scripted answer");
        std::string answer = std::move(fileAnswers.front());
        fileAnswers.pop_front();
        return answer;
    }

    WindowHandle next_ = 100;
};

}  // namespace ostrivane::fakes
