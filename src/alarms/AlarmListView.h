#pragma once

#include <QWidget>

class QListWidget;
class QStackedWidget;
class QTreeWidget;
class QTreeWidgetItem;
class QListWidgetItem;
class QIcon;

// The alarm list `lstAlarms`: a report view with the columns "Alarm Message", "Expires",
// "Status" and "Last Safety Check" and small pictures, or an icon view with large
// pictures. Each row carries its alarm's tag (" 3").
class AlarmListView : public QWidget
{
    Q_OBJECT
public:
    explicit AlarmListView(QWidget* parent = nullptr);

    struct Row
    {
        QString Text;
        bool Safety = false;
        QString Expires;
        QString Status;
        QString LastCheck;
        QString Tag;
    };

    void Clear();
    void AddRow(const Row& row);
    int RowCount() const;
    // The values shown for the row with this tag (for tests and for the editor).
    Row RowByTag(const QString& tag) const;
    QStringList TagsInOrder() const;
    void SetRowText(const QString& tag, const QString& text);
    void SetRowExpires(const QString& tag, const QString& text);
    void SetRowStatus(const QString& tag, const QString& text);
    // Selects the row with this tag and scrolls it into view.
    void SelectTag(const QString& tag);
    QString SelectedTag() const;

    void SetIconView(bool icons);
    bool IsIconView() const;
    // Sorts the rows by a column as text; every call flips the direction of the last sort.
    void SortByColumnFlipped(int column);

    QTreeWidget* Report() const { return m_report; }

signals:
    void ItemClick(const QString& tag);
    void ItemDoubleClick(const QString& tag);
    void ColumnClick(int column);

private:
    QTreeWidgetItem* ReportItem(const QString& tag) const;
    QListWidgetItem* IconItem(const QString& tag) const;

    QStackedWidget* m_stack;
    QTreeWidget* m_report;
    QListWidget* m_icons;
    Qt::SortOrder m_sortOrder = Qt::AscendingOrder; // the list starts ascending; a first click flips it
};
