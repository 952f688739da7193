#include "OfficeFixture.h"

#include "claims/CodeSheet.h"
#include "claims/CodeTables.h"

#include <QtTest>

using namespace brimsett;
using test::row;

namespace {

struct Office : test::OfficeFixture {
    Office() {
        db->exec(
            "Insert Into ServiceCodes (ServiceCode, Description, FeeGeneral, Sex) Values "
            "('A007', 'Intermediate assessment', 337000, 'B'), ('B100', 'Travel', 50000, 'B')");
    }
    QStringList codes() {
        return test::rowsOf(
            db->exec("Select ServiceCode, Description, FeeGeneral From ServiceCodes Order By 1"));
    }
};

}  // namespace

class TestCodeTables : public QObject {
    Q_OBJECT

private slots:
    // A typed cell of the schedule: its tidied text, and what is stored or the problem.
    void typedCells_data() {
        QTest::addColumn<QString>("column");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("tidied");
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<QString>("problem");
        row("code in capitals", "ServiceCode", " a007 ", "A007", QVariant("A007"), "");
        row("amount", "FeeGeneral", "1234.5", "1,234.50", QVariant(12345000), "");
        row("four decimals kept", "FeeGeneral", "12.3456", "12.3456", QVariant(123456), "");
        row("pinned negative fee", "FeeAna", "(5.00)", "-5.00", QVariant(-50000), "");
        row("empty amount", "FeeGeneral", "", "", QVariant(), "");
        row("not an amount", "FeeGeneral", "12,34.5", "12,34.5", QVariant(),
            "GP Fee is not an amount: \"12,34.5\".");
        row("date typed plain", "DateStart", "20240401", "2024/04/01", QVariant(QDate(2024, 4, 1)),
            "");
        row("impossible date", "DateTerm", "2024-02-30", "2024-02-30", QVariant(),
            "Terminates is not a date (YYYY/MM/DD): \"2024-02-30\".");
        row("units beyond 16 bits", "UnitsAna", "40000", "40000", QVariant(),
            "Anaes. Units is not a whole number up to 32767: \"40000\".");
        row("age band in 32 bits", "MaxAge2", "40000", "40000", QVariant(40000), "");
        row("sex of the choices", "Sex", "f", "F", QVariant("F"), "");
        row("sex not a choice", "Sex", "x", "X", QVariant(),
            "Sex must be one of B, F, M, not \"X\".");
        row("too long", "SpecCode", "123", "123", QVariant(),
            "Specialty is longer than 2 characters.");
        row("yes", "ReqDiagCode", "1", "1", QVariant(true), "");
    }
    void typedCells() {
        QFETCH(QString, column);
        QFETCH(QString, typed);
        const CodeTable& table = codetables::serviceCodes();
        const int c = table.columnOf(column);
        QVERIFY(c >= 0);
        const QString tidied = table.tidied(c, typed, {});
        QTEST(tidied, "tidied");
        const CodeTable::Stored result = table.storedOf(c, tidied, {});
        QFETCH(QVariant, stored);
        QCOMPARE(result.value.isNull(), stored.isNull());
        QCOMPARE(result.value.toString(), stored.toString());
        QTEST(result.problem, "problem");
    }

    void savesOnlyWhatChanged() {
        Office office;
        CodeSheet sheet(codetables::serviceCodes(), *office.db, office.prompter, office.log);
        QVERIFY(sheet.load());
        QVERIFY(sheet.setCell(0, 1, "Intermediate assessment, record"));
        // Typed back to what is stored: no change left on that row.
        QVERIFY(sheet.setCell(1, 2, "1.00"));
        QVERIFY(sheet.setCell(1, 2, "5"));
        QVERIFY(!sheet.isChanged(1));
        // Another computer changes a fee of the edited row meanwhile; its fee stays.
        office.db->exec("Update ServiceCodes Set FeeGeneral=340000 Where ServiceCode='A007'");
        QVERIFY(sheet.save());
        QCOMPARE(office.codes(),
                 (QStringList{"A007|Intermediate assessment, record|340000", "B100|Travel|50000"}));
        QVERIFY(office.prompter.messages().isEmpty());
    }

    void rowGoneMeanwhile() {
        Office office;
        CodeSheet sheet(codetables::serviceCodes(), *office.db, office.prompter, office.log);
        QVERIFY(sheet.load());
        sheet.setCell(0, 2, "35.00");
        sheet.setCell(1, 1, "Travel premium");
        office.db->exec("Delete From ServiceCodes Where ServiceCode='B100'");
        QVERIFY(!sheet.save());
        QCOMPARE(office.prompter.last().lines.last(), QStringLiteral("Nothing was saved."));
        QCOMPARE(office.codes(), QStringList{"A007|Intermediate assessment|337000"});
        QVERIFY(sheet.hasChanges());
    }
};

QTEST_MAIN(TestCodeTables)
#include "test_code_tables.moc"
