#include "TestSupport.h"
#include "foundation/RecordingPrompter.h"
#include "foundation/Schema.h"
#include "patients/HealthNumbers.h"

using namespace brimsett;

class TestHealthNumbers : public QObject {
    Q_OBJECT

private slots:
    void byProvince_data() {
        QTest::addColumn<QString>("province");
        QTest::addColumn<QString>("number");
        QTest::addColumn<bool>("onlyOntario");
        QTest::addColumn<bool>("valid");
        test::row("ON public test number", "ON", "9876543217", false, true);
        test::row("ON made-up valid", "ON", "1234567897", false, true);
        test::row("ON wrong check digit", "ON", "1234567890", false, false);
        test::row("ON nine digits", "ON", "123456789", false, false);
        test::row("ON letter inside", "ON", "98765432A7", false, false);
        test::row("ON empty", "ON", "", false, false);
        test::row("BC public valid", "BC", "9698658215", false, true);
        test::row("BC public not valid", "BC", "9698648215", false, false);
        test::row("BC one weight", "BC", "9000000018", false, true);
        test::row("BC must start with 9", "BC", "8000000018", false, false);
        // Weighted total 0 gives check value 11, which no digit matches.
        test::row("BC check value 11", "BC", "9000000000", false, false);
        test::row("SK public valid", "SK", "190148527", false, true);
        test::row("SK made-up", "SK", "123456789", false, true);
        test::row("SK second", "SK", "876543212", false, true);
        test::row("SK check value 11", "SK", "111111110", false, false);
        test::row("SK ten digits", "SK", "1901485270", false, false);
        test::row("NB valid", "NB", "123456782", false, true);
        test::row("NB wrong", "NB", "123456781", false, false);
        test::row("NS valid", "NS", "1234567897", false, true);
        test::row("NS wrong", "NS", "1234567898", false, false);
        test::row("AB any digits", "AB", "1", false, true);
        test::row("AB letter", "AB", "X", false, false);
        test::row("MB six", "MB", "123456", false, true);
        test::row("MB seven", "MB", "1234567", false, false);
        test::row("NL twelve", "NL", "123456789012", false, true);
        test::row("NL eleven", "NL", "12345678901", false, false);
        test::row("NT letter and seven", "NT", "A1234567", false, true);
        test::row("NT lower-case letter", "NT", "a1234567", false, false);
        test::row("NT all digits", "NT", "11234567", false, false);
        test::row("PE eight", "PE", "12345678", false, true);
        test::row("YT nine", "YT", "123456789", false, true);
        test::row("YT eight", "YT", "12345678", false, false);
        test::row("QU twelve characters", "QU", "ABCD12345678", false, true);
        test::row("QU ten must pass Ontario", "QU", "1234567890", false, false);
        test::row("QU ten passing Ontario", "QU", "1234567897", false, true);
        test::row("unknown five", "XX", "12345", false, false);
        test::row("empty code thirteen", "", "1234567890123", false, false);
        test::row("empty code six", "", "ABC123", false, true);
        test::row("switch 1: other province any", "AB", "X", true, true);
        test::row("switch 1: BC unchecked", "BC", "9698648215", true, true);
        test::row("switch 1: ON still checked", "ON", "1234567890", true, false);
    }
    void byProvince() {
        QFETCH(QString, province);
        QFETCH(QString, number);
        QFETCH(bool, onlyOntario);
        QFETCH(bool, valid);
        QCOMPARE(hn::checkByProvince(number, province, onlyOntario), valid);
    }

