// The benchmarks' own tools on either engine: rows added in bulk arrive whole, a plan tells an
// index lookup from a table read whole, and a trace keeps one text of each statement.
#include "../../bench/BenchOffice.h"
#include "TestSupport.h"

#include <QTest>

using namespace brimsett;

class TestBenchSupport : public QObject {
    Q_OBJECT

private:
    test::TempOffice office;
    std::unique_ptr<Database> db;

private slots:
    void initTestCase() {
        db = office.emptyDatabase();
        if (db->onServer()) {
            qputenv("BRIMSETT_BENCH_PG", test::testServer().toLocal8Bit());
        }
        db->exec(db->dialect().ddl(QStringLiteral(
            "Create Table t (ID Long, Code Text(10), Note Text(50), Day DateTime)")));
        db->exec(QStringLiteral("Create Index idx_t_code On t (Code)"));
    }

    // More rows than one statement holds, with missing values and quotes in the text.
    void rowsArriveWhole() {
        constexpr int kRows = 1234;
        {
            Transaction tx(*db);
            bench::Rows rows(*db, QStringLiteral("Insert Into t (ID, Code, Note, Day)"), 4);
            for (int i = 0; i < kRows; ++i) {
                rows.add({i, QStringLiteral("C%1").arg(i),
                          i % 3 ? QVariant(QStringLiteral("O'Brien's ?%1").arg(i)) : QVariant(),
                          QDate(2026, 1, 1).addDays(i % 300).toString(Qt::ISODate)});
            }
            rows.flush();
            tx.commit();
        }
        QCOMPARE(db->scalar(QStringLiteral("Select Count(*) From t")).toInt(), kRows);
        QCOMPARE(db->scalar(QStringLiteral("Select Count(*) From t Where Note Is Null")).toInt(),
                 (kRows + 2) / 3);
        QCOMPARE(db->scalar(QStringLiteral("Select Note From t Where ID=1000")).toString(),
                 QStringLiteral("O'Brien's ?1000"));
        QCOMPARE(db->scalar(QStringLiteral("Select Day From t Where ID=301")).toDate(),
                 QDate(2026, 1, 2));
        db->exec(QStringLiteral("Analyze"));
    }

    void plans_data() {
        QTest::addColumn<QString>("sql");
        QTest::addColumn<QStringList>("readWhole");
        QTest::addColumn<bool>("indexed");
        QTest::newRow("indexed column") << "Select ID From t Where Code=?" << QStringList() << true;
        QTest::newRow("two values")
            << "Select ID From t Where Code In (?,?) And Note<>?" << QStringList() << true;
        QTest::newRow("? inside quotes is no value")
            << "Select ID From t Where Code=? And Note<>'a?b'" << QStringList() << true;
        QTest::newRow("column without index")
            << "Select ID From t Where Note=?" << QStringList() << false;
        QTest::newRow("table read whole by design")
            << "Select ID From t Where Note=?" << QStringList{QStringLiteral("t")} << true;
        QTest::newRow("another table read whole")
            << "Select ID From t Where Note=?" << QStringList{QStringLiteral("doctors")} << false;
    }
    void plans() {
        QFETCH(QString, sql);
        QFETCH(QStringList, readWhole);
        QFETCH(bool, indexed);
        QString printed;
        QTextStream out(&printed);
        QCOMPARE(bench::explain(*db, QStringLiteral("q"), sql, out, readWhole), indexed);
        out.flush();
        QVERIFY2(printed.contains(indexed ? QLatin1String("q: uses an index")
                                          : QLatin1String("q: DOES NOT USE AN INDEX")),
                 qPrintable(printed));
    }

    // Statements differing only in their values are one; each distinct statement is kept.
    void traceKeepsOneOfEachStatement() {
        bench::StatementTrace trace(*db);
        trace.start();
        for (int id : {3, 4, 5}) {
            db->scalar(QStringLiteral("Select Code From t Where ID=?"), {id});
        }
        db->scalar(QStringLiteral("Select Count(*) From t Where Code=?"), {QStringLiteral("C7")});
        const QStringList seen = trace.stop();
        QStringList selects;
        for (const QString& s : seen) {
            if (s.contains(QLatin1String(" From t "))) {
                selects << s;
            }
        }
        QCOMPARE(selects.size(), 2);
        QVERIFY2(selects.at(0).startsWith(QLatin1String("Select Code From t Where ID=")),
                 qPrintable(selects.join('\n')));
        QVERIFY2(selects.at(1).startsWith(QLatin1String("Select Count(*) From t Where Code=")),
                 qPrintable(selects.join('\n')));
    }
};

QTEST_GUILESS_MAIN(TestBenchSupport)
#include "test_bench_support.moc"
