#include "BatchOffice.h"
#include "ministry/ErrorReport.h"

#include <QtTest>

using namespace brimsett;
using errorreport::ItemOutcome;

namespace {

// A 79-character record with each text at its 1-based position.
QString record(std::initializer_list<std::pair<int, QString>> fields) {
    QString line(79, QLatin1Char(' '));
    for (const auto& [pos, text] : fields) {
        line.replace(pos - 1, text.size(), text);
    }
    return line;
}
QString hx1(const QString& group = "0000", const QString& provider = "102152") {
    return record({{1, "HX1V03J"}, {18, "000000"}, {24, group + provider + "0000320261120"}});
}
QString hxh(const QString& acct = "00001234") {
    return record({{1, "HXH1234567897AB19800517"}, {24, acct}, {32, "HCPP"}, {65, "VH5"}});
}
QString hxt(const QString& code, const QString& date, const QString& diag, const QString& codes) {
    return record({{1, "HXT" + code}, {11, "00337001"}, {19, date}, {27, diag}, {65, codes}});
}

QStringList outcomesOf(const errorreport::ErrorReport& report) {
    static const QStringList names{"NotApplied", "MarkedRejected", "LeftAsItWas", "Unknown"};
    QStringList out;
    for (const auto& item : report.providers.value(0).claims.value(0).items) {
        out << names.at(static_cast<int>(item.outcome));
    }
    return out;
}

struct Office : test::BatchOffice {
    // Claim 10000001, account "1234": A003A on 11/01 (diagnosis 401, the given status),
    // A003A on 11/05 without a diagnosis, K023A on 11/01 already paid.
    explicit Office(int firstStatus = 0) {
        addDoctor("D1", "0000", "102152", "00");
        const QDate first(2026, 11, 1);
        claim(10000001, "1234", "D1",
              {{"A003A", Money::fromCents(3370), first},
               {"A003A", Money::fromCents(3370), QDate(2026, 11, 5)},
               {"K023A", Money::fromCents(3370), first}},
              "HCP - P", [&](ClaimRecord& c) {
                  c.items[0].status = firstStatus;
                  c.items[0].errors = firstStatus ? "EH1" : "";
                  c.items[1].diagCode.clear();
                  c.items[2].status = 2;
              });
        log.setOn(true);
    }
    QStringList items() {
        return test::rowsOf(db->exec("Select ItemID, Status, Errors From items Order By ItemID"));
    }
};

}  // namespace

class TestErrorReport : public QObject {
    Q_OBJECT

private slots:
    void readsRecordsListingFaults_data() {
        QTest::addColumn<QStringList>("records");
        QTest::addColumn<QString>("faults");
        QTest::addColumn<int>("items");
        const QString item = hxt("A003A", "20261101", "401", "VJ5");
        test::row("a short record is listed and still read",
                  QStringList{hx1(), hxh(), item.left(70)}, "3|Incorrect record length|70|79", 1);
        test::row("not an error report record", QStringList{hx1(), "HY" + item.mid(2)},
                  "2|Invalid Transaction Identifier|HY|HX", 0);
        test::row("unknown record type", QStringList{hx1(), "HXZ" + item.mid(3)},
                  "2|Invalid Record Type|Z|1,H,R,T,8 or 9", 0);
        test::row("item before any claim header: in no claim", QStringList{hx1(), item},
                  "2|Item record without a claim header|A003A|HXH or HXR before it", 0);
        test::row("unreadable fee and date are listed, the item kept",
                  QStringList{hx1(), hxh(), record({{1, "HXTA003A  00A37001202611x1"}})},
                  "3|Invalid Fee Submitted|00A370|6 digits;"
                  "3|Invalid Service Date|202611x1|YYYYMMDD",
                  1);
        test::row("an item of error codes only, messages and trailer",
                  QStringList{hx1(), hxh(), record({{1, "HXT"}, {65, "VJ5V40"}}),
                              record({{1, "HX8A1SOME TEXT"}}), record({{1, "HX9"}})},
                  "", 1);
    }
    void readsRecordsListingFaults() {
        QFETCH(QStringList, records);
        QFETCH(QString, faults);
        QFETCH(int, items);
        const errorreport::ErrorReport report = errorreport::read(records);
        QStringList listed;
        for (const auto& e : report.errors) {
            listed << received::cellsOf(e).join('|');
        }
        QCOMPARE(listed.join(';'), faults);
        QCOMPARE(report.itemCount(), items);
    }

