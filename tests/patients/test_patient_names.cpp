#include "TestSupport.h"
#include "patients/NameCase.h"
#include "patients/PatientEntry.h"

#include <QtTest>

using namespace brimsett;

class TestPatientNames : public QObject {
    Q_OBJECT

private slots:
    void nameCase_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("shown");
        test::row("apostrophe after one letter", "O'BRIEN", "O'Brien");
        test::row("typographic apostrophe", "D\u2019ARCY", "D\u2019Arcy");
        test::row("apostrophe after a word", "JOHN'S", "John's");
        test::row("hyphenated", "MACDONALD-SMITH", "Macdonald-Smith");
        test::row("saint", "ST-PIERRE", "St-Pierre");
        test::row("two words lower case", "mary ann", "Mary Ann");
        test::row("particles", "VAN DER BERG", "Van Der Berg");
        test::row("mc", "MCDONALD", "McDonald");
        test::row("mixed case kept", "McDONALD", "McDONALD");
        test::row("mixed particles kept", "van der Berg", "van der Berg");
        test::row("blanks tidied", "  mary   ann ", "Mary Ann");
        test::row("accents", "ÉMILE-ANDRÉ", "Émile-André");
        test::row("blank", "   ", "");
    }
    void nameCase() {
        QFETCH(QString, typed);
        QFETCH(QString, shown);
        QCOMPARE(brimsett::nameCase(typed), shown);
    }

    void readTypedDate_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QDate>("date");
        test::row("slashed", "2024/02/29", QDate(2024, 2, 29));
        test::row("digits", "20240229", QDate(2024, 2, 29));
        test::row("dashed", " 2024-02-29 ", QDate(2024, 2, 29));
        test::row("no such day", "2023/02/29", QDate());
        test::row("day first", "29/02/2024", QDate());
        test::row("short", "2024/2/29", QDate());
    }
    void readTypedDate() {
        QFETCH(QString, typed);
        QFETCH(QDate, date);
        QCOMPARE(brimsett::readTypedDate(typed), date);
    }
};

QTEST_GUILESS_MAIN(TestPatientNames)
#include "test_patient_names.moc"
