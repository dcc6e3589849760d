#include "ManualClock.h"
#include "calc/CalcPanel.h"
#include "clock/ZoneClock.h"
#include "widgets/TimeBox.h"

#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QtTest>

namespace {

const QColor Yellow(255, 255, 0);
const QColor WhiteColour(255, 255, 255);

// A calculator panel on its own, with a hand-set clock and a home zone the test sets. Its
// zone list is filled as the main window fills it: the zone tags with their offsets,
// starting on UTC.
struct Calc
{
    Calc()
    {
        panel.SetNowSource([this]() -> QString { return InternetNow(clock, 0); });
        panel.SetHomeZoneSource([this] { return home; });
        for (int i = 0; i < ZoneCount; ++i)
            panel.ZoneList()->addItem(ZoneTag(i), Zones.at(std::size_t(i)).Offset);
        panel.ZoneList()->setCurrentIndex(UtcZone);
    }

    // Shows the panel as an active window, so that the focus can move.
    bool ShowActive()
    {
        panel.show();
        panel.activateWindow();
        return QTest::qWaitForWindowActive(&panel);
    }

    template <typename T>
    T* Find(const QString& name) const
    {
        T* child = panel.findChild<T*>(name);
        if (!child)
            qWarning("no child named %s", qPrintable(name));
        return child;
    }
    TimeBox* Box(const QString& name) const { return Find<TimeBox>(name); }
    QString Text(const QString& name) const { return Box(name)->Text(); }
    void Choose(const QString& option) { QTest::mouseClick(Find<QRadioButton>(option), Qt::LeftButton); }
    // Types over the whole of a box, as a user does after entering it.
    void Type(const QString& name, const QString& keys)
    {
        TimeBox* box = Box(name);
        box->setSelection(0, int(box->Text().size()));
        QTest::keyClicks(box, keys);
    }

    ManualClock clock{QDateTime(QDate(2026, 11, 16), QTime(14, 10, 30))};
    CalcHomeZone home{-8, 0}; // Pacific, standard time
    CalcPanel panel;
};

} // namespace

class TestCalcPanel : public QObject
{
    Q_OBJECT
private slots:
    void controlsCarryTheirNamesAndCaptions()
    {
        Calc calc;
        QCOMPARE(calc.Find<QLabel>(QStringLiteral("Label1"))->text(), QStringLiteral("Solve for -->"));
        QCOMPARE(calc.Find<QLabel>(QStringLiteral("Label4"))->text(), QStringLiteral("Elapsed"));
        QCOMPARE(calc.Find<QLabel>(QStringLiteral("Label5"))->text(), QStringLiteral("Local Time"));
        for (const char* name : {"optETD", "optETA", "optElapsed"}) {
            auto* option = calc.Find<QRadioButton>(QString::fromLatin1(name));
            QVERIFY(option);
            QCOMPARE(QAccessible::queryAccessibleInterface(option)->text(QAccessible::Name), option->text());
        }
        for (const char* name : {"edtETD", "edtElapsed", "edtETA", "edtETDUTC", "edtETAUTC"})
            QVERIFY(calc.Box(QString::fromLatin1(name)));
        QCOMPARE(calc.Find<QComboBox>(QStringLiteral("cboZone")), calc.panel.ZoneList());
        auto* tables = calc.Find<QPushButton>(QStringLiteral("cmdTables"));
        QCOMPARE(tables, calc.panel.TablesButton());
        QCOMPARE(tables->text(), QStringLiteral("Tables"));
        QCOMPARE(QAccessible::queryAccessibleInterface(tables)->text(QAccessible::Name),
                 QStringLiteral("Tables"));
        auto* close = calc.Find<QPushButton>(QStringLiteral("cmdCloseCalc"));
        QCOMPARE(close, calc.panel.CloseButton());
        QCOMPARE(close->text(), QStringLiteral("Close"));
        QCOMPARE(close->toolTip(), QStringLiteral("Close Window"));
        QVERIFY(calc.Find<QLabel>(QStringLiteral("lblSun")));
    }

