// The pictures the forms name, drawn anew: the four signs of the message
// box and the small copy and print pictures of its buttons.
#pragma once

#include <QPixmap>
#include <QSize>
#include <string>

namespace ostrivane::desktop {

// A picture by its name at the given size; a null pixmap for an unknown name.
QPixmap DrawPicture(const std::string& name, QSize size);

// The picture a command button shows instead of a caption, by the button's
// name; empty when it has none.
std::string ButtonPictureName(const std::string& buttonName);

}  // namespace ostrivane::desktop
