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

class TestSqlText : public QObject {
    Q_OBJECT

private slots:
    void typedCriterionTexts_data();
    void typedCriterionTexts();
    void quotedValues_data();
    void quotedValues();
    void builderWritesLogTextAndRunsBound();
    void likeMatchesExactlyTheRightRows_data();
    void likeMatchesExactlyTheRightRows();
    void likeRefusesColumnThatIsNotAName();
    void nextPatientIdHonoursLimit_data();
    void nextPatientIdHonoursLimit();
    void nextIdAndLookup();
};

void TestSqlText::typedCriterionTexts_data() {
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("op");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("where");

    const auto row = [](const char* name, const char* typed, const char* op, const char* value,
                        const char* where) {
        QTest::newRow(name) << QString::fromUtf8(typed) << QString::fromUtf8(op)
                            << QString::fromUtf8(value) << QString::fromUtf8(where);
    };
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

void TestSqlText::typedCriterionTexts() {
    QFETCH(QString, typed);
    QFETCH(QString, op);
    QFETCH(QString, value);
    QFETCH(QString, where);
    QCOMPARE(sqltext::criterionOperator(typed), op);
    QCOMPARE(sqltext::criterionValue(typed), value);
    QCOMPARE(sqltext::whereClause(QStringLiteral("LName"), typed), where);
}

void TestSqlText::quotedValues_data() {
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("quoted");

    const auto row = [](const char* name, const char* value, const char* quoted) {
        QTest::newRow(name) << QString::fromUtf8(value) << QString::fromUtf8(quoted);
    };
    row("plain", "Smith", "'Smith'");
    row("empty", "", "''");
    row("quotes", "O'Brien's", "'O''Brien''s'");
    row("pipe", "a|b", "'a'+Chr(124)+'b'");
    row("brackets stay", "[x]", "'[x]'");
    row("line break", "one\r\ntwo", "'one'+Chr(13)+''+Chr(10)+'two'");
    row("quote beside pipe", "'|", "''''+Chr(124)+''");
}

void TestSqlText::quotedValues() {
    QFETCH(QString, value);
    QFETCH(QString, quoted);
    QCOMPARE(sqltext::quoteValue(value), quoted);
}

void TestSqlText::builderWritesLogTextAndRunsBound() {
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
    QCOMPARE(
        b.finishInsert(),
        QStringLiteral("Insert Into patients (PatientID,LName,FName,Sex,DOB,Balance,Flag) "
                       "Values(12,'O''Brien'+Chr(124)+'Jr',NULL,NULL,'1970-03-09',1.5,'1;drop')"));

    test::TempOffice office;
    auto db = office.emptyDatabase();
    db->exec(
        QStringLiteral("Create Table patients (PatientID Long, LName Text(30), FName Text(30), "
                       "Sex Text(1), DOB DateTime, Balance Double, Flag Text(10))"));
    const auto insert = b.boundInsert();
    db->exec(insert.sql, insert.values);

    b.beginUpdate(QStringLiteral("patients"));
    b.addField(QStringLiteral("FName"), QStringLiteral("Ann"), Kind::Text);
    b.addField(QStringLiteral("LName"), QString(), Kind::Text);
    QCOMPARE(b.finishUpdate(QStringLiteral("PatientID=12")),
             QStringLiteral("Update patients Set FName='Ann',LName=NULL Where PatientID=12"));
    const auto update = b.boundUpdate(QStringLiteral("PatientID=?"), {12});
    db->exec(update.sql, update.values);

    QSqlQuery q =
        db->exec(QStringLiteral("Select PatientID, LName, FName, Sex, DOB, Balance, Flag "
                                "From patients"));
    QVERIFY(q.next());
    QCOMPARE(q.value(0).toInt(), 12);
    QVERIFY(q.value(1).isNull());
    QCOMPARE(q.value(2).toString(), QStringLiteral("Ann"));
    QVERIFY(q.value(3).isNull());
    QCOMPARE(q.value(4).toString(), QStringLiteral("1970-03-09"));
    QCOMPARE(q.value(5).toDouble(), 1.5);
    QCOMPARE(q.value(6).toString(), QStringLiteral("1;drop"));
    QVERIFY(!q.next());
}

void TestSqlText::likeMatchesExactlyTheRightRows_data() {
    QTest::addColumn<QString>("column");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("wholeText");
    QTest::addColumn<QList<int>>("ids");

    using L = QList<int>;
    const auto row = [](const char* name, const char* column, const char* typed, bool whole,
                        L ids) {
        QTest::newRow(name) << QString::fromUtf8(column) << QString::fromUtf8(typed) << whole
                            << ids;
    };
    row("prefix ignores case", "Name", "smith", false, {1, 2});
    row("whole text", "Name", "SMITH", true, {1});
    row("star", "Name", "Sm*", false, {1, 2, 11});
    row("star must match to the end", "Name", "*ith", false, {1, 11});
    row("quote", "Name", "O'Brien", true, {3});
    row("quote as prefix", "Name", "o'", false, {3});
    row("percent is literal", "Name", "100%", false, {4});
    row("underscore is literal", "Name", "a_b", true, {6});
    row("backslash is literal", "Name", "a\\b", true, {8});
    row("question is one character", "Name", "a?b", false, {6, 7, 8});
    row("brackets are one character", "Name", "[x]", true, {7, 9, 10});
    row("cannot leave its quotes", "Name", "x' OR '1'='1", false, {});
    row("cannot end the statement", "Name", "x'); Drop Table people; --", false, {});
    row("empty matches all", "Name", "", false, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11});
    row(">= on a number", "Amount", ">= 90", false, {9, 10, 11});
    row("< on a number", "Amount", "<30", false, {1, 2});
    row("<= on text", "Name", "<=1000", false, {4, 5});
    row("> with a quote", "Name", ">O'Brien", false, {1, 2, 6, 7, 8, 9, 10, 11});
}

