#include "desktop/x11_window_system.hpp"
#include "desktop/xcb_basics.hpp"

#include <xcb/xcb.h>

#include <QApplication>
#include <QCursor>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QGuiApplication>
#include <QStringList>
#include <QWidget>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "desktop/qt_form_binding.hpp"

namespace ostrivane::desktop {

namespace {

template <class T>
using Reply = std::unique_ptr<T, decltype(&std::free)>;

template <class T>
Reply<T> Take(T* reply) {
    return Reply<T>(reply, &std::free);
}

xcb_window_t Id(WindowHandle window) { return static_cast<xcb_window_t>(window); }
WindowHandle Handle(xcb_window_t window) { return static_cast<WindowHandle>(window); }

// ICCCM's WM_CHANGE_STATE value for an iconified window.
constexpr std::uint32_t kIconicState = 3;
// Longest property text read: far beyond any title a helper keeps.
constexpr std::uint32_t kMaxTextWords = 1024;

QString Latin1(const std::string& text) { return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size())); }

std::string CutAtNul(const std::string& text) { return text.substr(0, text.find('\0')); }

}  // namespace

X11WindowSystem::X11WindowSystem() : X11WindowSystem(QtConnection(), DefaultScreenNumber()) {}

X11WindowSystem::X11WindowSystem(xcb_connection_t* connection, int screenNumber) : conn_(connection) {
    if (conn_ == nullptr || xcb_connection_has_error(conn_) != 0) {
        conn_ = nullptr;
        return;
    }
    xcb_screen_iterator_t it = xcb_setup_roots_iterator(xcb_get_setup(conn_));
    xcb_screen_t* screen = it.rem > 0 ? it.data : nullptr;
    for (int i = 0; it.rem > 0; ++i, xcb_screen_next(&it)) {
        if (i == screenNumber) {
            screen = it.data;
            break;
        }
    }
    if (screen == nullptr) {
        conn_ = nullptr;
        return;
    }
    root_ = screen->root;
    netWmName_ = Atom(conn_, "_NET_WM_NAME");
    utf8String_ = Atom(conn_, "UTF8_STRING");
    netActiveWindow_ = Atom(conn_, "_NET_ACTIVE_WINDOW");
    netWorkarea_ = Atom(conn_, "_NET_WORKAREA");
    netCurrentDesktop_ = Atom(conn_, "_NET_CURRENT_DESKTOP");
    netWmPid_ = Atom(conn_, "_NET_WM_PID");
    wmChangeState_ = Atom(conn_, "WM_CHANGE_STATE");
}

bool X11WindowSystem::QueryTree(std::uint32_t window, Tree& tree) {
    if (conn_ == nullptr || window == 0) return false;
    const auto reply = Take(xcb_query_tree_reply(conn_, xcb_query_tree(conn_, window), nullptr));
    if (!reply) return false;
    const xcb_window_t* children = xcb_query_tree_children(reply.get());
    const int n = xcb_query_tree_children_length(reply.get());
    tree.parent = reply->parent;
    // The server lists them from the bottom of the stack up.
    tree.children.assign(children, children + n);
    std::reverse(tree.children.begin(), tree.children.end());
    return true;
}

std::vector<std::uint32_t> X11WindowSystem::CardinalProperty(std::uint32_t window, std::uint32_t property,
                                                            std::uint32_t type) {
    std::vector<std::uint32_t> items;
    if (conn_ == nullptr || window == 0 || property == XCB_ATOM_NONE) return items;
    const auto cookie = xcb_get_property(conn_, 0, window, property, type, 0, kMaxTextWords);
    const auto reply = Take(xcb_get_property_reply(conn_, cookie, nullptr));
    if (!reply || reply->format != 32 || reply->type != type) return items;
    const auto* data = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    const int length = xcb_get_property_value_length(reply.get()) / 4;
    items.assign(data, data + length);
    return items;
}

