#include "ManualClock.h"
#include "clock/ZoneClock.h"

#include <QtTest>

namespace {
std::array<int, ZoneCount> TableOffsets()
{
    std::array<int, ZoneCount> offsets{};
    for (int i = 0; i < ZoneCount; ++i)
        offsets[std::size_t(i)] = Zones.at(std::size_t(i)).Offset;
    return offsets;
}

QString Face(QTime now, int face, int zone, bool daylight)
{
    return ZoneFaceTime(now, face, zone, TableOffsets(), daylight).value_or(QStringLiteral("none"));
}
} // namespace

class TestZoneClock : public QObject
{
    Q_OBJECT
private slots:
    void tableHoldsSixZonesInOrder()
    {
        QCOMPARE(ZoneTag(0), QStringLiteral("Alaska"));
        QCOMPARE(ZoneTag(5), QStringLiteral("UTC"));
        QCOMPARE(ZoneLongName(1), QStringLiteral("Pacific Time (GMT -8 hrs)"));
        QCOMPARE(ZoneLongName(4), QStringLiteral("Eastern Time (GMT -5 hrs)"));
        QCOMPARE(ZoneLongName(5), QStringLiteral("UTC Time (GMT)"));
        QCOMPARE(TableOffsets(), (std::array<int, ZoneCount>{-9, -8, -7, -6, -5, 0}));
    }

    void dialogKeepsItsEasternLabelSlip()
    {
        QCOMPARE(DialogZoneLabel(4), QStringLiteral("Eastern Time (GMT -4 hrs)"));
        QCOMPARE(DialogZoneLabel(3), QStringLiteral("Central Time (GMT -6 hrs)"));
    }

    void localFaceShowsInternetNowUnchanged()
    {
        QCOMPARE(Face(QTime(14, 0), 4, 4, false), QStringLiteral("14:00"));
        QCOMPARE(Face(QTime(14, 0), 4, 4, true), QStringLiteral("14:00"));
    }

    void easternExampleInStandardAndDaylightTime()
    {
        QCOMPARE(Face(QTime(14, 0), UtcZone, 4, false), QStringLiteral("19:00"));
        QCOMPARE(Face(QTime(14, 0), UtcZone, 4, true), QStringLiteral("18:00"));
        QCOMPARE(Face(QTime(14, 0), 1, 4, false), QStringLiteral("11:00"));
        QCOMPARE(Face(QTime(14, 0), 1, 4, true), QStringLiteral("11:00"));
    }

    void localZoneUtcWithDaylightTime()
    {
        const QTime now(12, 20);
        QCOMPARE(Face(now, UtcZone, UtcZone, true), QStringLiteral("11:20"));
        QCOMPARE(Face(now, 0, UtcZone, true), QStringLiteral("03:20"));
        QCOMPARE(Face(now, 1, UtcZone, true), QStringLiteral("04:20"));
        QCOMPARE(Face(now, 2, UtcZone, true), QStringLiteral("05:20"));
        QCOMPARE(Face(now, 3, UtcZone, true), QStringLiteral("06:20"));
        QCOMPARE(Face(now, 4, UtcZone, true), QStringLiteral("07:20"));
    }

    void alaskaLateEveningWrapsPastMidnightOnEasternFace()
    {
        QCOMPARE(Face(QTime(23, 30), 4, 0, false), QStringLiteral("03:30"));
    }

    void zoneOutsideTheTableGivesNoFaceTime()
    {
        QVERIFY(!ZoneFaceTime(QTime(10, 0), 0, 6, TableOffsets(), false));
        QVERIFY(!ZoneFaceTime(QTime(10, 0), 0, -1, TableOffsets(), false));
    }

    void internetMinuteOffsetCorrectsTheClock()
    {
        ManualClock clock(QDateTime(QDate(2026, 11, 16), QTime(10, 1, 42)));
        QCOMPARE(InternetNow(clock, -2), QStringLiteral("09:59"));
        QCOMPARE(InternetNow(clock, 0), QStringLiteral("10:01"));
        clock.Set(QDate(2026, 11, 16), QTime(23, 59, 10));
        QCOMPARE(InternetNow(clock, 3), QStringLiteral("00:02"));
        QCOMPARE(InternetDateTime(clock.Now(), 3).date(), QDate(2026, 11, 17));
    }

    void nextSyncToolTipAddsTheInterval()
    {
        const QDateTime last(QDate(2026, 11, 16), QTime(8, 45));
        QCOMPARE(NextSyncToolTip(last, 24), QStringLiteral("Next Sync: 08:45"));
        QCOMPARE(NextSyncToolTip(last, 3), QStringLiteral("Next Sync: 11:45"));
        // No interval below an hour: a hand-edited 0 does not ask the server every minute.
        QCOMPARE(NextSyncToolTip(last, 0), QStringLiteral("Next Sync: 09:45"));
        QCOMPARE(NextSync(last, -5), last.addSecs(3600));
        QCOMPARE(NextSync(last, 24), last.addDays(1));
    }

    void utcRuleBlanksTheUtcFace()
    {
        const ColourValue face1Back = 1;
        const ColourValue utcBack = 2;
        // Rule off: never touched.
        QVERIFY(!UtcFaceRuleColour(false, false, SyncWarningColour, face1Back, utcBack));
        // Rule on, sync off: the UTC face takes its own background.
        QCOMPARE(UtcFaceRuleColour(true, false, SyncNormalColour, face1Back, utcBack), utcBack);
        // Rule on, sync on and not synchronised: face 1's background.
        QCOMPARE(UtcFaceRuleColour(true, true, SyncWarningColour, face1Back, utcBack), face1Back);
        // Rule on, sync on and synchronised: left alone.
        QVERIFY(!UtcFaceRuleColour(true, true, SyncNormalColour, face1Back, utcBack));
        QCOMPARE(SyncButtonColour(false), SyncWarningColour);
        QCOMPARE(SyncButtonColour(true), SyncNormalColour);
    }
};

QTEST_GUILESS_MAIN(TestZoneClock)
#include "tst_zoneclock.moc"
