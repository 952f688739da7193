#include "CliRun.h"

#include <QtTest>

using namespace brimsett;

class TestCliScript : public QObject {
    Q_OBJECT

    test::TempOffice office;
    test::CliResult run(const QStringList& args) { return test::cli(office, args); }

private slots:
    void initTestCase() { QCOMPARE(run({"init"}).status, 0); }

    // Each line is saved on its own; the first that fails stops the rest, and says which.
    void runsUntilTheFirstFailure_data() {
        QTest::addColumn<QString>("script");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("out");
        QTest::addColumn<QString>("err");
        QTest::addColumn<QString>("names");
        test::row("all saved",
                  "# two patients\n\npatient add --last Able --hn 1234567897 --sex F\n"
                  "patient add --last Baker --hn 9876543217 --sex M\n",
                  0, "1\n2\n", "", "Able|Baker");
        test::row("a refused save stops the rest",
                  "patient add --last Cole --hn 1234567897\npatient add --last Dunn --hn "
                  "1111111116\n",
                  1, "", "line 1 failed (status 1); the lines after it were not run", "Able|Baker");
        test::row("a wrong line is a usage error",
                  "patient add --first Ed\npatient add --last Dunn --hn 1111111116\n", 2, "",
                  "line 1 failed (status 2)", "Able|Baker");
        test::row("no script inside a script", "script -\n", 2, "", "a script may not run a script",
                  "Able|Baker");
    }
    void runsUntilTheFirstFailure() {
        QFETCH(QString, script);
        QFETCH(int, status);
        QFETCH(QString, out);
        QFETCH(QString, err);
        QFETCH(QString, names);
        const QString file = office.file("commands.txt");
        test::writeText(file, script.toUtf8());
        const auto result = run({"script", file});
        QCOMPARE(result.status, status);
        QCOMPARE(result.out, out);
        QVERIFY2(result.err.contains(err), qPrintable(result.err));
        const auto saved = run({"sql", "Select LName From patients Order By PatientID"});
        QCOMPARE(saved.out.split('\n', Qt::SkipEmptyParts).mid(1).join('|'), names);
    }
};

QTEST_GUILESS_MAIN(TestCliScript)
#include "test_cli_script.moc"
