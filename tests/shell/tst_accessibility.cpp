#include "Desk.h"
#include "alarms/frmAlarm.h"
#include "help/frmHelp.h"
#include "props/frmClockProps.h"
#include "shell/frmMessage.h"
#include "sync/SyncScheduler.h"
#include "widgets/MessageBox.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QAccessibleActionInterface>
#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>

namespace {

const QByteArray SafetyAlarm =
    "[General]\nLogOn=1\nLogSafetyOnly=False\nDefaultInterval=00:20\n[Alarms]\nCount=1\nMessage%201=Crew 7\n"
    "TypeTimer%201=True\nInterval%201=00:15\nExpire%201=10:15\nAlarmSet%201=True\nRepeat%201=1\nSafety%201="
    "1\n";

QString AccessibleName(QWidget* w)
{
    QAccessibleInterface* iface = QAccessible::queryAccessibleInterface(w);
    return iface ? iface->text(QAccessible::Name) : QString();
}

// What a label or a button shows as text (a button's mnemonic marker is not read out).
QString Shown(QWidget* w)
{
    if (auto* label = qobject_cast<QLabel*>(w))
        return label->text();
    if (auto* button = qobject_cast<QAbstractButton*>(w))
        return QString(button->text()).remove(u'&');
    return {};
}

// Every label and button under `top` is read out as it shows; one that shows no text (a
// picture) still has a name.
void CheckReadOutAsShown(QWidget* top)
{
    QList<QWidget*> controls;
    for (QLabel* label : top->findChildren<QLabel*>())
        controls << label;
    for (QAbstractButton* button : top->findChildren<QAbstractButton*>())
        controls << button;
    for (QWidget* w : controls) {
        // Qt's own parts inside a control (a table's corner button) are not ours to name.
        if (w->objectName().isEmpty() || w->objectName().startsWith(QStringLiteral("qt_")))
            continue;
        const QString shown = Shown(w);
        const QString name = AccessibleName(w);
        const QByteArray what =
            (QString::fromLatin1(w->metaObject()->className()) + u' ' + w->objectName() + u'/' +
             (w->parentWidget() ? w->parentWidget()->objectName() : QString()) +
             QStringLiteral(": shows \"") + shown + QStringLiteral("\", read out as \"") + name + u'"')
                .toUtf8();
        const bool picture = shown.isEmpty() && (qobject_cast<QAbstractButton*>(w) ||
                                                 !qobject_cast<QLabel*>(w)->pixmap().isNull());
        if (picture)
            QVERIFY2(!name.isEmpty(), what.constData());
        else
            QVERIFY2(name == shown, what.constData());
    }
}

} // namespace

// Screen readers hear what the program shows, and can work its switches.
class TestAccessibility : public QObject
{
    Q_OBJECT
private slots:
    void init() { MessageBox::SetTestMode(true); }
    void cleanup() { MessageBox::SetTestMode(false); }

    void mainWindowAndItsPanelsAreReadOutAsTheyShow()
    {
        Desk desk(SafetyAlarm);
        desk.clock.Set(Desk::Monday, QTime(10, 0, 10));
        QVERIFY(desk.window->Load());
        desk.window->show();
        desk.Tick(QTime(10, 0, 10, 500));
        desk.Find<QLabel>(QStringLiteral("Status")); // the status line is filled
        QVERIFY(!desk.Status().isEmpty());
        for (const char* panel : {"Alarm", "Log", "Calc"}) {
            desk.ClickPanel(QString::fromLatin1(panel));
            CheckReadOutAsShown(desk.window.get());
        }
        // Captions that change are read out as they change.
        desk.ClickPanel(QStringLiteral("Alarm"));
        auto* set = desk.Find<QPushButton>(QStringLiteral("cmdSet"));
        QCOMPARE(set->text(), QStringLiteral(" Cancel Alarm"));
        QCOMPARE(AccessibleName(set), QStringLiteral(" Cancel Alarm"));
        QCOMPARE(AccessibleName(desk.Find<QLabel>(QStringLiteral("Status"))), desk.Status());
        QCOMPARE(AccessibleName(desk.Find<QLabel>(QStringLiteral("lblClock1_1"))), desk.FaceText(1));
    }