    void arrivalIsTheUnknownAtFirst()
    {
        Calc calc;
        QVERIFY(calc.Find<QRadioButton>(QStringLiteral("optETA"))->isChecked());
        QVERIFY(!calc.Find<QRadioButton>(QStringLiteral("optETD"))->isChecked());
        QVERIFY(!calc.Find<QRadioButton>(QStringLiteral("optElapsed"))->isChecked());
        QCOMPARE(calc.panel.Unknown(), CalcUnknown::ETA);
        QVERIFY(calc.Box(QStringLiteral("edtETA"))->isReadOnly());
        QVERIFY(!calc.Box(QStringLiteral("edtETD"))->isReadOnly());
    }

    void initBoxesMarksTheUnknownAndMovesTheFocus_data()
    {
        QTest::addColumn<QString>("option");
        QTest::addColumn<QString>("unknown");
        QTest::addColumn<QString>("focus");
        QTest::newRow("elapsed") << QStringLiteral("optElapsed") << QStringLiteral("edtElapsed")
                                 << QStringLiteral("edtETD");
        QTest::newRow("departure") << QStringLiteral("optETD") << QStringLiteral("edtETD")
                                   << QStringLiteral("edtETA");
        QTest::newRow("arrival") << QStringLiteral("optETA") << QStringLiteral("edtETA")
                                 << QStringLiteral("edtETD");
    }
    void initBoxesMarksTheUnknownAndMovesTheFocus()
    {
        QFETCH(QString, option);
        QFETCH(QString, unknown);
        QFETCH(QString, focus);
        Calc calc;
        QVERIFY(calc.ShowActive());
        // Start from another unknown so that every box changes state.
        calc.Find<QRadioButton>(option == u"optETD" ? QStringLiteral("optElapsed") : QStringLiteral("optETD"))
            ->setChecked(true);
        calc.Box(unknown)->setFocus();
        // A box that is not the unknown is enabled again, whatever state it was left in.
        for (const char* name : {"edtETD", "edtElapsed", "edtETA"})
            if (QString::fromLatin1(name) != unknown && QString::fromLatin1(name) != focus)
                calc.Box(QString::fromLatin1(name))->setEnabled(false);
        calc.Choose(option);
        for (const char* name : {"edtETD", "edtElapsed", "edtETA"}) {
            const QString boxName = QString::fromLatin1(name);
            TimeBox* box = calc.Box(boxName);
            if (boxName == unknown) {
                QVERIFY(box->isReadOnly());
                QCOMPARE(box->palette().color(QPalette::Base), Yellow);
                QVERIFY(!(box->focusPolicy() & Qt::TabFocus));
            } else {
                QVERIFY(!box->isReadOnly());
                QVERIFY(box->isEnabled());
                QCOMPARE(box->palette().color(QPalette::Base), WhiteColour);
                QVERIFY(box->focusPolicy() & Qt::TabFocus);
            }
        }
        QCOMPARE(QApplication::focusWidget(), calc.Box(focus));
        // The box the focus went to is ready to be typed over.
        QCOMPARE(calc.Box(focus)->selectionStart(), 0);
        QCOMPARE(calc.Box(focus)->selectionLength(), 5);
    }

