#include "OfficeFixture.h"

#include "claims/FeeSchedule.h"
#include "claims/SobImport.h"

#include <QtTest>

using namespace brimsett;
using test::row;

namespace {

// A line of the master file: code and dates as given, then five fees in cents.
QString sobLine(const char* code, const char* start, const char* term,
                std::array<qint64, 5> cents) {
    QString line = QString::fromLatin1(code) + QLatin1String(start) + QLatin1String(term);
    for (const qint64 c : cents) {
        line += QString::number(c * 100).rightJustified(11, QLatin1Char('0'));
    }
    return line;
}

struct Office : test::OfficeFixture {
    QString file = office.file(QStringLiteral("sob.txt"));

    SobImport::Result import(const QString& text) {
        test::writeText(file, text.toLatin1());
        SobImport sob(*db, prompter, log);
        return sob.run(file);
    }
    QStringList rows(const char* columns =
                         "ServiceCode, FeeGeneral, FeeAssistant, FeeSpecialist,"
                         " FeeAna, FeeNonAna") {
        return test::rowsOf(db->exec(
            QStringLiteral("Select %1 From servicecodes Order By 1").arg(QLatin1String(columns))));
    }
};

const char* const kStored =
    "ServiceCode, FeeGeneral, UnitsAssistant, UnitsAna, UnitsNonAna, DateStart, DateTerm";

}  // namespace

class TestSobImport : public QObject {
    Q_OBJECT

private slots:
    void readsBothLayouts_data() {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("stored");  // as kStored lists the columns
        row("long, open termination", sobLine("a007", "20120401", "99999999", {3370, 0, 0, 0, 0}),
            "A007|337000|0|0|0|2012-04-01|1980-01-01");
        row("long, day 00", sobLine("A007", "20110300", "20120400", {3370, 0, 0, 0, 0}),
            "A007|337000|0|0|0|2011-03-01|2012-04-01");
        row("short, open termination", sobLine("A007", "990701", "999999", {3370, 0, 0, 0, 0}),
            "A007|337000|0|0|0|1999-07-01|1980-01-01");
        row("short, day 00", sobLine("A007", "120400", "130101", {3370, 0, 0, 0, 0}),
            "A007|337000|0|0|0|2012-04-01|2013-01-01");
        // 11.10 a unit, found from the assistant fee; 30.00 is not a whole number of units.
        row("units from the assistant fee",
            sobLine("D001", "20120401", "99999999", {0, 2220, 0, 5550, 3000}),
            "D001|0|2|5|1|2012-04-01|1980-01-01");
        row("units from the anaesthetist fee",
            sobLine("D001", "20120401", "99999999", {0, 0, 0, 3330, 2220}),
            "D001|0|0|3|2|2012-04-01|1980-01-01");
        // 15.01 a unit lies outside the search: every unit fee counts as one unit.
        row("no unit value found", sobLine("D001", "20120401", "99999999", {0, 0, 0, 15010, 6004}),
            "D001|0|0|1|1|2012-04-01|1980-01-01");
    }
    void readsBothLayouts() {
        QFETCH(QString, line);
        QFETCH(QString, stored);
        Office o;
        const SobImport::Result result = o.import(line + "\r\n\r\n\x1a");
        QVERIFY(result.lineErrors.isEmpty());
        QCOMPARE(result.processed, 1);
        QCOMPARE(o.prompter.last().text(), QString("Processed 1 codes"));
        QCOMPARE(o.rows(kStored), QStringList{stored});
    }

    void wrongLayoutImportsNothing_data() {
        QTest::addColumn<QString>("text");
        const QString good = sobLine("A001", "20120401", "99999999", {2170, 0, 0, 0, 0});
        row("first line one short", good.chopped(1) + "\r\n" + good + "\r\n");
        row("first line with a blank", good + " \r\n" + good + "\r\n");
        row("empty file", QString());
    }
    void wrongLayoutImportsNothing() {
        QFETCH(QString, text);
        Office o;
        const SobImport::Result result = o.import(text);
        QVERIFY(!result.imported);
        QCOMPARE(o.prompter.messages().size(), 1);
        QCOMPARE(o.prompter.last().title, QString("Error"));
        QCOMPARE(o.prompter.last().lines, QStringList({"The OHIP Schedule of Benefits file",
                                                       "is not in the expected format."}));
        QCOMPARE(o.rows(), QStringList());
    }

    // Bad lines are listed with the file and their numbers; the others are imported, and a
    // fee that does not read never replaces the stored one.
    void badLinesAreReportedAndSkipped() {
        Office o;
        o.db->exec("Insert Into servicecodes (ServiceCode, FeeGeneral) Values ('A003', 100000)");
        QString bad = sobLine("A003", "20120401", "99999999", {9999, 0, 0, 0, 0});
        bad[33] = QLatin1Char('x');
        const QStringList lines = {
            sobLine("A001", "20120401", "99999999", {2170, 0, 0, 0, 0}),
            sobLine("A002", "20120401", "99999999", {6220, 0, 0, 0, 0}).chopped(2),
            bad,
            sobLine("A004", "20121340", "99999999", {3835, 0, 0, 0, 0}),
            sobLine("A005", "20120401", "99999999", {7720, 0, 0, 0, 0}),
            QString(1 << 20, QLatin1Char('9')),  // kept only in part, told by its whole length
        };
        const SobImport::Result result = o.import(lines.join("\n"));

        QVERIFY(result.imported);
        QCOMPARE(result.processed, 2);
        QCOMPARE(o.rows("ServiceCode, FeeGeneral"),
                 QStringList({"A001|217000", "A003|100000", "A005|772000"}));
        QCOMPARE(o.prompter.messages().size(), 2);
        QCOMPARE(o.prompter.messages().at(0).title, QString("Error"));
        QCOMPARE(o.prompter.messages().at(0).lines,
                 QStringList({"FileName: " + o.file,
                              "Line Number: 2 - The line is 73 characters long instead of 75.",
                              "Line Number: 3 - The assistant fee \"00x00000000\" is not a number.",
                              "Line Number: 4 - The effective date \"20121340\" is not a date.",
                              "Line Number: 6 - The line is 1048576 characters long instead of 75.",
                              "", "These lines were skipped; the others were imported."}));
        QCOMPARE(o.prompter.last().text(), QString("Processed 2 codes"));
    }