    void alarmWindowIsReadOutAsItShows()
    {
        Desk desk(SafetyAlarm);
        desk.clock.Set(Desk::Monday, QTime(10, 14, 50));
        QVERIFY(desk.window->Load());
        desk.window->CheckAlarms(10, 15);
        frmAlarm* w = desk.Windows().AlarmWindow(1);
        QVERIFY(w);
        CheckReadOutAsShown(w);
        QCOMPARE(AccessibleName(w->findChild<QLabel*>(QStringLiteral("lblMessage"))),
                 QStringLiteral("Crew 7"));
        QCOMPARE(AccessibleName(w->findChild<QLabel*>(QStringLiteral("lblCaption"))),
                 QStringLiteral("Expired Safety Check Alarm"));
        QCOMPARE(AccessibleName(w->findChild<QLabel*>(QStringLiteral("lblExpired"))),
                 QStringLiteral("Expired on\n10:15"));
        QCOMPARE(AccessibleName(w->findChild<QPushButton*>(QStringLiteral("cmdStop"))),
                 QStringLiteral("Terminate"));
    }

    void syncWindowAndItsNoticeAreReadOutAsTheyShow()
    {
        Desk desk(
            "[General]\nAutoSync=-1\nAutoSyncHrs=1\nSyncSite=time.example\nLastSync=2026-11-16 08:00:00\n");
        QVERIFY(desk.window->Load());
        frmAutoSync* run = desk.window->Scheduler().Run();
        QVERIFY(run);
        CheckReadOutAsShown(run);
        QCOMPARE(AccessibleName(run->findChild<QLabel*>(QStringLiteral("lblStatus"))),
                 QStringLiteral("Connecting ..."));
        run->Timer1_Timer();
        frmMessage* notice = desk.window->SyncMessage();
        QVERIFY(notice);
        CheckReadOutAsShown(notice);
        QCOMPARE(AccessibleName(notice->findChild<QLabel*>(QStringLiteral("lblMessage"))),
                 QStringLiteral("Unable to connect to site.\nCheck site address or Intenet connection\n"
                                "Will try again at: 10:15"));
    }

    void propertiesDialogIsReadOutAsItShows()
    {
        Desk desk("[General]\nAutoSync=-1\nInetMinOffset=3\n");
        QVERIFY(desk.window->Load());
        frmClockProps& props = desk.window->ClockProps();
        props.Form_Load();
        props.show();
        CheckReadOutAsShown(&props);
        // Boxes without a caption of their own are read out by their labels.
        QCOMPARE(AccessibleName(props.findChild<QCheckBox*>(QStringLiteral("chkWinStart"))),
                 QStringLiteral("Start with Windows"));
        QCOMPARE(AccessibleName(props.findChild<QWidget*>(QStringLiteral("txtFore"))),
                 QStringLiteral("Font Color"));
        QCOMPARE(AccessibleName(props.findChild<QLabel*>(QStringLiteral("lblOffset"))),
                 QStringLiteral("Time Difference:  3 minutes"));
    }

    void switchWorkedByAScreenReaderRunsItsHandler()
    {
        Desk desk("[General]\nLogOn=1\nLogSafetyOnly=False\n");
        QVERIFY(desk.window->Load());
        desk.window->show();
        desk.ClickPanel(QStringLiteral("Log"));
        QCOMPARE(desk.Status(), QStringLiteral("0 alarms, 0 set, Logging On, System Clock"));
        auto* log = desk.Find<QCheckBox>(QStringLiteral("chkLog"));
        QAccessibleInterface* iface = QAccessible::queryAccessibleInterface(log);
        QVERIFY(iface && iface->actionInterface());
        QVERIFY(iface->actionInterface()->actionNames().contains(QAccessibleActionInterface::toggleAction()));
        iface->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
        QTRY_VERIFY(!log->isChecked());
        QCOMPARE(desk.Status(), QStringLiteral("0 alarms, 0 set, Logging Off, System Clock"));
        QVERIFY(!desk.Find<QRadioButton>(QStringLiteral("optAll"))->isEnabled());
        QVERIFY(!desk.window->Log().Switches().LogOn);
    }
};

QTEST_MAIN(TestAccessibility)
#include "tst_accessibility.moc"
