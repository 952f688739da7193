#include "ClaimSamples.h"
#include "OfficeFixture.h"
#include "claims/ClaimChecks.h"

#include <QtTest>

using namespace brimsett;
using L = QStringList;

namespace {

// "field=value" changes to the valid claim; "row.x=" fields change its first item.
ClaimEntry changed(const QStringList& changes) {
    static const QMap<QString, QString ClaimEntry::*> fields = {
        {"patientId", &ClaimEntry::patientId},
        {"payProg", &ClaimEntry::payProg},
        {"healthNum", &ClaimEntry::healthNum},
        {"versionCode", &ClaimEntry::versionCode},
        {"dob", &ClaimEntry::dob},
        {"sex", &ClaimEntry::sex},
        {"thirdPartyId", &ClaimEntry::thirdPartyId},
        {"province", &ClaimEntry::province},
        {"fName", &ClaimEntry::fName},
        {"refDoc", &ClaimEntry::refDoc},
        {"facilityNum", &ClaimEntry::facilityNum},
        {"admitDate", &ClaimEntry::admitDate},
        {"refLab", &ClaimEntry::refLab},
        {"sli", &ClaimEntry::sli},
        {"regNum", &ClaimEntry::regNum},
        {"doctorId", &ClaimEntry::doctorId}};
    static const QMap<QString, QString ItemEntry::*> rowFields = {
        {"row.code", &ItemEntry::serviceCode},
        {"row.diag", &ItemEntry::diagCode},
        {"row.ns", &ItemEntry::numServ},
        {"row.fee", &ItemEntry::fee},
        {"row.date", &ItemEntry::serviceDate}};
    ClaimEntry c = test::ontarioClaim();
    for (const QString& change : changes) {
        const QString name = change.section('=', 0, 0);
        const QString value = change.section('=', 1);
        if (rowFields.contains(name)) {
            c.rows[0].*rowFields.value(name) = value;
        } else if (fields.contains(name)) {
            c.*fields.value(name) = value;
        } else {
            qFatal("no claim field %s", qPrintable(name));
        }
    }
    return c;
}

}  // namespace

class TestClaimChecks : public QObject {
    Q_OBJECT

    test::OfficeFixture f;
    ClaimChecks checks{*f.db, f.prompter, f.clock, f.settings};

    void sql(const QString& statement) { f.db->exec(statement); }

private slots:
    void initTestCase() {
        sql("Insert Into doctors (DoctorID, SpecCode) Values ('JS','00'), ('KS','08')");
        sql("Insert Into patients (PatientID, HealthNum, ExpYear) Values"
            " (1,'1234567897','2030-01-31'), (2,'9876543217','2026-11-21')");
        sql("Insert Into provincodes (ProvinCode, ProvName, Format) Values ('XX','Testland',8)");
        sql("Insert Into thirdparty (ThirdPartyID, Name) Values (5,'Insurer')");
        sql("Insert Into diagcodes (DiagCode) Values ('401'), ('250'), ('7999')");
        sql("Insert Into servicecodesdirect (ServiceCode, Fee) Values ('X100', 250000)");
        // Code, specialty, sex, ages (three bands), required diag/ref/facility/admit/review.
        sql("Insert Into servicecodes (ServiceCode, SpecCode, Sex, MinimumAge, MaximumAge,"
            " MinAge2, MaxAge2, ReqDiagCode, ReqRefDoctor, ReqFacilityNum, ReqAdmitDate,"
            " ReqManualReview) Values"
            " ('A007','','B',0,999,0,0,0,0,0,0,0), ('V001','','B',0,999,0,0,0,0,0,0,0),"
            " ('P001','','F',0,999,0,0,0,0,0,0,0), ('A008','08','B',0,999,0,0,0,0,0,0,0),"
            " ('K130','','B',12,17,65,999,0,0,0,0,0), ('E100','','B',0,999,0,0,1,1,1,1,1)");
    }
    void init() { f.prompter.clear(); }

