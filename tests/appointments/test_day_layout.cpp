#include "TestSupport.h"

#include "appointments/DayLayout.h"

using namespace brimsett;
using namespace brimsett::appointments;

class TestDayLayout : public QObject {
    Q_OBJECT

private slots:
    // Lines are written "time+length" in minutes, in the order the book gives them; each
    // placement reads "lane/laneCount".
    void placeLines_data() {
        QTest::addColumn<QString>("lines");
        QTest::addColumn<QString>("placed");
        test::row("no overlap, touching ends", "540+15 555+15 570+30", "0/1 0/1 0/1");
        test::row("double booking", "540+15 540+15 600+15", "0/2 1/2 0/1");
        test::row("chain: first and last do not meet", "540+30 560+30 580+20", "0/2 1/2 0/2");
        test::row("long beside two short", "540+60 540+15 555+15 600+15", "0/2 1/2 1/2 0/1");
        test::row("a freed lane is reused, lowest first", "540+30 540+15 555+15 560+10",
                  "0/3 1/3 1/3 2/3");
        test::row("lanes restart after a group", "540+30 550+10 570+15 570+15", "0/2 1/2 0/2 1/2");
        test::row("no length holds one minute", "540+0 540+0 541+0 541+15", "0/2 1/2 0/2 1/2");
        test::row("a zero-length line inside a booking", "540+15 550+0", "0/2 1/2");
        test::row("nothing", "", "");
    }
    void placeLines() {
        QFETCH(QString, lines);
        QList<DayLine> day;
        for (const QString& item : lines.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
            DayLine line;
            line.time = item.section(QLatin1Char('+'), 0, 0).toInt();
            line.length = item.section(QLatin1Char('+'), 1, 1).toInt();
            day.append(line);
        }
        QStringList placed;
        const QList<PlacedLine> result = appointments::placeLines(day);
        QCOMPARE(result.size(), day.size());
        for (qsizetype i = 0; i < result.size(); ++i) {
            QCOMPARE(result.at(i).line.time, day.at(i).time);
            placed.append(
                QStringLiteral("%1/%2").arg(result.at(i).lane).arg(result.at(i).laneCount));
        }
        QTEST(placed.join(QLatin1Char(' ')), "placed");
    }
};

QTEST_GUILESS_MAIN(TestDayLayout)
#include "test_day_layout.moc"
