#include "PatientTestOffice.h"
#include "patients/PatientValidation.h"

#include <QtTest>

using namespace brimsett;

namespace {

// "field=value" changes applied to the valid patient.
PatientEntry changed(const QStringList& changes) {
    static const QMap<QString, QString PatientEntry::*> fields = {
        {"healthNum", &PatientEntry::healthNum},
        {"versionCode", &PatientEntry::versionCode},
        {"expYear", &PatientEntry::expYear},
        {"dob", &PatientEntry::dob},
        {"sex", &PatientEntry::sex},
        {"refDoc", &PatientEntry::refDoc},
        {"famDoc", &PatientEntry::famDoc},
        {"facilityNum", &PatientEntry::facilityNum},
        {"admitDate", &PatientEntry::admitDate},
        {"province", &PatientEntry::province},
    };
    PatientEntry e = test::validPatient();
    for (const QString& change : changes) {
        const qsizetype eq = change.indexOf(QLatin1Char('='));
        e.*fields.value(change.left(eq)) = change.mid(eq + 1);
    }
    return e;
}

QStringList errorsMessage(const QStringList& problems) {
    return QStringList{"Patient cannot be saved due to the following problem(s):", ""} + problems;
}

}  // namespace

class TestPatientValidation : public QObject {
    Q_OBJECT

private slots:
    void rulesGiveTheirExactLines_data() {
        QTest::addColumn<QStringList>("changes");
        QTest::addColumn<QStringList>("expected");
        using L = QStringList;
        test::row("valid", L{}, L{});
        test::row("number fails Ontario rule", L{"healthNum=1234567890"},
                  L{"'1234567890' is not a valid health card number."});
        test::row("version code with digit", L{"versionCode=A1"},
                  L{"'A1' is not a valid version code, must be letters only."});
        test::row("expiry not a date", L{"expYear=2026/02/30"},
                  L{"'2026/02/30' is not a valid expiry date."});
        test::row("expiry before birth", L{"expYear=1980/05/16"},
                  L{"The expiry date cannot be earlier than the date of birth."});
        test::row("birth not a date", L{"dob=17/05/1980"},
                  L{"'17/05/1980' is not a valid date of birth."});
        test::row("birth tomorrow", L{"dob=2026/11/23", "admitDate=", "expYear="},
                  L{"The date of birth cannot be a future date."});
        test::row("other date forms", L{"dob=19800517", "admitDate=2026-11-01"}, L{});
        test::row("sex lower case", L{"sex=m"}, L{});
        test::row("sex other", L{"sex=X"}, L{"Please enter M for male or F for female."});
        test::row("referring doctor short", L{"refDoc=12345"}, L{"Invalid referring doctor."});
        test::row("family doctor long", L{"famDoc=1234567"}, L{"Invalid family doctor."});
        test::row("facility short", L{"facilityNum=123"},
                  L{"Invalid Facility Number (must be 4 characters long)."});
        test::row("facility punctuation", L{"facilityNum=12-4"},
                  L{"Invalid characters in Facility Number (must be alphanumeric)."});
        test::row("admit not a date", L{"admitDate=2026/11/31"},
                  L{"'2026/11/31' is not a valid admit date."});
        test::row("admit tomorrow", L{"admitDate=2026/11/23"},
                  L{"The admit date cannot be a future date."});
        test::row("birth after admission", L{"dob=2000/01/02", "admitDate=2000/01/01"},
                  L{"The admit date cannot be earlier than the date of birth."});
        test::row("several, in rule order",
                  L{"facilityNum=1", "sex=Q", "versionCode=9", "dob=x", "admitDate=1970/01/01"},
                  L{"'9' is not a valid version code, must be letters only.",
                    "'x' is not a valid date of birth.", "Please enter M for male or F for female.",
                    "Invalid Facility Number (must be 4 characters long)."});
        // The number's problems stop the save before the other fields are looked at.
        test::row("number first, alone", L{"healthNum=123", "sex=Q"},
                  L{"'123' is not a valid health card number."});
    }
    void rulesGiveTheirExactLines() {
        QFETCH(QStringList, changes);
        QFETCH(QStringList, expected);
        test::PatientTestOffice o;
        PatientValidation v(*o.db, o.settings, o.prompter, o.clock);
        QCOMPARE(v.check(changed(changes), std::nullopt), expected.isEmpty());
        if (expected.isEmpty()) {
            QCOMPARE(o.prompter.messages().size(), 0);
            return;
        }
        QCOMPARE(o.prompter.messages().size(), 1);
        QCOMPARE(o.prompter.last().title, QStringLiteral("Errors"));
        QCOMPARE(o.prompter.last().icon, Icon::Warning);
        QVERIFY(!o.prompter.last().question);
        QCOMPARE(o.prompter.last().lines, errorsMessage(expected));
    }

