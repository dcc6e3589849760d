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

namespace {

// An icon at 16 and 32 pixels, drawn by `draw` on a 32-unit canvas.
QIcon TwoSizeIcon(void (*draw)(QPainter&))
{
    QIcon icon;
    for (int size : {16, 32}) {
        QPixmap pixmap = Canvas(size);
        QPainter p(&pixmap);
        p.setRenderHint(QPainter::Antialiasing);
        p.scale(size / 32.0, size / 32.0);
        draw(p);
        p.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

void DrawShield(QPainter& p)
{
    // A shield with a cross.
    QPainterPath shield;
    shield.moveTo(16, 2);
    shield.lineTo(29, 7);
    shield.cubicTo(29, 19, 23, 26, 16, 30);
    shield.cubicTo(9, 26, 3, 19, 3, 7);
    shield.closeSubpath();
    p.setPen(QPen(QColor(120, 0, 0), 2));
    p.setBrush(QColor(220, 30, 30));
    p.drawPath(shield);
    p.setPen(Qt::NoPen);
    p.setBrush(Qt::white);
    p.drawRect(QRectF(14, 8, 4, 15));
    p.drawRect(QRectF(8.5, 13.5, 15, 4));
}

void DrawAlarmClock(QPainter& p)
{
    p.setPen(QPen(QColor(30, 30, 30), 2));
    p.setBrush(QColor(250, 220, 60));
    p.drawEllipse(QRectF(5, 7, 22, 22));
    p.setBrush(QColor(30, 30, 30));
    p.drawEllipse(QRectF(3, 3, 8, 6));
    p.drawEllipse(QRectF(21, 3, 8, 6));
    p.drawLine(QPointF(16, 18), QPointF(16, 11));
    p.drawLine(QPointF(16, 18), QPointF(21, 20));
}

} // namespace

// The list's pictures are drawn once: every rebuild of the list uses them for every row.
QIcon SafetyIcon()
{
    static const QIcon icon = TwoSizeIcon(DrawShield);
    return icon;
}

QIcon AlarmIcon()
{
    static const QIcon icon = TwoSizeIcon(DrawAlarmClock);
    return icon;
}

QPixmap BellPicture(bool swung)
{
    QPixmap pixmap = Canvas(48);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    p.translate(24, 6);
    p.rotate(swung ? 18 : -18);
    QPainterPath bell;
    bell.moveTo(0, 0);
    bell.cubicTo(12, 0, 12, 16, 16, 30);
    bell.lineTo(-16, 30);
    bell.cubicTo(-12, 16, -12, 0, 0, 0);
    p.setPen(QPen(QColor(90, 60, 0), 2));
    p.setBrush(QColor(250, 200, 40));
    p.drawPath(bell);
    p.setBrush(QColor(90, 60, 0));
    p.drawEllipse(QRectF(-4, 28, 8, 8));
    return pixmap;
}