bool X11WindowSystem::TextProperty(std::uint32_t window, std::uint32_t property, std::uint32_t type,
                                   std::string& text) {
    if (conn_ == nullptr || window == 0 || property == XCB_ATOM_NONE) return false;
    const auto cookie = xcb_get_property(conn_, 0, window, property, type, 0, kMaxTextWords);
    const auto reply = Take(xcb_get_property_reply(conn_, cookie, nullptr));
    if (!reply || reply->format != 8 || reply->type != type) return false;
    const auto* data = static_cast<const char*>(xcb_get_property_value(reply.get()));
    text.assign(data, static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
    return true;
}

Rectangle X11WindowSystem::RootRect() {
    if (conn_ == nullptr) return {};
    const auto reply = Take(xcb_get_geometry_reply(conn_, xcb_get_geometry(conn_, root_), nullptr));
    if (!reply) return {};
    return {0, 0, reply->width, reply->height};
}

Rectangle X11WindowSystem::GetWorkArea() {
    const std::vector<std::uint32_t> areas = CardinalProperty(root_, netWorkarea_, XCB_ATOM_CARDINAL);
    if (areas.size() < 4) return RootRect();
    // One x, y, width, height for each virtual desktop; the current one's.
    std::size_t desktop = 0;
    const std::vector<std::uint32_t> current = CardinalProperty(root_, netCurrentDesktop_, XCB_ATOM_CARDINAL);
    if (!current.empty() && (static_cast<std::size_t>(current[0]) + 1) * 4 <= areas.size()) desktop = current[0];
    const auto x = static_cast<std::int32_t>(areas[desktop * 4]);
    const auto y = static_cast<std::int32_t>(areas[desktop * 4 + 1]);
    const auto w = static_cast<std::int32_t>(areas[desktop * 4 + 2] & 0x7fffu);
    const auto h = static_cast<std::int32_t>(areas[desktop * 4 + 3] & 0x7fffu);
    return {x, y, x + w, y + h};
}

Rectangle X11WindowSystem::GetWindowRect(WindowHandle window) {
    if (conn_ == nullptr || window == 0) return {};
    const auto geometry = Take(xcb_get_geometry_reply(conn_, xcb_get_geometry(conn_, Id(window)), nullptr));
    if (!geometry) return {};
    const auto origin = Take(xcb_translate_coordinates_reply(
        conn_, xcb_translate_coordinates(conn_, Id(window), root_, 0, 0), nullptr));
    if (!origin) return {};
    // The border lies outside the origin X gives; the window's rectangle holds it.
    const std::int32_t border = geometry->border_width;
    const std::int32_t left = origin->dst_x - border;
    const std::int32_t top = origin->dst_y - border;
    return {left, top, left + geometry->width + 2 * border, top + geometry->height + 2 * border};
}

Rectangle X11WindowSystem::GetClientRect(WindowHandle window) {
    if (conn_ == nullptr || window == 0) return {};
    const auto geometry = Take(xcb_get_geometry_reply(conn_, xcb_get_geometry(conn_, Id(window)), nullptr));
    if (!geometry) return {};
    return {0, 0, geometry->width, geometry->height};
}

WindowHandle X11WindowSystem::GetParent(WindowHandle window) {
    Tree tree;
    if (!QueryTree(Id(window), tree) || tree.parent == root_) return 0;
    return Handle(tree.parent);
}

void X11WindowSystem::MoveWindow(WindowHandle window, std::int32_t left, std::int32_t top, std::int32_t width,
                                 std::int32_t height) {
    if (conn_ == nullptr || window == 0) return;
    // X has no empty windows, and its sizes are 16-bit.
    const auto size = [](std::int32_t v) { return static_cast<std::uint32_t>(std::clamp(v, 1, 32767)); };
    const auto place = [](std::int32_t v) { return static_cast<std::uint32_t>(std::clamp(v, -32768, 32767)); };
    const std::uint32_t values[] = {place(left), place(top), size(width), size(height)};
    xcb_configure_window(conn_, Id(window),
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT,
                         values);
    xcb_flush(conn_);
}

std::string X11WindowSystem::GetWindowText(WindowHandle window) {
    std::string text;
    if (TextProperty(Id(window), netWmName_, utf8String_, text)) {
        const QByteArray utf8(text.data(), static_cast<qsizetype>(text.size()));
        // The program's text is 8-bit; what Latin-1 cannot hold becomes "?".
        return QString::fromUtf8(utf8).toLatin1().toStdString();
    }
    if (TextProperty(Id(window), XCB_ATOM_WM_NAME, XCB_ATOM_STRING, text)) return text;
    return {};
}

WindowHandle X11WindowSystem::GetForegroundWindow() {
    const std::vector<std::uint32_t> active = CardinalProperty(root_, netActiveWindow_, XCB_ATOM_WINDOW);
    return active.empty() ? 0 : Handle(active[0]);
}

WindowHandle X11WindowSystem::GetDesktopWindow() { return Handle(root_); }

WindowHandle X11WindowSystem::GetWindow(WindowHandle window, int command) {
    Tree tree;
    if (command == GW_CHILD) {
        if (!QueryTree(Id(window), tree) || tree.children.empty()) return 0;
        return Handle(tree.children.front());
    }
    if (command != GW_HWNDNEXT || !QueryTree(Id(window), tree)) return 0;
    Tree siblings;
    if (!QueryTree(tree.parent, siblings)) return 0;
    auto it = std::find(siblings.children.begin(), siblings.children.end(), Id(window));
    if (it == siblings.children.end() || ++it == siblings.children.end()) return 0;
    return Handle(*it);
}

std::int32_t X11WindowSystem::GetWindowProcessId(WindowHandle window) {
    const std::vector<std::uint32_t> pid = CardinalProperty(Id(window), netWmPid_, XCB_ATOM_CARDINAL);
    return pid.empty() ? 0 : static_cast<std::int32_t>(pid[0]);
}

void X11WindowSystem::ShowWindow(WindowHandle window, int command) {
    if (conn_ == nullptr || window == 0) return;
    switch (command) {
        case SW_HIDE:
            xcb_unmap_window(conn_, Id(window));
            break;
        case SW_SHOWNORMAL:
        case SW_RESTORE:
            xcb_map_window(conn_, Id(window));
            break;
        case SW_MINIMIZE: {
            xcb_client_message_event_t event{};
            event.response_type = XCB_CLIENT_MESSAGE;
            event.format = 32;
            event.window = Id(window);
            event.type = wmChangeState_;
            event.data.data32[0] = kIconicState;
            xcb_send_event(conn_, 0, root_,
                           XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                           reinterpret_cast<const char*>(&event));
            break;
        }
        default:
            return;
    }
    xcb_flush(conn_);
}

void X11WindowSystem::SetBusyCursor(bool on) {
    // Qt stacks override cursors: one on the stack at most, taken off once.
    if (on == busy_ || qGuiApp == nullptr) return;
    if (on)
        QGuiApplication::setOverrideCursor(QCursor(Qt::WaitCursor));
    else
        QGuiApplication::restoreOverrideCursor();
    busy_ = on;
}

std::string QtFilterOf(const std::string& filter) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    while (start < filter.size()) {
        const std::size_t nul = filter.find('\0', start);
        const std::size_t end = nul == std::string::npos ? filter.size() : nul;
        parts.push_back(filter.substr(start, end - start));
        start = end + 1;
    }
    std::string result;
    for (std::size_t i = 0; i + 1 < parts.size(); i += 2) {
        std::string patterns = parts[i + 1];
        std::replace(patterns.begin(), patterns.end(), ';', ' ');
        if (!result.empty()) result += ";;";
        // Qt reads the patterns from the parentheses, so they go there
        // whatever the description shows.
        std::string description = parts[i];
        const std::size_t paren = description.rfind(" (");
        if (paren != std::string::npos && description.back() == ')') description.resize(paren);
        result += description + " (" + patterns + ")";
    }
    return result;
}