    void claimRules_data() {
        QTest::addColumn<L>("changes");
        QTest::addColumn<L>("expected");
        test::row("valid", L{}, L{});
        // Rules that can fail together, each message once, in rule order.
        test::row(
            "header rules in order",
            L{"patientId=7", "healthNum=1234567890", "versionCode=A1", "dob=1980/02/30", "sex=X",
              "refDoc=12345", "facilityNum=12-4", "admitDate=x", "refLab=12A4", "doctorId=ZZ"},
            L{"Invalid Patient ID.", "You must enter a valid Ontario health card number.",
              "Version code is invalid, must be letters only.",
              "'1980/02/30' is not a valid date of birth.",
              "Invalid sex ('X'; must be 'M' or 'F').",
              "'12345' is not a valid referring doctor code (it must be a 6 digit number).",
              "'12-4' is not a valid facility number.", "'x' is not a valid admit date.",
              "'12A4' is not a valid referring lab number.", "'ZZ' is not a valid doctor ID."});
        test::row(
            "the other header rules",
            L{"payProg=", "dob=2026/11/23", "sex=", "refDoc=991234", "admitDate=2026/11/23",
              "doctorId="},
            L{"Claim type must be selected.", "Date of birth cannot be a future date.",
              "The patient's sex must be entered.", "Invalid referring doctor number.",
              "The admit date cannot be a future date.", "The doctor's name must be entered"});
        test::row("no number, no birth", L{"healthNum=", "dob="},
                  L{"You must enter a health card number.", "Date of Birth must be entered."});
        test::row("admit before birth", L{"admitDate=1980/05/16"},
                  L{"The admit date cannot be earlier than the date of birth."});
        test::row("forms that pass",
                  L{"refDoc=123456", "facilityNum=1A2B", "refLab=1234", "admitDate=2026/11/01",
                    "doctorId=js"},
                  L{});
        test::row("direct without number", L{"payProg=Direct", "healthNum="}, L{});
        test::row("no payer", L{"payProg=Third Party"},
                  L{"Please select which third party to bill."});
        test::row("unknown payer", L{"payProg=Third Party", "thirdPartyId=6"},
                  L{"'6' is not a valid Third Party ID."});
        test::row("known payer", L{"payProg=Third Party", "thirdPartyId=5"}, L{});
        test::row("RMB valid", L{"payProg=RMB", "province=BC", "healthNum=9000000018"}, L{});
        test::row("RMB fails its province", L{"payProg=RMB", "province=BC", "healthNum=8000000018"},
                  L{"You must enter a valid health card number."});
        test::row("RMB no province", L{"payProg=RMB", "province="},
                  L{"The province must be entered. (RMB)"});
        test::row("RMB unknown province", L{"payProg=RMB", "province=ZZ", "healthNum=12345678"},
                  L{"Invalid province (ZZ)."});
        test::row("RMB length", L{"payProg=RMB", "province=XX", "healthNum=1234567"},
                  L{"Health card number (registration number) must be 8 digits for Testland."});
        test::row("RMB name and sex",
                  L{"payProg=RMB", "province=XX", "healthNum=12345678", "fName=", "sex="},
                  L{"The patient's sex must be entered.",
                    "The patient's full name must be entered. (RMB)",
                    "The patient's sex must be entered. (RMB)"});
        test::row("WCB outside Ontario", L{"payProg=WCB", "province=BC"},
                  L{"The province must be ''ON'' for OHIP (HCP,WCB) claims."});
        // Whatever the claim file could not carry as typed: too long, or not letters and digits.
        test::row("fields that do not fit the claim file",
                  L{"payProg=WCB", "healthNum=12345678901", "versionCode=ABC", "sli=OFFIC"},
                  L{"'12345678901' is not a valid health card number (it must be at most 10 "
                    "letters or digits).",
                    "Version code is invalid, must be 2 letters at most.",
                    "'OFFIC' is not a valid service location indicator (it must be at most 4 "
                    "letters or digits)."});
        test::row("characters the claim file cannot carry",
                  L{"payProg=WCB", "healthNum=1234 5678", "sli=OF\nF", "regNum=12\r34"},
                  L{"'1234 5678' is not a valid health card number (it must be at most 10 "
                    "letters or digits).",
                    "'12\r34' is not a valid registration number (it must be at most 30 "
                    "characters).",
                    "'OF\nF' is not a valid service location indicator (it must be at most 4 "
                    "letters or digits)."});
        test::row("RMB of a province whose rule takes any digits",
                  L{"payProg=RMB", "province=AB", "healthNum=1234567890123"},
                  L{"'1234567890123' is not a valid health card number (it must be at most 12 "
                    "letters or digits)."});
        test::row("what fits",
                  L{"payProg=WCB", "healthNum=A234567890", "versionCode=ab", "sli=HOP",
                    "regNum=WSIB 123-456"},
                  L{});
    }
    void claimRules() {
        QFETCH(L, changes);
        QFETCH(L, expected);
        QCOMPARE(checks.claimProblems(changed(changes)), expected);
    }

