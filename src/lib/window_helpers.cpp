#include "lib/window_helpers.hpp"

#include <cstddef>

#include "lib/error_handler.hpp"
#include "lib/errors.hpp"
#include "lib/numbers.hpp"
#include "lib/profile.hpp"
#include "lib/text.hpp"

namespace ostrivane {

namespace {

constexpr char kSelectFindInListSource[] = "Vexil.lib_SelectFindInList";
// What an item's data holds when nobody set it.
constexpr double kUnsetItemData = 0.0;

int FindItem(const form::ListBox& list, std::string_view value, bool byItemData) {
    for (int i = 0; i < list.ListCount(); ++i) {
        // A value that is no number cannot be compared with item data.
        const bool match = byItemData ? TextToNumber(value) == kUnsetItemData : EqualsNoCase(list.List(i), value);
        if (match) return i;
    }
    return -1;
}

}  // namespace

bool lib_SelectFindInList(form::ListBox& list, std::string_view value, bool byItemData) {
    const TracedFrame frame(kSelectFindInListSource, TracedFrame::KeepCursor);
    int index = -1;
    try {
        index = FindItem(list, value, byItemData);
    } catch (const RuntimeError& e) {
        Raise(e.number(), kSelectFindInListSource, e.description());
    }
    if (index == -1) return false;
    // The list's Click runs inside this step, so its failures count as the
    // selection's own.
    return SkipOnFailure([&] { list.SetListIndex(index); });
}

namespace {

// GetWindowTextA's buffer, the last byte kept for the NUL.
constexpr std::size_t kTitleBuffer = 200;
constexpr std::size_t kFileBuffer = 256;
constexpr std::int32_t kOpenFlags = OFN_FILEMUSTEXIST | OFN_HIDEREADONLY;
constexpr std::int32_t kSaveFlags = OFN_HIDEREADONLY;

WindowSystem* busyCursor = nullptr;

std::string CutAtNul(std::string text) {
    const std::size_t nul = text.find('\0');
    if (nul != std::string::npos) text.resize(nul);
    return text;
}

FileDialogRequest MakeRequest(std::string_view initialDir, std::string_view description, std::string_view extension,
                              WindowHandle owner, std::string_view file, std::string_view title,
                              std::string_view defaultTitle, std::int32_t flags) {
    FileDialogRequest request;
    request.owner = owner;
    request.initialDir = std::string(initialDir);
    request.filter = FileDialogFilter(description, extension);
    request.defaultExtension = std::string(extension);
    request.file = std::string(file);
    // A longer name fills the whole buffer.
    request.file.resize(kFileBuffer, '\0');
    request.title = std::string(title.empty() ? defaultTitle : title);
    request.flags = flags;
    return request;
}

}  // namespace

Rectangle lib_GetRect(WindowSystem& ws, WindowHandle window, bool relativeToParent, bool clientArea) {
    if (window == 0) return ws.GetWorkArea();
    Rectangle r = clientArea ? ws.GetClientRect(window) : ws.GetWindowRect(window);
    if (relativeToParent) {
        const Rectangle parent = lib_GetRect(ws, ws.GetParent(window), false, clientArea);
        r.Left = Sub32(r.Left, parent.Left);
        r.Right = Sub32(r.Right, parent.Left);
        r.Top = Sub32(r.Top, parent.Top);
        r.Bottom = Sub32(r.Bottom, parent.Top);
    }
    return r;
}

Rectangle lib_GetParentRect(WindowSystem& ws, WindowHandle window) {
    return lib_GetRect(ws, ws.GetParent(window), false, false);
}

void lib_SetRect(WindowSystem& ws, WindowHandle window, const Rectangle& rect, bool relativeToParent) {
    Rectangle r = rect;
    if (relativeToParent) {
        const Rectangle parent = lib_GetParentRect(ws, window);
        r.Left = Add32(r.Left, parent.Left);
        r.Right = Add32(r.Right, parent.Left);
        r.Top = Add32(r.Top, parent.Top);
        r.Bottom = Add32(r.Bottom, parent.Top);
    }
    ws.MoveWindow(window, r.Left, r.Top, Sub32(r.Right, r.Left), Sub32(r.Bottom, r.Top));
}

WindowHandle lib_FindProcessWindow(WindowSystem& ws, std::int32_t processId) {
    for (WindowHandle w = ws.GetWindow(ws.GetDesktopWindow(), GW_CHILD); w != 0; w = ws.GetWindow(w, GW_HWNDNEXT)) {
        if (ws.GetParent(w) == 0 && ws.GetWindowProcessId(w) == processId) return w;
    }
    return 0;
}

std::string lib_GetWindowTitle(WindowSystem& ws, WindowHandle window) {
    std::string title = ws.GetWindowText(window != 0 ? window : ws.GetForegroundWindow());
    if (title.size() > kTitleBuffer - 1) title.resize(kTitleBuffer - 1);
    title = CutAtNul(std::move(title));
    lib_ApiResult = static_cast<std::int32_t>(title.size());
    return title;
}

WindowHandle lib_FindWindowLike(WindowSystem& ws, std::string_view pattern, bool deep, WindowHandle skip,
                                std::vector<WindowHandle>* results, WindowHandle parent, std::int16_t& count) {
    const std::string upperPattern = UCase(pattern);
    const WindowHandle start = parent != 0 ? parent : ws.GetDesktopWindow();
    WindowHandle found = 0;
    for (WindowHandle w = ws.GetWindow(start, GW_CHILD); w != 0; w = ws.GetWindow(w, GW_HWNDNEXT)) {
        if (Like(UCase(lib_GetWindowTitle(ws, w)), upperPattern) && w != skip) {
            found = w;
            if (results == nullptr) return found;
            count = Add16(count, 1);
            const auto index = static_cast<std::size_t>(count);
            if (results->size() <= index) results->resize(index + 1, 0);
            (*results)[index] = w;
        }
        if (deep || (w != skip && parent == 0)) {
            const WindowHandle below = lib_FindWindowLike(ws, pattern, deep, skip, results, w, count);
            if (below != 0) {
                found = below;
                if (results == nullptr) return found;
            }
        }
    }
    return found;
}

bool BusyState = false;

void lib_AttachBusyCursor(WindowSystem* ws) { busyCursor = ws; }

WindowSystem* lib_AttachedWindowSystem() { return busyCursor; }

std::string ForegroundWindowTitle() { return busyCursor ? lib_GetWindowTitle(*busyCursor, 0) : std::string(); }

void lib_SetBusy(bool on) {
    if (busyCursor != nullptr) busyCursor->SetBusyCursor(on);
    BusyState = on;
}

void lib_SetTabStops(form::TextBox& box, std::string_view list) {
    std::vector<std::int32_t> stops;
    std::size_t start = 0;
    // An empty list has no items, as Split gives none.
    while (!list.empty()) {
        const std::size_t comma = list.find(',', start);
        const std::string_view item = list.substr(start, comma == std::string_view::npos ? comma : comma - start);
        std::int32_t value = 0;
        SkipOnFailure([&] { value = TextToInt32(item); });
        stops.push_back(value);
        if (comma == std::string_view::npos) break;
        start = comma + 1;
    }
    box.TabStops = std::move(stops);
}

void lib_ShowWindow(WindowSystem& ws, WindowHandle window, int command) { ws.ShowWindow(window, command); }

void lib_SetCaption(std::string_view text, form::Control& control) {
    if (auto* label = dynamic_cast<form::Label*>(&control)) {
        label->SetCaption(std::string(text));
    } else if (auto* button = dynamic_cast<form::CommandButton*>(&control)) {
        button->SetCaption(std::string(text));
    } else if (auto* check = dynamic_cast<form::CheckBox*>(&control)) {
        check->SetCaption(std::string(text));
    } else if (auto* menu = dynamic_cast<form::MenuItem*>(&control)) {
        menu->SetCaption(std::string(text));
    }
}

void lib_SetTopmost(Desktop& desktop, form::Form& form, bool on) { desktop.SetTopmost(form, on); }

bool lib_SetClipboardText(Desktop& desktop, const std::string& text) { return desktop.SetClipboardText(text); }

std::int32_t lib_ChooseColor(Dialogs& dialogs, std::int32_t colour, WindowHandle /*owner*/) {
    return dialogs.ChooseColor(colour);
}

std::string FileDialogFilter(std::string_view description, std::string_view extension) {
    std::string filter(description);
    filter += " (*.";
    filter += extension;
    filter += ')';
    filter += '\0';
    filter += "*.";
    filter += extension;
    filter += '\0';
    return filter;
}

std::string lib_GetOpenFile(WindowSystem& ws, std::string_view initialDir, std::string_view description,
                            std::string_view extension, WindowHandle owner, std::string_view file,
                            std::string_view title) {
    return CutAtNul(
        ws.GetOpenFileName(MakeRequest(initialDir, description, extension, owner, file, title, "Open", kOpenFlags)));
}

std::string lib_GetSaveFile(WindowSystem& ws, std::string_view initialDir, std::string_view description,
                            std::string_view extension, WindowHandle owner, std::string& file,
                            std::string_view title) {
    return CutAtNul(ws.GetSaveFileName(
        MakeRequest(initialDir, description, extension, owner, file, title, "Save As", kSaveFlags)));
}

}  // namespace ostrivane