std::string X11WindowSystem::FileDialog(const FileDialogRequest& request, bool save) {
    if (qApp == nullptr) return {};
    QWidget* owner = nullptr;
    for (QWidget* w : QApplication::topLevelWidgets()) {
        if (request.owner != 0 && w->internalWinId() == static_cast<WId>(Id(request.owner))) owner = w;
    }
    if (owner == nullptr) owner = QApplication::activeWindow();

    QFileDialog dialog(owner, Latin1(request.title), QFile::decodeName(QByteArray::fromStdString(request.initialDir)),
                       Latin1(QtFilterOf(request.filter)));
    dialog.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode((request.flags & OFN_FILEMUSTEXIST) != 0 ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    dialog.setDefaultSuffix(Latin1(request.defaultExtension));
    const std::string file = CutAtNul(request.file);
    if (!file.empty()) dialog.selectFile(QFile::decodeName(QByteArray::fromStdString(file)));
    if (dialog.exec() != QDialog::Accepted) return {};
    const QStringList chosen = dialog.selectedFiles();
    if (chosen.isEmpty()) return {};
    // A path goes back in the file system's own encoding, so that it opens.
    return QFile::encodeName(QDir::toNativeSeparators(chosen.front())).toStdString();
}

std::string X11WindowSystem::GetOpenFileName(const FileDialogRequest& request) { return FileDialog(request, false); }

std::string X11WindowSystem::GetSaveFileName(const FileDialogRequest& request) { return FileDialog(request, true); }

WindowHandle X11WindowSystem::FormHandle(form::Form& form) {
    QtFormBinding* binding = QtFormBinding::For(form);
    QWidget* window = binding != nullptr ? binding->Window() : nullptr;
    if (window == nullptr) return 0;
    return static_cast<WindowHandle>(window->winId());
}

}  // namespace ostrivane::desktop