    void readsBothLayoutsAndFiveCodes_data() {
        QTest::addColumn<QStringList>("records");
        test::row("current", QStringList{hx1(), hxh("ACCT 1"),
                                         hxt("A003A", "20261101", "401", "V01V02V03V04V05")});
        test::row(
            "older: six-digit dates move what follows",
            QStringList{record({{1, "HX1V02"}, {24, "0000102152"}}),
                        record({{1, "HXH1234567897AB800517ACCT 1  HCPP"}, {65, "VH5"}}),
                        record({{1, "HXTA003A  00337001261101401"}, {65, "V01V02V03V04V05"}})});
    }
    void readsBothLayoutsAndFiveCodes() {
        QFETCH(QStringList, records);
        const errorreport::ErrorReport report = errorreport::read(records);
        QVERIFY(report.errors.isEmpty());
        const errorreport::Claim& claim = report.providers.value(0).claims.value(0);
        const errorreport::Item& item = claim.items.value(0);
        const QString fields =
            QString("%1|%2|%3|%4|%5|%6|%7")
                .arg(claim.acctNum, claim.birthDate.toString(Qt::ISODate), item.serviceCode,
                     QString::number(item.fee.value_or(Money()).roundedCents()),
                     item.serviceDate.toString(Qt::ISODate), item.diagCode, item.errors);
        // Five codes fill 19 characters.
        QCOMPARE(fields, "ACCT 1|1980-05-17|A003A|3370|2026-11-01|401|V01,V02,V03,V04,V05");
    }

    // The file header's numbers where the V03 record layout puts them (21-32) or where the
    // ministry's files have them (24-35): the placement that finds the office's doctor wins,
    // else the V03 layout's one when its provider number is valid, else the other.
    void readsTheHeaderWhereItsDoctorIs_data() {
        QTest::addColumn<QString>("header");
        QTest::addColumn<QString>("doctor");  // group|provider|specialty; empty: none
        QTest::addColumn<QString>("read");    // group|provider|specialty; empty: refused
        test::row("the placement of the office's doctor", hx1(), "0000|102152|00",
                  "0000|102152|00");
        test::row("no doctor: the V03 placement", hx1(), "", "0000|000102|15");
        test::row("no doctor, the V03 placement not valid: the other", hx1("BHAA", "010092"), "",
                  "BHAA|010092|00");
        test::row("neither valid", record({{1, "HX1V03J"}, {21, "ABCDEFGHIJKLMNO"}}), "", "");
    }
    void readsTheHeaderWhereItsDoctorIs() {
        QFETCH(QString, header);
        QFETCH(QString, doctor);
        QFETCH(QString, read);
        test::BatchOffice o;
        if (!doctor.isEmpty()) {
            const QStringList number = doctor.split('|');
            o.addDoctor("D1", number.at(0), number.at(1), number.at(2));
        }
        QCOMPARE(errorreport::firstRecordValid(header), !read.isEmpty());
        errorreport::ErrorReport report = errorreport::read({header});
        QCOMPARE(report.errors.isEmpty(), !read.isEmpty());
        errorreport::lookUp(*o.db, o.log, report, false, false);
        const errorreport::ProviderSection& section = report.providers.value(0);
        if (!read.isEmpty()) {
            QCOMPARE(section.group + '|' + section.provider + '|' + section.specialty, read);
            QCOMPARE(section.doctorName, doctor.isEmpty() ? "" : "Doe");
        }
    }

    void reportsProgress() {
        QList<std::pair<int, int>> calls;
        errorreport::read(QStringList(120, record({{1, "HX9"}})), [&](int read, int total) {
            calls.append({read, total});
        });
        QCOMPARE(calls, (QList<std::pair<int, int>>{{50, 120}, {100, 120}, {120, 120}}));
    }

