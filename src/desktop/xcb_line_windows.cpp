#include "desktop/xcb_line_windows.hpp"
#include "desktop/xcb_basics.hpp"

#include <xcb/shape.h>
#include <xcb/xcb.h>
#include <xcb/xfixes.h>

#include <QGuiApplication>
#include <QSocketNotifier>
#include <QtGui/qguiapplication_platform.h>

#include <array>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "desktop/x_pixels.hpp"
#include "desktop/xcb_client.hpp"

namespace ostrivane::desktop {

namespace {

// WM_CLASS: instance "marker", class "Ostrivane", each NUL-terminated, so
// that a test or a window manager rule can tell the lines apart.
constexpr char kWmClass[] = "marker\0Ostrivane";  // the literal adds the last NUL

xcb_screen_t* ScreenOf(xcb_connection_t* conn, int number) {
    xcb_screen_iterator_t it = xcb_setup_roots_iterator(xcb_get_setup(conn));
    xcb_screen_t* first = it.rem > 0 ? it.data : nullptr;
    for (int i = 0; it.rem > 0; ++i, xcb_screen_next(&it)) {
        if (i == number) return it.data;
    }
    return first;
}

xcb_visualtype_t* VisualOf(xcb_screen_t* screen, xcb_visualid_t id) {
    for (auto d = xcb_screen_allowed_depths_iterator(screen); d.rem > 0; xcb_depth_next(&d)) {
        for (auto v = xcb_depth_visuals_iterator(d.data); v.rem > 0; xcb_visualtype_next(&v)) {
            if (v.data->visual_id == id) return v.data;
        }
    }
    return nullptr;
}

xcb_rectangle_t WholeWindow(const PixelRect& rect) {
    return {0, 0, ClampExtent(rect.width), ClampExtent(rect.height)};
}

}  // namespace

// Watches the top-level windows and the compositing manager's selection
// through a connection of its own, which leaves alone the event mask that
// Qt keeps on the root window.
class XcbLineWindows::StackWatcher {
public:
    explicit StackWatcher(XcbLineWindows& owner) : owner_(owner) {
        int screenNumber = 0;
        conn_ = xcb_connect(nullptr, &screenNumber);
        xcb_screen_t* screen = xcb_connection_has_error(conn_) == 0 ? ScreenOf(conn_, screenNumber) : nullptr;
        if (screen == nullptr) return;
        const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        xcb_change_window_attributes(conn_, screen->root, XCB_CW_EVENT_MASK, &mask);
        const xcb_query_extension_reply_t* xfixes = xcb_get_extension_data(conn_, &xcb_xfixes_id);
        if (xfixes != nullptr && xfixes->present != 0 && owner_.compositorAtom_ != XCB_ATOM_NONE) {
            selectionEvent_ = static_cast<std::uint8_t>(xfixes->first_event + XCB_XFIXES_SELECTION_NOTIFY);
            const Reply<xcb_xfixes_query_version_reply_t> version(
                xcb_xfixes_query_version_reply(conn_, xcb_xfixes_query_version(conn_, 1, 0), nullptr));
            xcb_xfixes_select_selection_input(conn_, screen->root, owner_.compositorAtom_,
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                                  XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                                  XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
            // Asked again now that a change cannot slip by unseen.
            const Reply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
                conn_, xcb_get_selection_owner(conn_, owner_.compositorAtom_), nullptr));
            if (owner) owner_.SetComposited(owner->owner != XCB_NONE);
        }
        xcb_flush(conn_);
        notifier_ = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(conn_), QSocketNotifier::Read);
        QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { Drain(); });
        Drain();  // the replies above may have brought events along
    }
    ~StackWatcher() {
        notifier_.reset();
        xcb_disconnect(conn_);
    }
    StackWatcher(const StackWatcher&) = delete;
    StackWatcher& operator=(const StackWatcher&) = delete;