    void tabSkipsTheUnknownBox()
    {
        Calc calc;
        QVERIFY(calc.ShowActive());
        calc.Choose(QStringLiteral("optElapsed"));
        QCOMPARE(QApplication::focusWidget(), calc.Box(QStringLiteral("edtETD")));
        QTest::keyClick(calc.Box(QStringLiteral("edtETD")), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), calc.Box(QStringLiteral("edtETA")));
    }

    void unknownBoxCannotBeTyped()
    {
        Calc calc;
        calc.panel.InitBoxes();
        QCOMPARE(calc.Text(QStringLiteral("edtETA")), QStringLiteral("14:10"));
        calc.Type(QStringLiteral("edtETA"), QStringLiteral("0930"));
        QCOMPARE(calc.Text(QStringLiteral("edtETA")), QStringLiteral("14:10"));
    }

    void initBoxesFillsTheDepartureWithTheCurrentTime()
    {
        Calc calc;
        QCOMPARE(calc.Text(QStringLiteral("edtETD")), QStringLiteral("__:__"));
        calc.panel.InitBoxes();
        QCOMPARE(calc.Text(QStringLiteral("edtETD")), QStringLiteral("14:10"));
        // The new departure is solved at once: no travel time typed yet, so it is the arrival.
        QCOMPARE(calc.Text(QStringLiteral("edtETA")), QStringLiteral("14:10"));
    }

    void changingTheUnknownRefillsTheDepartureUnlessItIsTheUnknown()
    {
        Calc calc;
        QVERIFY(calc.ShowActive());
        calc.panel.InitBoxes();
        calc.Type(QStringLiteral("edtETD"), QStringLiteral("0900"));
        QCOMPARE(calc.Text(QStringLiteral("edtETD")), QStringLiteral("09:00"));
        calc.clock.Set(calc.clock.Today(), QTime(15, 20, 5));

        calc.Choose(QStringLiteral("optElapsed"));
        QCOMPARE(calc.Text(QStringLiteral("edtETD")), QStringLiteral("15:20"));

        calc.Type(QStringLiteral("edtETD"), QStringLiteral("0900"));
        calc.clock.Set(calc.clock.Today(), QTime(16, 45));
        calc.Choose(QStringLiteral("optETD"));
        QCOMPARE(calc.Text(QStringLiteral("edtETD")), QStringLiteral("09:00"));

        calc.Choose(QStringLiteral("optETA"));
        QCOMPARE(calc.Text(QStringLiteral("edtETD")), QStringLiteral("16:45"));
    }

    void arrivalIsSolvedPastMidnight()
    {
        Calc calc;
        calc.panel.InitBoxes();
        calc.Type(QStringLiteral("edtETD"), QStringLiteral("2330"));
        calc.Type(QStringLiteral("edtElapsed"), QStringLiteral("0100"));
        QCOMPARE(calc.Text(QStringLiteral("edtETA")), QStringLiteral("00:30"));
    }

    void elapsedCountsAnArrivalInTheSameHourAsNextDay()
    {
        Calc calc;
        QVERIFY(calc.ShowActive());
        calc.Choose(QStringLiteral("optElapsed"));
        calc.Type(QStringLiteral("edtETD"), QStringLiteral("1410"));
        calc.Type(QStringLiteral("edtETA"), QStringLiteral("1450"));
        QCOMPARE(calc.Text(QStringLiteral("edtElapsed")), QStringLiteral("00:40"));
    }

    void elapsedAcrossMidnight()
    {
        Calc calc;
        QVERIFY(calc.ShowActive());
        calc.Choose(QStringLiteral("optElapsed"));
        calc.Type(QStringLiteral("edtETD"), QStringLiteral("2200"));
        calc.Type(QStringLiteral("edtETA"), QStringLiteral("0130"));
        QCOMPARE(calc.Text(QStringLiteral("edtElapsed")), QStringLiteral("03:30"));
    }

    void departureIsSolvedBackPastMidnight()
    {
        Calc calc;
        QVERIFY(calc.ShowActive());
        calc.Choose(QStringLiteral("optETD"));
        calc.Type(QStringLiteral("edtETA"), QStringLiteral("0015"));
        calc.Type(QStringLiteral("edtElapsed"), QStringLiteral("0030"));
        QCOMPARE(calc.Text(QStringLiteral("edtETD")), QStringLiteral("23:45"));
    }

    void typingIntoASecondZoneBoxHasNoEffect()
    {
        Calc calc;
        QVERIFY(calc.ShowActive());
        calc.panel.InitBoxes();
        for (const char* name : {"edtETDUTC", "edtETAUTC"}) {
            const QString boxName = QString::fromLatin1(name);
            TimeBox* box = calc.Box(boxName);
            QCOMPARE(box->Text(), QStringLiteral("22:10"));
            box->setFocus();
            box->setCursorPosition(0);
            QTest::keyClicks(box, QStringLiteral("0915"));
            QTest::keyClick(box, Qt::Key_Backspace);
            QTest::keyClick(box, Qt::Key_Delete);
            QCOMPARE(box->Text(), QStringLiteral("22:10"));
        }
        QCOMPARE(calc.Text(QStringLiteral("edtETD")), QStringLiteral("14:10"));
        QCOMPARE(calc.Text(QStringLiteral("edtETA")), QStringLiteral("14:10"));
    }

    void secondZoneBoxesShowUtcFromStandardTime()
    {
        Calc calc;
        calc.panel.InitBoxes();
        QCOMPARE(calc.Text(QStringLiteral("edtETDUTC")), QStringLiteral("22:10"));
        // The solved arrival is written into its box, whose change refreshes its UTC box.
        calc.Type(QStringLiteral("edtElapsed"), QStringLiteral("0230"));
        QCOMPARE(calc.Text(QStringLiteral("edtETA")), QStringLiteral("16:40"));
        QCOMPARE(calc.Text(QStringLiteral("edtETAUTC")), QStringLiteral("00:40"));
        QCOMPARE(calc.Text(QStringLiteral("edtETDUTC")), QStringLiteral("22:10"));
    }

    void secondZoneUtcIsAnHourLessInDaylightTime()
    {
        Calc calc;
        calc.home = {-8, 1};
        calc.panel.InitBoxes();
        QCOMPARE(calc.Text(QStringLiteral("edtETDUTC")), QStringLiteral("21:10"));
        QCOMPARE(calc.Text(QStringLiteral("edtETAUTC")), QStringLiteral("21:10"));
    }

    void choosingAnotherZoneShiftsBothBoxesByTheDifferenceOfOffsets()
    {
        Calc calc;
        calc.home = {-8, 1}; // no daylight correction between two zones
        QVERIFY(calc.ShowActive());
        calc.panel.InitBoxes();
        calc.Type(QStringLiteral("edtElapsed"), QStringLiteral("0100"));
        QCOMPARE(calc.Text(QStringLiteral("edtETDUTC")), QStringLiteral("21:10"));
        QCOMPARE(calc.Text(QStringLiteral("edtETAUTC")), QStringLiteral("22:10"));
        // One step up the list from UTC is Eastern, three hours ahead of Pacific.
        QComboBox* zones = calc.panel.ZoneList();
        zones->setFocus();
        QTest::keyClick(zones, Qt::Key_Up);
        QCOMPARE(zones->currentText(), QStringLiteral("Eastern"));
        QCOMPARE(calc.Text(QStringLiteral("edtETDUTC")), QStringLiteral("17:10"));
        QCOMPARE(calc.Text(QStringLiteral("edtETAUTC")), QStringLiteral("18:10"));
    }

    void halfTypedDepartureFollowsTheStepRule()
    {
        Calc calc;
        QVERIFY(calc.ShowActive());
        calc.panel.InitBoxes();
        calc.Type(QStringLiteral("edtElapsed"), QStringLiteral("0100"));
        QCOMPARE(calc.Text(QStringLiteral("edtETA")), QStringLiteral("15:10"));
        QCOMPARE(calc.Text(QStringLiteral("edtETDUTC")), QStringLiteral("22:10"));

        // Typing over the selected departure leaves it half typed.
        TimeBox* etd = calc.Box(QStringLiteral("edtETD"));
        etd->setFocus();
        QCOMPARE(etd->selectedText(), QStringLiteral("14:10"));
        QTest::keyClicks(etd, QStringLiteral("1"));
        QCOMPARE(calc.Text(QStringLiteral("edtETD")), QStringLiteral("1_:__"));
        // The departure cannot be read: it stays at midnight, and the travel time is added.
        QCOMPARE(calc.Text(QStringLiteral("edtETA")), QStringLiteral("01:00"));
        QCOMPARE(calc.Text(QStringLiteral("edtETAUTC")), QStringLiteral("09:00"));
        // Its second-zone box keeps what it showed.
        QCOMPARE(calc.Text(QStringLiteral("edtETDUTC")), QStringLiteral("22:10"));

        QTest::keyClicks(etd, QStringLiteral("815"));
        QCOMPARE(calc.Text(QStringLiteral("edtETD")), QStringLiteral("18:15"));
        QCOMPARE(calc.Text(QStringLiteral("edtETA")), QStringLiteral("19:15"));
        QCOMPARE(calc.Text(QStringLiteral("edtETDUTC")), QStringLiteral("02:15"));
    }

    void halfTypedArrivalFollowsTheStepRuleForElapsed()
    {
        Calc calc;
        QVERIFY(calc.ShowActive());
        calc.Choose(QStringLiteral("optElapsed"));
        calc.Type(QStringLiteral("edtETD"), QStringLiteral("0800"));
        TimeBox* eta = calc.Box(QStringLiteral("edtETA"));
        eta->setFocus();
        QTest::keyClicks(eta, QStringLiteral("103"));
        QCOMPARE(eta->Text(), QStringLiteral("10:3_"));
        // Neither arrival step can read the box: the arrival is midnight, 8 hours after 08:00.
        QCOMPARE(calc.Text(QStringLiteral("edtElapsed")), QStringLiteral("16:00"));
        QTest::keyClicks(eta, QStringLiteral("0"));
        QCOMPARE(calc.Text(QStringLiteral("edtElapsed")), QStringLiteral("02:30"));
    }

    void enteringALocalBoxSelectsItsWholeText()
    {
        Calc calc;
        QVERIFY(calc.ShowActive());
        calc.panel.InitBoxes();
        calc.Type(QStringLiteral("edtElapsed"), QStringLiteral("0045"));
        TimeBox* etd = calc.Box(QStringLiteral("edtETD"));
        TimeBox* elapsed = calc.Box(QStringLiteral("edtElapsed"));
        etd->setFocus();
        etd->setCursorPosition(2);
        QVERIFY(!etd->hasSelectedText());

        // By the keyboard.
        QTest::keyClick(etd, Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), elapsed);
        QCOMPARE(elapsed->selectionStart(), 0);
        QCOMPARE(elapsed->selectedText(), QStringLiteral("00:45"));
        QVERIFY(!etd->hasSelectedText());

        // By the mouse: the click would place the cursor; the whole text stays selected.
        QTest::mouseClick(etd, Qt::LeftButton, {}, QPoint(etd->width() / 2, etd->height() / 2));
        QCOMPARE(QApplication::focusWidget(), etd);
        QTRY_COMPARE(etd->selectedText(), QStringLiteral("14:10"));
        QCOMPARE(etd->selectionStart(), 0);
        QVERIFY(!elapsed->hasSelectedText());
    }

    void leavingALocalBoxClearsItsSelectionAlsoForAnotherWindow()
    {
        Calc calc;
        QVERIFY(calc.ShowActive());
        calc.panel.InitBoxes();
        TimeBox* etd = calc.Box(QStringLiteral("edtETD"));
        etd->setFocus();
        QCOMPARE(etd->selectedText(), QStringLiteral("14:10"));
        // A line edit keeps its selection when its window loses the focus; the box does not.
        QWidget other;
        other.show();
        other.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&other));
        QVERIFY(!etd->hasFocus());
        QVERIFY(!etd->hasSelectedText());
    }
};

QTEST_MAIN(TestCalcPanel)
#include "tst_calcpanel.moc"
