#include "widgets/SecondsBox.h"

#include "platform/PictureLayer.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QBackingStore>
#include <QEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFrame>
#include <QWindow>

#include <cstring>

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
    // The picture covers the whole box: nothing beneath needs painting.
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::NoFocus);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

SecondsBox::~SecondsBox() = default;

void SecondsBox::SetLayers(PictureLayers* layers)
{
    DropLayer();
    m_layers = layers;
    // What the window holds under a layer taken away may be an older text.
    update();
}

void SecondsBox::setText(const QString& text)
{
    if (text == m_text)
        return;
    m_text = text;
    // Painted at once rather than at the next pass of the event loop: the change comes from
    // a timer, and the pass the repaint would wait for is one more round of the loop.
    if (!ShowOnLayer() && !PaintIntoWindow(Drawn(m_text)))
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
    painter.drawImage(0, 0, Drawn(m_text));
    painter.end();
    // A box repainted in another place (the window's layout changed) takes its layer along.
    if (m_onLayer)
        ShowOnLayer();
}

void SecondsBox::hideEvent(QHideEvent* event)
{
    HideLayer();
    QWidget::hideEvent(event);
}

bool SecondsBox::Uncovered() const
{
    // A plain child of a plain top-level window, shown, on a window the display shows.
    const QWidget* top = window();
    if (top == this || internalWinId() != 0 || nativeParentWidget() != top || !isVisible() ||
        !updatesEnabled())
        return false;
    const QWindow* handle = top->windowHandle();
    if (!handle || !handle->isExposed())
        return false;
    // Whole inside each parent, and under no shown sibling stacked above it or above one of
    // its parents, opaque or not: a see-through label laid over the box must show as well.
    QRect area = rect();
    for (const QWidget* w = this; w != top; w = w->parentWidget()) {
        const QWidget* parent = w->parentWidget();
        area.translate(w->pos());
        if (!parent->rect().contains(area))
            return false;
        const QObjectList& siblings = parent->children();
        for (qsizetype i = siblings.indexOf(const_cast<QWidget*>(w)) + 1; i < siblings.size(); ++i) {
            const QObject* sibling = siblings.at(i);
            if (!sibling->isWidgetType())
                continue;
            const auto* widget = static_cast<const QWidget*>(sibling);
            if (!widget->isWindow() && !widget->isHidden() && widget->geometry().intersects(area))
                return false;
        }
    }
    return true;
}

bool SecondsBox::ShowOnLayer()
{
    if (!m_layers)
        return false;
    // Device pixels are points here; other scales are left to the usual paint.
    if (!Uncovered() || devicePixelRatioF() != 1.0) {
        HideLayer();
        return false;
    }
    if (m_layer && m_layerWindow != window()) {
        // Moved to another window: a layer of that window's own.
        DropLayer();
    }
    if (!m_layer) {
        m_layerWindow = window();
        m_layer = m_layers->Create(window());
        if (!m_layer) {
            // This display has none: never ask again.
            m_layers = nullptr;
            return false;
        }
    }
    int number = m_kept.value(m_text, -1);
    if (number < 0) {
        // Drawn() keeps both caches small: past its limit it forgets every picture, the
        // layer's too, before this one is handed over.
        number = m_layer->Keep(Drawn(m_text));
        if (number < 0) {
            HideLayer();
            return false;
        }
        m_kept.insert(m_text, number);
    }
    if (!m_layer->Show(number, QRect(mapTo(window(), QPoint(0, 0)), size()))) {
        // The display refused the layer something: what it shows may be wrong. The box
        // paints itself from now on.
        qWarning("The seconds box's picture layer failed; the box paints itself from now on.");
        DropLayer();
        m_layers = nullptr;
        return false;
    }
    m_onLayer = true;
    return true;
}

void SecondsBox::DropLayer()
{
    HideLayer();
    m_layer.reset();
    m_kept.clear();
}

void SecondsBox::HideLayer()
{
    if (!m_onLayer)
        return;
    m_onLayer = false;
    m_layer->Hide();
}

void SecondsBox::ForgetPictures()
{
    m_drawn.clear();
    m_kept.clear();
    if (m_layer)
        m_layer->Forget();
}

bool SecondsBox::PaintIntoWindow(const QImage& drawn)
{
    // Nothing over the box: its place in the window's backing store then holds exactly what
    // its paint event would draw, so writing the picture there and flushing that place is the
    // repaint, without the round of the repaint machinery through the widget tree.
    if (!Uncovered())
        return false;
    QWidget* top = window();
    QBackingStore* store = top->backingStore();
    QWindow* handle = top->windowHandle();
    if (!store)
        return false;
    const QRect area(mapTo(top, QPoint(0, 0)), size());
    if (!QRect(QPoint(0, 0), store->size()).contains(area))
        return false;

    const QRegion region(area);
    store->beginPaint(region);
    QPaintDevice* device = store->paintDevice();
    if (!device) {
        store->endPaint();
        return false;
    }
    auto* image = device->devType() == QInternal::Image ? static_cast<QImage*>(device) : nullptr;
    if (image && image->format() == drawn.format() && image->devicePixelRatio() == 1.0 &&
        drawn.devicePixelRatio() == 1.0 && image->rect().contains(area)) {
        // The common case: the same pixel format at one pixel per point, row by row.
        const qsizetype rowBytes = qsizetype(drawn.width()) * (drawn.depth() / 8);
        for (int y = 0; y < drawn.height(); ++y)
            std::memcpy(image->scanLine(area.y() + y) + qsizetype(area.x()) * (image->depth() / 8),
                        drawn.constScanLine(y), size_t(rowBytes));
    } else {
        QPainter painter(device);
        painter.drawImage(area.topLeft(), drawn);
    }
    store->endPaint();
    store->flush(region, handle);
    return true;
}

const QImage& SecondsBox::Drawn(const QString& text)
{
    const qreal ratio = devicePixelRatioF();
    // Drawn in the pixel format of the window's backing store, so that a change can be copied
    // there row by row.
    QImage::Format format = QImage::Format_ARGB32_Premultiplied;
    if (QBackingStore* store = window()->backingStore()) {
        const QPaintDevice* device = store->paintDevice();
        if (device && device->devType() == QInternal::Image)
            format = static_cast<const QImage*>(device)->format();
    }
    auto found = m_drawn.find(text);
    if (found != m_drawn.end() && found->devicePixelRatio() == ratio && found->format() == format)
        return *found;
    // Kept small even if the box is given other texts than the seconds.
    if (m_drawn.size() >= 128)
        ForgetPictures();
    QImage picture(size() * ratio, format);
    picture.setDevicePixelRatio(ratio);
    picture.fill(palette().color(QPalette::Window));
    QPainter painter(&picture);
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
    return *m_drawn.insert(text, picture);
}

void SecondsBox::changeEvent(QEvent* event)
{
    switch (event->type()) {
    case QEvent::FontChange:
    case QEvent::PaletteChange:
    case QEvent::StyleChange:
    case QEvent::EnabledChange:
        ForgetPictures();
        updateGeometry();
        update();
        break;
    case QEvent::ParentChange:
        // Perhaps in another window now: the layer of the old one goes at once.
        DropLayer();
        break;
    default:
        break;
    }
    QWidget::changeEvent(event);
}

void SecondsBox::resizeEvent(QResizeEvent* event)
{
    ForgetPictures();
    QWidget::resizeEvent(event);
}
