#pragma once

#include <QTimer>
#include <QWidget>

class QLabel;

// The splash window: shown first, replaced by the main window after two seconds or at
// the first key press.
class frmSplash : public QWidget
{
    Q_OBJECT
public:
    explicit frmSplash(QWidget* parent = nullptr);

    // "Release 2.1.10" for version 2.1.10.
    static QString ReleaseText(int major, int minor, int revision);
    void tmrSplash_Timer();

signals:
    // Time to bring up the main window; raised once.
    void Finished();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void Finish();

    QLabel* m_lblProductName;
    QLabel* m_lblRev;
    QTimer m_tmrSplash{this};
    bool m_finished = false;
};
