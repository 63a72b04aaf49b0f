// The few xcb look-ups the desktop's X classes share: Qt's own connection,
// the default screen's number, and atoms by name.
#pragma once

#include <xcb/xcb.h>

namespace ostrivane::desktop {

// The connection Qt's xcb platform uses; nullptr on any other platform.
xcb_connection_t* QtConnection();
// The screen number of $DISPLAY (0 when it names none).
int DefaultScreenNumber();
// XCB_ATOM_NONE when the server does not answer.
xcb_atom_t Atom(xcb_connection_t* conn, const char* name);
// Whether the keyboard focus is on the window or inside it, as the server has it now.
bool HasInputFocus(xcb_connection_t* conn, xcb_window_t window);

}  // namespace ostrivane::desktop