    void duplicateNumbers_data() {
        QTest::addColumn<QString>("storedNumber");
        QTest::addColumn<QString>("province");
        QTest::addColumn<QString>("number");
        QTest::addColumn<bool>("editingTheStoredPatient");
        QTest::addColumn<bool>("duplicate");
        test::row("Ontario number taken", "1234567897", "ON", "1234567897", false, true);
        test::row("Manitoba numbers may repeat", "123456", "MB", "123456", false, false);
        test::row("stored with trailing blank", "1234567897 ", "ON", "1234567897", false, false);
        test::row("own row is no duplicate", "1234567897", "ON", "1234567897", true, false);
    }
    void duplicateNumbers() {
        QFETCH(QString, storedNumber);
        QFETCH(QString, province);
        QFETCH(QString, number);
        QFETCH(bool, editingTheStoredPatient);
        QFETCH(bool, duplicate);
        test::PatientTestOffice o;
        o.addPatient(7, storedNumber, province, "Ann", "O'Hara");
        PatientValidation v(*o.db, o.settings, o.prompter, o.clock);
        const PatientEntry e = changed({"healthNum=" + number, "province=" + province});
        const bool ok =
            v.check(e, editingTheStoredPatient ? std::optional<qint64>(7) : std::nullopt);
        QCOMPARE(ok, !duplicate);
        if (duplicate) {
            QCOMPARE(o.prompter.last().lines,
                     errorsMessage({"There is already an existing patient (Ann O'Hara)",
                                    "with health card number '" + number + "'."}));
        }
    }

    void emptyFieldQuestion_data() {
        QTest::addColumn<bool>("switchOn");
        QTest::addColumn<QStringList>("changes");
        QTest::addColumn<int>("answer");
        QTest::addColumn<QStringList>("labels");
        QTest::addColumn<bool>("mayGoOn");
        const QStringList allEmpty{"dob=", "sex=", "refDoc=", "expYear=", "admitDate="};
        test::row("switch off: no question", false, allEmpty, int(Answer::No), QStringList{}, true);
        test::row("all empty, Yes", true, allEmpty, int(Answer::Yes),
                  QStringList{"Date of Birth", "Sex", "Refr. Doctor"}, true);
        test::row("all empty, No", true, allEmpty, int(Answer::No),
                  QStringList{"Date of Birth", "Sex", "Refr. Doctor"}, false);
        test::row("sex only", true, QStringList{"sex="}, int(Answer::No), QStringList{"Sex"},
                  false);
    }
    void emptyFieldQuestion() {
        QFETCH(bool, switchOn);
        QFETCH(QStringList, changes);
        QFETCH(int, answer);
        QFETCH(QStringList, labels);
        QFETCH(bool, mayGoOn);
        test::PatientTestOffice o;
        o.settings.option[22] = switchOn;
        o.prompter.script({Answer(answer)});
        PatientValidation v(*o.db, o.settings, o.prompter, o.clock);
        QCOMPARE(v.check(changed(changes), std::nullopt), mayGoOn);
        if (labels.isEmpty()) {
            QCOMPARE(o.prompter.messages().size(), 0);
            return;
        }
        QCOMPARE(o.prompter.messages().size(), 1);
        const auto& m = o.prompter.last();
        QVERIFY(m.question);
        QCOMPARE(m.icon, Icon::Question);
        QCOMPARE(m.buttons, Buttons::YesNo);
        QCOMPARE(m.defaultAnswer, Answer::No);
        QCOMPARE(m.lines, QStringList({"The following fields were left empty", ""}) + labels +
                              QStringList{"Are you sure you want to save the changes?"});
    }

    // The province rule passed (switch 1 spares Nova Scotia) but the table wants 10 digits.
    void lengthQuestionNoStopsQuietly() {
        test::PatientTestOffice o;
        o.settings.option[1] = true;
        o.prompter.script({Answer::No});
        PatientValidation v(*o.db, o.settings, o.prompter, o.clock);
        QVERIFY(!v.check(changed({"province=NS", "healthNum=12345678"}), std::nullopt));
        QCOMPARE(o.prompter.messages().size(), 1);
        QCOMPARE(o.prompter.last().title, QStringLiteral("Invalid Health Number"));
    }
};

QTEST_GUILESS_MAIN(TestPatientValidation)
#include "test_patient_validation.moc"