private:
    // An override-redirect window (a popup menu, a tooltip, our own lines)
    // may lie above the lines; a managed window may not.
    void Drain() {
        bool raise = false;
        while (xcb_generic_event_t* event = xcb_poll_for_event(conn_)) {
            const std::uint8_t type = event->response_type & 0x7F;
            if (type == selectionEvent_ && selectionEvent_ != 0) {
                const auto* change = reinterpret_cast<xcb_xfixes_selection_notify_event_t*>(event);
                owner_.SetComposited(change->subtype == XCB_XFIXES_SELECTION_EVENT_SET_SELECTION_OWNER &&
                                     change->owner != XCB_NONE);
            }
            switch (type) {
                case XCB_MAP_NOTIFY:
                    raise = raise || reinterpret_cast<xcb_map_notify_event_t*>(event)->override_redirect == 0;
                    break;
                case XCB_CONFIGURE_NOTIFY:
                    raise = raise || reinterpret_cast<xcb_configure_notify_event_t*>(event)->override_redirect == 0;
                    break;
                default: break;
            }
            std::free(event);
        }
        if (raise) owner_.RaiseAll();
    }

    XcbLineWindows& owner_;
    xcb_connection_t* conn_ = nullptr;
    std::uint8_t selectionEvent_ = 0;
    std::unique_ptr<QSocketNotifier> notifier_;
};

XcbLineWindows::XcbLineWindows() : conn_(QtConnection()) {
    Init(DefaultScreenNumber());
    if (conn_ != nullptr) watcher_ = std::make_unique<StackWatcher>(*this);
}

XcbLineWindows::XcbLineWindows(xcb_connection_t* connection, int screenNumber) : conn_(connection) {
    Init(screenNumber);
}

void XcbLineWindows::Init(int screenNumber) {
    if (conn_ == nullptr || xcb_connection_has_error(conn_) != 0) {
        conn_ = nullptr;
        return;
    }
    xcb_screen_t* screen = ScreenOf(conn_, screenNumber);
    if (screen == nullptr) {
        conn_ = nullptr;
        return;
    }
    root_ = screen->root;
    visual_ = screen->root_visual;
    depth_ = screen->root_depth;
    colormap_ = screen->default_colormap;
    whitePixel_ = screen->white_pixel;
    if (xcb_visualtype_t* visual = VisualOf(screen, visual_)) {
        trueColour_ = visual->_class == XCB_VISUAL_CLASS_TRUE_COLOR || visual->_class == XCB_VISUAL_CLASS_DIRECT_COLOR;
        redMask_ = visual->red_mask;
        greenMask_ = visual->green_mask;
        blueMask_ = visual->blue_mask;
    }
    const xcb_query_extension_reply_t* shape = xcb_get_extension_data(conn_, &xcb_shape_id);
    shape_ = shape != nullptr && shape->present != 0;
    opacityAtom_ = Atom(conn_, "_NET_WM_WINDOW_OPACITY");
    compositorAtom_ = Atom(conn_, ("_NET_WM_CM_S" + std::to_string(screenNumber)).c_str());
    if (compositorAtom_ != XCB_ATOM_NONE) {
        const Reply<xcb_get_selection_owner_reply_t> owner(
            xcb_get_selection_owner_reply(conn_, xcb_get_selection_owner(conn_, compositorAtom_), nullptr));
        composited_ = owner && owner->owner != XCB_NONE;
    }
    gc_ = xcb_generate_id(conn_);
    const std::uint32_t graphicsExposures = 0;
    xcb_create_gc(conn_, gc_, root_, XCB_GC_GRAPHICS_EXPOSURES, &graphicsExposures);
    xcb_flush(conn_);
}

XcbLineWindows::~XcbLineWindows() {
    watcher_.reset();
    if (conn_ == nullptr) return;
    for (const auto& [handle, state] : windows_) xcb_destroy_window(conn_, static_cast<xcb_window_t>(handle));
    for (const auto& [name, cls] : classes_) {
        if (cls.tile != 0) xcb_free_pixmap(conn_, cls.tile);
    }
    xcb_free_gc(conn_, gc_);
    xcb_flush(conn_);
}

std::uint32_t XcbLineWindows::PixelOf(std::int32_t colour) {
    if (trueColour_) return PixelFromColour(colour, redMask_, greenMask_, blueMask_);
    // A colour-mapped visual: ask the server for the nearest cell.
    const auto c = static_cast<std::uint32_t>(colour);
    const auto component = [c](int shift) { return static_cast<std::uint16_t>(((c >> shift) & 0xFFu) * 257u); };
    const auto cookie = xcb_alloc_color(conn_, colormap_, component(0), component(8), component(16));
    xcb_alloc_color_reply_t* reply = xcb_alloc_color_reply(conn_, cookie, nullptr);
    if (reply == nullptr) return whitePixel_;
    const std::uint32_t pixel = reply->pixel;
    std::free(reply);
    return pixel;
}