    void guess_data() {
        QTest::addColumn<QString>("number");
        QTest::addColumn<QString>("province");
        test::row("six", "123456", "MB");
        test::row("eight with letter", "A1234567", "NT");
        test::row("eight digits", "12345678", "PE");
        test::row("nine SK", "190148527", "SK");
        test::row("nine NB", "123456782", "NB");
        test::row("nine neither", "123456780", "YT");
        test::row("ten ON", "1234567897", "ON");
        test::row("ten BC", "9000000018", "BC");
        test::row("ten nothing fits", "1234567890", "ON");
        test::row("eleven Luhn", "12345678903", "AB");
        test::row("eleven not Luhn", "12345678901", "");
        test::row("twelve Quebec", "ABCD12345678", "QU");
        test::row("twelve digits", "123456789012", "NL");
        test::row("short", "123", "");
    }
    void guess() {
        QFETCH(QString, number);
        QFETCH(QString, province);
        QCOMPARE(hn::guessProvince(number), province);
    }

    void typedValue_data() {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("length");
        QTest::addColumn<bool>("valid");
        QTest::newRow("digits") << QVariant(QStringLiteral("0123")) << 0 << 4 << true;
        QTest::newRow("digits wrong length") << QVariant(QStringLiteral("0123")) << 0 << 3 << false;
        QTest::newRow("letters") << QVariant(QStringLiteral("AbC")) << 1 << 0 << true;
        QTest::newRow("letters with blank") << QVariant(QStringLiteral("A C")) << 1 << 0 << false;
        QTest::newRow("alnum") << QVariant(QStringLiteral("A1b2")) << 2 << 4 << true;
        QTest::newRow("alnum dash") << QVariant(QStringLiteral("A1-2")) << 2 << 0 << false;
        QTest::newRow("empty") << QVariant(QString()) << 2 << 0 << false;
        QTest::newRow("null") << QVariant() << 0 << 0 << false;
        QTest::newRow("date text") << QVariant(QStringLiteral("2024/02/29")) << 3 << 0 << true;
        QTest::newRow("no such day") << QVariant(QStringLiteral("2023/02/29")) << 3 << 0 << false;
        QTest::newRow("date value") << QVariant(QDate(2020, 1, 31)) << 3 << 0 << true;
    }
    void typedValue() {
        QFETCH(QVariant, value);
        QFETCH(int, kind);
        QFETCH(int, length);
        QFETCH(bool, valid);
        QCOMPARE(hn::typedValueCheck(value, static_cast<hn::ValueKind>(kind), length), valid);
    }

    void lengthAgainstTable_data() {
        QTest::addColumn<QString>("province");
        QTest::addColumn<QString>("number");
        QTest::addColumn<QString>("answer");
        QTest::addColumn<bool>("asked");
        QTest::addColumn<bool>("accepted");
        test::row("length matches", "ON", "1234567897", "", false, true);
        test::row("short, No refuses", "ON", "123456789", "No", true, false);
        test::row("short, Yes accepts", "ON", "123456789", "Yes", true, true);
        test::row("no length recorded", "AB", "123", "", false, true);
        test::row("no row", "ZZ", "123", "", false, true);
    }
    void lengthAgainstTable() {
        QFETCH(QString, province);
        QFETCH(QString, number);
        QFETCH(QString, answer);
        QFETCH(bool, asked);
        QFETCH(bool, accepted);
        test::TempOffice office;
        auto db = office.emptyDatabase();
        schema::create(*db);
        RecordingPrompter prompter;
        if (!answer.isEmpty()) {
            prompter.script({answer == QLatin1String("Yes") ? Answer::Yes : Answer::No});
        }
        QCOMPARE(hn::checkLengthAgainstTable(*db, prompter, number, province), accepted);
        QCOMPARE(prompter.messages().size(), asked ? 1 : 0);
        if (asked) {
            const auto& m = prompter.last();
            QCOMPARE(m.title, QStringLiteral("Invalid Health Number"));
            QCOMPARE(m.icon, Icon::Question);
            QCOMPARE(m.defaultAnswer, Answer::No);
            QCOMPARE(m.lines, (QStringList{
                                  "Health card number (registration number)",
                                  "should be 10 digits for Ontario.",
                                  "",
                                  "If you are sure that the Health Number is correct,",
                                  "click Yes. To correct it, click No.",
                              }));
        }
    }
};

QTEST_GUILESS_MAIN(TestHealthNumbers)
#include "test_healthnumbers.moc"
