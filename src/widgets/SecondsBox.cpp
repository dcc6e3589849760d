#include "widgets/SecondsBox.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFrame>

namespace {

// The margins a line edit keeps between its frame and its text.
constexpr int HorizontalMargin = 2;
constexpr int VerticalMargin = 1;

// Screen readers see the box as a static text named by its accessible name, whose value is
// what it shows.
class SecondsBoxAccessible final : public QAccessibleWidget
{
public:
    explicit SecondsBoxAccessible(SecondsBox* box) : QAccessibleWidget(box, QAccessible::StaticText) {}
    QString text(QAccessible::Text t) const override
    {
        const auto* box = static_cast<const SecondsBox*>(widget());
        if (t == QAccessible::Value)
            return box->text();
        if (t == QAccessible::Name && box->accessibleName().isEmpty())
            return box->text();
        return QAccessibleWidget::text(t);
    }
    QAccessible::State state() const override
    {
        QAccessible::State s = QAccessibleWidget::state();
        s.readOnly = true;
        return s;
    }
};

QAccessibleInterface* MakeAccessible(const QString& className, QObject* object)
{
    if (className == QLatin1String("SecondsBox") && object && object->isWidgetType())
        return new SecondsBoxAccessible(static_cast<SecondsBox*>(object));
    return nullptr;
}

QStyleOptionFrame FrameOption(const QWidget* box)
{
    QStyleOptionFrame option;
    option.initFrom(box);
    option.rect = box->rect();
    option.lineWidth = box->style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, box);
    option.midLineWidth = 0;
    option.state |= QStyle::State_Sunken | QStyle::State_ReadOnly;
    option.features = QStyleOptionFrame::None;
    return option;
}

} // namespace

SecondsBox::SecondsBox(QWidget* parent) : QWidget(parent)
{
    static const bool factoryInstalled = [] {
        QAccessible::installFactory(MakeAccessible);
        return true;
    }();
    Q_UNUSED(factoryInstalled);
    // The pixmap covers the whole box: nothing beneath needs painting.
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::NoFocus);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void SecondsBox::setText(const QString& text)
{
    if (text == m_text)
        return;
    m_text = text;
    // Painted at once rather than at the next pass of the event loop: the change comes from
    // a timer, and the pass the repaint would wait for is one more round of the loop.
    repaint();
    if (QAccessible::isActive()) {
        QAccessibleValueChangeEvent event(this, text);
        QAccessible::updateAccessibility(&event);
    }
    emit textChanged(m_text);
}

QSize SecondsBox::sizeHint() const
{
    // The size of a line edit with this font.
    ensurePolished();
    const QFontMetrics metrics(font());
    const int height = qMax(metrics.height(), 14) + 2 * VerticalMargin;
    const int width = metrics.horizontalAdvance(QLatin1Char('x')) * 17 + 2 * HorizontalMargin;
    QStyleOptionFrame option = FrameOption(this);
    return style()->sizeFromContents(QStyle::CT_LineEdit, &option, QSize(width, height), this);
}

void SecondsBox::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.drawPixmap(0, 0, Drawn(m_text));
}

const QPixmap& SecondsBox::Drawn(const QString& text)
{
    const qreal ratio = devicePixelRatioF();
    auto found = m_drawn.find(text);
    if (found != m_drawn.end() && found->devicePixelRatio() == ratio)
        return *found;
    // Kept small even if the box is given other texts than the seconds.
    if (m_drawn.size() >= 128)
        m_drawn.clear();
    QPixmap pixmap(size() * ratio);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(palette().color(QPalette::Window));
    QPainter painter(&pixmap);
    const QStyleOptionFrame option = FrameOption(this);
    style()->drawPrimitive(QStyle::PE_PanelLineEdit, &option, &painter, this);
    if (!text.isEmpty()) {
        // Placed as a centred line edit places its text.
        const QRect area =
            style()
                ->subElementRect(QStyle::SE_LineEditContents, &option, this)
                .adjusted(HorizontalMargin, VerticalMargin, -HorizontalMargin, -VerticalMargin);
        const QFontMetrics metrics(font());
        const int x = area.x() + (area.width() - metrics.horizontalAdvance(text)) / 2;
        const int y = area.y() + (area.height() - metrics.height() + 1) / 2 + metrics.ascent();
        painter.setPen(palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::Text));
        painter.setFont(font());
        painter.drawText(x, y, text);
    }
    painter.end();
    return *m_drawn.insert(text, pixmap);
}

void SecondsBox::changeEvent(QEvent* event)
{
    switch (event->type()) {
    case QEvent::FontChange:
    case QEvent::PaletteChange:
    case QEvent::StyleChange:
    case QEvent::EnabledChange:
        m_drawn.clear();
        updateGeometry();
        update();
        break;
    default:
        break;
    }
    QWidget::changeEvent(event);
}

void SecondsBox::resizeEvent(QResizeEvent* event)
{
    m_drawn.clear();
    QWidget::resizeEvent(event);
}
