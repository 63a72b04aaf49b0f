// The pictures the forms name, drawn anew: the four signs of the message
// box, the small copy and print pictures of its buttons, and the program's
// icon, from its SVG, which its windows and the tray show.
#pragma once

#include <QIcon>
#include <QPixmap>
#include <QSize>
#include <string>

#include "platform/desktop.hpp"  // kProgramIcon

namespace ostrivane::desktop {

// A picture by its name at the given size; a null pixmap for an unknown name.
QPixmap DrawPicture(const std::string& name, QSize size);

// The picture in the sizes a window or the tray picks from; empty for an
// unknown name.
QIcon DrawIcon(const std::string& name);

// The picture a command button shows instead of a caption, by the button's
// name; empty when it has none.
std::string ButtonPictureName(const std::string& buttonName);

}  // namespace ostrivane::desktop
