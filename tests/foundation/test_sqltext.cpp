#include "TestSupport.h"

#include "foundation/AppSettings.h"
#include "foundation/NextId.h"
#include "foundation/SqlStatementBuilder.h"
#include "foundation/SqlText.h"

#include <QDate>
#include <QSqlQuery>
#include <QtTest>

#include <stdexcept>

using namespace brimsett;
using test::row;

class TestSqlText : public QObject {
    Q_OBJECT

private slots:
    void typedCriterionTexts_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("op");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("where");
        row("plain", "Smith", "=", "Smith", " Where LName='Smith'");
        row("quote", "O'Brien", "=", "O''Brien", " Where LName='O''Brien'");
        row("star", "Sm*", " LIKE ", "Sm*", " Where LName LIKE 'Sm*'");
        row("question", "Sm?th", " LIKE ", "Sm?th", " Where LName LIKE 'Sm?th'");
        row("pipe", "a|b", "=", "a'&chr(124)&'b", " Where LName='a'&chr(124)&'b'");
        row("brackets", "[x]", "=", "'&chr(91)&'x'&chr(93)&'",
            " Where LName=''&chr(91)&'x'&chr(93)&''");
        row("brackets in pattern match one character", "[x]*", " LIKE ", "'&chr(91)&'x'&chr(93)&'*",
            " Where LName LIKE '?x?*'");
        row(">=", ">=10", "", "10", " Where LName>='10'");
        row("<=", "<=10", "", "10", " Where LName<='10'");
        row(">", ">O'B", "", "O''B", " Where LName>'O''B'");
        row("<", "<5", "", "5", " Where LName<'5'");
        row("comparison keeps wildcards literal", ">Sm*", "", "Sm*", " Where LName>'Sm*'");
    }
    void typedCriterionTexts() {
        QFETCH(QString, typed);
        QTEST(sqltext::criterionOperator(typed), "op");
        QTEST(sqltext::criterionValue(typed), "value");
        QTEST(sqltext::whereClause(QStringLiteral("LName"), typed), "where");
    }

    void quotedValues_data() {
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("quoted");
        row("plain", "Smith", "'Smith'");
        row("empty", "", "''");
        row("quotes", "O'Brien's", "'O''Brien''s'");
        row("pipe", "a|b", "'a'+Chr(124)+'b'");
        row("brackets stay", "[x]", "'[x]'");
        row("line break", "one\r\ntwo", "'one'+Chr(13)+''+Chr(10)+'two'");
        row("quote beside pipe", "'|", "''''+Chr(124)+''");
    }
    void quotedValues() {
        QFETCH(QString, value);
        QTEST(sqltext::quoteValue(value), "quoted");
    }

    void builderWritesLogTextAndRunsBound() {
        using Kind = SqlStatementBuilder::Kind;
        SqlStatementBuilder b;
        b.beginInsert(QStringLiteral("patients"));
        b.addField(QStringLiteral("PatientID"), 12, Kind::Number);
        b.addField(QStringLiteral("LName"), QStringLiteral("O'Brien|Jr"), Kind::Text);
        b.addField(QStringLiteral("FName"), QString(), Kind::Text);
        b.addField(QStringLiteral("Sex"), QVariant(), Kind::Text);
        b.addField(QStringLiteral("DOB"), QDate(1970, 3, 9), Kind::Text);
        b.addField(QStringLiteral("Balance"), QStringLiteral(" 1.5 "), Kind::Number);
        b.addField(QStringLiteral("Flag"), QStringLiteral("1;drop"), Kind::Number);
        QCOMPARE(b.finishInsert(),
                 QStringLiteral(
                     "Insert Into patients (PatientID,LName,FName,Sex,DOB,Balance,Flag) "
                     "Values(12,'O''Brien'+Chr(124)+'Jr',NULL,NULL,'1970-03-09',1.5,'1;drop')"));

        test::TempOffice office;
        auto db = office.emptyDatabase();
        db->exec(db->dialect().ddl(
            QStringLiteral("Create Table patients (PatientID Long, LName Text(30), FName Text(30), "
                           "Sex Text(1), DOB DateTime, Balance Double, Flag Text(10))")));
        const auto insert = b.boundInsert();
        db->exec(insert.sql, insert.values);

        b.beginUpdate(QStringLiteral("patients"));
        b.addField(QStringLiteral("FName"), QStringLiteral("Ann"), Kind::Text);
        b.addField(QStringLiteral("LName"), QString(), Kind::Text);
        QCOMPARE(b.finishUpdate(QStringLiteral("PatientID=12")),
                 QStringLiteral("Update patients Set FName='Ann',LName=NULL Where PatientID=12"));
        const auto update = b.boundUpdate(QStringLiteral("PatientID=?"), {12});
        db->exec(update.sql, update.values);
        QCOMPARE(test::rowsOf(db->exec(QStringLiteral("Select * From patients"))),
                 QStringList{"12|<null>|Ann|<null>|1970-03-09|1.5|1;drop"});
    }

    void likeMatchesExactlyTheRightRows_data() {
        QTest::addColumn<QString>("column");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("wholeText");
        QTest::addColumn<QString>("ids");
        row("prefix ignores case", "Name", "smith", false, "1 2");
        row("whole text", "Name", "SMITH", true, "1");
        row("star", "Name", "Sm*", false, "1 2 11");
        row("star must match to the end", "Name", "*ith", false, "1 11");
        row("quote", "Name", "O'Brien", true, "3");
        row("percent is literal", "Name", "100%", false, "4");
        row("underscore is literal", "Name", "a_b", true, "6");
        row("backslash is literal", "Name", "a\\b", true, "8");
        row("question is one character", "Name", "a?b", false, "6 7 8");
        row("brackets are one character", "Name", "[x]", true, "7 9 10");
        row("cannot leave its quotes", "Name", "x' OR '1'='1", false, "");
        row("cannot end the statement", "Name", "x'); Drop Table people; --", false, "");
        row("empty matches all", "Name", "", false, "1 2 3 4 5 6 7 8 9 10 11");
        row(">= on a number", "Amount", ">= 90", false, "9 10 11");
        row("<= on text", "Name", "<=1000", false, "4 5");
        row("> with a quote", "Name", ">O'Brien", false, "1 2 6 7 8 9 10 11");
    }
    void likeMatchesExactlyTheRightRows() {
        QFETCH(QString, column);
        QFETCH(QString, typed);
        QFETCH(bool, wholeText);
        test::TempOffice office;
        auto db = office.emptyDatabase();
        db->exec(db->dialect().ddl(
            QStringLiteral("Create Table people (ID Long, Name Text(40), Amount Long)")));
        const QStringList names = {"Smith", "smithers", "O'Brien", "100%", "1000",  "a_b",
                                   "axb",   "a\\b",     "[x]",     "yxz",  "Sm'ith"};
        for (int i = 0; i < names.size(); ++i) {
            db->exec(QStringLiteral("Insert Into people (ID, Name, Amount) Values (?, ?, ?)"),
                     {i + 1, names[i], (i + 1) * 10});
        }
        const auto criterion = sqltext::likeCriterion(db->dialect(), column, typed, wholeText);
        QTEST(test::rowsOf(db->exec(QStringLiteral("Select ID From people Where") + criterion.sql +
                                        QStringLiteral(" Order By ID"),
                                    criterion.values))
                  .join(QLatin1Char(' ')),
              "ids");
        QCOMPARE(db->scalar(QStringLiteral("Select Count(*) From people")).toInt(), names.size());
    }

    void likeRefusesColumnThatIsNotAName() {
        const SqliteDialect dialect;
        QCOMPARE(
            sqltext::likeCriterion(dialect, QStringLiteral("p.LName"), QStringLiteral("a"), false)
                .sql,
            QStringLiteral(" p.LName LIKE ? ESCAPE '\\'"));
        QVERIFY_THROWS_EXCEPTION(std::invalid_argument,
                                 sqltext::likeCriterion(dialect, QStringLiteral("LName=1 OR 1"),
                                                        QStringLiteral("a"), false));
    }

    void nextIdsAndLookup() {
        test::TempOffice office;
        auto db = office.emptyDatabase();
        db->exec(db->dialect().ddl(
            QStringLiteral("Create Table patients (PatientID Long, LName Text(30))")));
        AppSettings settings;
        settings.nextIDUnder = 500;
        QCOMPARE(nextPatientId(*db, settings), qint64(1));
        QCOMPARE(nextId(*db, QStringLiteral("patients"), QStringLiteral("PatientID")), qint64(1));
        for (int id : {120, 9000, 5}) {
            db->exec(QStringLiteral("Insert Into patients (PatientID, LName) Values (?, 'Jones')"),
                     {id});
        }
        // No limit; below 100; a limit equal to an id is not reached; nothing below it.
        for (const auto& [under, next] : {std::pair{0, 9001}, {100, 6}, {9000, 121}, {5, 1}}) {
            settings.nextIDUnder = under;
            QCOMPARE(nextPatientId(*db, settings), qint64(next));
        }
        QCOMPARE(nextId(*db, QStringLiteral("patients"), QStringLiteral("PatientID")),
                 qint64(9001));
        QCOMPARE(scalarLookup(*db, QStringLiteral("Count"), QStringLiteral("*"),
                              QStringLiteral("patients"), QStringLiteral("LName=?"), {"Jones"})
                     .toInt(),
                 3);
        QVERIFY_THROWS_EXCEPTION(std::invalid_argument,
                                 nextId(*db, QStringLiteral("patients; Delete From patients"),
                                        QStringLiteral("PatientID")));
        QCOMPARE(db->scalar(QStringLiteral("Select Count(*) From patients")).toInt(), 3);
    }
};

QTEST_GUILESS_MAIN(TestSqlText)
#include "test_sqltext.moc"