    void checkClaimAsksToSaveAnyway_data() {
        QTest::addColumn<Answer>("answer");
        QTest::newRow("Yes saves") << Answer::Yes;
        QTest::newRow("No returns") << Answer::No;
    }
    void checkClaimAsksToSaveAnyway() {
        QFETCH(Answer, answer);
        f.prompter.script({answer});
        QCOMPARE(checks.CheckClaim(changed({"sex=", "doctorId="})), answer == Answer::Yes);
        const auto& m = f.prompter.last();
        QCOMPARE(m.title, "Error");
        QCOMPARE(m.defaultAnswer, Answer::No);
        QCOMPARE(m.lines,
                 (L{"Cannot save this claim due to the following problem(s):",
                    "The patient's sex must be entered.", "The doctor's name must be entered", "",
                    "If you would like to save this claim anyway, press 'Yes'"}));
    }

    void rowRules_data() {
        QTest::addColumn<L>("changes");
        QTest::addColumn<L>("expected");
        test::row("valid", L{}, L{});
        test::row("unknown code", L{"row.code=X999A"},
                  L{"Row: 1 - 'X999A' is not a valid service code."});
        test::row("suffix D", L{"row.code=A007D"},
                  L{"Row: 1 - 'A007D' is not a valid service code."});
        test::row("direct from its own list", L{"payProg=Direct", "row.code=X100"}, L{});
        test::row("direct not from the schedule", L{"payProg=Direct"},
                  L{"Row: 1 - 'A007A' is not a valid direct service code."});
        test::row(
            "WCB V code", L{"payProg=WCB", "row.code=V001A"},
            L{"Row: 1 - Service codes prefixed by T or V are excluded from WCB submissions."});
        test::row("HCP V code", L{"row.code=V001A"}, L{});
        test::row("specialty", L{"row.code=A008A"},
                  L{"Row: 1 - Service Code A008A can only be billed by a provider with specialty "
                    "code 08."});
        test::row("specialty met", L{"row.code=A008A", "doctorId=KS"}, L{});
        test::row("female only", L{"row.code=P001A", "sex=M"},
                  L{"Row: 1 - Service Code P001A can only be billed for female patients."});
        test::row("age 17 the day before 18", L{"row.code=K130A", "dob=2008/11/21"}, L{});
        test::row("age 18", L{"row.code=K130A", "dob=2008/11/20"},
                  L{"Row: 1 - Service Code K130A can only be billed for patients aged 12 to 17 "
                    "or 65 or older."});
        test::row("age in second band", L{"row.code=K130A", "dob=1950/01/01"}, L{});
        test::row("requirements", L{"row.code=E100A", "row.diag="},
                  L{"Row: 1 - Service Code E100A requires a diagnostic code.",
                    "Row: 1 - This service code requires an admit date.",
                    "Row: 1 - This service code requires a 4-digit facility number.",
                    "Row: 1 - This service code requires a 6-digit referring doctor number."});
        test::row("diag form", L{"row.diag=4O1"},
                  L{"Row: 1 - '4O1' is not a valid diagnostic code."});
        test::row("diag four digits", L{"row.diag=7999"}, L{});
        test::row("diag not listed", L{"row.diag=402"},
                  L{"Row: 1 - '402' is not listed in Brimsett as a valid diagnostic code."});
        const QString services = "is invalid for number of services (must be 1-99).";
        test::row("services 1", L{"row.ns=1"}, L{});
        test::row("services 99, fee 5,000.00", L{"row.ns=99", "row.fee=5,000.00"}, L{});
        test::row("services 0, fee zero, no date", L{"row.ns=0", "row.fee=0.00", "row.date="},
                  L{"Row: 1 - '0' " + services, "Row: 1 - Fee must be greater than zero.",
                    "Row: 1 - Service date must be entered."});
        test::row("services 100, fee 5,000.01, bad date",
                  L{"row.ns=100", "row.fee=5000.01", "row.date=2026/13/01"},
                  L{"Row: 1 - '100' " + services, "Row: 1 - Fee cannot be greater $5,000.",
                    "Row: 1 - '2026/13/01' is not a valid service date."});
        test::row("fee empty", L{"row.fee="}, L{"Row: 1 - Fee must be entered."});
        test::row("fee text", L{"row.fee=12,34.00"}, L{"Row: 1 - '12,34.00' is not a valid fee."});
        test::row("no code", L{"row.code="},
                  L{"Row: 1 - '' is not a valid service code.",
                    "You must enter at least one service code."});
    }
    void rowRules() {
        QFETCH(L, changes);
        QFETCH(L, expected);
        QCOMPARE(checks.rowProblems(changed(changes)), expected);
    }

