#include "Owners.h"
#include "alarms/AlarmListView.h"
#include "alarms/AlarmPanel.h"
#include "alarms/frmAlarm.h"
#include "widgets/FileDialog.h"
#include "widgets/MessageBox.h"
#include "widgets/TimeBox.h"

#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QFileDialog>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QTreeWidget>

namespace {

const QByteArray LogAll = "[General]\nLogOn=1\nLogSafetyOnly=False\nDefaultInterval=00:20\n";

// The alarm panel over the alarm desk, after start-up, shown.
struct Panel
{
    explicit Panel(const QByteArray& ini = LogAll) : desk(ini)
    {
        panel = desk.Place(new AlarmPanel(desk.alarms, desk.windows, desk.prefs));
        QVERIFY(desk.Start());
        desk.host.show();
    }
    template <typename T>
    T* Find(const char* name) const
    {
        return desk.Find<T>(QString::fromLatin1(name));
    }
    QPushButton* Button(const char* name) const { return Find<QPushButton>(name); }
    TimeBox* Expire() const { return Find<TimeBox>("edtExpire"); }
    AlarmListView* List() const { return Find<AlarmListView>("lstAlarms"); }
    AlarmRecord& Alarm(int n) const { return desk.Alarms().At(n); }
    AlarmListView::Row Row(int n) const { return List()->RowByTag(QStringLiteral(" %1").arg(n)); }

    void TypeTime(const QString& digits) const
    {
        Expire()->setFocus();
        Expire()->selectAll();
        QTest::keyClicks(Expire(), digits);
    }
    // A new alarm with a message and a time (or interval), set or not.
    int Add(const QString& message, const QString& digits, bool timer = false, bool set = true) const
    {
        QTest::mouseClick(Button("cmdNew"), Qt::LeftButton);
        auto* text = Find<QLineEdit>("txtMessage");
        text->selectAll();
        QTest::keyClicks(text, message);
        if (timer)
            Find<QRadioButton>("optTimer")->click();
        TypeTime(digits);
        if (set)
            QTest::mouseClick(Button("cmdSet"), Qt::LeftButton);
        return desk.Alarms().SelectedAlarm;
    }

    Owners desk;
    AlarmPanel* panel = nullptr;
};

// A safety alarm filled in as a timer of 00:20 at 10:00 (not set), made a clock time of
// 14:00 and set by a check-in's Reset.
void SetClockAlarmByACheckIn(Panel& p)
{
    QTest::mouseClick(p.Button("cmdNew"), Qt::LeftButton);
    p.Find<QLineEdit>("txtMessage")->setText(QStringLiteral("Crew 9"));
    p.Find<QCheckBox>("chkSafety")->click();
    QVERIFY(p.Alarm(1).TypeTimer);
    QVERIFY(!p.Alarm(1).AlarmSet);
    p.Find<QRadioButton>("optClock")->click();
    p.TypeTime(QStringLiteral("1400"));
    QCOMPARE(p.Alarm(1).Expire, QStringLiteral("14:00"));
    QTest::mouseClick(p.Button("cmdCheckIn"), Qt::LeftButton);
    frmAlarm* checkIn = p.desk.Windows().AlarmWindow(1);
    QVERIFY(checkIn && checkIn->CheckIn());
    checkIn->findChild<QLineEdit*>(QStringLiteral("txtLocation"))->setText(QStringLiteral("Ridge"));
    checkIn->cmdReset_Click();
    QVERIFY(p.Alarm(1).AlarmSet);
}

// Alarm 1 stays quiet at 10:20 (the moment of the timer it was filled in as) and until
// 13:59, and rings at 14:00, on time.
void RingsAtTwoOnly(Panel& p)
{
    for (const QTime at : {QTime(10, 20), QTime(10, 21), QTime(13, 59)}) {
        p.desk.clock.Set(Owners::Monday, at);
        QVERIFY2(!p.desk.alarms.ScanExpiries(at.hour(), at.minute()), qPrintable(at.toString()));
    }
    p.desk.clock.Set(Owners::Monday, QTime(14, 0));
    QVERIFY(p.desk.alarms.ScanExpiries(14, 0));
    QCOMPARE(p.Alarm(1).LateMinutes, 0);
}

} // namespace