    // A known code keeps what the office set (its description, a negative pinned fee); a new
    // code gets the defaults; only rows that change are written and logged.
    void storedRowsNewCodesAndTheLog() {
        Office o;
        o.log.setOn(true);
        o.db->exec(
            "Insert Into servicecodes (ServiceCode, Description, FeeGeneral, FeeSpecialist,"
            " MaximumAge) Values ('a007', 'Visit', -10000, 500000, 65)");
        const QString file = sobLine("A007", "20120401", "99999999", {3370, 0, 3370, 0, 0}) +
                             "\r\n" + sobLine("A888", "20130101", "99999999", {1500, 0, 0, 0, 0}) +
                             "\r\n";
        QVERIFY(o.import(file).imported);
        QCOMPARE(o.rows("ServiceCode, Description, FeeGeneral, FeeSpecialist, ReqDiagCode,"
                        " ReqRefDoctor, ReqFacilityNum, ReqAdmitDate, ReqManualReview, Modifier,"
                        " SpecCode, InterVal, MinimumAge, MaximumAge, Sex"),
                 QStringList({"A888|New Code|150000|0|0|0|0|0|0|0|<null>|<null>|0|999|B",
                              "a007|Visit|-10000|337000|<null>|<null>|<null>|<null>|<null>|"
                              "<null>|<null>|<null>|<null>|65|<null>"}));
        const QStringList logged = test::readText(o.log.path()).split("\r\n", Qt::SkipEmptyParts);
        QCOMPARE(logged.size(), 2);
        QVERIFY(
            logged.at(0).startsWith("Update servicecodes Set FeeAssistant=0,FeeSpecialist="
                                    "337000,"));
        QVERIFY(logged.at(0).endsWith(" Where ServiceCode='a007'"));
        QVERIFY(logged.at(1).startsWith("Insert Into servicecodes (ServiceCode,Description,"));

        QCOMPARE(o.import(file).processed, 2);
        QCOMPARE(test::readText(o.log.path()).count("\r\n"), 2);
    }

    // A code the file names twice is added by its first line and changed by its second.
    void aCodeNamedTwice() {
        Office o;
        const QString file = sobLine("B100", "20120401", "99999999", {1000, 0, 0, 0, 0}) + "\r\n" +
                             sobLine("B200", "20120401", "99999999", {2000, 0, 0, 0, 0}) + "\r\n" +
                             sobLine("B100", "20130401", "99999999", {1100, 0, 0, 0, 0}) + "\r\n";
        QCOMPARE(o.import(file).processed, 3);
        QCOMPARE(o.rows("ServiceCode, FeeGeneral, DateStart"),
                 QStringList({"B100|110000|2013-04-01", "B200|200000|2012-04-01"}));
    }

    // Read within bounds (proven with the bounded reader): a device is not read at all.
    void refusesADevice() {
        Office o;
        QVERIFY(!SobImport(*o.db, o.prompter, o.log).run("/dev/zero").imported);
        QVERIFY(o.prompter.last().text().contains("/dev/zero is not a regular file"));
    }

    void cancellingWritesNothing() {
        Office o;
        test::writeText(o.file,
                        sobLine("A001", "20120401", "99999999", {2170, 0, 0, 0, 0}).toLatin1());
        SobImport sob(*o.db, o.prompter, o.log);
        QList<int> seen;
        sob.setProgress([&seen](int done, int total) {
            seen << done << total;
            return done < total;
        });
        QVERIFY(!sob.run(o.file).imported);
        QCOMPARE(seen, QList<int>({0, 1, 1, 1}));
        QCOMPARE(o.rows(), QStringList());
        QVERIFY(o.prompter.messages().isEmpty());
    }

    void ministrySampleFile() {
        if (test::samplesFolder().isEmpty()) {
            QSKIP("the ministry's sample files are not beside the project");
        }
        Office o;
        SobImport sob(*o.db, o.prompter, o.log);
        const SobImport::Result result =
            sob.run(test::samplesFolder() + "/sob_master_file_oct2013.txt");
        QCOMPARE(o.prompter.messages().size(), 1);
        QCOMPARE(o.prompter.last().text(), QString("Processed 7195 codes"));
        QCOMPARE(result.processed, 7195);
        FeeSchedule schedule(*o.db, o.log);
        QCOMPARE(schedule.itemFee("A007A", "00")->fee.format(), QString("33.70"));
    }
};

QTEST_GUILESS_MAIN(TestSobImport)
#include "test_sob_import.moc"