std::uint32_t XcbLineWindows::MakeHatchTile(std::uint32_t pixel) {
    const xcb_pixmap_t tile = xcb_generate_id(conn_);
    xcb_create_pixmap(conn_, depth_, tile, root_, kHatchSize, kHatchSize);
    const std::array<std::uint32_t, 2> white{whitePixel_, XCB_FILL_STYLE_SOLID};
    xcb_change_gc(conn_, gc_, XCB_GC_FOREGROUND | XCB_GC_FILL_STYLE, white.data());
    const xcb_rectangle_t all{0, 0, kHatchSize, kHatchSize};
    xcb_poly_fill_rectangle(conn_, tile, gc_, 1, &all);
    std::vector<xcb_point_t> points;
    for (std::int16_t y = 0; y < kHatchSize; ++y) {
        for (std::int16_t x = 0; x < kHatchSize; ++x) {
            if (HatchPixelSet(x, y)) points.push_back({x, y});
        }
    }
    xcb_change_gc(conn_, gc_, XCB_GC_FOREGROUND, &pixel);
    xcb_poly_point(conn_, XCB_COORD_MODE_ORIGIN, tile, gc_, static_cast<std::uint32_t>(points.size()), points.data());
    return tile;
}

void XcbLineWindows::RegisterClass(const std::string& className, std::int32_t colour, std::int32_t dotted) {
    // Like a class registration, a second one under a taken name changes nothing.
    if (conn_ == nullptr || classes_.count(className) != 0) return;
    LineClass cls;
    cls.colour = colour;
    cls.dotted = dotted;
    cls.pixel = PixelOf(colour);
    if (dotted != 0) cls.tile = MakeHatchTile(cls.pixel);
    classes_.emplace(className, cls);
    xcb_flush(conn_);
}

void XcbLineWindows::UnregisterClass(const std::string& className) {
    const auto it = classes_.find(className);
    if (it == classes_.end()) return;
    // A window that still uses the tile keeps it: the server holds its own reference.
    if (it->second.tile != 0) xcb_free_pixmap(conn_, it->second.tile);
    classes_.erase(it);
    xcb_flush(conn_);
}

