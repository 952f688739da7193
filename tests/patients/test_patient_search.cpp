#include "PatientTestOffice.h"
#include "patients/PatientSearch.h"

#include <QtTest>

using namespace brimsett;

namespace {

QList<qint64> idsOf(const PatientMatches& matches) {
    QList<qint64> ids;
    for (const PatientMatch& m : matches.rows) {
        ids << m.id;
    }
    return ids;
}

struct SearchOffice : test::PatientTestOffice {
    SearchOffice() {
        const QList<QStringList> rows = {
            {"1", "Smith", "John", "1234567897", "AB", "(416) 555-1234", ""},
            {"2", "smithers", "Ann", "1231231234", "", "", "905-555-1234"},
            {"3", "Smyth", "Bob", "9876543217", "", "(555) 501-2340", ""},
            {"4", "O'Brien", "Mary", "1111111116", "", "", ""},
            {"5", "Smith", "Adam", "2222222222", "", "416.555.9999", ""},
        };
        for (const QStringList& r : rows) {
            db->exec(
                "Insert Into patients (PatientID, LName, FName, HealthNum, VersionCode,"
                " HPhone, WPhone, DOB) Values(?,?,?,?,?,?,?,'1970-01-02')",
                {r[0].toInt(), r[1], r[2], r[3], r[4], r[5], r[6]});
        }
        // No first name: before the others of the same name, on either engine.
        db->exec("Insert Into patients (PatientID, LName, HealthNum) Values (6, 'Smith', '3')");
    }
    PatientSearch search() { return PatientSearch(*db, settings); }
};

}  // namespace

class TestPatientSearch : public QObject {
    Q_OBJECT

private slots:
    void byName_data() {
        QTest::addColumn<QString>("last");
        QTest::addColumn<QString>("first");
        QTest::addColumn<bool>("wholeText");
        QTest::addColumn<QList<qint64>>("ids");
        test::row("prefix, any case, by name", "smith", "", false, QList<qint64>{6, 5, 1, 2});
        test::row("whole text (switch 7)", "Smith", "", true, QList<qint64>{6, 5, 1});
        test::row("one-character wildcard", "Sm?th", "", false, QList<qint64>{6, 5, 1, 3});
        test::row("any-text wildcard", "*th", "", true, QList<qint64>{6, 5, 1, 3});
        test::row("first name too", "Smith", "J", false, QList<qint64>{1});
        test::row("apostrophe", "o'b", "", false, QList<qint64>{4});
        test::row("nobody", "Zed", "", false, QList<qint64>{});
    }
    void byName() {
        QFETCH(QString, last);
        QFETCH(QString, first);
        QFETCH(bool, wholeText);
        QFETCH(QList<qint64>, ids);
        SearchOffice o;
        o.settings.option[7] = wholeText;
        QCOMPARE(idsOf(o.search().byName(last, first)), ids);
    }

    void byPhone_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QList<qint64>>("ids");
        test::row("ten digits", "4165551234", QList<qint64>{1});
        test::row("with punctuation", "416-555-1234", QList<qint64>{1});
        test::row("local number, home or work", "5551234", QList<qint64>{1, 2});
        // Digits in order but not in one run: 555-1234-0 is not (555) 501-2340.
        test::row("not one run", "555 1234 0", QList<qint64>{});
        test::row("dots in the stored phone", "5559999", QList<qint64>{5});
        test::row("no digits", "abc", QList<qint64>{});
    }
    void byPhone() {
        QFETCH(QString, typed);
        QFETCH(QList<qint64>, ids);
        SearchOffice o;
        QCOMPARE(idsOf(o.search().byPhone(typed)), ids);
    }

    void resultLines() {
        SearchOffice o;
        o.settings.option[8] = true;
        const auto first = o.search().byHealthNumber("1234");
        QCOMPARE(idsOf(first), (QList<qint64>{1}));
        const PatientMatch& m = first.rows.first();
        QCOMPARE(m.name, QStringLiteral("Smith, John"));
        QCOMPARE(m.healthNumber, QStringLiteral("1234567897 AB"));
        QCOMPARE(m.dob, QStringLiteral("1970/01/02"));
        QCOMPARE(m.phone, QStringLiteral("(416) 555-1234"));

        o.settings.option[8] = false;
        const auto byId = o.search().byId(2);
        QCOMPARE(byId.rows.size(), 1);
        QCOMPARE(byId.rows.first().name, QStringLiteral("Ann smithers"));
        QCOMPARE(byId.rows.first().healthNumber, QStringLiteral("1231231234"));
        QCOMPARE(byId.rows.first().phone, QStringLiteral("905-555-1234"));  // no home phone
        QVERIFY(o.search().byId(7).rows.isEmpty());
    }

    void listIsCapped() {
        test::PatientTestOffice o;
        for (int i = 1; i <= PatientSearch::kLimit + 1; ++i) {
            o.db->exec("Insert Into patients (PatientID, LName) Values(?, 'Many')", {i});
        }
        const PatientMatches found = PatientSearch(*o.db, o.settings).byName("Many");
        QCOMPARE(found.rows.size(), PatientSearch::kLimit);
        QVERIFY(found.more);
        o.db->exec("Delete From patients Where PatientID=1");
        QVERIFY(!PatientSearch(*o.db, o.settings).byName("Many").more);
    }
};

QTEST_GUILESS_MAIN(TestPatientSearch)
#include "test_patient_search.moc"
