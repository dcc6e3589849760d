#include "widgets/KeyedStatusBar.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>

KeyedStatusBar::KeyedStatusBar(QWidget* parent) : QFrame(parent), m_layout(new QHBoxLayout(this))
{
    m_layout->setContentsMargins(2, 2, 2, 2);
    m_layout->setSpacing(2);
}

void KeyedStatusBar::AddPanel(const QString& key, const QString& text, const QString& toolTip, bool stretch)
{
    auto* panel = new QLabel(text, this);
    panel->setObjectName(key);
    // A panel with a caption is named by its key; one that shows changing text (the status)
    // is read out by that text, and its key describes it.
    if (!text.isEmpty())
        panel->setAccessibleName(key);
    else
        panel->setAccessibleDescription(key);
    panel->setToolTip(toolTip);
    panel->setFrameShape(QFrame::StyledPanel);
    panel->setFrameShadow(QFrame::Sunken);
    panel->setMargin(2);
    panel->setCursor(stretch ? Qt::ArrowCursor : Qt::PointingHandCursor);
    panel->installEventFilter(this);
    m_layout->addWidget(panel, stretch ? 1 : 0);
}

QLabel* KeyedStatusBar::Panel(const QString& key) const
{
    return findChild<QLabel*>(key, Qt::FindDirectChildrenOnly);
}

void KeyedStatusBar::SetPanelText(const QString& key, const QString& text)
{
    if (QLabel* panel = Panel(key))
        panel->setText(text);
}

QString KeyedStatusBar::PanelText(const QString& key) const
{
    QLabel* panel = Panel(key);
    return panel ? panel->text() : QString();
}

bool KeyedStatusBar::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::MouseButtonRelease) {
        auto* mouse = static_cast<QMouseEvent*>(event);
        auto* panel = qobject_cast<QLabel*>(watched);
        if (panel && mouse->button() == Qt::LeftButton &&
            panel->rect().contains(mouse->position().toPoint())) {
            emit PanelClick(panel->objectName());
            return true;
        }
    }
    return QFrame::eventFilter(watched, event);
}
