#include "desktop/x11_key_grabs.hpp"

#include <xcb/xcb_keysyms.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "desktop/xcb_client.hpp"

namespace ostrivane::desktop {

namespace {

// Keysyms of the X protocol's standard set.
constexpr std::uint32_t kGrave = 0x60, kDigit1 = 0x31;
constexpr std::uint32_t kControlL = 0xffe3, kControlR = 0xffe4, kShiftL = 0xffe1, kShiftR = 0xffe2;
constexpr std::uint32_t kNumLock = 0xff7f, kScrollLock = 0xff14;
constexpr std::uint32_t kAltL = 0xffe9, kAltR = 0xffea, kMetaL = 0xffe7, kSuperL = 0xffeb, kSuperR = 0xffec;

struct FreeSymbols {
    void operator()(xcb_key_symbols_t* s) const { xcb_key_symbols_free(s); }
};

std::vector<xcb_keycode_t> KeycodesOf(xcb_key_symbols_t* symbols, std::uint32_t keysym) {
    std::vector<xcb_keycode_t> out;
    const Reply<xcb_keycode_t> codes(xcb_key_symbols_get_keycode(symbols, keysym));
    for (const xcb_keycode_t* c = codes.get(); c != nullptr && *c != XCB_NO_SYMBOL; ++c) out.push_back(*c);
    return out;
}

// The modifier bit whose keys include one of the keysyms; 0 when none does.
std::uint16_t ModifierOf(xcb_connection_t* conn, xcb_key_symbols_t* symbols, std::initializer_list<std::uint32_t> syms) {
    const Reply<xcb_get_modifier_mapping_reply_t> map(
        xcb_get_modifier_mapping_reply(conn, xcb_get_modifier_mapping(conn), nullptr));
    if (!map) return 0;
    const xcb_keycode_t* codes = xcb_get_modifier_mapping_keycodes(map.get());
    const int perModifier = map->keycodes_per_modifier;
    for (const std::uint32_t sym : syms) {
        for (const xcb_keycode_t code : KeycodesOf(symbols, sym)) {
            for (int i = 0; i < 8 * perModifier; ++i) {
                if (codes[i] == code) return static_cast<std::uint16_t>(1u << (i / perModifier));
            }
        }
    }
    return 0;
}

}  // namespace

X11KeyGrabs::X11KeyGrabs(xcb_connection_t* conn, xcb_window_t root)
    : conn_(conn), root_(root), keys_{{"Ctrl+grave", kGrave, VK_OEM_3, {}}, {"Ctrl+1", kDigit1, VK_1, {}}} {}

X11KeyGrabs::~X11KeyGrabs() { Ungrab(); }

bool X11KeyGrabs::Grab(Proc proc) {
    Ungrab();
    const std::unique_ptr<xcb_key_symbols_t, FreeSymbols> symbols(xcb_key_symbols_alloc(conn_));
    if (!symbols) return false;
    const std::uint16_t alt = ModifierOf(conn_, symbols.get(), {kAltL, kAltR, kMetaL});
    const std::uint16_t super = ModifierOf(conn_, symbols.get(), {kSuperL, kSuperR});
    modifierSets_ = GrabModifierSets({XCB_MOD_MASK_LOCK, ModifierOf(conn_, symbols.get(), {kNumLock}),
                                      ModifierOf(conn_, symbols.get(), {kScrollLock}),
                                      alt != 0 ? alt : static_cast<std::uint16_t>(XCB_MOD_MASK_1),
                                      super != 0 ? super : static_cast<std::uint16_t>(XCB_MOD_MASK_4)});
    const std::array<std::uint32_t, 4> sideSyms{kControlL, kControlR, kShiftL, kShiftR};
    for (std::size_t i = 0; i < sideSyms.size(); ++i) sideCodes_[i] = KeycodesOf(symbols.get(), sideSyms[i]);

    bool any = false;
    for (HotKey& key : keys_) {
        const std::vector<xcb_keycode_t> codes = KeycodesOf(symbols.get(), key.keysym);
        std::vector<xcb_void_cookie_t> cookies;
        for (const xcb_keycode_t code : codes) {
            for (const std::uint16_t mods : modifierSets_) {
                cookies.push_back(xcb_grab_key_checked(conn_, 0, root_, mods, code, XCB_GRAB_MODE_ASYNC,
                                                       XCB_GRAB_MODE_ASYNC));
            }
        }
        bool taken = codes.empty();
        for (const xcb_void_cookie_t cookie : cookies) {
            const Reply<xcb_generic_error_t> error(xcb_request_check(conn_, cookie));
            taken = taken || error != nullptr;
        }
        if (taken) {
            // Another program holds one of the combinations: the key stays off as a whole.
            for (const xcb_keycode_t code : codes) {
                for (const std::uint16_t mods : modifierSets_) xcb_ungrab_key(conn_, code, root_, mods);
            }
            xcb_flush(conn_);
            if (!key.reported)
                std::fprintf(stderr, "Ostrivane: the hot key %s %s and stays off\n", key.name,
                             codes.empty() ? "is not on the keyboard" : "is held by another program");
            key.reported = true;  // once, not again at each change of the keyboard mapping
            continue;
        }
        key.codes = codes;
        any = true;
    }
    xcb_flush(conn_);
    told_ = {};
    if (any) proc_ = std::move(proc);
    return any;
}

void X11KeyGrabs::Ungrab() {
    for (HotKey& key : keys_) {
        for (const xcb_keycode_t code : key.codes) {
            for (const std::uint16_t mods : modifierSets_) xcb_ungrab_key(conn_, code, root_, mods);
        }
        key.codes.clear();
        key.handedOn = false;
    }
    proc_ = nullptr;
    xcb_flush(conn_);
}

SideKeys X11KeyGrabs::SideKeysDown() {
    SideKeys down{};
    const Reply<xcb_query_keymap_reply_t> map(xcb_query_keymap_reply(conn_, xcb_query_keymap(conn_), nullptr));
    if (!map) return told_;
    for (std::size_t i = 0; i < down.size(); ++i) {
        for (const xcb_keycode_t code : sideCodes_[i]) down[i] = down[i] || ((map->keys[code / 8] >> (code % 8)) & 1) != 0;
    }
    return down;
}

bool X11KeyGrabs::Handle(const xcb_generic_event_t* event) {
    const std::uint8_t type = event->response_type & 0x7F;
    if (type == XCB_MAPPING_NOTIFY) {
        // Another layout moves the keys and the lock bits: grab them where they are now.
        const auto* change = reinterpret_cast<const xcb_mapping_notify_event_t*>(event);
        if (change->request != XCB_MAPPING_POINTER && proc_) Grab(proc_);
        return false;
    }
    if (type != XCB_KEY_PRESS && type != XCB_KEY_RELEASE) return false;
    const auto& e = *reinterpret_cast<const xcb_key_press_event_t*>(event);
    HotKey* key = nullptr;
    for (HotKey& k : keys_) {
        for (const xcb_keycode_t code : k.codes) key = code == e.detail ? &k : key;
    }
    if (key == nullptr || !proc_) return key != nullptr;
    const Proc proc = proc_;  // the procedure may unhook
    // The hook keeps its own idea of Ctrl and Shift from the messages it is
    // given, as it would from every key of the keyboard: bring it up to date first.
    const SideKeys now = SideKeysDown();
    for (const KeyMessage& m : SideKeyChanges(told_, now, e.time)) {
        proc(m.message, m.record);
    }
    told_ = now;
    const bool press = type == XCB_KEY_PRESS;
    KeyMessage m = KeyMessageOf(key->vkCode, press, e.time);
    m.record.scanCode = e.detail >= 8 ? e.detail - 8u : 0u;
    const std::optional<HookAnswer> answer = proc(m.message, m.record);
    // A grabbed key goes to us alone; when the hook lets the press pass (no
    // Ctrl down after all), the nearest X has to passing it on is a copy sent
    // to the focused window, and its release after it. Programs that refuse
    // sent events do not see it.
    if (press) key->handedOn = answer == HookAnswer::PassOn;
    if (key->handedOn) HandOn(e);
    if (!press) key->handedOn = false;
    return true;
}

void X11KeyGrabs::HandOn(const xcb_key_press_event_t& event) {
    const Reply<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(conn_, xcb_get_input_focus(conn_), nullptr));
    if (!focus || focus->focus == XCB_NONE || focus->focus == XCB_INPUT_FOCUS_POINTER_ROOT) return;
    xcb_key_press_event_t copy = event;
    copy.event = focus->focus;
    copy.child = XCB_NONE;
    copy.same_screen = 1;
    const std::uint32_t mask = (event.response_type & 0x7F) == XCB_KEY_PRESS ? XCB_EVENT_MASK_KEY_PRESS
                                                                            : XCB_EVENT_MASK_KEY_RELEASE;
    xcb_send_event(conn_, 1, focus->focus, mask, reinterpret_cast<const char*>(&copy));
    xcb_flush(conn_);
}

}  // namespace ostrivane::desktop