    void checkRowsNumbersGridRowsAndMarksReview() {
        ClaimEntry c = changed({"admitDate=2026/11/01", "facilityNum=1234", "refDoc=123456"});
        c.rows = {{"E100A", "401", "1", "10.00", "2026/11/20"}, {}, {"A007A", "", "", "", ""}};
        QVERIFY(!checks.CheckRows(c));
        QVERIFY(c.manualReview);
        QCOMPARE(f.prompter.last().title, "Error");
        QCOMPARE(f.prompter.last().lines,
                 (L{"Cannot save this claim due to the following problem(s):",
                    "Row: 3 - '' is invalid for number of services (must be 1-99).",
                    "Row: 3 - Fee must be entered.", "Row: 3 - Service date must be entered."}));
        c.rows.removeLast();
        f.prompter.clear();
        QVERIFY(checks.CheckRows(c));
        QVERIFY(f.prompter.messages().isEmpty());
    }

    void emptyDiagnosticListRefusesNothing() {
        sql("Delete From diagcodes");
        QCOMPARE(checks.rowProblems(changed({"row.diag=402"})), L{});
        sql("Insert Into diagcodes (DiagCode) Values ('401'), ('250'), ('7999')");
    }

    void checkDates_data() {
        QTest::addColumn<QString>("payProg");
        QTest::addColumn<L>("dates");
        QTest::addColumn<Answer>("answer");
        QTest::addColumn<L>("question");  // empty: nothing asked
        const QString sure = "Are you sure you want to save this claim?";
        const QString ohip = "If you submit this claim to OHIP it may be rejected.";
        test::row("today and six months", "HCP - P", L{"2026/11/22", "2026/05/22"}, Answer::No,
                  L{});
        test::row("future and old, Yes", "HCP - P", L{"2026/11/23", "20260521"}, Answer::Yes,
                  L{"The service date '2026/11/23' is a future date.",
                    "The service date '2026/05/21' is more than 6 months ago.", "", ohip, sure});
        test::row("future, No", "WCB", L{"2027/01/01"}, Answer::No,
                  L{"The service date '2027/01/01' is a future date.", "", ohip, sure});
        test::row("third party old", "Third Party", L{"2020/01/01"}, Answer::No, L{});
        test::row("direct future", "Direct", L{"2026/12/01", "2020/01/01"}, Answer::Yes,
                  L{"The service date '2026/12/01' is a future date.", "", sure});
    }
    void checkDates() {
        QFETCH(QString, payProg);
        QFETCH(L, dates);
        QFETCH(Answer, answer);
        QFETCH(L, question);
        ClaimEntry c = changed({"payProg=" + payProg});
        c.rows.clear();
        for (const QString& date : dates) {
            c.rows << ItemEntry{"A007A", "", "1", "1.00", date};
        }
        f.prompter.script({answer});
        QCOMPARE(checks.CheckDates(c), question.isEmpty() || answer == Answer::Yes);
        QCOMPARE(f.prompter.messages().size(), question.isEmpty() ? 0 : 1);
        if (!question.isEmpty()) {
            QCOMPARE(f.prompter.last().title, "Service Dates");
            QCOMPARE(f.prompter.last().defaultAnswer, Answer::No);
            QCOMPARE(f.prompter.last().lines, question);
        }
    }

