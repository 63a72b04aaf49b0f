// The X11 window system under the library's window helpers, on a real X
// server with no window manager: two top-level Qt windows of known titles and
// places, found, measured, moved, restacked and hidden through the helpers.
// One line per failed check; exit status 1 on any failure, 2 when the
// windows never came up.
#include <xcb/xcb.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QScreen>
#include <QWidget>

#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include "desktop/x11_window_system.hpp"
#include "lib/profile.hpp"
#include "lib/window_helpers.hpp"

using namespace ostrivane;

namespace {

int failures = 0;
int checks = 0;

std::string Show(const Rectangle& r) {
    return std::to_string(r.Left) + "," + std::to_string(r.Top) + "," + std::to_string(r.Right) + "," +
           std::to_string(r.Bottom);
}

void Check(bool ok, const std::string& what) {
    ++checks;
    if (ok) return;
    ++failures;
    std::printf("FAILED: %s\n", what.c_str());
}

void CheckRect(const Rectangle& got, const Rectangle& want, const std::string& what) {
    Check(got == want, what + ": got " + Show(got) + ", want " + Show(want));
}

template <class T>
void CheckEqual(const T& got, const T& want, const std::string& what) {
    if constexpr (std::is_same_v<T, std::string>)
        Check(got == want, what + ": got \"" + got + "\", want \"" + want + "\"");
    else
        Check(got == want, what + ": got " + std::to_string(got) + ", want " + std::to_string(want));
}

xcb_connection_t* Connection() {
    return qApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
}

std::uint8_t MapState(WindowHandle window) {
    xcb_connection_t* conn = Connection();
    auto* reply = xcb_get_window_attributes_reply(
        conn, xcb_get_window_attributes(conn, static_cast<xcb_window_t>(window)), nullptr);
    const std::uint8_t state = reply != nullptr ? reply->map_state : std::uint8_t{XCB_MAP_STATE_UNMAPPED};
    std::free(reply);
    return state;
}

// Events until the condition holds or a few seconds have gone by.
template <class Condition>
bool Await(Condition condition) {
    QElapsedTimer clock;
    clock.start();
    while (!condition()) {
        if (clock.elapsed() > 5000) return false;
        QApplication::processEvents(QEventLoop::AllEvents, 20);
        usleep(5000);
    }
    return true;
}

WindowHandle HandleOf(const QWidget& w) { return static_cast<WindowHandle>(w.winId()); }

std::vector<WindowHandle> TopLevels(WindowSystem& ws) {
    std::vector<WindowHandle> list;
    for (WindowHandle w = ws.GetWindow(ws.GetDesktopWindow(), GW_CHILD); w != 0; w = ws.GetWindow(w, GW_HWNDNEXT))
        list.push_back(w);
    return list;
}

std::ptrdiff_t IndexOf(const std::vector<WindowHandle>& list, WindowHandle w) {
    const auto it = std::find(list.begin(), list.end(), w);
    return it == list.end() ? -1 : it - list.begin();
}

void SetRootCardinals(const char* name, const std::vector<std::uint32_t>& values) {
    xcb_connection_t* conn = Connection();
    auto* atom = xcb_intern_atom_reply(conn, xcb_intern_atom(conn, 0, static_cast<std::uint16_t>(std::strlen(name)), name),
                                       nullptr);
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(conn)).data->root;
    if (values.empty())
        xcb_delete_property(conn, root, atom->atom);
    else
        xcb_change_property(conn, XCB_PROP_MODE_REPLACE, root, atom->atom, XCB_ATOM_CARDINAL, 32,
                            static_cast<std::uint32_t>(values.size()), values.data());
    xcb_flush(conn);
    std::free(atom);
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "xcb");
    QApplication app(argc, argv);

    const std::string titleA = "Ostrivane Probe A";
    QWidget a;
    a.setWindowTitle(QString::fromStdString(titleA));
    a.setGeometry(120, 90, 300, 200);
    QWidget b;
    b.setWindowTitle("probe b");
    b.setGeometry(500, 300, 240, 160);
    a.show();
    b.show();
    const bool up = Await([&] {
        return a.isVisible() && b.isVisible() && MapState(HandleOf(a)) == XCB_MAP_STATE_VIEWABLE &&
               MapState(HandleOf(b)) == XCB_MAP_STATE_VIEWABLE;
    });
    if (!up) {
        std::printf("FAILED: the two windows were not viewable within 5 s\n");
        return 2;
    }
    const WindowHandle ha = HandleOf(a);
    const WindowHandle hb = HandleOf(b);

    desktop::X11WindowSystem ws;
    Check(ws.Connected(), "X11WindowSystem has no connection");

    // The search: upper-cased on both sides, first find, all finds, skip.
    std::int16_t count = 0;
    CheckEqual(lib_FindWindowLike(ws, "*PROBE A*", false, 0, nullptr, 0, count), ha,
               "FindWindowLike *PROBE A* (first find)");
    CheckEqual(lib_FindWindowLike(ws, "probe B", false, 0, nullptr, 0, count), hb, "FindWindowLike probe B");
    CheckEqual(lib_FindWindowLike(ws, "*no such window*", false, 0, nullptr, 0, count), 0,
               "FindWindowLike of a title nobody has");
    std::vector<WindowHandle> found;
    count = 0;
    lib_FindWindowLike(ws, "*probe*", false, 0, &found, 0, count);
    CheckEqual(static_cast<int>(count), 2, "FindWindowLike *probe* count");
    const bool both = found.size() == 3 && found[0] == 0 &&
                      ((found[1] == ha && found[2] == hb) || (found[1] == hb && found[2] == ha));
    Check(both, "FindWindowLike *probe* results are not [0, a, b] in some order");
    count = 0;
    CheckEqual(lib_FindWindowLike(ws, "*PROBE*", true, ha, nullptr, 0, count), hb,
               "FindWindowLike *PROBE* deep, skipping a");

    // Titles.
    CheckEqual(lib_GetWindowTitle(ws, ha), titleA, "GetWindowTitle of a");
    CheckEqual(lib_ApiResult, static_cast<std::int32_t>(titleA.size()), "lib_ApiResult after GetWindowTitle");
    CheckEqual(lib_GetWindowTitle(ws, hb), std::string("probe b"), "GetWindowTitle of b");
    // No window manager, so no _NET_ACTIVE_WINDOW: the foreground window is none.
    CheckEqual(lib_GetWindowTitle(ws, 0), std::string(), "GetWindowTitle of the foreground window");

    // Rectangles: without a window manager there is no frame around them.
    CheckRect(lib_GetRect(ws, ha, false, false), {120, 90, 420, 290}, "GetRect of a");
    CheckRect(lib_GetRect(ws, ha, false, true), {0, 0, 300, 200}, "GetRect of a's client area");
    CheckRect(lib_GetRect(ws, hb, true, false), {500, 300, 740, 460}, "GetRect of b relative to its parent");
    CheckEqual(ws.GetParent(ha), 0, "GetParent of a top-level window");

    // The work area: the root's size while nobody sets _NET_WORKAREA.
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    CheckRect(lib_GetRect(ws, 0, false, false), {0, 0, screen.width(), screen.height()},
              "work area without _NET_WORKAREA");
    // The current desktop's entry when a manager would have set them.
    SetRootCardinals("_NET_WORKAREA", {0, 0, 1000, 700, 10, 20, 900, 600});
    SetRootCardinals("_NET_CURRENT_DESKTOP", {1});
    CheckRect(lib_GetRect(ws, 0, false, false), {10, 20, 910, 620}, "work area of desktop 1");
    CheckRect(lib_GetRect(ws, ha, true, false), {110, 70, 410, 270}, "GetRect of a relative to the work area");
    SetRootCardinals("_NET_WORKAREA", {});
    SetRootCardinals("_NET_CURRENT_DESKTOP", {});

    // A move through the helper, seen straight away on the same connection.
    lib_SetRect(ws, ha, {200, 150, 450, 330}, false);
    CheckRect(ws.GetWindowRect(ha), {200, 150, 450, 330}, "GetWindowRect after SetRect");
    CheckRect(ws.GetClientRect(ha), {0, 0, 250, 180}, "GetClientRect after SetRect");

    // Qt sets _NET_WM_PID on its windows.
    const auto pid = static_cast<std::int32_t>(getpid());
    CheckEqual(ws.GetWindowProcessId(ha), pid, "GetWindowProcessId of a");
    const WindowHandle first = lib_FindProcessWindow(ws, pid);
    Check(first == ha || first == hb, "FindProcessWindow gave " + std::to_string(first) + ", neither a nor b");

    // The walk goes from the top of the stack down.
    b.raise();
    Await([&] {
        const auto list = TopLevels(ws);
        return IndexOf(list, hb) >= 0 && IndexOf(list, hb) < IndexOf(list, ha);
    });
    {
        const auto list = TopLevels(ws);
        Check(IndexOf(list, hb) >= 0 && IndexOf(list, hb) < IndexOf(list, ha), "b raised but not before a in the walk");
        CheckEqual(lib_FindProcessWindow(ws, pid), hb, "FindProcessWindow with b on top");
    }
    a.raise();
    Await([&] {
        const auto list = TopLevels(ws);
        return IndexOf(list, ha) >= 0 && IndexOf(list, ha) < IndexOf(list, hb);
    });
    {
        const auto list = TopLevels(ws);
        Check(IndexOf(list, ha) >= 0 && IndexOf(list, ha) < IndexOf(list, hb), "a raised but not before b in the walk");
        CheckEqual(lib_FindProcessWindow(ws, pid), ha, "FindProcessWindow with a on top");
    }

    // Hide and show again.
    lib_ShowWindow(ws, hb, SW_HIDE);
    Check(Await([&] { return MapState(hb) == XCB_MAP_STATE_UNMAPPED; }), "b still mapped after SW_HIDE");
    lib_ShowWindow(ws, hb, SW_SHOWNORMAL);
    Check(Await([&] { return MapState(hb) == XCB_MAP_STATE_VIEWABLE; }), "b not viewable after SW_SHOWNORMAL");

    std::printf("%d checks, %d failed\n", checks, failures);
    return std::min(failures, 1);
}
