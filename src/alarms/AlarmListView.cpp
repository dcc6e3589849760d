#include "alarms/AlarmListView.h"

#include "widgets/Icons.h"

#include <QHeaderView>
#include <QListWidget>
#include <QStackedWidget>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {
constexpr int TagRole = Qt::UserRole + 1;
}

AlarmListView::AlarmListView(QWidget* parent)
    : QWidget(parent), m_stack(new QStackedWidget(this)), m_report(new QTreeWidget), m_icons(new QListWidget)
{
    setObjectName(QStringLiteral("lstAlarms"));
    setAccessibleName(QStringLiteral("lstAlarms"));
    m_report->setObjectName(QStringLiteral("lstAlarmsReport"));
    m_report->setHeaderLabels({QStringLiteral("Alarm Message"), QStringLiteral("Expires"),
                               QStringLiteral("Status"), QStringLiteral("Last Safety Check")});
    m_report->setRootIsDecorated(false);
    m_report->setUniformRowHeights(true);
    m_report->setIconSize(QSize(16, 16));
    m_report->setSortingEnabled(false);
    m_report->header()->setSectionsClickable(true);
    m_report->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    m_report->header()->setStretchLastSection(false);
    m_report->setColumnWidth(1, 60);
    m_report->setColumnWidth(2, 50);
    m_report->setColumnWidth(3, 150);
    m_icons->setObjectName(QStringLiteral("lstAlarmsIcons"));
    m_icons->setViewMode(QListView::IconMode);
    m_icons->setIconSize(QSize(32, 32));
    m_icons->setResizeMode(QListView::Adjust);
    m_icons->setMovement(QListView::Static);
    m_stack->addWidget(m_report);
    m_stack->addWidget(m_icons);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_stack);

    connect(m_report, &QTreeWidget::itemClicked, this,
            [this](QTreeWidgetItem* item) { emit ItemClick(item->data(0, TagRole).toString()); });
    connect(m_report, &QTreeWidget::itemDoubleClicked, this,
            [this](QTreeWidgetItem* item) { emit ItemDoubleClick(item->data(0, TagRole).toString()); });
    connect(m_icons, &QListWidget::itemClicked, this,
            [this](QListWidgetItem* item) { emit ItemClick(item->data(TagRole).toString()); });
    connect(m_icons, &QListWidget::itemDoubleClicked, this,
            [this](QListWidgetItem* item) { emit ItemDoubleClick(item->data(TagRole).toString()); });
    connect(m_report->header(), &QHeaderView::sectionClicked, this, &AlarmListView::ColumnClick);
}

void AlarmListView::Clear()
{
    m_report->clear();
    m_icons->clear();
}

void AlarmListView::AddRow(const Row& row)
{
    const QIcon icon = row.Safety ? SafetyIcon() : AlarmIcon();
    auto* item = new QTreeWidgetItem(m_report, {row.Text, row.Expires, row.Status, row.LastCheck});
    item->setIcon(0, icon);
    item->setData(0, TagRole, row.Tag);
    auto* iconItem = new QListWidgetItem(icon, row.Text.trimmed(), m_icons);
    iconItem->setData(TagRole, row.Tag);
    iconItem->setData(Qt::UserRole + 2, row.Text);
}

int AlarmListView::RowCount() const
{
    return m_report->topLevelItemCount();
}

QTreeWidgetItem* AlarmListView::ReportItem(const QString& tag) const
{
    for (int i = 0; i < m_report->topLevelItemCount(); ++i)
        if (m_report->topLevelItem(i)->data(0, TagRole).toString() == tag)
            return m_report->topLevelItem(i);
    return nullptr;
}

QListWidgetItem* AlarmListView::IconItem(const QString& tag) const
{
    for (int i = 0; i < m_icons->count(); ++i)
        if (m_icons->item(i)->data(TagRole).toString() == tag)
            return m_icons->item(i);
    return nullptr;
}

AlarmListView::Row AlarmListView::RowByTag(const QString& tag) const
{
    const QTreeWidgetItem* item = ReportItem(tag);
    if (!item)
        return {};
    return {item->text(0), false, item->text(1), item->text(2), item->text(3), tag};
}

QStringList AlarmListView::TagsInOrder() const
{
    QStringList tags;
    for (int i = 0; i < m_report->topLevelItemCount(); ++i)
        tags << m_report->topLevelItem(i)->data(0, TagRole).toString();
    return tags;
}

void AlarmListView::SetRowText(const QString& tag, const QString& text)
{
    if (QTreeWidgetItem* item = ReportItem(tag))
        item->setText(0, text);
    if (QListWidgetItem* item = IconItem(tag))
        item->setText(text.trimmed());
}

void AlarmListView::SetRowExpires(const QString& tag, const QString& text)
{
    if (QTreeWidgetItem* item = ReportItem(tag))
        item->setText(1, text);
}

void AlarmListView::SetRowStatus(const QString& tag, const QString& text)
{
    if (QTreeWidgetItem* item = ReportItem(tag))
        item->setText(2, text);
}

void AlarmListView::SelectTag(const QString& tag)
{
    if (QTreeWidgetItem* item = ReportItem(tag)) {
        m_report->setCurrentItem(item);
        m_report->scrollToItem(item);
    }
    if (QListWidgetItem* item = IconItem(tag)) {
        m_icons->setCurrentItem(item);
        m_icons->scrollToItem(item);
    }
}

QString AlarmListView::SelectedTag() const
{
    const QTreeWidgetItem* item = m_report->currentItem();
    return item ? item->data(0, TagRole).toString() : QString();
}

void AlarmListView::SetIconView(bool icons)
{
    m_stack->setCurrentWidget(icons ? static_cast<QWidget*>(m_icons) : static_cast<QWidget*>(m_report));
}

bool AlarmListView::IsIconView() const
{
    return m_stack->currentWidget() == m_icons;
}

void AlarmListView::SortByColumnFlipped(int column)
{
    m_sortOrder = m_sortOrder == Qt::AscendingOrder ? Qt::DescendingOrder : Qt::AscendingOrder;
    m_report->sortItems(column, m_sortOrder);
    m_report->header()->setSortIndicatorShown(true);
    m_report->header()->setSortIndicator(column, m_sortOrder);
    m_icons->sortItems(m_sortOrder);
}