void TestSqlText::likeMatchesExactlyTheRightRows() {
    QFETCH(QString, column);
    QFETCH(QString, typed);
    QFETCH(bool, wholeText);
    QFETCH(QList<int>, ids);

    test::TempOffice office;
    auto db = office.emptyDatabase();
    db->exec(QStringLiteral("Create Table people (ID Long, Name Text(40), Amount Long)"));
    const QStringList names = {
        QStringLiteral("Smith"), QStringLiteral("smithers"), QStringLiteral("O'Brien"),
        QStringLiteral("100%"),  QStringLiteral("1000"),     QStringLiteral("a_b"),
        QStringLiteral("axb"),   QStringLiteral("a\\b"),     QStringLiteral("[x]"),
        QStringLiteral("yxz"),   QStringLiteral("Sm'ith")};
    for (int i = 0; i < names.size(); ++i) {
        db->exec(QStringLiteral("Insert Into people (ID, Name, Amount) Values (?, ?, ?)"),
                 {i + 1, names[i], (i + 1) * 10});
    }

    const auto criterion = sqltext::likeCriterion(db->dialect(), column, typed, wholeText);
    QSqlQuery q = db->exec(QStringLiteral("Select ID From people Where") + criterion.sql +
                               QStringLiteral(" Order By ID"),
                           criterion.values);
    QList<int> found;
    while (q.next()) {
        found << q.value(0).toInt();
    }
    QCOMPARE(found, ids);
    QCOMPARE(db->scalar(QStringLiteral("Select Count(*) From people")).toInt(), names.size());
}

void TestSqlText::likeRefusesColumnThatIsNotAName() {
    const SqliteDialect dialect;
    const auto ok =
        sqltext::likeCriterion(dialect, QStringLiteral("p.LName"), QStringLiteral("a"), false);
    QCOMPARE(ok.sql, QStringLiteral(" p.LName LIKE ? ESCAPE '\\'"));
    QVERIFY_THROWS_EXCEPTION(std::invalid_argument,
                             sqltext::likeCriterion(dialect, QStringLiteral("LName=1 OR 1"),
                                                    QStringLiteral("a"), false));
}

void TestSqlText::nextPatientIdHonoursLimit_data() {
    QTest::addColumn<QList<int>>("existing");
    QTest::addColumn<int>("nextIDUnder");
    QTest::addColumn<qint64>("expected");

    const QList<int> ids = {5, 120, 9000};
    QTest::newRow("empty table") << QList<int>{} << 0 << qint64(1);
    QTest::newRow("empty table with limit") << QList<int>{} << 500 << qint64(1);
    QTest::newRow("no limit") << ids << 0 << qint64(9001);
    QTest::newRow("below 100") << ids << 100 << qint64(6);
    QTest::newRow("limit equal to an id") << ids << 9000 << qint64(121);
    QTest::newRow("nothing below the limit") << ids << 5 << qint64(1);
    QTest::newRow("limit above all") << ids << 20000 << qint64(9001);
}

void TestSqlText::nextPatientIdHonoursLimit() {
    QFETCH(QList<int>, existing);
    QFETCH(int, nextIDUnder);
    QFETCH(qint64, expected);

    test::TempOffice office;
    auto db = office.emptyDatabase();
    db->exec(QStringLiteral("Create Table patients (PatientID Long, LName Text(30))"));
    for (int id : existing) {
        db->exec(QStringLiteral("Insert Into patients (PatientID) Values (?)"), {id});
    }
    AppSettings settings;
    settings.nextIDUnder = nextIDUnder;
    QCOMPARE(nextPatientId(*db, settings), expected);
}

void TestSqlText::nextIdAndLookup() {
    test::TempOffice office;
    auto db = office.emptyDatabase();
    db->exec(QStringLiteral("Create Table doctors (DoctorID Long, Name Text(30))"));
    QCOMPARE(nextId(*db, QStringLiteral("doctors"), QStringLiteral("DoctorID")), qint64(1));
    for (int id : {7, 3}) {
        db->exec(QStringLiteral("Insert Into doctors (DoctorID, Name) Values (?, 'Jones')"), {id});
    }
    QCOMPARE(nextId(*db, QStringLiteral("doctors"), QStringLiteral("DoctorID")), qint64(8));
    QCOMPARE(
        scalarLookup(*db, QStringLiteral("Count"), QStringLiteral("*"), QStringLiteral("doctors"),
                     QStringLiteral("Name=?"), {QStringLiteral("Jones")})
            .toInt(),
        2);
    QVERIFY_THROWS_EXCEPTION(
        std::invalid_argument,
        nextId(*db, QStringLiteral("doctors; Delete From doctors"), QStringLiteral("DoctorID")));
    QCOMPARE(db->scalar(QStringLiteral("Select Count(*) From doctors")).toInt(), 2);
}

QTEST_GUILESS_MAIN(TestSqlText)
#include "test_sqltext.moc"
