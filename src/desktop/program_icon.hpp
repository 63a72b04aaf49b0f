// The program's icon: one SVG, built into the binary as a resource, drawn at
// whatever size is asked for. The tray, the windows, the about box and the
// icon theme's PNG files all come from it.
#pragma once

#include <QImage>
#include <QSize>

namespace ostrivane::desktop {

inline constexpr char kProgramIconResource[] = ":/icons/org.ostrivane.Ostrivane.svg";

// The icon scaled to the largest square that fits, centred, on transparent
// ground; a null image for an empty size.
QImage RenderProgramIcon(QSize size);

}  // namespace ostrivane::desktop