class TestAlarmPanel : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        MessageBox::SetTestMode(true);
        FileDialog::SetTestMode(true);
    }
    void cleanup()
    {
        MessageBox::SetTestMode(false);
        FileDialog::SetTestMode(false);
    }

    void controlsCarryTheirCaptionsAndToolTips()
    {
        Panel p;
        QCOMPARE(p.List()->Report()->headerItem()->text(0), QStringLiteral("Alarm Message"));
        QCOMPARE(p.List()->Report()->headerItem()->text(1), QStringLiteral("Expires"));
        QCOMPARE(p.List()->Report()->headerItem()->text(2), QStringLiteral("Status"));
        QCOMPARE(p.List()->Report()->headerItem()->text(3), QStringLiteral("Last Safety Check"));
        QCOMPARE(p.Find<QRadioButton>("optClock")->text(), QStringLiteral(" Clock Time "));
        QCOMPARE(p.Find<QRadioButton>("optTimer")->text(), QStringLiteral("Timer (Interval)"));
        QCOMPARE(p.Find<QCheckBox>("chkRepeat")->text(), QStringLiteral("Retain"));
        QCOMPARE(p.Find<QCheckBox>("chkSafety")->text(), QStringLiteral("Safety Check"));
        QCOMPARE(p.Button("cmdCheckIn")->toolTip(), QStringLiteral("Acknowledge Check In and log location"));
        QCOMPARE(p.Button("cmdSet")->toolTip(), QStringLiteral("Set/Cancel alarm"));
        QCOMPARE(p.Button("cmdDelete")->toolTip(), QStringLiteral("Delete alarm"));
        QCOMPARE(p.Button("cmdView")->text(), QStringLiteral("Icons View"));
        QCOMPARE(p.Button("cmdView")->toolTip(), QStringLiteral("Change alarms view"));
        QCOMPARE(p.Button("cmdCloseAlarm")->toolTip(), QStringLiteral("Close alarms"));
        QCOMPARE(p.Find<QRadioButton>("optNamed")->toolTip(), QStringLiteral("Default sound will be used"));
        QVERIFY(!p.Button("cmdCheckIn")->isEnabled());
    }

    void newAlarmStartsAsNewAndSelectsItsMessage()
    {
        Panel p;
        QTest::mouseClick(p.Button("cmdNew"), Qt::LeftButton);
        QCOMPARE(p.desk.Alarms().AlarmCount, 1);
        QCOMPARE(p.desk.Alarms().SelectedAlarm, 1);
        const AlarmRecord& a = p.Alarm(1);
        QCOMPARE(a.Message, QStringLiteral("<NEW>"));
        QCOMPARE(a.TypeTimer, false);
        QCOMPARE(a.Interval, QStringLiteral("00:00"));
        QCOMPARE(a.Repeat, qint16(0));
        QCOMPARE(p.Row(1).Text, QStringLiteral("   <NEW>"));
        auto* text = p.Find<QLineEdit>("txtMessage");
        QCOMPARE(text->text(), QStringLiteral("<NEW>"));
        QCOMPARE(text->selectedText(), QStringLiteral("<NEW>"));
        QVERIFY(p.Find<QRadioButton>("optClock")->isChecked());
        // The rebuilt list blanks the new, unset alarm's expiry, and the editor shows it.
        QCOMPARE(a.Expire, QStringLiteral(" "));
        QCOMPARE(p.Expire()->Text(), QStringLiteral("__:__"));
        QCOMPARE(p.Button("cmdSet")->text(), QStringLiteral(" Set Alarm"));
    }

    void thirtyFirstAlarmIsRefusedWithAMessage()
    {
        Panel p;
        for (int i = 0; i < 30; ++i)
            QTest::mouseClick(p.Button("cmdNew"), Qt::LeftButton);
        QVERIFY(MessageBox::Shown().isEmpty());
        QTest::mouseClick(p.Button("cmdNew"), Qt::LeftButton);
        QCOMPARE(p.desk.Alarms().AlarmCount, 30);
        QCOMPARE(MessageBox::Shown().size(), 1);
        QCOMPARE(MessageBox::Shown()[0].Text, QStringLiteral("Maximum alarms exceeded, can't create new"));
        QCOMPARE(MessageBox::Shown()[0].ButtonSet, MessageBox::Buttons::OkOnly);
        QCOMPARE(p.List()->RowCount(), 30);
    }

    void settingAClockAlarmLogsItAndShowsItSet()
    {
        Panel p;
        const int n = p.Add(QStringLiteral("Convoy departs"), QStringLiteral("0730"));
        const AlarmRecord& a = p.Alarm(n);
        QVERIFY(a.AlarmSet);
        QCOMPARE(a.Expire, QStringLiteral("07:30"));
        QCOMPARE(p.Button("cmdSet")->text(), QStringLiteral(" Cancel Alarm"));
        QCOMPARE(p.Row(n).Text, QStringLiteral("   Convoy departs"));
        QCOMPARE(p.Row(n).Expires, QStringLiteral("07:30"));
        QCOMPARE(p.Row(n).Status, QStringLiteral("Set"));
        QCOMPARE(p.List()->toolTip(), QStringLiteral("   Convoy departs , alarm set to Expire at 07:30"));
        QVERIFY(p.desk.TodaysLog().endsWith(
            Owners::Line("10:00", "SA", 0, "Alarm set for ", "Convoy departs", ", expires at 07:30")));
    }

    void cancellingLogsItAndBlanksTheExpiry()
    {
        Panel p;
        const int n = p.Add(QStringLiteral("Convoy departs"), QStringLiteral("0730"));
        QTest::mouseClick(p.Button("cmdSet"), Qt::LeftButton);
        QVERIFY(!p.Alarm(n).AlarmSet);
        QCOMPARE(p.Button("cmdSet")->text(), QStringLiteral(" Set Alarm"));
        // Cancel puts "00:00", and the rebuild of the list makes an unset expiry one blank.
        QCOMPARE(p.Alarm(n).Expire, QStringLiteral(" "));
        QCOMPARE(p.Row(n).Status, QStringLiteral(" "));
        QVERIFY(p.desk.TodaysLog().endsWith(
            Owners::Line("10:00", "CA", 0, "Alarm canceled for ", "Convoy departs", "")));
        QCOMPARE(p.Expire()->Text(), QStringLiteral("__:__"));
        // Setting it again writes a fresh expiry from the box.
        p.TypeTime(QStringLiteral("0745"));
        QTest::mouseClick(p.Button("cmdSet"), Qt::LeftButton);
        QCOMPARE(p.Alarm(n).Expire, QStringLiteral("07:45"));
        QCOMPARE(p.Row(n).Status, QStringLiteral("Set"));
    }

    void timerSetLateInTheEveningExpiresAfterMidnight()
    {
        Panel p;
        p.desk.clock.Set(Owners::Monday, QTime(23, 30, 10));
        const int n = p.Add(QStringLiteral("Night patrol"), QStringLiteral("0045"), true);
        QCOMPARE(p.Alarm(n).TypeTimer, true);
        QCOMPARE(p.Alarm(n).Interval, QStringLiteral("00:45"));
        QCOMPARE(p.Alarm(n).Expire, QStringLiteral("00:15"));
        QCOMPARE(p.Row(n).Expires, QStringLiteral("00:15"));
        QVERIFY(p.desk.TodaysLog().endsWith(
            Owners::Line("23:30", "SA", 0, "Alarm set for ", "Night patrol", ", expires at 00:15")));
    }

    void timerSetAtTheLastInstantOfAMinuteLogsTheMinuteItCountsFrom()
    {
        // The clock moves on a second at every reading once Set is pressed at 10:21:59: the
        // entry and the expiry count from the same reading.
        Panel p;
        const int n = p.Add(QStringLiteral("Pump check"), QStringLiteral("0015"), true, false);
        p.desk.clock.Set(Owners::Monday, QTime(10, 21, 59));
        p.desk.clock.StepEachRead(1000);
        QTest::mouseClick(p.Button("cmdSet"), Qt::LeftButton);
        p.desk.clock.StepEachRead(0);
        QVERIFY(p.Alarm(n).AlarmSet);
        QCOMPARE(p.Alarm(n).Expire, QStringLiteral("10:36"));
        QVERIFY2(p.desk.TodaysLog().endsWith(
                     Owners::Line("10:21", "SA", 0, "Alarm set for ", "Pump check", ", expires at 10:36")),
                 p.desk.TodaysLog().right(120).constData());
    }

    void timerSetOnACorrectedClockCountsFromTheCorrectedMinuteInThePcsDay()
    {
        // The PC runs seven minutes slow: Set at 23:58:30 on the PC is at 00:05 of the
        // corrected clock, which the expiry and the entry go by; the entry goes into the
        // PC's day.
        Panel p(QByteArray(LogAll).replace("[General]\n", "[General]\nInetMinOffset=7\n"));
        const int n = p.Add(QStringLiteral("Pump check"), QStringLiteral("0015"), true, false);
        p.desk.clock.Set(Owners::Monday, QTime(23, 58, 30));
        p.desk.clock.StepEachRead(1000);
        QTest::mouseClick(p.Button("cmdSet"), Qt::LeftButton);
        p.desk.clock.StepEachRead(0);
        QVERIFY(p.Alarm(n).AlarmSet);
        QCOMPARE(p.Alarm(n).Expire, QStringLiteral("00:20"));
        const QByteArray log = TestEnvironment::ReadFile(p.desk.LogPath(Owners::Monday));
        QVERIFY2(log.endsWith(
                     Owners::Line("00:05", "SA", 0, "Alarm set for ", "Pump check", ", expires at 00:20")),
                 log.right(120).constData());
    }

    void deletingAlarmTwoOfFourMovesTheOthersUp()
    {
        Panel p;
        for (const char* m : {"One", "Two", "Three", "Four"})
            p.Add(QString::fromLatin1(m), QStringLiteral("0800"), false, false);
        p.desk.Alarms().SelectedAlarm = 2;
        p.desk.alarms.SetSelectedAlarm();
        QTest::mouseClick(p.Button("cmdDelete"), Qt::LeftButton);
        QCOMPARE(p.desk.Alarms().AlarmCount, 3);
        QCOMPARE(p.Alarm(2).Message, QStringLiteral("Three"));
        QCOMPARE(p.Alarm(3).Message, QStringLiteral("Four"));
        QCOMPARE(p.Alarm(4).Message, QString());
        QCOMPARE(p.List()->RowCount(), 3);
        QCOMPARE(p.Row(2).Text, QStringLiteral("   Three"));
        QCOMPARE(p.desk.TodaysLog().count("\r\n"), 1); // only "ST": a delete is not logged
        QTest::mouseClick(p.Button("cmdNew"), Qt::LeftButton);
        QCOMPARE(p.desk.Alarms().AlarmCount, 4);
        QCOMPARE(p.Alarm(4).Message, QStringLiteral("<NEW>"));
    }

    void typingIntoTheTimeOfASetAlarmUnsetsItWithoutALogEntry()
    {
        Panel p;
        const int n = p.Add(QStringLiteral("Convoy"), QStringLiteral("0730"));
        const QByteArray before = p.desk.TodaysLog();
        p.Expire()->setCursorPosition(0);
        QTest::keyClick(p.Expire(), Qt::Key_0);
        QVERIFY(!p.Alarm(n).AlarmSet);
        QCOMPARE(p.Button("cmdSet")->text(), QStringLiteral(" Set Alarm"));
        QVERIFY(p.Button("cmdSet")->isDefault());
        QCOMPARE(p.Row(n).Status, QStringLiteral("   "));
        QCOMPARE(p.desk.TodaysLog(), before);
    }

    void leavingTheTimeBoxSavesTheTable()
    {
        Panel p;
        p.Add(QStringLiteral("Convoy"), QStringLiteral("0730"), false, false);
        QCOMPARE(p.desk.Stored(QStringLiteral("Alarms/Count")), QString());
        QFocusEvent out(QEvent::FocusOut, Qt::TabFocusReason);
        QApplication::sendEvent(p.Expire(), &out);
        QCOMPARE(p.desk.Stored(QStringLiteral("Alarms/Count")), QStringLiteral("1"));
    }

    void ticking_SafetyCheck_MakesARetainedTimerWithTheDefaultInterval()
    {
        Panel p;
        QTest::mouseClick(p.Button("cmdNew"), Qt::LeftButton);
        p.Find<QCheckBox>("chkSafety")->click();
        const AlarmRecord& a = p.Alarm(1);
        QCOMPARE(a.Safety, qint16(1));
        QCOMPARE(a.Repeat, qint16(1));
        QCOMPARE(a.TypeTimer, true);
        QCOMPARE(a.Interval, QStringLiteral("00:20"));
        QCOMPARE(p.Expire()->Text(), QStringLiteral("00:20"));
        QVERIFY(p.Find<QCheckBox>("chkRepeat")->isChecked());
        QVERIFY(p.Find<QRadioButton>("optTimer")->isChecked());
        QVERIFY(p.Button("cmdCheckIn")->isEnabled());
        // Unticking "Retain" also unticks "Safety Check" and disables "Check In".
        p.Find<QCheckBox>("chkRepeat")->click();
        QCOMPARE(a.Repeat, qint16(0));
        QCOMPARE(a.Safety, qint16(0));
        QVERIFY(!p.Find<QCheckBox>("chkSafety")->isChecked());
        QVERIFY(!p.Button("cmdCheckIn")->isEnabled());
    }

    void safetyAlarmSetIsLoggedInSafetyOnlyMode()
    {
        Panel p("[General]\nLogOn=1\n");
        p.Add(QStringLiteral("Tea"), QStringLiteral("1030"));
        QCOMPARE(p.desk.TodaysLog(), QByteArray());
        QTest::mouseClick(p.Button("cmdNew"), Qt::LeftButton);
        p.Find<QLineEdit>("txtMessage")->setText(QStringLiteral("Crew 7"));
        p.Find<QCheckBox>("chkSafety")->click();
        QTest::mouseClick(p.Button("cmdSet"), Qt::LeftButton);
        QCOMPARE(p.desk.TodaysLog(),
                 Owners::Line("10:00", "SA", 1, "Alarm set for ", "Crew 7", ", expires at 10:15"));
    }

    void anUnreadableTimeIsNotArmed()
    {
        Panel p;
        QTest::mouseClick(p.Button("cmdNew"), Qt::LeftButton);
        p.Expire()->setCursorPosition(0);
        QTest::keyClicks(p.Expire(), QStringLiteral("1"));
        QTest::mouseClick(p.Button("cmdSet"), Qt::LeftButton);
        QVERIFY(!p.Alarm(1).AlarmSet);
        QCOMPARE(MessageBox::Shown().size(), 1);
        QCOMPARE(MessageBox::Shown()[0].Text,
                 QStringLiteral("The alarm was not set: type its time as hh:mm (00:00 to 23:59)."));
        QCOMPARE(p.desk.TodaysLog().count("\r\n"), 1); // only "ST"
        p.Find<QRadioButton>("optTimer")->click();
        QTest::mouseClick(p.Button("cmdSet"), Qt::LeftButton);
        QCOMPARE(MessageBox::Shown().last().Text,
                 QStringLiteral("The alarm was not set: type its interval as hh:mm (00:00 to 23:59)."));
        QVERIFY(!p.Alarm(1).AlarmSet);
    }

    void whileAnAlarmRingsItsButtonsAreLocked()
    {
        Panel p;
        const int n = p.Add(QStringLiteral("Convoy"), QStringLiteral("1001"));
        p.desk.alarms.ScanExpiries(10, 1);
        QVERIFY(p.Alarm(n).Ringing);
        for (const char* b : {"cmdDelete", "cmdSet", "cmdCheckIn"}) {
            QVERIFY2(!p.Button(b)->isEnabled(), b);
            QCOMPARE(p.Button(b)->toolTip(), QStringLiteral("This Alarm is ringing, acknowledge first"));
        }
        p.desk.Windows().AlarmWindow(n)->cmdStop_Click();
        // The stopped alarm was deleted: the editor shows the remaining state, unlocked.
        QCOMPARE(p.desk.Alarms().AlarmCount, 0);
        p.Add(QStringLiteral("Next"), QStringLiteral("1100"));
        QVERIFY(p.Button("cmdSet")->isEnabled());
        QVERIFY(p.Button("cmdDelete")->isEnabled());
    }

    void enterInTheTimeBoxSetsTheAlarm()
    {
        Panel p;
        p.Add(QStringLiteral("By enter"), QStringLiteral("0815"), false, false);
        QTest::keyClick(p.Expire(), Qt::Key_Return);
        QVERIFY(p.Alarm(1).AlarmSet);
        QCOMPARE(p.Alarm(1).Expire, QStringLiteral("08:15"));
        QVERIFY(p.desk.TodaysLog().endsWith(
            Owners::Line("10:00", "SA", 0, "Alarm set for ", "By enter", ", expires at 08:15")));
    }

    void editorFollowsWhenStopDeletesTheSelectedAlarm()
    {
        Panel p;
        p.Add(QStringLiteral("Keep"), QStringLiteral("1100"));
        p.Add(QStringLiteral("Rings"), QStringLiteral("1001"));
        p.desk.alarms.ScanExpiries(10, 1);
        p.desk.Windows().AlarmWindow(2)->cmdStop_Click();
        QCOMPARE(p.desk.Alarms().AlarmCount, 1);
        QCOMPARE(p.desk.Alarms().SelectedAlarm, 1);
        QCOMPARE(p.Find<QLineEdit>("txtMessage")->text(), QStringLiteral("Keep"));
        QVERIFY(p.Button("cmdSet")->isEnabled());
        p.Find<QLineEdit>("txtMessage")->setText(QStringLiteral("Kept"));
        QCOMPARE(p.Alarm(1).Message, QStringLiteral("Kept"));
    }

    void selectingARowFillsTheEditor()
    {
        Panel p;
        p.Add(QStringLiteral("Clock one"), QStringLiteral("0730"));
        p.Add(QStringLiteral("Timer two"), QStringLiteral("0145"), true);
        auto* report = p.List()->Report();
        QTest::mouseClick(report->viewport(), Qt::LeftButton, {},
                          report->visualItemRect(report->topLevelItem(0)).center());
        QCOMPARE(p.desk.Alarms().SelectedAlarm, 1);
        QCOMPARE(p.Find<QLineEdit>("txtMessage")->text(), QStringLiteral("Clock one"));
        QCOMPARE(p.Expire()->Text(), QStringLiteral("07:30"));
        QVERIFY(p.Find<QRadioButton>("optClock")->isChecked());
        QTest::mouseClick(report->viewport(), Qt::LeftButton, {},
                          report->visualItemRect(report->topLevelItem(1)).center());
        QCOMPARE(p.desk.Alarms().SelectedAlarm, 2);
        QCOMPARE(p.Expire()->Text(), QStringLiteral("01:45")); // a timer shows its interval
        QVERIFY(p.Find<QRadioButton>("optTimer")->isChecked());
        QCOMPARE(p.Button("cmdSet")->text(), QStringLiteral(" Cancel Alarm"));
        // Filling the editor writes nothing back.
        QCOMPARE(p.Alarm(1).Expire, QStringLiteral("07:30"));
        QCOMPARE(p.Alarm(2).Interval, QStringLiteral("01:45"));
    }

    void editingTheMessageChangesTheRecordAndTheRow()
    {
        Panel p;
        p.Add(QStringLiteral("Old"), QStringLiteral("0730"), false, false);
        p.Find<QLineEdit>("txtMessage")->setText(QStringLiteral("Renamed"));
        QCOMPARE(p.Alarm(1).Message, QStringLiteral("Renamed"));
        QCOMPARE(p.Row(1).Text, QStringLiteral("   Renamed"));
    }

    void headerClicksSortAndFlipTheDirection()
    {
        Panel p;
        p.Add(QStringLiteral("Bravo"), QStringLiteral("0900"));
        p.Add(QStringLiteral("Alpha"), QStringLiteral("0800"));
        p.Add(QStringLiteral("Charlie"), QStringLiteral("0700"));
        auto* header = p.List()->Report()->header();
        emit header->sectionClicked(0);
        QCOMPARE(p.List()->TagsInOrder(),
                 (QStringList{QStringLiteral(" 3"), QStringLiteral(" 1"), QStringLiteral(" 2")}));
        emit header->sectionClicked(1);
        QCOMPARE(p.List()->TagsInOrder(),
                 (QStringList{QStringLiteral(" 3"), QStringLiteral(" 2"), QStringLiteral(" 1")}));
        emit header->sectionClicked(1);
        QCOMPARE(p.List()->TagsInOrder(),
                 (QStringList{QStringLiteral(" 1"), QStringLiteral(" 2"), QStringLiteral(" 3")}));
        QCOMPARE(p.List()->SelectedTag(), QStringLiteral(" 3")); // the selected alarm stays selected
    }

    void viewButtonSwitchesBetweenIconsAndList()
    {
        Panel p;
        p.Add(QStringLiteral("One"), QStringLiteral("0900"));
        QTest::mouseClick(p.Button("cmdView"), Qt::LeftButton);
        QVERIFY(p.List()->IsIconView());
        QCOMPARE(p.Button("cmdView")->text(), QStringLiteral("List View"));
        QTest::mouseClick(p.Button("cmdView"), Qt::LeftButton);
        QVERIFY(!p.List()->IsIconView());
        QCOMPARE(p.Button("cmdView")->text(), QStringLiteral("Icons View"));
    }

    void namedSoundComesFromTheFileDialog()
    {
        Panel p;
        p.Add(QStringLiteral("One"), QStringLiteral("0900"), false, false);
        auto* named = p.Find<QRadioButton>("optNamed");
        FileDialog::SetNextAnswer(QStringLiteral("/sounds/bell.wav"));
        QTest::mousePress(named, Qt::LeftButton);
        QCOMPARE(FileDialog::Asked(), 1);
        QCOMPARE(p.Alarm(1).AudioPath, QStringLiteral("/sounds/bell.wav"));
        QVERIFY(named->isChecked());
        QCOMPARE(named->toolTip(), QStringLiteral("/sounds/bell.wav"));
        // Cancelling the dialog goes back to the default sound.
        QTest::mousePress(named, Qt::LeftButton);
        QCOMPARE(p.Alarm(1).AudioPath, QString());
        QVERIFY(p.Find<QRadioButton>("optDefault")->isChecked());
        QCOMPARE(named->toolTip(), QStringLiteral("Default sound will be used"));
    }

    void checkInNeedsASafetyAlarm()
    {
        Panel p;
        // With no alarm the button is off, and asked directly it does nothing.
        QVERIFY(!p.Button("cmdCheckIn")->isEnabled());
        p.panel->cmdCheckIn_Click();
        QVERIFY(p.desk.Windows().OpenAlarmWindows().isEmpty());
        p.Add(QStringLiteral("Plain"), QStringLiteral("0900"));
        QVERIFY(!p.Button("cmdCheckIn")->isEnabled());
        p.panel->cmdCheckIn_Click();
        QVERIFY(p.desk.Windows().OpenAlarmWindows().isEmpty());
        // A safety alarm that is deleted leaves the button off again.
        QTest::mouseClick(p.Button("cmdDelete"), Qt::LeftButton);
        QTest::mouseClick(p.Button("cmdNew"), Qt::LeftButton);
        p.Find<QCheckBox>("chkSafety")->click();
        QVERIFY(p.Button("cmdCheckIn")->isEnabled());
        QTest::mouseClick(p.Button("cmdDelete"), Qt::LeftButton);
        QCOMPARE(p.desk.Alarms().AlarmCount, 0);
        QVERIFY(!p.Button("cmdCheckIn")->isEnabled());
    }

    void doubleClickOnASafetyAlarmChecksIn()
    {
        Panel p;
        QTest::mouseClick(p.Button("cmdNew"), Qt::LeftButton);
        p.Find<QCheckBox>("chkSafety")->click();
        QTest::mouseClick(p.Button("cmdSet"), Qt::LeftButton);
        emit p.List()->ItemDoubleClick(QStringLiteral(" 1"));
        const auto windows = p.desk.Windows().OpenAlarmWindows();
        QCOMPARE(windows.size(), 1);
        QVERIFY(windows[0]->CheckIn());
        QVERIFY(!p.Alarm(1).AlarmSet);
    }

    void noteButtonDoesNothingWithAnEmptyList()
    {
        Panel p;
        QTest::mouseClick(p.Button("cmdNote"), Qt::LeftButton);
        QVERIFY(!p.desk.host.findChild<QWidget*>(QStringLiteral("frmNote")));
        p.Add(QStringLiteral("One"), QStringLiteral("0900"));
        QTest::mouseClick(p.Button("cmdNote"), Qt::LeftButton);
        QVERIFY(p.desk.host.findChild<QWidget*>(QStringLiteral("frmNote")));
    }

    void alarmWithAnOpenCheckInWindowCannotBeDeleted()
    {
        Panel p;
        for (const char* crew : {"Crew A", "Crew B"}) {
            QTest::mouseClick(p.Button("cmdNew"), Qt::LeftButton);
            p.Find<QLineEdit>("txtMessage")->setText(QString::fromLatin1(crew));
            p.Find<QCheckBox>("chkSafety")->click();
            QTest::mouseClick(p.Button("cmdSet"), Qt::LeftButton);
        }
        p.desk.Alarms().SelectedAlarm = 1;
        p.desk.alarms.SetSelectedAlarm();
        QTest::mouseClick(p.Button("cmdCheckIn"), Qt::LeftButton);
        frmAlarm* checkIn = p.desk.Windows().AlarmWindow(1);
        QVERIFY(checkIn && checkIn->CheckIn());
        QVERIFY(!p.Button("cmdDelete")->isEnabled());
        QCOMPARE(p.Button("cmdDelete")->toolTip(),
                 QStringLiteral("This Alarm's window is open, answer it first"));
        p.panel->cmdDelete_Click(); // even asked directly, it refuses
        QCOMPARE(p.desk.Alarms().AlarmCount, 2);
        // The window still reports for its own crew.
        checkIn->findChild<QLineEdit*>(QStringLiteral("txtLocation"))->setText(QStringLiteral("Ridge"));
        checkIn->cmdReset_Click();
        QCOMPARE(p.Alarm(1).Message, QStringLiteral("Crew A"));
        QVERIFY(p.Alarm(1).LastPosition.endsWith(QStringLiteral(" Ridge")));
        QVERIFY(p.Alarm(2).LastPosition.isEmpty());
        QVERIFY(p.desk.TodaysLog().endsWith(Owners::Line("10:00", "SA", 1, "Alarm acknowleged, reset for ",
                                                         "Crew A", ", expires at 10:20, Ridge")));
    }

    // A safety alarm filled in as a timer, made a clock time and set by a check-in's Reset
    // rings at its clock time only: the moment the timer would have had plays no part.
    void clockAlarmSetByACheckInRingsAtItsClockTimeOnly()
    {
        Panel p;
        SetClockAlarmByACheckIn(p);
        QVERIFY(!p.Alarm(1).TypeTimer);
        RingsAtTwoOnly(p);
    }

    // Nor when the operator then makes it a timer again without touching its time.
    void clockAlarmSetByACheckInAndMadeATimerRingsAtItsTimeOnly()
    {
        Panel p;
        SetClockAlarmByACheckIn(p);
        p.Find<QRadioButton>("optTimer")->click();
        QVERIFY(p.Alarm(1).TypeTimer);
        QVERIFY(p.Alarm(1).AlarmSet);
        RingsAtTwoOnly(p);
    }

    void timerOfNoTimeIsRefused()
    {
        Panel p;
        p.Add(QStringLiteral("Nothing"), QStringLiteral("0000"), true);
        QVERIFY(!p.Alarm(1).AlarmSet);
        QCOMPARE(MessageBox::Shown().size(), 1);
        QCOMPARE(MessageBox::Shown()[0].Text,
                 QStringLiteral("The alarm was not set: a timer of 00:00 would not ring until tomorrow.\r"
                                "Type an interval from 00:01 to 23:59."));
        QCOMPARE(p.desk.TodaysLog().count("\r\n"), 1); // only "ST"
    }

    void clockTimeOfThePresentMinuteIsRefused()
    {
        Panel p;
        p.desk.clock.Set(Owners::Monday, QTime(10, 15, 30));
        p.Add(QStringLiteral("Now"), QStringLiteral("1015"));
        QVERIFY(!p.Alarm(1).AlarmSet);
        QCOMPARE(MessageBox::Shown().size(), 1);
        QCOMPARE(MessageBox::Shown()[0].Text,
                 QStringLiteral("The alarm was not set: 10:15 is the present minute, so it would not ring "
                                "until tomorrow.\rType a later time."));
        // The next minute is fine.
        p.TypeTime(QStringLiteral("1016"));
        QTest::mouseClick(p.Button("cmdSet"), Qt::LeftButton);
        QVERIFY(p.Alarm(1).AlarmSet);
    }

    void enterOnASetAlarmDoesNotCancelIt()
    {
        Panel p;
        p.Add(QStringLiteral("By enter"), QStringLiteral("0815"), false, false);
        QTest::keyClick(p.Expire(), Qt::Key_Return);
        QVERIFY(p.Alarm(1).AlarmSet);
        const QByteArray logAfterSet = p.desk.TodaysLog();
        QTest::keyClick(p.Expire(), Qt::Key_Return);
        QVERIFY(p.Alarm(1).AlarmSet);
        QCOMPARE(p.Button("cmdSet")->text(), QStringLiteral(" Cancel Alarm"));
        QCOMPARE(p.desk.TodaysLog(), logAfterSet);
    }

    void soundChosenWhileAnotherAlarmExpiresGoesToTheAlarmItWasChosenFor()
    {
        Panel p;
        p.Add(QStringLiteral("Rings"), QStringLiteral("1001"));
        p.Add(QStringLiteral("Edited"), QStringLiteral("1100"));
        QCOMPARE(p.desk.Alarms().SelectedAlarm, 2);
        FileDialog::SetTestMode(false);
        const QString bell = QDir(p.desk.env.WorkFolder()).filePath(QStringLiteral("bell.wav"));
        TestEnvironment::WriteFile(bell, "RIFF");
        bool answered = false;
        // While the file dialog is open, alarm 1 goes off; then the operator picks the file.
        QTimer::singleShot(0, &p.desk.host, [&] {
            p.desk.alarms.ScanExpiries(10, 1);
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            if (dialog) {
                dialog->selectFile(bell);
                static_cast<QDialog*>(dialog)->accept();
                answered = true;
            } else {
                for (QWidget* top : QApplication::topLevelWidgets())
                    if (auto* other = qobject_cast<QDialog*>(top); other && other->isVisible())
                        other->reject();
            }
        });
        QTest::mousePress(p.Find<QRadioButton>("optNamed"), Qt::LeftButton);
        QVERIFY(answered);
        QVERIFY(p.Alarm(1).Ringing);
        QCOMPARE(p.Alarm(1).AudioPath, QString());
        QCOMPARE(p.Alarm(2).AudioPath, bell);
        QCOMPARE(p.desk.Alarms().SelectedAlarm, 2);
        QCOMPARE(p.Find<QLineEdit>("txtMessage")->text(), QStringLiteral("Edited"));
    }

    void restoredAlarmIsShownInTheEditor()
    {
        Panel p("[Alarms]\nCount=1\nMessage%201=Wake crew\nExpire%201=07:30\nAlarmSet%201=True\n");
        QCOMPARE(p.Find<QLineEdit>("txtMessage")->text(), QStringLiteral("Wake crew"));
        QCOMPARE(p.Expire()->Text(), QStringLiteral("07:30"));
        QCOMPARE(p.Button("cmdSet")->text(), QStringLiteral(" Cancel Alarm"));
        QCOMPARE(p.Row(1).Status, QStringLiteral("Set"));
    }
};

QTEST_MAIN(TestAlarmPanel)
#include "tst_alarmpanel.moc"