    void marksPendingItemsRejected_data() {
        QTest::addColumn<int>("firstStatus");
        QTest::addColumn<QStringList>("records");  // after the file and claim headers
        QTest::addColumn<bool>("reconcile");
        QTest::addColumn<bool>("autoSplit");
        QTest::addColumn<QString>("outcomes");
        QTest::addColumn<QString>("items");  // ItemID|Status|Errors of the two A003A items
        using L = QStringList;
        const L exact{hxt("A003A", "20261101", "401", "VJ5V40")};
        const L paidItem{hxt("K023A", "20261101", "401", "VJ5")};
        const char* asItWas = "1|0|<null> 2|0|<null>";
        test::row("another date: found by its code alone", 0,
                  L{hxt("A003A", "20261109", "401", "VJ5")}, true, false, "MarkedRejected",
                  "1|1|VJ5 2|0|<null>");
        test::row("blank diagnosis matches the item without one", 0,
                  L{hxt("A003A", "20261105", "", "VJ5")}, true, false, "MarkedRejected",
                  "1|0|<null> 2|1|VJ5");
        test::row("no codes of its own: the claim header's", 0,
                  L{hxt("A003A", "20261101", "401", "")}, true, false, "MarkedRejected",
                  "1|1|VH5 2|0|<null>");
        test::row("two like records answer two items", 0,
                  L(2, hxt("A003A", "20261109", "401", "VJ5")), true, false,
                  "MarkedRejected MarkedRejected", "1|1|VJ5 2|1|VJ5");
        test::row("already rejected: left as it was", 1, exact, true, false, "LeftAsItWas",
                  "1|1|EH1 2|0|<null>");
        test::row("a paid item is unknown without AutoSplit", 0, paidItem, true, false, "Unknown",
                  asItWas);
        test::row("AutoSplit finds it whatever its status", 0, paidItem, true, true, "LeftAsItWas",
                  asItWas);
        test::row("reconciliation off writes nothing", 0, exact, false, true, "NotApplied",
                  asItWas);
    }
    void marksPendingItemsRejected() {
        QFETCH(int, firstStatus);
        QFETCH(QStringList, records);
        QFETCH(bool, reconcile);
        QFETCH(bool, autoSplit);
        QFETCH(QString, outcomes);
        QFETCH(QString, items);
        Office o(firstStatus);
        errorreport::ErrorReport report = errorreport::read(QStringList{hx1(), hxh()} + records);
        errorreport::lookUp(*o.db, o.log, report, reconcile, autoSplit);
        QCOMPARE(outcomesOf(report).join(' '), outcomes);
        QCOMPARE(o.items(), items.split(' ') << "3|2|<null>");  // the paid K023A is never touched
        QCOMPARE(test::readText(o.log.path()).count("Update Items Set Status=1"),
                 outcomes.count("MarkedRejected"));
    }

    void namesDoctorAndPatient() {
        Office o;
        o.db->exec(
            "Insert Into Patients (PatientID, HealthNum, FName, LName, DOB)"
            " Values (7, '1234567897', 'Ann', 'Brown', '1975-03-02')");
        errorreport::ErrorReport report =
            errorreport::read({hx1(), hxh("00001234"), hx1("9999"), hxh("00009999")});
        errorreport::lookUp(*o.db, o.log, report, false, false);
        const errorreport::Claim& known = report.providers[0].claims[0];
        QCOMPARE(report.providers[0].doctorName, "Doe");
        QCOMPARE(known.claimId, 10000001);
        QCOMPARE(known.patientName + known.patientBirthDate.toString(" yyyy-MM-dd"),
                 "Smith, Mary 1980-05-17");
        // No such claim: the patient by health number; no doctor with that group.
        const errorreport::Claim& unknown = report.providers[1].claims[0];
        QCOMPARE(report.providers[1].doctorName, "");
        QVERIFY(!unknown.claimId);
        QCOMPARE(unknown.patientName + unknown.patientBirthDate.toString(" yyyy-MM-dd"),
                 "Brown, Ann 1975-03-02");
    }

    void aRefusalWritesNothing() {
        Office o;
        test::refuseRows(*o.db, "Update", "items", "NEW.ItemID=2", "refused");
        errorreport::ErrorReport report =
            errorreport::read({hx1(), hxh(), hxt("A003A", "20261101", "401", "VJ5"),
                               hxt("A003A", "20261105", "", "VJ5")});
        QVERIFY_THROWS_EXCEPTION(DbError, errorreport::lookUp(*o.db, o.log, report, true, false));
        QCOMPARE(o.items(), (QStringList{"1|0|<null>", "2|0|<null>", "3|2|<null>"}));
        QCOMPARE(outcomesOf(report), (QStringList{"NotApplied", "NotApplied"}));
        QCOMPARE(test::readText(o.log.path()), QString());
    }
};

QTEST_GUILESS_MAIN(TestErrorReport)
#include "test_error_report.moc"
