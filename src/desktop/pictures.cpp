#include "desktop/pictures.hpp"

#include <QFont>
#include <QIcon>
#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>

#include "desktop/program_icon.hpp"

namespace ostrivane::desktop {

namespace {

void Sign(QPainter& p, const QRectF& r, const QColor& fill, const QString& glyph) {
    p.setPen(QPen(fill.darker(140), 1.0));
    p.setBrush(fill);
    p.drawEllipse(r.adjusted(1, 1, -1, -1));
    QFont font("DejaVu Serif");
    font.setBold(true);
    font.setPixelSize(static_cast<int>(r.height() * 0.66));
    p.setFont(font);
    p.setPen(Qt::white);
    p.drawText(r, Qt::AlignCenter, glyph);
}

void Critical(QPainter& p, const QRectF& r) {
    p.setPen(QPen(QColor(120, 0, 0), 1.0));
    p.setBrush(QColor(210, 30, 30));
    p.drawEllipse(r.adjusted(1, 1, -1, -1));
    const qreal inset = r.width() * 0.31;
    QPen cross(Qt::white, r.width() * 0.11, Qt::SolidLine, Qt::RoundCap);
    p.setPen(cross);
    const QRectF c = r.adjusted(inset, inset, -inset, -inset);
    p.drawLine(c.topLeft(), c.bottomRight());
    p.drawLine(c.topRight(), c.bottomLeft());
}

void Exclamation(QPainter& p, const QRectF& r) {
    QPolygonF triangle;
    triangle << QPointF(r.center().x(), r.top() + 1) << QPointF(r.right() - 1, r.bottom() - 2)
             << QPointF(r.left() + 1, r.bottom() - 2);
    p.setPen(QPen(QColor(90, 70, 0), 1.0));
    p.setBrush(QColor(250, 205, 30));
    p.drawPolygon(triangle);
    QFont font("DejaVu Sans");
    font.setBold(true);
    font.setPixelSize(static_cast<int>(r.height() * 0.6));
    p.setFont(font);
    p.setPen(Qt::black);
    p.drawText(r.adjusted(0, r.height() * 0.2, 0, 0), Qt::AlignCenter, QStringLiteral("!"));
}

// Two sheets, one over the other.
void Copy(QPainter& p, const QRectF& r) {
    const qreal w = r.width() * 0.55, h = r.height() * 0.65;
    p.setPen(QPen(QColor(60, 60, 60), 1.0));
    p.setBrush(QColor(235, 235, 235));
    p.drawRect(QRectF(r.left() + 1, r.top() + 1, w, h));
    p.setBrush(Qt::white);
    p.drawRect(QRectF(r.right() - w - 1, r.bottom() - h - 1, w, h));
}

// A printer: body, paper on top, a tray line.
void Print(QPainter& p, const QRectF& r) {
    p.setPen(QPen(QColor(60, 60, 60), 1.0));
    p.setBrush(Qt::white);
    p.drawRect(QRectF(r.left() + r.width() * 0.28, r.top() + 1, r.width() * 0.44, r.height() * 0.4));
    p.setBrush(QColor(150, 150, 150));
    p.drawRect(QRectF(r.left() + 1, r.top() + r.height() * 0.38, r.width() - 2, r.height() * 0.4));
    p.setBrush(Qt::white);
    p.drawRect(QRectF(r.left() + r.width() * 0.28, r.top() + r.height() * 0.7, r.width() * 0.44, r.height() * 0.28));
}

}  // namespace

QPixmap DrawPicture(const std::string& name, QSize size) {
    if (size.width() <= 0 || size.height() <= 0) return {};
    if (name == kProgramIcon) return QPixmap::fromImage(RenderProgramIcon(size));
    QPixmap pixmap(size);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF r(0, 0, size.width(), size.height());
    if (name == "picCritical")
        Critical(p, r);
    else if (name == "picExclamation")
        Exclamation(p, r);
    else if (name == "picInformation")
        Sign(p, r, QColor(30, 90, 200), QStringLiteral("i"));
    else if (name == "picQuestion")
        Sign(p, r, QColor(30, 90, 200), QStringLiteral("?"));
    else if (name == "picCopy")
        Copy(p, r);
    else if (name == "picPrint")
        Print(p, r);
    else
        return {};
    return pixmap;
}

QIcon DrawIcon(const std::string& name) {
    QIcon icon;
    for (const int size : {16, 22, 24, 32, 48, 64, 128}) icon.addPixmap(DrawPicture(name, QSize(size, size)));
    return icon;
}

std::string ButtonPictureName(const std::string& buttonName) {
    if (buttonName == "cmdCopy") return "picCopy";
    if (buttonName == "cmdPrint") return "picPrint";
    return {};
}

}  // namespace ostrivane::desktop
