#pragma once

#include <QFrame>
#include <QString>

class QLabel;
class QHBoxLayout;

// A status bar of keyed panels. Each panel is named by its key, carries a tool tip and
// reports a click with its key.
class KeyedStatusBar : public QFrame
{
    Q_OBJECT
public:
    explicit KeyedStatusBar(QWidget* parent = nullptr);

    void AddPanel(const QString& key, const QString& text, const QString& toolTip, bool stretch = false);
    QLabel* Panel(const QString& key) const;
    void SetPanelText(const QString& key, const QString& text);
    QString PanelText(const QString& key) const;

signals:
    void PanelClick(const QString& key);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QHBoxLayout* m_layout;
};
