#include "desktop/program_icon.hpp"

#include <QPainter>
#include <QRectF>
#include <QString>
#include <QSvgRenderer>

#include <algorithm>

namespace ostrivane::desktop {

QImage RenderProgramIcon(QSize size) {
    if (size.width() <= 0 || size.height() <= 0) return {};
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QSvgRenderer renderer(QString::fromLatin1(kProgramIconResource));
    if (!renderer.isValid()) return {};
    const int side = std::min(size.width(), size.height());
    QPainter painter(&image);
    renderer.render(&painter, QRectF((size.width() - side) / 2, (size.height() - side) / 2, side, side));
    return image;
}

}  // namespace ostrivane::desktop
