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
#include <vector>

#include "desktop/x11_window_system.hpp"
#include "lib/profile.hpp"
#include "lib/window_helpers.hpp"

using namespace ostrivane;

namespace {

int failures = 0, checks = 0;

void Check(bool ok, int line, const char* what) {
    ++checks;
    if (!ok && ++failures) std::printf("FAILED line %d: %s\n", line, what);
}
#define CHECK(condition) Check((condition), __LINE__, #condition)

xcb_connection_t* Connection() { return qApp->nativeInterface<QNativeInterface::QX11Application>()->connection(); }

bool Viewable(WindowHandle window) {
    auto* reply = xcb_get_window_attributes_reply(
        Connection(), xcb_get_window_attributes(Connection(), static_cast<xcb_window_t>(window)), nullptr);
    const bool viewable = reply != nullptr && reply->map_state == XCB_MAP_STATE_VIEWABLE;
    std::free(reply);
    return viewable;
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

// The top-level windows as the walk of the helpers sees them.
std::vector<WindowHandle> TopLevels(WindowSystem& ws) {
    std::vector<WindowHandle> list;
    for (WindowHandle w = ws.GetWindow(ws.GetDesktopWindow(), GW_CHILD); w != 0; w = ws.GetWindow(w, GW_HWNDNEXT))
        list.push_back(w);
    return list;
}

bool Above(WindowSystem& ws, WindowHandle upper, WindowHandle lower) {
    const auto list = TopLevels(ws);
    const auto u = std::find(list.begin(), list.end(), upper), l = std::find(list.begin(), list.end(), lower);
    return u != list.end() && l != list.end() && u < l;
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
    QWidget a, b;
    a.setWindowTitle("Ostrivane Probe A");
    a.setGeometry(120, 90, 300, 200);
    b.setWindowTitle("probe b");
    b.setGeometry(500, 300, 240, 160);
    a.show();
    b.show();
    const auto ha = static_cast<WindowHandle>(a.winId()), hb = static_cast<WindowHandle>(b.winId());
    if (!Await([&] { return Viewable(ha) && Viewable(hb); })) {
        std::printf("FAILED: the two windows were not viewable within 5 s\n");
        return 2;
    }
    desktop::X11WindowSystem ws;
    CHECK(ws.Connected());

    // The search: upper-cased on both sides, first find, all finds, skip.
    std::int16_t count = 0;
    CHECK(lib_FindWindowLike(ws, "*PROBE A*", false, 0, nullptr, 0, count) == ha);
    CHECK(lib_FindWindowLike(ws, "probe B", false, 0, nullptr, 0, count) == hb);
    CHECK(lib_FindWindowLike(ws, "*no such window*", false, 0, nullptr, 0, count) == 0);
    std::vector<WindowHandle> found;
    count = 0;
    lib_FindWindowLike(ws, "*probe*", false, 0, &found, 0, count);
    CHECK(count == 2 && found.size() == 3 && found[0] == 0 && std::is_permutation(found.begin() + 1, found.end(),
                                                                                  std::vector{ha, hb}.begin()));
    count = 0;
    CHECK(lib_FindWindowLike(ws, "*PROBE*", true, ha, nullptr, 0, count) == hb);

    // Titles; no window manager, so no _NET_ACTIVE_WINDOW: no foreground window.
    CHECK(lib_GetWindowTitle(ws, ha) == "Ostrivane Probe A" && lib_ApiResult == 17);
    CHECK(lib_GetWindowTitle(ws, hb) == "probe b");
    CHECK(lib_GetWindowTitle(ws, 0).empty());

    // Rectangles: without a window manager there is no frame around them.
    CHECK((lib_GetRect(ws, ha, false, false) == Rectangle{120, 90, 420, 290}));
    CHECK((lib_GetRect(ws, ha, false, true) == Rectangle{0, 0, 300, 200}));
    CHECK((lib_GetRect(ws, hb, true, false) == Rectangle{500, 300, 740, 460}));
    CHECK(ws.GetParent(ha) == 0);

    // The work area: the root's size while nobody sets _NET_WORKAREA, else
    // the current desktop's entry.
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    CHECK((lib_GetRect(ws, 0, false, false) == Rectangle{0, 0, screen.width(), screen.height()}));
    SetRootCardinals("_NET_WORKAREA", {0, 0, 1000, 700, 10, 20, 900, 600});
    SetRootCardinals("_NET_CURRENT_DESKTOP", {1});
    CHECK((lib_GetRect(ws, 0, false, false) == Rectangle{10, 20, 910, 620}));
    CHECK((lib_GetRect(ws, ha, true, false) == Rectangle{110, 70, 410, 270}));
    SetRootCardinals("_NET_WORKAREA", {});
    SetRootCardinals("_NET_CURRENT_DESKTOP", {});

    // A move through the helper, seen straight away on the same connection.
    lib_SetRect(ws, ha, {200, 150, 450, 330}, false);
    CHECK((ws.GetWindowRect(ha) == Rectangle{200, 150, 450, 330}));
    CHECK((ws.GetClientRect(ha) == Rectangle{0, 0, 250, 180}));

    // Qt sets _NET_WM_PID; the walk goes from the top of the stack down.
    const auto pid = static_cast<std::int32_t>(getpid());
    CHECK(ws.GetWindowProcessId(ha) == pid);
    for (QWidget* top : {&b, &a}) {
        const WindowHandle upper = top == &a ? ha : hb, lower = top == &a ? hb : ha;
        top->raise();
        CHECK(Await([&] { return Above(ws, upper, lower); }));
        CHECK(lib_FindProcessWindow(ws, pid) == upper);
    }

    lib_ShowWindow(ws, hb, SW_HIDE);
    CHECK(Await([&] { return !Viewable(hb); }));
    lib_ShowWindow(ws, hb, SW_SHOWNORMAL);
    CHECK(Await([&] { return Viewable(hb); }));

    std::printf("%d checks, %d failed\n", checks, failures);
    return std::min(failures, 1);
}