    void checkExpired() {
        QVERIFY(checks.CheckExpired(test::ontarioClaim()));  // card valid until 2030
        QVERIFY(f.prompter.messages().isEmpty());
        f.prompter.script({Answer::No, Answer::Yes});
        const ClaimEntry expired = changed({"patientId=2"});
        QVERIFY(!checks.CheckExpired(expired));
        QVERIFY(checks.CheckExpired(expired));
        QCOMPARE(f.prompter.last().title, "Expired Health Card");
        QCOMPARE(f.prompter.last().lines, (L{"This patient's health card expired on 2026/11/21",
                                             "Are you sure you want to save this claim?"}));
    }

    void checkDouble_data() {
        QTest::addColumn<L>("changes");
        QTest::addColumn<qint64>("claimId");
        QTest::addColumn<L>("listed");
        test::row("same items", L{}, qint64(0),
                  L{"Service Code: A007A  |  Diag. Code: 401  |  Service Date: 2026/11/20"});
        test::row("other diagnostic code", L{"row.diag=250"}, qint64(0), L{});
        test::row("other program", L{"payProg=HCP - S"}, qint64(0), L{});
        test::row("other provider", L{"doctorId=KS"}, qint64(0), L{});
        test::row("the claim itself edited", L{}, qint64(10000001), L{});
    }
    void checkDouble() {
        QFETCH(L, changes);
        QFETCH(qint64, claimId);
        QFETCH(L, listed);
        sql("Delete From claims");
        sql("Delete From items");
        sql("Insert Into claims (ClaimID, BatchID, AcctNum, DoctorID, PayProg, PatientID) Values"
            " (10000001,'000000000000','00000001','JS','HCP - P',1)");
        sql("Insert Into items (ClaimID, ItemID, ServiceCode, DiagCode, ServiceDate) Values"
            " (10000001,1,'A007A','401','2026-11-20')");
        ClaimEntry c = changed(changes);
        if (claimId) {
            c.claimId = claimId;
        }
        f.prompter.script({Answer::No});
        QCOMPARE(checks.CheckDouble(c), listed.isEmpty());
        if (!listed.isEmpty()) {
            QCOMPARE(f.prompter.last().title, "Duplicate items");
            const L expected =
                L{"The items below have already", "been billed for this patient:", ""} + listed +
                L{"", "Are you sure you want to submit it again?"};
            QCOMPARE(f.prompter.last().lines, expected);
        }
    }
};

QTEST_GUILESS_MAIN(TestClaimChecks)
#include "test_claim_checks.moc"
