#include "Owners.h"
#include "alarms/AlarmPanel.h"
#include "logbook/frmNote.h"
#include "widgets/MessageBox.h"
#include "widgets/TimeBox.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace {
const QByteArray TwoAlarms = "[General]\nLogOn=1\nLogSafetyOnly=False\n[Alarms]\nCount=2\n"
                             "Message%201=Tea\nExpire%201=10:30\nAlarmSet%201=True\n"
                             "Message%202=Crew 7\nExpire%202=11:00\nAlarmSet%202=True\nSafety%202=1\n";

// The owners after start-up, with the alarm panel placed as the main window places it.
struct NoteDesk : Owners
{
    explicit NoteDesk(const QByteArray& ini) : Owners(ini)
    {
        panel = Place(new AlarmPanel(alarms, windows, prefs));
    }
    AlarmPanel* panel = nullptr;
};

frmNote* OpenNote(NoteDesk& desk)
{
    desk.panel->OpenNote();
    const auto notes = desk.host.findChildren<frmNote*>();
    return notes.isEmpty() ? nullptr : notes.last();
}
} // namespace

class TestFrmNote : public QObject
{
    Q_OBJECT
private slots:
    void init() { MessageBox::SetTestMode(true); }
    void cleanup() { MessageBox::SetTestMode(false); }

    void noteIsWrittenWithTheAlarmAndTheTime()
    {
        NoteDesk desk(TwoAlarms);
        QVERIFY(desk.Start());
        frmNote* note = OpenNote(desk);
        QVERIFY(note);
        QCOMPARE(note->windowTitle(), QStringLiteral("Write a note to the Logbook (Max. 60 characters)"));
        QCOMPARE(note->findChild<QLabel*>(QStringLiteral("lblAlarm"))->text(), QStringLiteral("Tea"));
        QCOMPARE(note->findChild<QLabel*>(QStringLiteral("Label1"))->text(), QStringLiteral("Time for Note"));
        QCOMPARE(note->findChild<TimeBox*>(QStringLiteral("edtTime"))->Text(), QStringLiteral("10:00"));
        QCOMPARE(note->findChild<QPushButton*>(QStringLiteral("cmdOK"))->text(),
                 QStringLiteral("Record in Logbook"));
        note->findChild<QLineEdit*>(QStringLiteral("txtNote"))->setText(QStringLiteral("kettle on"));
        note->cmdOK_Click();
        QVERIFY(desk.TodaysLog().endsWith(Owners::Line("10:00", "NT", 0, "Tea: ", "kettle on", " (10:00)")));
    }

    void newlySelectedAlarmIsUsedWhenTheNoteIsRecorded()
    {
        NoteDesk desk(TwoAlarms);
        QVERIFY(desk.Start());
        frmNote* note = OpenNote(desk);
        desk.Alarms().SelectedAlarm = 2;
        desk.alarms.SetSelectedAlarm();
        note->findChild<QLineEdit*>(QStringLiteral("txtNote"))->setText(QStringLiteral("at the ridge"));
        note->cmdOK_Click();
        QCOMPARE(note->findChild<QLabel*>(QStringLiteral("lblAlarm"))->text(), QStringLiteral("Tea"));
        QVERIFY(desk.TodaysLog().endsWith(
            Owners::Line("10:00", "NT", 1, "Crew 7: ", "at the ridge", " (10:00)")));
    }

    void partlyFilledTimeIsRecordedAsItStands()
    {
        NoteDesk desk(TwoAlarms);
        QVERIFY(desk.Start());
        frmNote* note = OpenNote(desk);
        auto* time = note->findChild<TimeBox*>(QStringLiteral("edtTime"));
        time->SetText(QString());
        time->setCursorPosition(0);
        QTest::keyClicks(time, QStringLiteral("1"));
        time->setCursorPosition(3);
        QTest::keyClicks(time, QStringLiteral("3"));
        note->cmdOK_Click();
        QVERIFY(desk.TodaysLog().endsWith(Owners::Line("10:00", "NT", 0, "Tea: ", "", " (1_:3_)")));
    }

    void noteOfSixtyCharactersIsAcceptedAndMoreIsRefused()
    {
        NoteDesk desk(TwoAlarms);
        QVERIFY(desk.Start());
        frmNote* note = OpenNote(desk);
        auto* text = note->findChild<QLineEdit*>(QStringLiteral("txtNote"));
        const QString sixty(60, u'x');
        QTest::keyClicks(text, sixty + QStringLiteral("yz"));
        QCOMPARE(text->text(), sixty);
    }

    void noteOnAnOrdinaryAlarmIsDroppedInSafetyOnlyMode()
    {
        NoteDesk desk(
            "[General]\nLogOn=1\n[Alarms]\nCount=1\nMessage%201=Tea\nExpire%201=10:30\nAlarmSet%201=True\n");
        QVERIFY(desk.Start());
        frmNote* note = OpenNote(desk);
        note->cmdOK_Click();
        QCOMPARE(desk.TodaysLog(), QByteArray());
    }

    void cancelWritesNothing()
    {
        NoteDesk desk(TwoAlarms);
        QVERIFY(desk.Start());
        const QByteArray before = desk.TodaysLog();
        frmNote* note = OpenNote(desk);
        note->cmdCancel_Click();
        QCOMPARE(desk.TodaysLog(), before);
    }

    void severalNotesMayBeOpenAtOnce()
    {
        NoteDesk desk(TwoAlarms);
        QVERIFY(desk.Start());
        OpenNote(desk);
        OpenNote(desk);
        QCOMPARE(desk.host.findChildren<frmNote*>().size(), 2);
    }
};

QTEST_MAIN(TestFrmNote)
#include "tst_frmnote.moc"