WindowHandle XcbLineWindows::CreateLineWindow(const std::string& className, const PixelRect& rect,
                                              LineStyle style) {
    if (conn_ == nullptr) return 0;
    const auto it = classes_.find(className);
    if (it == classes_.end()) return 0;
    const xcb_window_t window = xcb_generate_id(conn_);
    // An id that cannot be a table cell (or the failure value of a broken connection).
    if (window == 0 || window > static_cast<std::uint32_t>(INT32_MAX)) return 0;

    const LineClass& cls = it->second;
    // Values in the order of their mask bits.
    std::array<std::uint32_t, 3> values{};
    std::uint32_t mask = 0;
    if (cls.tile != 0) {
        mask = XCB_CW_BACK_PIXMAP | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT;
        values = {cls.tile, 0, 1};
    } else {
        mask = XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT;
        values = {cls.pixel, 0, 1};
    }
    xcb_create_window(conn_, XCB_COPY_FROM_PARENT, window, root_, ClampPosition(rect.left), ClampPosition(rect.top),
                      ClampExtent(rect.width), ClampExtent(rect.height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, visual_,
                      mask, values.data());
    xcb_change_property(conn_, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8, sizeof kWmClass,
                        kWmClass);
    // No input region at all: every click goes to whatever lies beneath.
    const bool layered = style == LineStyle::Layered;
    if (layered && shape_) {
        xcb_shape_rectangles(conn_, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, XCB_CLIP_ORDERING_UNSORTED, window, 0, 0, 0,
                             nullptr);
    }
    LineWindow& state = windows_[static_cast<WindowHandle>(window)];
    state.rect = rect;
    state.mapped = false;
    state.layered = layered;
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(conn_, window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    ApplyMapState(window, state);
    xcb_flush(conn_);
    return static_cast<WindowHandle>(window);
}

void XcbLineWindows::SetAlpha(WindowHandle window, std::uint8_t alpha) {
    const auto it = windows_.find(window);
    if (conn_ == nullptr || it == windows_.end() || !it->second.layered) return;
    it->second.transparent = alpha == 0;
    if (opacityAtom_ != XCB_ATOM_NONE) {
        const std::uint32_t opacity = OpacityCardinal(alpha);
        xcb_change_property(conn_, XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(window), opacityAtom_,
                            XCB_ATOM_CARDINAL, 32, 1, &opacity);
    }
    ApplyMapState(static_cast<xcb_window_t>(window), it->second);
    xcb_flush(conn_);
}

void XcbLineWindows::ApplyMapState(std::uint32_t window, LineWindow& state) {
    const bool show = Visible(state.rect.width, state.rect.height) && !(state.transparent && !composited_);
    if (show && !state.mapped) {
        xcb_map_window(conn_, window);
        // Others may have come up while it was away.
        const std::uint32_t above = XCB_STACK_MODE_ABOVE;
        xcb_configure_window(conn_, window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    }
    if (!show && state.mapped) xcb_unmap_window(conn_, window);
    state.mapped = show;
}

void XcbLineWindows::SetComposited(bool composited) {
    if (conn_ == nullptr || composited == composited_) return;
    composited_ = composited;
    for (auto& [handle, state] : windows_) ApplyMapState(static_cast<xcb_window_t>(handle), state);
    xcb_flush(conn_);
}

void XcbLineWindows::Place(std::uint32_t window, LineWindow& state, const PixelRect& rect) {
    state.rect = rect;
    // Raised on every move as well, so that the lines stay above windows raised since.
    const std::array<std::uint32_t, 5> values{
        static_cast<std::uint32_t>(static_cast<std::int32_t>(ClampPosition(rect.left))),
        static_cast<std::uint32_t>(static_cast<std::int32_t>(ClampPosition(rect.top))), ClampExtent(rect.width),
        ClampExtent(rect.height), XCB_STACK_MODE_ABOVE};
    xcb_configure_window(conn_, window,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT | XCB_CONFIG_WINDOW_STACK_MODE,
                         values.data());
    ApplyMapState(window, state);
}

void XcbLineWindows::RaiseAll() {
    if (conn_ == nullptr) return;
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    for (const auto& [handle, state] : windows_) {
        if (state.mapped) xcb_configure_window(conn_, static_cast<xcb_window_t>(handle), XCB_CONFIG_WINDOW_STACK_MODE, &above);
    }
    xcb_flush(conn_);
}

void XcbLineWindows::MoveWindow(WindowHandle window, const PixelRect& rect) {
    const auto it = windows_.find(window);
    if (conn_ == nullptr || it == windows_.end()) return;
    Place(static_cast<xcb_window_t>(window), it->second, rect);
    xcb_flush(conn_);
}

void XcbLineWindows::PaintWithClass(WindowHandle window, const std::string& className) {
    const auto w = windows_.find(window);
    const auto c = classes_.find(className);
    if (conn_ == nullptr || w == windows_.end() || c == classes_.end()) return;
    const LineClass& cls = c->second;
    if (cls.tile != 0) {
        const std::array<std::uint32_t, 4> tiled{XCB_FILL_STYLE_TILED, cls.tile, 0, 0};
        xcb_change_gc(conn_, gc_,
                      XCB_GC_FILL_STYLE | XCB_GC_TILE | XCB_GC_TILE_STIPPLE_ORIGIN_X | XCB_GC_TILE_STIPPLE_ORIGIN_Y,
                      tiled.data());
    } else {
        const std::array<std::uint32_t, 2> solid{cls.pixel, XCB_FILL_STYLE_SOLID};
        xcb_change_gc(conn_, gc_, XCB_GC_FOREGROUND | XCB_GC_FILL_STYLE, solid.data());
    }
    const xcb_rectangle_t area = WholeWindow(w->second.rect);
    xcb_poly_fill_rectangle(conn_, static_cast<xcb_window_t>(window), gc_, 1, &area);
    xcb_flush(conn_);
}

void XcbLineWindows::DestroyWindow(WindowHandle window) {
    const auto it = windows_.find(window);
    if (conn_ == nullptr || it == windows_.end()) return;
    xcb_destroy_window(conn_, static_cast<xcb_window_t>(window));
    windows_.erase(it);
    xcb_flush(conn_);
}

}  // namespace ostrivane::desktop
