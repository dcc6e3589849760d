#include "widgets/Icons.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace {

QPixmap Canvas(int size)
{
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    return pixmap;
}

} // namespace

QIcon PinIcon(bool pinned)
{
    QPixmap pixmap = Canvas(20);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(Qt::black, 1.2));
    p.setBrush(pinned ? QColor(200, 30, 30) : QColor(150, 150, 150));
    // Head, collar and needle of a push pin; an unpinned pin lies tilted.
    if (!pinned) {
        p.translate(10, 10);
        p.rotate(45);
        p.translate(-10, -10);
    }
    p.drawEllipse(QRectF(5, 1, 10, 8));
    p.drawRect(QRectF(7, 8, 6, 3));
    p.drawLine(QPointF(10, 11), QPointF(10, 19));
    return QIcon(pixmap);
}

QIcon HelpIcon()
{
    QPixmap pixmap = Canvas(20);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(QColor(20, 60, 160), 1.5));
    p.setBrush(QColor(220, 230, 255));
    p.drawEllipse(QRectF(1, 1, 18, 18));
    QFont font = p.font();
    font.setBold(true);
    font.setPixelSize(13);
    p.setFont(font);
    p.drawText(QRectF(1, 1, 18, 18), Qt::AlignCenter, QStringLiteral("?"));
    return QIcon(pixmap);
}

QIcon AppIcon()
{
    QPixmap pixmap = Canvas(64);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(QColor(30, 30, 30), 4));
    p.setBrush(QColor(250, 220, 60));
    p.drawEllipse(QRectF(4, 4, 56, 56));
    p.setPen(QPen(QColor(30, 30, 30), 5, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(QPointF(32, 32), QPointF(32, 14));
    p.drawLine(QPointF(32, 32), QPointF(45, 38));
    return QIcon(pixmap);
}
